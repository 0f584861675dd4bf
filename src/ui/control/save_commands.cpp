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
#include "picture/save/save_picture.h"
#include "picture/save/save_progress.h"
#include "res/resource.h"
#include "ui/dialogs/frmProgress.h"
#include "ui/dialogs/frmSaveOption.h"
#include "ui/dialogs/start_folder.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/session_hold.h"

namespace tessary {
namespace {

SaveFormat FormatOf(int type) {
    return static_cast<SaveFormat>(type);
}

// Where the last picture was saved, else where the last one was opened.
std::wstring StartFolder() {
    const GeneralSettings& general = Values().general;
    return FirstChosenFolder({&general.savePath, &general.openPath});
}

void EditOptions(HWND owner, SaveFormat format) {
    frmSaveOption dialog;
    switch (format) {
        case SaveFormat::kBMP:
            dialog.EditBMP(owner, Values().bmpSave);
            break;
        case SaveFormat::kPNG:
            dialog.EditPNG(owner, Values().pngSave);
            break;
        case SaveFormat::kJPEG:
            dialog.EditJPEG(owner, Values().jpegSave);
            break;
    }
}

// A drive's root keeps it.
std::wstring WithoutBackslash(const std::wstring& folder) {
    return folder.size() > 3 ? RemoveBackslash(folder) : folder;
}

enum class Saved { kYes, kNo, kStopped };

// Closing the program waits for the end: only the user who stops it gives up a picture. `error`
// receives the reason for kNo.
Saved SaveTellingProgress(SaveFormat format, const std::wstring& path, frmMain& window,
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
    SetLastError(ERROR_SUCCESS);
    if (SavePictureAs(format, CurrentPicture(), path, SaveProgress::PassThrough())) {
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
    return format_ || beside.empty() || !IsFolder(beside) ? StartFolder() : beside;
}

SaveFormat SaveCommands::FormatToBegin() const {
    if (format_) return *format_;
    return FormatOfName(window_.Source().fileName).value_or(SaveFormat::kPNG);
}

SaveDialogRequest SaveCommands::RequestFor(Choice& chosen) const {
    const SaveFormat format = FormatToBegin();
    SaveDialogRequest request;
    request.folder = FolderToBegin();
    request.name = WithExtensionOf(format, ProposedStem(window_.Source().fileName));
    for (const auto& [format, description] : {std::pair{SaveFormat::kBMP, L"ビットマップ (*.bmp)"},
                                              std::pair{SaveFormat::kPNG, L"PNG (*.png)"},
                                              std::pair{SaveFormat::kJPEG, L"JPEG (*.jpg)"}}) {
        request.types.push_back({description, ExtensionOf(format)});
    }
    request.type = static_cast<int>(format);
    request.buttonCaption = L"詳細設定(&D)...";
    request.onButton = [](HWND dialog, int type) { EditOptions(dialog, FormatOf(type)); };
    request.renamed = [](const std::wstring& name, int type) {
        return WithExtensionOf(FormatOf(type), name);
    };
    request.accept = [this, &chosen](const std::wstring& path, int type) {
        const SaveFormat wanted = FormatOfName(path).value_or(FormatOf(type));
        chosen = {WithExtensionOf(wanted, path), wanted};
        return MayReplace(chosen);
    };
    return request;
}

bool SaveCommands::MayReplace(const Choice& chosen) const {
    if (!PathExists(chosen.path) || IsFolder(chosen.path)) return true;
    std::wstring question = chosen.path + L" は既に存在します。\r\n上書きしますか？";
    const std::wstring& original = window_.Source().path;
    if (chosen.format == SaveFormat::kJPEG && IsSameFile(chosen.path, original)) {
        question += L"\r\n\r\n表示している画像の元のファイルです。品質 " +
                    std::to_wstring(Values().jpegSave.quality) +
                    L" で圧縮し直すので画質が落ち、撮影情報(Exif)や色の情報などは失われます。";
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
    const Saved saved = SaveTellingProgress(chosen.format, path, window_, error);
    window_.CloseIfAsked();
    if (saved == Saved::kYes) window_.TellSaved(path);
    if (saved == Saved::kStopped && !Values().quitRequested) {
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
