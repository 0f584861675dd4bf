#include "ui/control/save_commands.h"

#include <string>
#include <utility>

#include "app/base/file_identity.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/task_modal.h"
#include "app/base/write_error.h"
#include "app/settings/modValue.h"
#include "picture/current_picture.h"
#include "picture/metadata/picture_metadata.h"
#include "picture/save/save_picture.h"
#include "picture/save/save_progress.h"
#include "res/resource.h"
#include "ui/control/save_name.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/dialogs/frmSaveOption.h"
#include "ui/dialogs/start_folder.h"
#include "ui/form/activity.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/session_hold.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

// The dialog counts its types from 1.
const SaverFormat& FormatOf(int type) {
    const auto index = static_cast<size_t>(type - 1);
    return SaverFormats()[index < SaverFormats().size() ? index : 0];
}

int TypeOf(const SaverFormat& format) {
    return static_cast<int>(&format - SaverFormats().data()) + 1;
}

// Where the last picture was saved, else where the last one was opened.
std::wstring StartFolder() {
    const GeneralSettings& general = Values().general;
    return FirstChosenFolder({&general.savePath, &general.openPath});
}

// A drive's root keeps it.
std::wstring WithoutBackslash(const std::wstring& folder) {
    return folder.size() > 3 ? RemoveBackslash(folder) : folder;
}

// The current picture with what its file says of it. The file may lie where reading takes long.
Picture WithMetadata(const SaverFormat& format, const saving::SaveOptions& options,
                     const std::function<bool()>& waiting) {
    Picture picture = CurrentPicture().Another();
    const auto wish = WishFor(picture, format, options);
    if (!wish) return picture;
    auto kept = CallInBackground<KeptMetadata>(
        [origin = picture.Origin(), wish = *wish] { return KeptOf(*origin, wish); }, waiting);
    if (!kept) return picture;
    picture.SetExif(std::move(kept->exif));
    picture.SetDates(kept->dates);
    return picture;
}

// The end of the sentence that tells what a file loses that is replaced.
std::wstring LostBesides(const SaverFormat& format, const saving::SaveOptions& options) {
    const bool losesExif = !format.KeepsExif(options);
    const bool losesProfile = !format.KeepsProfile(options);
    if (!losesExif && !losesProfile) return L"ます。";
    return std::wstring(L"、") + (losesExif ? L"撮影情報(Exif)" : L"") +
           (losesExif && losesProfile ? L"や" : L"") + (losesProfile ? L"色の情報" : L"") +
           L"などは失われます。";
}

enum class Saved { kYes, kNo, kStopped };

// Closing the program waits for the end: only the user who stops it gives up a picture. `error`
// receives the reason for kNo.
Saved SaveTellingProgress(const SaverFormat& format, const std::wstring& path, frmMain& window,
                          DWORD& error) {
    const ReadUnderWay busy;  // the picture must stay as it is
    const SessionHold session(window.Handle(), L"画像を保存しています。");
    const BusyPointer pointer;
    const TaskModal others(nullptr);
    frmProgress shown(window.DialogOwner(), L"画像の保存");
    const SaveProgress progress([&](int percent) {
        shown.Tell(path, percent, 100);
        window.Breathe();
        return !shown.IsStopped();
    });
    const saving::SaveOptions options = ChosenSaveOptions();
    const Picture picture =
        WithMetadata(format, options, [&] { return window.Breathe() && !shown.IsStopped(); });
    SetLastError(ERROR_SUCCESS);
    if (SavePictureAs(format, picture, path, options, SaveProgress::PassThrough())) {
        return Saved::kYes;
    }
    error = GetLastError();
    return shown.IsStopped() ? Saved::kStopped : Saved::kNo;
}

}  // namespace

SaveCommands::SaveCommands(frmMain& window, Chooser choose)
    : window_(window), choose_(std::move(choose)) {
    window_.Commands().Register(menuFileSaveAs,
                                {.run = [this] { menuFileSaveAs_Click(); },
                                 .enabled = [this] { return window_.PictureShown(); }});
}

std::wstring SaveCommands::FolderToBegin() const {
    const std::wstring beside = FolderOf(window_.Source().path);
    return format_ != nullptr || beside.empty() || !IsFolder(beside) ? StartFolder() : beside;
}

const SaverFormat& SaveCommands::FormatToBegin() const {
    if (format_ != nullptr) return *format_;
    const SaverFormat* const own = SaverFormatOf(window_.Source().fileName);
    return *(own != nullptr ? own : SaverFormatAt(kPngFormat));
}

SaveDialogRequest SaveCommands::RequestFor(Choice& chosen) const {
    const SaverFormat& format = FormatToBegin();
    SaveDialogRequest request;
    request.folder = FolderToBegin();
    const PictureSource& source = window_.Source();
    request.name =
        WithExtensionOf(format, ProposedStem(source.fileName, source.page, source.isSpread));
    for (const SaverFormat& each : SaverFormats())
        request.types.push_back({each.description, std::wstring(each.extensions.front())});
    request.type = TypeOf(format);
    request.buttonCaption = L"詳細設定(&D)...";
    request.onButton = [](HWND dialog, int type) {
        frmSaveOption().Edit(dialog, FormatOf(type), Values().saveOptions);
    };
    request.renamed = [](const std::wstring& name, int type) {
        return WithExtensionOf(FormatOf(type), name);
    };
    request.accept = [this, &chosen](const std::wstring& path, int type) {
        const SaverFormat* const named = SaverFormatOf(path);
        const SaverFormat& wanted = named != nullptr ? *named : FormatOf(type);
        chosen = {WithExtensionOf(wanted, path), &wanted};
        return MayReplace(chosen);
    };
    return request;
}

bool SaveCommands::MayReplace(const Choice& chosen) const {
    if (!PathExists(chosen.path) || IsFolder(chosen.path)) return true;
    std::wstring question = chosen.path + L" は既に存在します。\r\n上書きしますか？";
    const std::wstring& original = window_.Source().path;
    if (chosen.format->loss != nullptr && IsSameFile(chosen.path, original)) {
        question += L"\r\n\r\n表示している画像の元のファイルです。" +
                    chosen.format->loss(Values().saveOptions) +
                    LostBesides(*chosen.format, Values().saveOptions);
    }
    return ShowMessageBox(question, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2) == IDYES;
}

void SaveCommands::menuFileSaveAs_Click() {
    const HWND owner = window_.DialogOwner();
    Choice chosen{};
    const bool accepted = choose_(owner, RequestFor(chosen));
    // The session may have ended meanwhile.
    if (!accepted || !CurrentPicture()) return;
    format_ = chosen.format;
    Values().general.savePath = WithoutBackslash(FolderOf(chosen.path));
    Save(chosen);
}

void SaveCommands::Save(const Choice& chosen) {
    const std::wstring& path = chosen.path;
    DWORD error = ERROR_SUCCESS;
    const Saved saved = SaveTellingProgress(*chosen.format, path, window_, error);
    window_.CloseIfAsked();
    if (saved == Saved::kYes) window_.TellSaved(path);
    if (saved == Saved::kStopped && !CurrentActivity().quitRequested) {
        ShowMessageBox(L"ファイル " + path + L" の保存を中止しました。何も保存されていません。",
                       MB_ICONINFORMATION);
    }
    if (saved == Saved::kNo) {
        std::wstring text = L"ファイル " + path + L" に保存できません。";
        if (error != ERROR_SUCCESS) text += L"\r\n" + WriteErrorText(error);
        ShowMessageBox(text, MB_ICONEXCLAMATION);
    }
}

}  // namespace tessary
