// What the small windows have in common that tell how far a long work is and let the user stop it.
#pragma once

#include "ui/form/dialog.h"

namespace tessary {

// The window comes up by itself when the work takes longer than a moment, and goes with this
// object. The work runs on the user-interface thread, keeps the user out of the other windows, and
// lets messages run.
class ProgressDialog : private Dialog {
  public:
    using Dialog::Handle;

    // Whether the user wants no more: the button IDCANCEL, Esc or the close button. Other keys only
    // stop once he has gone to the button, by Tab or a click.
    bool IsStopped() const { return isStopped_; }

    // How long the work goes on unseen, and how often there is news; milliseconds.
    static constexpr DWORD kDelay = 300;
    static constexpr DWORD kInterval = 40;

  protected:
    // `resource` is the template's number. The window will stand above `owner`, which must outlive
    // this; null for none.
    ProgressDialog(int resource, HWND owner) : Dialog(resource), owner_(owner) {}
    ~ProgressDialog();

    // Whether it is time for news, which is at most once per interval; the window is up then.
    bool IsTimeToTell();

  private:
    void Dialog_Cancel() override { isStopped_ = true; }
    void Dialog_OK() override {}  // Enter was meant for the window below

    HWND owner_;
    DWORD start_ = GetTickCount();  // milliseconds
    DWORD lastTold_ = start_;
    bool isStopped_ = false;
};

}  // namespace tessary
