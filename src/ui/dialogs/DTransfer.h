// The dialog that asks for the folder to move or copy files to, among those that are kept.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "places/target_folders.h"
#include "ui/form/dialog.h"
#include "ui/form/list_box.h"
#include "ui/form/simple_controls.h"

namespace tessary {

class DTransfer final : private Dialog {
  public:
    // Takes the folder that the user has chosen; what is wrong with it, as a text, keeps the dialog
    // open. May handle messages.
    using Accept = std::function<std::wstring(const std::wstring& folder)>;

    // Whether to move or to copy.
    explicit DTransfer(bool moves);

    // Asks where `subject`, a name or a number of files, is to go. False when the user cancels. The
    // folder that was taken is kept, as what he has chosen besides; the first one he looks for from
    // `start` on.
    bool Ask(HWND owner, const std::wstring& subject, const std::wstring& start,
             const Accept& accept);

  private:
    void Dialog_Load() override;
    void Dialog_OK() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool TakesKey(int keyCode, int shift);
    void Fill(int number);
    void ShowChosen();
    void Browse();
    void Drop();

    bool moves_;
    std::wstring subject_;
    std::wstring start_;
    const Accept* accept_ = nullptr;
    bool isAccepting_ = false;
    std::vector<TargetFolder> folders_;  // as they are listed
    ListBox listFolders_;
    Button cmdBrowse_;
    Button cmdDrop_;
    Button cmdOK_;
    Button cmdCancel_;
};

}  // namespace tessary
