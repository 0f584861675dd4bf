// Asks what to do about a name that is in use.
#pragma once

#include <string>

#include "convert/convert_monitor.h"
#include "ui/form/dialog.h"
#include "ui/form/simple_controls.h"

namespace tessary {

// What the dialog says; the template has the texts of a conversion.
struct ConflictTexts {
    std::wstring question;
    std::wstring source, target;  // labels
    std::wstring freeName, replace, stop;
};

class frmConflict final : private Dialog {
  public:
    frmConflict();

    // kStop also when the window is closed. `texts`: other ones than those of a conversion;
    // `isLast`: nothing follows that the same could be wanted for.
    ConflictAnswer Ask(HWND owner, const ConflictQuestion& question,
                       const ConflictTexts* texts = nullptr, bool isLast = false);
    // Whether the user wants the same for all that follow.
    bool IsForAll() const { return isForAll_; }

  private:
    void Dialog_Load() override;
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Answer(ConflictAnswer answer);

    const ConflictQuestion* question_ = nullptr;
    const ConflictTexts* texts_ = nullptr;
    bool isLast_ = false;
    ConflictAnswer answer_ = ConflictAnswer::kStop;
    bool isForAll_ = false;
    Button conflictFreeName_;
    Button conflictReplace_;
    Button conflictSkip_;
    Button conflictForAll_;
};

}  // namespace tessary
