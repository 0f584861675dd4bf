// The dialog that chooses a folder to open, and which of its files.
#pragma once

#include <string>
#include <vector>

#include "ui/dialogs/drives.h"
#include "ui/dialogs/folder_tree.h"
#include "ui/form/combo_box.h"
#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

// May be shown again: extension text and sub-folder choice then begin as they were last accepted.
class DOpenForm final : private Dialog {
  public:
    explicit DOpenForm(std::wstring caption);

    // The folder that is selected at first; empty or vanished: the user's pictures.
    void SetStartFolder(std::wstring folder) { startFolder_ = std::move(folder); }

    // False when the user cancels.
    bool Show(HWND owner) { return ShowModal(owner) == IDOK; }

    // The chosen folder: a drive's or share's root with a trailing backslash, another without.
    // Empty when cancelled.
    const std::wstring& GetFileName() const { return fileName_; }

    // The wanted extensions, divided by blanks, as typed and last accepted; empty: all files.
    const std::wstring& GetFileExt() const { return fileExt_; }

    bool GetSearchSubFolder() const { return searchSubFolder_; }

  private:
    void Dialog_Load() override;
    void Dialog_OK() override;
    void Dialog_Cancel() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    void AttachControls();
    void AnchorControls();
    void FillDrives();
    void FillExtensions();
    void ShowStartFolder();

    bool ShowFolder(const std::wstring& folder);
    bool Tell(const std::wstring& folder, DWORD error);
    void ShowSelection();
    void MarkDrive();
    std::wstring TypedFolder() const;

    void listFolder_KeyDown(int keyCode, bool& taken);
    void combDrive_Click();
    void cmdUp_Click();
    void cmdMakeFolder_Click();
    void cmdNetwork_Click();

    // For its own life the user can only cancel, once the wait has become noticeable.
    class Wait;
    bool KeepWaiting();
    void SetControlsEnabled(bool enabled);

    std::wstring caption_;
    std::wstring startFolder_;
    std::wstring fileName_;
    std::wstring fileExt_;
    bool searchSubFolder_ = false;
    std::vector<std::wstring> extensions_;  // what their list offers, the latest first

    std::vector<Drive> drives_;  // as the list shows them
    FolderTree listFolder_;
    TextBox textFolder_;
    ComboBox combDrive_;
    ComboBox combExt_;
    Button checkSubFolder_;
    Button cmdUp_;
    Button cmdMakeFolder_;
    Button cmdNetwork_;

    bool typed_ = false;  // the path field holds what the user has typed
    bool filling_ = false;
    bool waiting_ = false;      // for a slow drive
    bool waitNoticed_ = false;  // long enough to disable the controls
    bool giveUp_ = false;
    HWND focusBeforeWait_ = nullptr;
};

}  // namespace tessary
