#include "ui/dialogs/DOpenForm.h"

#include <windows.h>
// The shell needs the types of windows.h.
#include <shlobj.h>

#include <algorithm>
#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "res/resource.h"
#include "ui/dialogs/DNewFolder.h"
#include "ui/dialogs/drives.h"
#include "ui/dialogs/folder_listing.h"
#include "ui/form/metrics.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr UINT kOpenNodeMessage = WM_APP + 1;
constexpr UINT kBeginMessage = WM_APP + 2;

constexpr int kRowHeight = 20;  // pixels at 96 dpi

// What the extension list offers before the user has typed anything.
constexpr const wchar_t* kCommonExtensions[] = {L"bmp jpg jpeg png gif", L"jpg jpeg", L"png",
                                                L"zip lzh"};

std::wstring PicturesFolder() {
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_MYPICTURES, nullptr, SHGFP_TYPE_CURRENT, folder);
    return folder;
}

// A folder's name as the tree names it: none but a root ends in a backslash.
std::wstring Plain(std::wstring folder) {
    const size_t root = RootOf(folder).size();
    while (folder.size() > root && folder.ends_with(L'\\'))
        folder.pop_back();
    return folder.size() < root ? RootOf(folder) : folder;
}

// What a path stands for: itself when it is a folder, the folder of a file; and the system's error.
struct Probe {
    std::wstring folder;
    DWORD error;
};

Probe ProbeFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(ExtendedPath(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return {path, GetLastError()};
    const bool isFolder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return {isFolder ? path : Plain(FolderOf(path)), ERROR_SUCCESS};
}

}  // namespace

class DOpenForm::Wait {
  public:
    explicit Wait(DOpenForm& form) : form_(form) {
        form_.waiting_ = true;
        form_.giveUp_ = false;
    }
    Wait(const Wait&) = delete;
    Wait& operator=(const Wait&) = delete;
    ~Wait() {
        form_.waiting_ = false;
        if (std::exchange(form_.waitNoticed_, false)) form_.SetControlsEnabled(true);
    }

  private:
    DOpenForm& form_;
};

DOpenForm::DOpenForm(std::wstring caption)
    : Dialog(dialogOpenFolder),
      caption_(std::move(caption)),
      extensions_(std::begin(kCommonExtensions), std::end(kCommonExtensions)) {}

void DOpenForm::Dialog_Load() {
    SetWindowTextW(Handle(), caption_.c_str());
    fileName_.clear();
    drives_.clear();
    typed_ = false;
    AttachControls();
    AnchorControls();
    FillExtensions();
    checkSubFolder_.SetChecked(searchSubFolder_);
    listFolder_.Tree().SetFocus();
    // Drives and folders may let one wait: with the dialog on the screen that can be cancelled.
    PostMessageW(Handle(), kBeginMessage, 0, 0);
}

void DOpenForm::AttachControls() {
    listFolder_.Attach(Handle(), openFolderList, kOpenNodeMessage,
                       [this] { return KeepWaiting(); });
    listFolder_.OnSelect([this] { ShowSelection(); });
    listFolder_.Tree().OnKeyDown([this](int keyCode, int) {
        bool taken = false;
        listFolder_KeyDown(keyCode, taken);
        return taken;
    });
    SendMessageW(listFolder_.Tree().Handle(), TVM_SETITEMHEIGHT,
                 static_cast<WPARAM>(Metrics(Handle()).Scale(kRowHeight)), 0);
    textFolder_.Attach(Handle(), openFolderPath);
    textFolder_.OnChange([this] { typed_ = !filling_; });
    combDrive_.Attach(Handle(), openFolderDrive);
    // Stepping through the open list with the arrow keys is not a choice yet.
    combDrive_.OnSelect([this] {
        if (!combDrive_.IsOpen()) combDrive_Click();
    });
    combDrive_.OnCloseUp([this] { combDrive_Click(); });
    combExt_.Attach(Handle(), openFolderExtensions);
    checkSubFolder_.Attach(Handle(), openFolderSubFolders);
    cmdUp_.Attach(Handle(), openFolderUp);
    cmdUp_.OnClick([this] { cmdUp_Click(); });
    cmdMakeFolder_.Attach(Handle(), openFolderMake);
    cmdMakeFolder_.OnClick([this] { cmdMakeFolder_Click(); });
    cmdNetwork_.Attach(Handle(), openFolderNetwork);
    cmdNetwork_.OnClick([this] { cmdNetwork_Click(); });
}

void DOpenForm::AnchorControls() {
    for (const int id : {openFolderPath, openFolderDrive}) {
        Anchor(id, kAnchorWidth | kAnchorTop);
    }
    Anchor(openFolderUp, kAnchorRight | kAnchorTop);
    Anchor(openFolderList, kAnchorWidth | kAnchorHeight);
    for (const int id : {openFolderSubFolders, openFolderExtensionsLabel, openFolderMake,
                         openFolderNetwork, openFolderHint}) {
        Anchor(id, kAnchorLeft | kAnchorBottom);
    }
    Anchor(openFolderExtensions, kAnchorWidth | kAnchorBottom);
    for (const int id : {IDOK, IDCANCEL}) {
        Anchor(id, kAnchorRight | kAnchorBottom);
    }
}

void DOpenForm::FillDrives() {
    const Wait wait(*this);
    const auto drives =
        CallInBackground<std::vector<Drive>>(ListDrives, [this] { return KeepWaiting(); });
    if (drives) drives_ = *drives;
    combDrive_.Clear();
    for (const Drive& drive : drives_) {
        combDrive_.Add(drive.text);
    }
    MarkDrive();
}

void DOpenForm::FillExtensions() {
    for (const std::wstring& extensions : extensions_) {
        combExt_.Add(extensions);
    }
    combExt_.SetText(fileExt_);
}

void DOpenForm::ShowStartFolder() {
    const Wait wait(*this);
    for (const std::wstring& folder : {startFolder_, PicturesFolder(), RootOf(PicturesFolder())}) {
        if (!folder.empty() && listFolder_.Show(Plain(folder)) == ERROR_SUCCESS) break;
    }
    ShowSelection();
}

// The tree stays as it was when this fails.
bool DOpenForm::ShowFolder(const std::wstring& folder) {
    DWORD error = ERROR_SUCCESS;
    {
        const Wait wait(*this);
        error = listFolder_.Show(Plain(folder));
    }
    const bool shown = Tell(folder, error);
    ShowSelection();
    return shown;
}

// True when there is nothing to tell.
bool DOpenForm::Tell(const std::wstring& folder, DWORD error) {
    if (error == ERROR_SUCCESS) return true;
    if (error != ERROR_CANCELLED) {
        ShowMessageBox(FolderErrorText(folder, error), MB_ICONEXCLAMATION);
    }
    return false;
}

void DOpenForm::ShowSelection() {
    filling_ = true;
    textFolder_.SetText(listFolder_.Selected());
    filling_ = false;
    typed_ = false;
    MarkDrive();
}

// A share that was typed becomes an entry of its own.
void DOpenForm::MarkDrive() {
    const std::wstring root = listFolder_.Root();
    if (root.empty()) return;
    auto found = std::find_if(drives_.begin(), drives_.end(), [&](const Drive& drive) {
        return EqualsIgnoreCase(drive.root, root);
    });
    if (found == drives_.end()) {
        combDrive_.Add(root);
        found = drives_.insert(drives_.end(), {root, root});
    }
    combDrive_.MarkSelected(static_cast<int>(found - drives_.begin()));
}

// The path field's text as a full path: without the quotes of a copied path, relative to the
// selected folder.
std::wstring DOpenForm::TypedFolder() const {
    std::wstring text(TrimSpaces(textFolder_.Text()));
    text.erase(std::remove(text.begin(), text.end(), L'"'), text.end());
    std::replace(text.begin(), text.end(), L'/', L'\\');
    wchar_t expanded[0x2000] = {};
    const DWORD length = ExpandEnvironmentStringsW(text.c_str(), expanded, 0x2000);
    if (length > 0 && length <= 0x2000) text = expanded;
    if (text.empty()) return {};
    std::wstring root = RootOf(text);
    if (root.empty()) {
        const bool belowRoot = text.starts_with(L'\\');
        root = belowRoot ? listFolder_.Root() : listFolder_.Selected() + L'\\';
        text.insert(0, root);
    } else if (text.size() < root.size()) {
        text = root;
    }
    return Plain(FullPathOf(text));
}

void DOpenForm::listFolder_KeyDown(int keyCode, bool& taken) {
    taken = keyCode == VK_BACK;
    if (taken) cmdUp_Click();
}

void DOpenForm::combDrive_Click() {
    const int index = combDrive_.Selected();
    if (waiting_ || index < 0 || index >= static_cast<int>(drives_.size())) return;
    const std::wstring root = drives_[static_cast<size_t>(index)].root;
    if (!EqualsIgnoreCase(root, listFolder_.Root())) ShowFolder(root);
}

void DOpenForm::cmdUp_Click() {
    if (waiting_) return;
    if (!listFolder_.Up()) MessageBeep(MB_OK);
}

void DOpenForm::cmdMakeFolder_Click() {
    const std::wstring parent = listFolder_.Selected();
    if (waiting_ || parent.empty()) return;
    const std::wstring made = DNewFolder().Make(Handle(), parent);
    if (!made.empty()) ShowFolder(made);
}

void DOpenForm::cmdNetwork_Click() {
    if (waiting_) return;
    constexpr DWORD kCancelled = static_cast<DWORD>(-1);
    const DWORD result = ConnectNetworkDrive(Handle());
    if (result != NO_ERROR && result != kCancelled) {
        ShowMessageBox(L"ネットワークに接続できません。(エラー " + std::to_wstring(result) + L")",
                       MB_ICONEXCLAMATION);
    }
    FillDrives();
}

void DOpenForm::Dialog_OK() {
    if (waiting_) return;
    if (!typed_ && listFolder_.Tree().HasFocus() && listFolder_.OpenSelected()) return;
    const std::wstring wanted = typed_ ? TypedFolder() : listFolder_.Selected();
    if (wanted.empty()) return;

    std::optional<Probe> probe;
    {
        const Wait wait(*this);
        probe = CallInBackground<Probe>([wanted] { return ProbeFolder(wanted); },
                                        [this] { return KeepWaiting(); });
    }
    if (!probe || !Tell(wanted, probe->error)) {
        SendMessageW(Handle(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(textFolder_.Handle()), TRUE);
        return;
    }
    fileName_ = probe->folder;
    fileExt_ = combExt_.Text();
    searchSubFolder_ = checkSubFolder_.IsChecked();
    if (!fileExt_.empty()) {
        std::erase(extensions_, fileExt_);
        extensions_.insert(extensions_.begin(), fileExt_);
    }
    Close(IDOK);
}

void DOpenForm::Dialog_Cancel() {
    if (waiting_) {
        giveUp_ = true;
    } else {
        Close(IDCANCEL);
    }
}

std::optional<LRESULT> DOpenForm::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == kBeginMessage) {
        FillDrives();
        ShowStartFolder();
        return 0;
    }
    if (message == kOpenNodeMessage) {
        if (waiting_) return 0;
        const std::wstring folder = listFolder_.FolderToOpen(lParam);
        DWORD error = ERROR_SUCCESS;
        {
            const Wait wait(*this);
            error = listFolder_.ReadAndOpen(lParam);
        }
        Tell(folder, error);
        return 0;
    }
    if (message == WM_SETCURSOR && waitNoticed_) {
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        return TRUE;
    }
    return Dialog::OnMessage(message, wParam, lParam);
}

bool DOpenForm::KeepWaiting() {
    if (Handle() == nullptr) return false;
    if (!std::exchange(waitNoticed_, true)) {
        focusBeforeWait_ = GetFocus();
        SetControlsEnabled(false);
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    }
    return !giveUp_;
}

void DOpenForm::SetControlsEnabled(bool enabled) {
    const HWND cancel = GetDlgItem(Handle(), IDCANCEL);
    if (!enabled) SetFocus(cancel);
    for (HWND control = GetWindow(Handle(), GW_CHILD); control != nullptr;
         control = GetWindow(control, GW_HWNDNEXT)) {
        if (control != cancel) EnableWindow(control, enabled);
    }
    if (enabled && IsWindow(focusBeforeWait_)) SetFocus(focusBeforeWait_);
}

}  // namespace tessary
