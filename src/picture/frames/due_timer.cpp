#include "picture/frames/due_timer.h"

#include <algorithm>

namespace tessary {
namespace {

// Known since Windows 10, and not to all headers.
constexpr DWORD kHighResolution = 2;  // CREATE_WAITABLE_TIMER_HIGH_RESOLUTION

HANDLE MakeTimer() {
    const HANDLE timer =
        CreateWaitableTimerExW(nullptr, nullptr, kHighResolution, TIMER_ALL_ACCESS);
    return timer != nullptr ? timer : CreateWaitableTimerW(nullptr, FALSE, nullptr);
}

}  // namespace

DueTimer::DueTimer() : wake_(CreateEventW(nullptr, FALSE, FALSE, nullptr)), timer_(MakeTimer()) {}

void DueTimer::WaitUntil(FrameTime moment) {
    const auto left = std::chrono::duration_cast<std::chrono::nanoseconds>(
        moment - std::chrono::steady_clock::now());
    if (left.count() <= 0) return;
    LARGE_INTEGER due{};
    due.QuadPart = -std::max<LONGLONG>(left.count() / 100, 1);  // from now on
    if (!SetWaitableTimer(timer_.Get(), &due, 0, nullptr, nullptr, FALSE)) {
        WaitForSingleObject(wake_.Get(), static_cast<DWORD>(left.count() / 1'000'000 + 1));
        return;
    }
    const HANDLE both[] = {wake_.Get(), timer_.Get()};
    WaitForMultipleObjects(2, both, FALSE, INFINITE);
}

}  // namespace tessary
