// Sees what a window is sent.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <utility>

namespace tessary::test {

class MessageSpy {
  public:
    // Before the window itself; as long as this object lives.
    using Look = std::function<void(UINT message, WPARAM wParam, LPARAM lParam)>;

    MessageSpy(HWND window, Look look) : window_(window), look_(std::move(look)) {
        SetWindowSubclass(window_, Procedure, Id(), Id());
    }
    MessageSpy(const MessageSpy&) = delete;
    MessageSpy& operator=(const MessageSpy&) = delete;
    ~MessageSpy() { RemoveWindowSubclass(window_, Procedure, Id()); }

  private:
    UINT_PTR Id() const { return reinterpret_cast<UINT_PTR>(this); }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR /*id*/, DWORD_PTR self) {
        reinterpret_cast<MessageSpy*>(self)->look_(message, wParam, lParam);
        return DefSubclassProc(window, message, wParam, lParam);
    }

    HWND window_;
    Look look_;
};

}  // namespace tessary::test
