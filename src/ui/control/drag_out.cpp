#include "ui/control/drag_out.h"

#include <optional>
#include <utility>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "picture/current_picture.h"
#include "picture/save/save_picture.h"
#include "plugin/member_file_name.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_state.h"
#include "ui/control/save_name.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

// Small enough, and soon there: somebody holds the mouse button meanwhile.
constexpr saving::SaveOptions kSoon = {
    .bmp = {}, .png = {.quality = 3, .interlace = 0}, .jpeg = {}};

// Both answer the file's full path, empty when it cannot be made; `folder` has no separator at its
// end.
std::wstring MakeMemberFile(const ShownMember& member, const std::wstring& folder) {
    if (PluginCallUnderWay()) return {};
    const std::optional<std::wstring> name = SafeMemberName(FileNameOf(member.name));
    clsSusie* const archive = SusieCollection().ListedArchive(member.archive);
    if (!name || archive == nullptr) return {};
    archive->DecodeArchive(member.position, folder, *name, {});
    return folder + L'\\' + *name;
}

std::wstring MakePictureFile(const Picture& picture, const std::wstring& stem,
                             const std::wstring& folder) {
    const SaverFormat& png = *SaverFormatAt(kPngFormat);
    const std::wstring path = folder + L'\\' + WithExtensionOf(png, stem);
    return SavePictureAs(png, picture, path, kSoon, 0) ? path : std::wstring();
}

}  // namespace

DragOut::DragOut(frmMain& window, const ControlBar& controlBar,
                 std::function<DWORD(DraggedFile file)> drag)
    : window_(window), controlBar_(controlBar), drag_(std::move(drag)) {
    window_.OnPictureDragged([this] { DragPicture(); });
}

void DragOut::DragPicture() {
    if (!CurrentPicture() || IsReadUnderWay()) return;
    const PictureSource& source = window_.Source();
    const std::wstring file = window_.ShownFile();
    std::optional<ShownMember> member = controlBar_.MemberOf(source);
    if (window_.Orientation() != exif::kUpright || source.page > 1 || source.isSpread) {
        member.reset();
    }
    {
        // What is dragged stays in sight, and this window takes nothing from itself.
        const ReadUnderWay dragging;
        drag_([this, file, member,
               stem = ProposedStem(source.fileName, source.page, source.isSpread),
               picture = std::make_shared<Picture>(CurrentPicture().Another())] {
            if (!file.empty()) return std::wstring(file);
            return Trapped(std::wstring(), [&] {
                const std::wstring folder = folders_.emplace_back().Target();
                return member ? MakeMemberFile(*member, folder)
                              : MakePictureFile(*picture, stem, folder);
            });
        });
    }
    window_.CloseIfAsked();
}

}  // namespace tessary
