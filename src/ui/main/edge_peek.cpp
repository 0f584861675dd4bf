#include "ui/main/edge_peek.h"

namespace tessary {
namespace {

constexpr UINT kWatchMilliseconds = 100;
constexpr int kPatience = 5;  // ticks that the part stays behind the pointer

// A menu is open, or the mouse holds something.
bool IsInUse() {
    GUITHREADINFO state{};
    state.cbSize = sizeof(state);
    GetGUIThreadInfo(GetCurrentThreadId(), &state);
    constexpr DWORD kLoops =
        GUI_INMENUMODE | GUI_INMOVESIZE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE;
    return (state.flags & kLoops) != 0 || state.hwndCapture != nullptr;
}

}  // namespace

void EdgePeek::PointerMoved() {
    POINT at{};
    if (watch_.IsRunning() || !GetCursorPos(&at) || !actions_.calls(at)) return;
    away_ = 0;
    actions_.show(true);
    watch_.Start(kWatchMilliseconds);
}

void EdgePeek::End() {
    if (!watch_.IsRunning()) return;
    watch_.Stop();
    actions_.show(false);
}

void EdgePeek::Look() {
    POINT at{};
    const bool isThere = IsInUse() || (GetCursorPos(&at) && actions_.holds(at));
    away_ = isThere ? 0 : away_ + 1;
    if (away_ >= kPatience) End();
}

}  // namespace tessary
