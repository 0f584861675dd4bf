#include "ui/form/splitter.h"

#include <utility>

#include "ui/form/appearance.h"

namespace tessary {

bool Splitter::Create(HWND parent, Moves moves, std::function<void(int place)> dragged) {
    moves_ = moves;
    dragged_ = std::move(dragged);
    return Window::Create({.className = L"TessarySplitter", .style = WS_CHILD, .parent = parent});
}

void Splitter::SetBounds(const RECT& place) const {
    const bool isSeen = !IsRectEmpty(&place);
    if (isSeen) {
        SetWindowPos(Handle(), nullptr, place.left, place.top, place.right - place.left,
                     place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
    }
    ShowWindow(Handle(), isSeen ? SW_SHOWNA : SW_HIDE);
}

POINT Splitter::OnScreen() const {
    RECT place{};
    GetWindowRect(Handle(), &place);
    return {place.left, place.top};
}

int Splitter::InParent(POINT onScreen) const {
    ScreenToClient(GetParent(Handle()), &onScreen);
    return Along(onScreen);
}

// Counted on the screen: the parent, too, may move by what is told.
void Splitter::Drag() {
    POINT at{};
    GetCursorPos(&at);
    const int place = InParent(at) - grip_;
    if (place != InParent(OnScreen())) dragged_(place);
}

void Splitter::BreakOff() {
    if (!std::exchange(isHeld_, false)) return;
    const int start = InParent(start_);
    if (start != InParent(OnScreen())) dragged_(start);
}

LRESULT Splitter::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ERASEBKGND: {
            RECT area{};
            GetClientRect(Handle(), &area);
            FillRect(reinterpret_cast<HDC>(wParam), &area, BrushOf(COLOR_BTNFACE));
            return 1;
        }
        case WM_SETCURSOR:
            SetCursor(LoadCursorW(nullptr, moves_ == Moves::kSideways ? IDC_SIZEWE : IDC_SIZENS));
            return TRUE;
        case WM_LBUTTONDOWN: {
            POINT at{};
            GetCursorPos(&at);
            start_ = OnScreen();
            grip_ = Along(at) - Along(start_);
            isHeld_ = true;
            SetCapture(Handle());
            return 0;
        }
        case WM_MOUSEMOVE:
            if (isHeld_) Drag();
            return 0;
        case WM_LBUTTONUP:
            if (std::exchange(isHeld_, false)) ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED:
            BreakOff();
            return 0;
        default:
            return Default(message, wParam, lParam);
    }
}

}  // namespace tessary
