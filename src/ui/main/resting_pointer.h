// Hides the mouse pointer while it rests.
#pragma once

#include <windows.h>

#include "ui/form/timer.h"

namespace tessary {

class RestingPointer {
  public:
    // How long the pointer rests before it goes, in milliseconds.
    static constexpr UINT kPatience = 2000;

    // Off until Start; hides the pointer over this control alone, whose WM_SETCURSOR then answers
    // with no pointer as long as IsHidden.
    void Start(HWND control);
    void Stop();
    bool IsHidden() const { return hidden_; }

    // The pointer is wanted again, wherever it is.
    void Wake();

    // The pointer was seen here. The system tells that also where it has not moved.
    void Seen(POINT at);

  private:
    void Hide();
    bool IsWanted() const;

    HWND control_ = nullptr;
    POINT at_{-1, -1};
    bool hidden_ = false;
    Timer patience_{[this] { Hide(); }};
};

}  // namespace tessary
