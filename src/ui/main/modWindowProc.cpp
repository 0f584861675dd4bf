#include "ui/main/modWindowProc.h"

#include <utility>

#include "app/base/error.h"

namespace tessary {
namespace {

// The window property that leads from the window to its hook.
constexpr wchar_t kHookProperty[] = L"TessaryWindowProcedureHook";

}  // namespace

bool WindowProcedureHook::Install(HWND window, Handler handler) {
    if (window_ != nullptr || !SetPropW(window, kHookProperty, this)) return false;
    window_ = window;
    handler_ = std::move(handler);
    former_ = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
    if (SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure)) != 0) {
        return true;
    }
    RemovePropW(window, kHookProperty);
    window_ = nullptr;
    return false;
}

void WindowProcedureHook::Restore() {
    if (window_ == nullptr) return;
    SetWindowLongPtrW(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(former_));
    RemovePropW(std::exchange(window_, nullptr), kHookProperty);
}

LRESULT CALLBACK WindowProcedureHook::Procedure(HWND window, UINT message, WPARAM wParam,
                                                LPARAM lParam) {
    auto* const hook = static_cast<WindowProcedureHook*>(GetPropW(window, kHookProperty));
    if (hook == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    // Handling a message may take the hook away.
    const WNDPROC former = hook->former_;
    const Handler handler = hook->handler_;
    const std::optional<LRESULT> answer =
        Trapped(std::optional<LRESULT>(), [&] { return handler(message, wParam, lParam); });
    return answer ? *answer : CallWindowProcW(former, window, message, wParam, lParam);
}

}  // namespace tessary
