// Where a message finds a user who may be working in another program.
#pragma once

#include <windows.h>

namespace tessary {

// The window of this thread that a message belongs above: the active one; while another program is
// in front, the one that the user was in last. Null when the thread shows none of ours.
HWND WindowForMessages();

// The window itself where it has a button on the taskbar, else the nearest of its owners that has
// one.
HWND WindowWithButton(HWND window);

// While another program is in front, the window and its button on the taskbar flash until the user
// comes, for its own life. It brings nothing to the front.
class UserCall {
  public:
    // What `window` owns calls as well: the button is that of the nearest owner that has one.
    // Null: nobody is called.
    explicit UserCall(HWND window);
    UserCall(const UserCall&) = delete;
    UserCall& operator=(const UserCall&) = delete;
    ~UserCall();

    // Goes on calling.
    void Keep() { window_ = nullptr; }

  private:
    HWND window_;
};

}  // namespace tessary
