#include "ui/convert/frmConvertAll.h"

#include <windows.h>
// The flags of file dialogs need the types of windows.h.
#include <commdlg.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/raised_flag.h"
#include "app/base/scan_folders.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/control/open_rules.h"
#include "ui/dialogs/ComDlg.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/dialogs/folder_listing.h"
#include "ui/dialogs/start_folder.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/picture_box.h"
#include "ui/form/redraw_hold.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

// Posted to the window itself: files were dropped.
constexpr UINT kDroppedMessage = WM_APP + 1;

constexpr DWORD kOpenFlags = OFN_EXPLORER | OFN_ALLOWMULTISELECT | OFN_LONGNAMES |
                             OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY;

constexpr int kIconSize = 32;  // pixels at 96 dpi

struct ListedFiles {
    std::vector<ConvertSource> files;
    std::wstring failure;  // why not all of a folder could be read; empty: it could
};

// The files themselves, and those in the folders.
ListedFiles FilesOf(const std::vector<std::wstring>& paths) {
    ListedFiles listed;
    for (const std::wstring& path : paths) {
        if (!IsFolder(path)) {
            listed.files.push_back({path});
            continue;
        }
        const DWORD error = ScanFolders(
            {.folder = path, .subFolders = false, .extensions = {}}, [&](ScanNews&& news) {
                for (FoundFile& file : news.files)
                    listed.files.push_back({std::move(file.path), path});
                return true;
            });
        if (error != ERROR_SUCCESS) listed.failure = FolderErrorText(path, error);
    }
    return listed;
}

}  // namespace

frmConvertAll::frmConvertAll(OptionsOpener showOptions)
    : Dialog(dialogConvertAll), showOptions_(std::move(showOptions)) {
    files_.SetMirror(filesMirror_);
}

void frmConvertAll::ShowConvertDialog(HWND owner, std::span<const std::wstring> files) {
    std::vector<ConvertSource> sources(files.begin(), files.end());
    if (Handle() != nullptr) {
        if (!converting_) AddFiles(sources);
        return;
    }
    firstFiles_ = std::move(sources);
    ShowModal(owner);
}

void frmConvertAll::Dialog_Load() {
    AttachControls();
    AnchorControls();
    FillFormats();
    ShowChoices();
    FontsChanged();
    textConvertFolder_.SetText(FirstChosenFolder({&Values().convert.savePath}));
    ShowView(View::kSettings);
    AddFiles(std::exchange(firstFiles_, {}));
    dropTarget_.Register(Handle(),
                         {.accepts =
                              [this] {
                                  return !listing_ && IsWindowEnabled(listConvertFiles_.Handle()) &&
                                         IsWindowEnabled(Handle());
                              },
                          .drop =
                              [this](const std::vector<std::wstring>& paths) {
                                  dropped_.insert(dropped_.end(), paths.begin(), paths.end());
                                  PostMessageW(Handle(), kDroppedMessage, 0, 0);
                              }});
}

void frmConvertAll::Dialog_Unload() {
    RememberFolder();
    files_.Clear();
    dropTarget_.Revoke();
    taskbar_.reset();
    dropped_.clear();
}

void frmConvertAll::AttachControls() {
    listConvertFiles_.Attach(Handle(), listConvertFiles);
    listConvertFiles_.OnClick(
        [this] { cmdDelete_.SetEnabled(!listConvertFiles_.AllSelected().empty()); });
    listConvertFiles_.OnKeyDown([this](int keyCode, int shift) {
        bool taken = false;
        listConvertFiles_KeyDown(keyCode, shift, taken);
        return taken;
    });
    labelConvertCount_.Attach(Handle(), labelConvertCount);
    textConvertFolder_.Attach(Handle(), textConvertFolder);
    textConvertFolder_.OnChange([this] { EnableRunConvert(); });
    const struct {
        Button& button;
        int id;
        void (frmConvertAll::*click)();
    } buttons[] = {
        {cmdAddFile_, cmdAddFile, &frmConvertAll::cmdAddFile_Click},
        {cmdAddFolder_, cmdAddFolder, &frmConvertAll::cmdAddFolder_Click},
        {cmdDelete_, cmdDelete, &frmConvertAll::cmdDelete_Click},
        {cmdDeleteAll_, cmdDeleteAll, &frmConvertAll::cmdDeleteAll_Click},
        {Command3_, Command3, &frmConvertAll::Command3_Click},
        {cmdConvertFolder_, cmdConvertFolder, &frmConvertAll::cmdConvertFolder_Click},
        {cmdRunConvert_, cmdRunConvert, &frmConvertAll::cmdRunConvert_Click},
    };
    for (const auto& [button, id, click] : buttons) {
        button.Attach(Handle(), id);
        button.OnClick([this, click = click] {
            if (!listing_) (this->*click)();
        });
    }
    labelConvertMissing_.Attach(Handle(), labelConvertMissing);
    cmdOK_.Attach(Handle(), IDOK);
    Command2_.Attach(Handle(), IDCANCEL);

    lblTime_.Attach(Handle(), lblTime);
    lblRateTotal_.Attach(Handle(), lblRateTotal);
    progressTotal_.Attach(Handle(), progressTotal);
    progressCurrentFile_.Attach(Handle(), progressCurrentFile);
    lblResult_.Attach(Handle(), lblResult);
    optionConvertLog_.Attach(Handle(), optionConvertLog);
    optionConvertLog_.OnClick([this] { ShowPane(Pane::kLog); });
    optionConvertProblems_.Attach(Handle(), optionConvertProblems);
    optionConvertProblems_.OnClick([this] { ShowPane(Pane::kProblems); });
    listConvertLog_.Attach(Handle(), listConvertLog);
    listConvertProblems_.Attach(Handle(), listConvertProblems);
}

void frmConvertAll::AnchorControls() {
    for (const int id : {listConvertFiles, listConvertLog, listConvertProblems})
        Anchor(id, kAnchorWidth | kAnchorHeight);
    for (const int id : {cmdAddFile, cmdAddFolder, cmdDelete, cmdDeleteAll, lblTime, lblRateTotal})
        Anchor(id, kAnchorRight | kAnchorTop);
    for (const int id : {labelConvertCount, textConvertFolder})
        Anchor(id, kAnchorWidth | kAnchorBottom);
    for (const int id :
         {labelConvertFolder, labelConvertIndexcolor, combConvertIndexcolor, labelConvertFullcolor,
          combConvertFullcolor, labelOnConflict, combConvertOnConflict, checkConvertKeepFolders,
          checkConvertSkipDamaged, labelConvertMissing}) {
        Anchor(id, kAnchorLeft | kAnchorBottom);
    }
    for (const int id : {int{Command3}, cmdConvertFolder, cmdRunConvert, IDOK, IDCANCEL})
        Anchor(id, kAnchorRight | kAnchorBottom);
    for (const int id : {progressTotal, progressCurrentFile, lblResult})
        Anchor(id, kAnchorWidth | kAnchorTop);
}

void frmConvertAll::FontsChanged() {
    listConvertFiles_.FontChanged();
    listConvertLog_.ChangeMetrics();
    // Other programs' lists of windows, and the taskbar, show the large one.
    icon_ = Metrics(Handle()).Icon(iconApplication, kIconSize);
    SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon_.Get()));
}

// What is hidden is disabled too, or its mnemonics would still work.
void frmConvertAll::ShowView(View view) {
    const auto show = [this](int first, int end, bool shown) {
        for (int id = first; id < end; ++id) {
            const HWND control = GetDlgItem(Handle(), id);
            EnableWindow(control, shown);
            ShowWindow(control, shown ? SW_SHOWNA : SW_HIDE);
        }
    };
    show(frameSetOption, frameSetOptionEnd, view == View::kSettings);
    show(frameShowConvertStatus, frameShowConvertStatusEnd, view == View::kStatus);
    if (view == View::kStatus) ShowPane(Pane::kLog);
    if (view == View::kSettings) {
        Command3_.SetEnabled(showOptions_ != nullptr);
        ListChanged();
    }
}

void frmConvertAll::ShowPane(Pane pane) {
    const bool isLog = pane == Pane::kLog;
    optionConvertLog_.SetChecked(isLog);
    optionConvertProblems_.SetChecked(!isLog);
    if (!isLog) listConvertProblems_.Show();
    listConvertLog_.SetVisible(isLog);
    listConvertProblems_.SetVisible(!isLog);
}

std::optional<LRESULT> frmConvertAll::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kDroppedMessage:
            AddListed(std::exchange(dropped_, {}));
            return 0;
        case WM_CLOSE: {
            bool cancel = false;
            Form_QueryUnload(cancel);
            if (!cancel) Leave();
            return 0;
        }
        case WM_ENDSESSION:
            if (wParam != FALSE) EndSession();
            return 0;
        case WM_SETCURSOR:
            if (LOWORD(lParam) != HTCLIENT || (!converting_ && !listing_)) break;
            SetCursor(LoadCursorW(nullptr, IDC_APPSTARTING));
            return TRUE;
        case WM_DPICHANGED: {
            const std::optional<LRESULT> answer = Dialog::OnMessage(message, wParam, lParam);
            FontsChanged();
            return answer;
        }
        default:
            break;
    }
    return Dialog::OnMessage(message, wParam, lParam);
}

// --- The list of files ---

void frmConvertAll::AddFiles(std::span<const ConvertSource> files) {
    {
        const RedrawHold hold(listConvertFiles_);
        files_.Expect(files.size());
        for (const ConvertSource& file : files) {
            if (!file.path.empty()) files_.Add(file);
        }
    }
    ListChanged();
}

// Adds files, and of each folder the plain files directly in it that are neither hidden nor the
// system's. A folder of a slow drive does not keep the window waiting.
void frmConvertAll::AddListed(std::vector<std::wstring> paths) {
    if (listing_ || paths.empty()) return;
    std::optional<ListedFiles> listed;
    {
        leaving_ = false;
        const RaisedFlag listing(listing_);
        const MessageFilter keys([this](MSG& message) {
            return Handle() != nullptr && IsDialogMessageW(Handle(), &message) != FALSE;
        });
        const BusyPointer pointer;
        EnableRunConvert();
        listed =
            CallInBackground<ListedFiles>([paths = std::move(paths)] { return FilesOf(paths); },
                                          [this] { return Handle() != nullptr && !leaving_; });
    }
    if (std::exchange(leaving_, false)) {
        Close(IDCANCEL);
    } else if (listed && Handle() != nullptr) {
        AddFiles(listed->files);
        if (!listed->failure.empty()) ShowMessageBox(listed->failure, MB_ICONEXCLAMATION);
    }
}

// A folder that is being listed is given up first: the dialog is still at work below us.
void frmConvertAll::Leave() {
    if (listing_) {
        leaving_ = true;
    } else {
        Close(IDCANCEL);
    }
}

void frmConvertAll::ListChanged() {
    const int count = files_.Count();
    labelConvertCount_.SetText(count > 0 ? std::to_wstring(count) + L" 個のファイル"
                                         : L"ファイルやフォルダをここにドラッグして追加できます。");
    const bool anySelected = !listConvertFiles_.AllSelected().empty();
    // The buttons have nothing to do then, and the keys must not go astray.
    if ((cmdDelete_.HasFocus() && !anySelected) || (cmdDeleteAll_.HasFocus() && count == 0)) {
        (count > 0 ? static_cast<Control&>(listConvertFiles_) : cmdAddFile_).SetFocus();
    }
    cmdDelete_.SetEnabled(anySelected);
    cmdDeleteAll_.SetEnabled(count > 0);
    EnableRunConvert();
}

void frmConvertAll::EnableRunConvert() {
    const std::wstring folder = textConvertFolder_.Text();
    const wchar_t* missing = L"";
    if (listing_) {
        missing = L"フォルダを調べています...";
    } else if (files_.IsEmpty()) {
        missing = L"変換するファイルを追加してください。";
    } else if (folder.empty()) {
        missing = L"保存先のフォルダを指定してください。";
    } else if (folder.find_first_of(L"?*") != std::wstring::npos) {
        missing = L"保存先に * や ? は使えません。";
    }
    if (labelConvertMissing_.Text() != missing) labelConvertMissing_.SetText(missing);
    cmdRunConvert_.SetEnabled(!converting_ && *missing == L'\0');
}

void frmConvertAll::listConvertFiles_KeyDown(int keyCode, int shift, bool& taken) {
    if (listing_) return;
    if (keyCode == VK_DELETE && shift == 0) {
        cmdDelete_Click();
        taken = true;
    } else if (keyCode == L'A' && shift == kCtrlMask) {
        listConvertFiles_.MarkAll();
        ListChanged();
        taken = true;
    }
}

void frmConvertAll::cmdAddFile_Click() {
    try {
        ConvertSettings& settings = Values().convert;
        ComDlg dialog;
        dialog.SetFilter(SusieCollection().GetCommonDialogString());
        dialog.SetInitDir(FirstChosenFolder({&settings.openPath, &Values().general.openPath}));
        dialog.SetFlags(kOpenFlags);
        if (!dialog.ShowOpen(Handle())) return;
        const ChosenFiles chosen = FilesOfDialog(dialog.FileName());
        if (chosen.paths.empty() || Handle() == nullptr) return;
        settings.openPath = chosen.folder;
        AddFiles(std::vector<ConvertSource>(chosen.paths.begin(), chosen.paths.end()));
    } catch (...) {
        // The label is that of the command that opens files.
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"frmMain - menuFileOpen_Click");
    }
}

void frmConvertAll::cmdAddFolder_Click() {
    ConvertSettings& settings = Values().convert;
    const std::wstring folder = BrowseForFolder(
        Handle(), L"フォルダの参照", L"変換する画像のあるフォルダを指定してください。",
        FirstChosenFolder({&settings.openPath, &Values().general.openPath}));
    if (folder.empty() || Handle() == nullptr) return;
    settings.openPath = folder;
    AddListed({folder});
}

void frmConvertAll::cmdDelete_Click() {
    const std::vector<int> selected = listConvertFiles_.AllSelected();
    if (selected.empty()) return;
    {
        const RedrawHold hold(listConvertFiles_);
        std::for_each(selected.rbegin(), selected.rend(),
                      [this](int index) { files_.Remove(index); });
    }
    // The one behind is next, so that Delete can be pressed again and again.
    const int last = files_.Count() - 1;
    if (last >= 0) listConvertFiles_.MarkOnly(std::min(selected.front(), last));
    ListChanged();
}

void frmConvertAll::cmdDeleteAll_Click() {
    if (ShowMessageBox(L"すべてのファイルをリストから削除します",
                       MB_OKCANCEL | MB_ICONINFORMATION) != IDOK) {
        return;
    }
    files_.Clear();
    ListChanged();
}

}  // namespace tessary
