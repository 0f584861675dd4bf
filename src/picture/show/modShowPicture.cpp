#include "picture/show/modShowPicture.h"

#include <utility>
#include <vector>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/current_picture.h"
#include "picture/read/arrangement.h"
#include "picture/show/spread_picture.h"
#include "picture/view/picture_kernel.h"
#include "picture/view/sight_pixels.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

SIZE SizeOf(const Picture& picture) {
    return {picture.Width(), picture.Height()};
}

// Of such a size the view makes the part that is seen; all of it could be as long as a scroll.
bool IsFarLarger(SIZE wanted, SIZE screen) {
    constexpr int64_t kScreens = 4;
    return int64_t{wanted.cx} * wanted.cy > kScreens * screen.cx * screen.cy;
}

constexpr wchar_t kNoPluginText[] = L"対応しているプラグインがありません。";
constexpr wchar_t kPassedByText[] = L"クラウドにあり、まだ取得していません。";
constexpr wchar_t kNestedArchiveText[] = L"圧縮ファイルの中の圧縮ファイルは開けません。";
constexpr wchar_t kEmptyArchiveText[] = L"圧縮ファイルの中にファイルがありません。";

// Why there is no picture.
std::wstring ReasonOf(const ReadToShow& result) {
    if (result.file.stopped) return result.subject + L" の読み込みを中止しました。";
    if (result.file.passedBy) return FailureText(result.subject, kPassedByText);
    if (!result.file.failure.empty()) return result.file.failure;
    return FailureText(result.subject,
                       result.file.kind == kFileArchive ? kNestedArchiveText : kNoPluginText);
}

// Fills the list with the members of the archive that was just recognised; false when there are
// none.
bool ListMembers(const std::wstring& path, MemberList& list) {
    clsSusie* const archive = SusieCollection().ArchiveToList(path);
    if (archive == nullptr) return false;
    const std::vector<ListedMember> members =
        Arranged(archive->GetExpandFileList(), ChosenArrangement());
    list.SetMembers(members);
    return !members.empty();
}

// The user knows the folder, and the view is no place for a long path.
std::wstring WithoutFolder(std::wstring text, const std::wstring& path) {
    const size_t at = text.find(path);
    if (at != std::wstring::npos) text.replace(at, path.size(), FileNameOf(path));
    return text;
}

// Makes what was read of the file `path` the current picture and shows it, or tells why there is
// none.
ShownFile Show(ReadToShow result, const std::wstring& path, PictureView& view,
               const LayOpen& layOpen) {
    if (layOpen && IsPictureKind(result.file.kind)) result = layOpen(std::move(result));
    if (IsPictureKind(result.file.kind)) {
        SetCurrentPicture(std::move(result.picture), result.file.damage);
        if (CurrentPicture() && DisplayCurrentPicture(view, result.prepared)) {
            if (result.animation.count > 0) view.SetAnimation(result.animation);
            return result.file;
        }
        result.file = {.failure = FailureText(result.subject, kDrawingFailedText)};
    }
    ShowReasonFor(view, WithoutFolder(ReasonOf(result), path));
    return result.file;
}

}  // namespace

ShownFile ShowFile(const std::wstring& path, PictureView& view, MemberList& members,
                   const LayOpen& layOpen) {
    ReadToShow result = ReadFileToShow(path, view);
    if (result.file.kind == kFileArchive) {
        if (ListMembers(path, members)) return result.file;
        result.file.failure = FailureText(result.subject, kEmptyArchiveText);
    }
    return Show(std::move(result), path, view, layOpen);
}

ShownFile ShowPage(const std::wstring& path, uint32_t page, PictureView& view,
                   const LayOpen& layOpen) {
    return Show(ReadPageToShow(path, page, view), path, view, layOpen);
}

ShownFile ShowArchiveMember(const std::wstring& archivePath, int32_t position, PictureView& view,
                            uint32_t page, const LayOpen& layOpen) {
    return Show(ReadMemberToShow({archivePath, position, page}, view), archivePath, view, layOpen);
}

bool JoinPages(ReadToShow& page, const ReadToShow& neighbor, bool isLeft) {
    Picture both = isLeft ? SpreadPicture(page.picture, neighbor.picture)
                          : SpreadPicture(neighbor.picture, page.picture);
    if (!both) return false;
    page.picture = std::move(both);
    page.prepared = {};
    if (page.file.damage.empty()) page.file.damage = neighbor.file.damage;
    return true;
}

void ShowReasonFor(PictureView& view, const std::wstring& reason) {
    SetCurrentPicture({});
    view.ShowReason(reason);
}

PreparePicture PreparationFor(const PictureView& view) {
    return [rule = ChosenFitRule(), room = view.Room(),
            light = ChosenLight()](const Picture& picture) {
        const SIZE own = SizeOf(picture);
        const SIZE wanted = SizeInRoom(own, rule, room);
        // What shows through has its place on the screen.
        return IsExactAsItIs(own, wanted) || picture.HasAlpha() ||
                       IsFarLarger(wanted, room.workArea)
                   ? Picture()
                   : ResizePicture(picture, wanted.cx, wanted.cy, Handover::kNoFile, light);
    };
}

bool DisplayCurrentPicture(PictureView& view, const Picture& prepared) {
    const Picture& current = CurrentPicture();
    if (!current) {
        view.ClearPicture();
        return true;
    }
    const SIZE own = SizeOf(current);
    const SIZE wanted = SizeInRoom(own, ChosenFitRule(), view.Room());
    if (prepared || IsExactAsItIs(own, wanted) || !HandsOverByFile() || current.HasAlpha()) {
        view.SetPicture(current.Another(), prepared);
    } else {
        // The view's own thread can make nothing with such a kernel.
        view.SetPicture(current.Another(), ResizePicture(current, wanted.cx, wanted.cy,
                                                         Handover::kFile, ChosenLight()));
    }
    return true;
}

}  // namespace tessary
