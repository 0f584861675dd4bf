#include "convert_cli/session_end.h"

#include <chrono>
#include <utility>

#include "app/base/error.h"

namespace tessary {
namespace {

constexpr wchar_t kClass[] = L"TessaryConvertSession";

// How long the system waits at most for a program whose session ends.
constexpr auto kGrace = std::chrono::seconds(20);

}  // namespace

SessionEnd::SessionEnd(std::function<void()> tell)
    : tell_(std::move(tell)), thread_([this] { Listen(); }) {}

SessionEnd::~SessionEnd() {
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
    }
    over_.notify_all();
    const HWND window = window_.get_future().get();
    if (window != nullptr) PostMessageW(window, WM_CLOSE, 0, 0);
    thread_.join();
}

// An outermost one: those for messages only are told nothing.
HWND SessionEnd::MakeWindow() {
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof(kind);
    kind.lpfnWndProc = Procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.lpszClassName = kClass;
    RegisterClassExW(&kind);
    const HWND window = CreateWindowExW(0, kClass, L"", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                                        kind.hInstance, nullptr);
    if (window != nullptr)
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return window;
}

void SessionEnd::Listen() {
    const HWND window = MakeWindow();
    window_.set_value(window);
    MSG message;
    while (window != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

void SessionEnd::StayUntilOver() {
    std::unique_lock lock(mutex_);
    over_.wait_for(lock, kGrace, [this] { return isOver_; });
}

LRESULT CALLBACK SessionEnd::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const self = reinterpret_cast<SessionEnd*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    // Not when the system asks whether it may: another program may refuse.
    if (message == WM_ENDSESSION && wParam != FALSE && self != nullptr) {
        Trapped(self->tell_);
        // The process may be ended at any moment once this returns.
        self->StayUntilOver();
        return 0;
    }
    if (message == WM_DESTROY) PostQuitMessage(0);
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace tessary
