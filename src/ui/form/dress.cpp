#include "ui/form/dress.h"

#include <algorithm>
#include <vector>

#include "ui/form/appearance.h"
#include "ui/form/dark_menu_bar.h"
#include "ui/form/dressed_control.h"
#include "ui/form/reparent.h"
#include "ui/form/system_look.h"

namespace tessary {
namespace {

// Those that are dressed, in the order of their making. Touched by the user-interface thread only.
std::vector<HWND>& Windows() {
    static std::vector<HWND> windows;
    return windows;
}

// One that came to its end with its object is told by nobody.
void DropEnded() {
    std::erase_if(Windows(), [](HWND window) {
        return GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId();
    });
}

BOOL CALLBACK DressOne(HWND control, LPARAM /*unused*/) {
    DressAsItIs(control);
    return TRUE;
}

BOOL CALLBACK DressTip(HWND window, LPARAM /*unused*/) {
    if (IsToolTip(window)) DressAsItIs(window);
    return TRUE;
}

// What was made since, also by the controls themselves.
void DressTips() {
    EnumThreadWindows(GetCurrentThreadId(), DressTip, 0);
}

void Show(HWND window) {
    if (!IsPart(window)) ShowFrameDark(window, IsDark());
    EnumChildWindows(window, DressOne, 0);
}

void Restyle() {
    DropEnded();
    ShowMenusDark(IsDark());
    std::vector<HWND> windows = Windows();
    std::erase_if(windows, IsPart);
    for (const HWND window : windows)
        Show(window);
    DressTips();
    // As the system tells new colours of its own, so that all made of them is made anew.
    for (const HWND window : windows) {
        SendMessageW(window, WM_SYSCOLORCHANGE, 0, 0);
        RedrawWindow(window, nullptr, nullptr,
                     RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    }
}

void FollowSystem() {
    if (LookAtSystem()) Restyle();
}

// A read-only field is a text like others.
bool IsOnField(UINT message) {
    return message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
}

}  // namespace

void SetAppearance(int16_t wanted) {
    const bool isKnown = wanted >= 0 && wanted < kAppearances;
    WantAppearance(isKnown ? static_cast<Appearance>(wanted) : Appearance::kAsSystem);
    FollowSystem();
}

void Dress(HWND window) {
    if (std::ranges::find(Windows(), window) == Windows().end()) Windows().push_back(window);
    if (!IsDark()) return;
    Show(window);
    DressTips();
}

void DressControl(HWND control) {
    if (!IsDark()) return;
    DressAsItIs(control);
    EnumChildWindows(control, DressOne, 0);
    DressTips();
}

bool AsksForBrush(UINT message) {
    return message >= WM_CTLCOLOREDIT && message <= WM_CTLCOLORSTATIC &&
           message != WM_CTLCOLORSCROLLBAR;
}

std::optional<LRESULT> AnswerForLook(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCDESTROY:
            std::erase(Windows(), window);
            return std::nullopt;
        case WM_SETTINGCHANGE:  // high contrast, or the colour of programs
        case WM_SYSCOLORCHANGE:
        case WM_THEMECHANGED:
            FollowSystem();
            return std::nullopt;
        default:
            break;
    }
    if (!IsDark()) return std::nullopt;
    if (AsksForBrush(message)) {
        const auto context = reinterpret_cast<HDC>(wParam);
        const COLORREF ground = IsOnField(message) ? kDark.field : kDark.face;
        SetTextColor(context, kDark.text);
        SetBkColor(context, ground);
        return reinterpret_cast<LRESULT>(BrushIn(ground));
    }
    return PaintMenuBar(window, message, wParam, lParam);
}

}  // namespace tessary
