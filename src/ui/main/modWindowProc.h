// Subclassing: a hook in front of a window's own procedure.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>

namespace tessary {

class WindowProcedureHook {
  public:
    // Sees a message first; an answer ends it, no answer passes it on to the window's own
    // procedure.
    using Handler = std::function<std::optional<LRESULT>(UINT message, WPARAM, LPARAM)>;

    WindowProcedureHook() = default;
    WindowProcedureHook(const WindowProcedureHook&) = delete;
    WindowProcedureHook& operator=(const WindowProcedureHook&) = delete;
    ~WindowProcedureHook() { Restore(); }

    // Replaces the window's procedure and keeps the former one. False when the window already has a
    // hook or the system refuses.
    bool Install(HWND window, Handler handler);

    // Puts the former procedure back; must run before the window is destroyed.
    void Restore();

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_ = nullptr;
    WNDPROC former_ = nullptr;
    Handler handler_;
};

}  // namespace tessary
