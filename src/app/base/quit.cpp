#include "app/base/quit.h"

#include <windows.h>

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace tessary {
namespace {

std::optional<int>& Requested() {
    static std::optional<int> status;
    return status;
}

// Ticks of timers come with what was posted. A timer never has more than one waiting.
bool IsTickOf(const std::vector<MSG>& taken, const MSG& tick) {
    return tick.message == WM_TIMER && std::any_of(taken.begin(), taken.end(), [&](const MSG& one) {
               return one.message == WM_TIMER && one.hwnd == tick.hwnd && one.wParam == tick.wParam;
           });
}

void PutBack(const MSG& message) {
    if (message.hwnd != nullptr) {
        PostMessageW(message.hwnd, message.message, message.wParam, message.lParam);
    } else {
        PostThreadMessageW(GetCurrentThreadId(), message.message, message.wParam, message.lParam);
    }
}

}  // namespace

void RequestQuit(int status) {
    Requested() = status;
    PostQuitMessage(status);
}

bool IsQuitRequested() {
    return Requested().has_value();
}

void RenewQuit() {
    if (Requested()) PostQuitMessage(*Requested());
}

void QuitIsDone() {
    Requested().reset();
}

void DropForeignQuit() {
    // Behind its posted messages the system hands out a request to quit, but while there are any it
    // makes none, whatever kind of message is asked for. So all are taken out, and put back in
    // their order. Without PM_QS_SENDMESSAGE: what other threads have sent must not be handled
    // here.
    constexpr size_t kMostPosted = 10000;  // that a queue takes
    std::vector<MSG> others;
    MSG message{};
    while (others.size() < kMostPosted &&
           PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_POSTMESSAGE)) {
        if (message.message == WM_QUIT || IsTickOf(others, message)) continue;
        try {
            others.push_back(message);
        } catch (const std::bad_alloc&) {
            PutBack(message);
            break;
        }
    }
    std::for_each(others.begin(), others.end(), PutBack);
    RenewQuit();
}

}  // namespace tessary
