// A window during a long operation of its own.
#pragma once

#include <windows.h>

#include <string>

#include "app/base/task_modal.h"
#include "ui/form/busy_pointer.h"

namespace tessary {

// For its own life all windows of the thread are out of the user's reach, with the hourglass, and
// captions of this one tell how far things are. All as before in the end.
class BusyWindow {
  public:
    explicit BusyWindow(HWND window)
        : window_(window), caption_(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0') {
        caption_.resize(static_cast<size_t>(
            GetWindowTextW(window, caption_.data(), static_cast<int>(caption_.size()))));
    }
    BusyWindow(const BusyWindow&) = delete;
    BusyWindow& operator=(const BusyWindow&) = delete;
    ~BusyWindow() {
        if (IsWindow(window_)) SetCaption(caption_);
    }

    void SetCaption(const std::wstring& caption) { SetWindowTextW(window_, caption.c_str()); }

  private:
    HWND window_;
    std::wstring caption_;
    BusyPointer pointer_;
    TaskModal modal_{nullptr};
};

}  // namespace tessary
