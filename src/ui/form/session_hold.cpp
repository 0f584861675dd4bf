#include "ui/form/session_hold.h"

#include <atomic>

#include "app/base/error.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

constexpr wchar_t kWatchClass[] = L"TessarySessionWatch";

// A property of the window that holds the session: how many hold it.
constexpr wchar_t kHolds[] = L"TessarySessionHolds";

// The system itself waits five seconds for an answer.
constexpr DWORD kMostMilliseconds = 4000;

// How long the watching thread may take to begin, and to end.
constexpr DWORD kThreadMilliseconds = 1000;

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
struct SessionHold::Watch {
    // On that thread.
    void Run();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    const DWORD held = GetCurrentThreadId();
    const UniqueEvent done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    const UniqueEvent ready{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<HWND> window = nullptr;  // the other thread's
};

SessionHold::SessionHold(HWND window, const wchar_t* reason)
    : window_(GetAncestor(window, GA_ROOTOWNER)), watch_(std::make_shared<Watch>()) {
    SetHolds(window_, HoldsOf(window_) + 1);
    if (HoldsOf(window_) == 1) ShutdownBlockReasonCreate(window_, reason);
    // Without a thread the question is asked all the same.
    Trapped([this] { watcher_.emplace([watch = watch_] { watch->Run(); }); });
    if (watcher_) WaitForSingleObject(watch_->ready.Get(), kThreadMilliseconds);
}

SessionHold::~SessionHold() {
    SetEvent(watch_->done.Get());
    if (const HWND window = watch_->window; window != nullptr) {
        PostMessageW(window, WM_CLOSE, 0, 0);
        watcher_->HasEndedWithin(kThreadMilliseconds);
    }
    SetHolds(window_, HoldsOf(window_) - 1);
    if (!IsSessionHeld(window_)) ShutdownBlockReasonDestroy(window_);
}

void SessionHold::Watch::Run() {
    WNDCLASSEXW watchClass{};
    watchClass.cbSize = sizeof(watchClass);
    watchClass.lpfnWndProc = Procedure;
    watchClass.hInstance = ProgramInstance();
    watchClass.lpszClassName = kWatchClass;
    RegisterClassExW(&watchClass);  // fails harmlessly from the second hold on
    // Not one for messages only: those are not told of the session's end.
    window = CreateWindowExW(0, kWatchClass, L"", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                             ProgramInstance(), this);
    SetEvent(ready.Get());
    if (window == nullptr) return;
    // Whoever was done before this thread had begun has found no window to close.
    if (WaitForSingleObject(done.Get(), 0) == WAIT_OBJECT_0) PostMessageW(window, WM_CLOSE, 0, 0);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
}

LRESULT CALLBACK SessionHold::Watch::Procedure(HWND window, UINT message, WPARAM wParam,
                                               LPARAM lParam) {
    switch (message) {
        case WM_NCCREATE:
            SetWindowLongPtrW(window, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(
                                  reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams));
            break;
        case WM_ENDSESSION: {
            if (wParam == FALSE) return 0;
            const auto& watch =
                *reinterpret_cast<const Watch*>(GetWindowLongPtrW(window, GWLP_USERDATA));
            // The system tells one window after the other, and may begin with this one.
            EnumThreadWindows(watch.held, TellSessionEnd, lParam);
            WaitForSingleObject(watch.done.Get(), kMostMilliseconds);
            return 0;
        }
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool IsSessionHeld(HWND window) {
    return HoldsOf(window) > 0;
}

}  // namespace tessary
