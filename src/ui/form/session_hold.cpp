#include "ui/form/session_hold.h"

#include <system_error>

#include "ui/form/window.h"

namespace tessary {
namespace {

constexpr wchar_t kWatchClass[] = L"TessarySessionWatch";

// A property of the window that holds the session: how many hold it.
constexpr wchar_t kHolds[] = L"TessarySessionHolds";

// The system itself waits five seconds for an answer.
constexpr DWORD kMostMilliseconds = 4000;

INT_PTR HoldsOf(HWND window) {
    return reinterpret_cast<INT_PTR>(GetPropW(window, kHolds));
}

void SetHolds(HWND window, INT_PTR count) {
    if (count > 0) {
        SetPropW(window, kHolds, reinterpret_cast<HANDLE>(count));
    } else {
        RemovePropW(window, kHolds);
    }
}

BOOL CALLBACK TellSessionEnd(HWND window, LPARAM how) {
    SendNotifyMessageW(window, WM_ENDSESSION, TRUE, how);
    return TRUE;
}

}  // namespace

// What is under way runs below this thread's messages, so that it cannot go on before the answer to
// one of them. Another thread's window keeps the system waiting.
SessionHold::SessionHold(HWND window, const wchar_t* reason)
    : window_(GetAncestor(window, GA_ROOTOWNER)) {
    SetHolds(window_, HoldsOf(window_) + 1);
    if (HoldsOf(window_) == 1) ShutdownBlockReasonCreate(window_, reason);
    try {
        watcher_ = std::thread([this] { Watch(); });
    } catch (const std::system_error&) {
        return;  // the question is asked all the same
    }
    WaitForSingleObject(ready_.Get(), INFINITE);
}

SessionHold::~SessionHold() {
    SetEvent(done_.Get());
    if (watcher_.joinable()) {
        PostMessageW(watch_, WM_CLOSE, 0, 0);
        watcher_.join();
    }
    SetHolds(window_, HoldsOf(window_) - 1);
    if (!IsSessionHeld(window_)) ShutdownBlockReasonDestroy(window_);
}

void SessionHold::Watch() {
    WNDCLASSEXW watchClass{};
    watchClass.cbSize = sizeof(watchClass);
    watchClass.lpfnWndProc = Procedure;
    watchClass.hInstance = ProgramInstance();
    watchClass.lpszClassName = kWatchClass;
    RegisterClassExW(&watchClass);  // fails harmlessly from the second hold on
    // Not one for messages only: those are not told of the session's end.
    watch_ = CreateWindowExW(0, kWatchClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                             ProgramInstance(), this);
    SetEvent(ready_.Get());
    MSG message{};
    while (watch_ != nullptr && GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

LRESULT CALLBACK SessionHold::Procedure(HWND watch, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCCREATE:
            SetWindowLongPtrW(watch, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(
                                  reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams));
            break;
        case WM_ENDSESSION: {
            if (wParam == FALSE) return 0;
            const auto& hold =
                *reinterpret_cast<const SessionHold*>(GetWindowLongPtrW(watch, GWLP_USERDATA));
            // The system tells one window after the other, and may begin with this one.
            EnumThreadWindows(hold.thread_, TellSessionEnd, lParam);
            WaitForSingleObject(hold.done_.Get(), kMostMilliseconds);
            return 0;
        }
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            break;
    }
    return DefWindowProcW(watch, message, wParam, lParam);
}

bool IsSessionHeld(HWND window) {
    return HoldsOf(window) > 0;
}

}  // namespace tessary
