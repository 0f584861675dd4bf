#include "ui/form/form.h"

#include <imm.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "app/base/error.h"
#include "ui/form/appearance.h"
#include "ui/form/control.h"
#include "ui/form/dress.h"
#include "ui/form/reparent.h"
#include "ui/form/text_field.h"

namespace tessary {
namespace {

// An open input method would take the keys that are commands, letters above all.
void RefuseInputMethod(HWND window) {
    if (!TakesText(window)) ImmAssociateContext(window, nullptr);
}

}  // namespace

bool Form::Load(HWND owner) {
    if (Handle() != nullptr) return true;
    const HMENU menu =
        design_.menu != 0 ? LoadMenuW(ProgramInstance(), MAKEINTRESOURCEW(design_.menu)) : nullptr;
    if (!Create({.className = design_.className,
                 .text = design_.caption,
                 .style = design_.style,
                 .extendedStyle = design_.extendedStyle,
                 .parent = owner,
                 .menu = menu})) {
        return false;
    }
    madeFor_ = Metrics(Handle()).NonClientMetrics();
    SetIcons();
    RefuseInputMethod(Handle());
    Trapped([this] { Form_Load(); });
    if (Handle() != nullptr) Dress(Handle());
    return Handle() != nullptr;
}

void Form::Unload() {
    if (Handle() != nullptr) SendMessageW(Handle(), WM_CLOSE, 0, 0);
}

SIZE Form::ClientSize() const {
    RECT area{};
    GetClientRect(Handle(), &area);
    return {area.right, area.bottom};
}

void Form::SetIcons() {
    if (design_.icon == 0) return;
    const Metrics metrics(Handle());
    UniqueIcon large = metrics.Icon(design_.icon, 32);
    UniqueIcon small = metrics.Icon(design_.icon, 16);
    SendMessageW(Handle(), WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(large.Get()));
    SendMessageW(Handle(), WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small.Get()));
    largeIcon_ = std::move(large);
    smallIcon_ = std::move(small);
}

// The resolution is in the sizes.
bool Form::IsMadeForSettings() const {
    const NONCLIENTMETRICSW now = Metrics(Handle()).NonClientMetrics();
    return std::memcmp(&now, &madeFor_, sizeof now) == 0;
}

void Form::ChangeMetrics() {
    madeFor_ = Metrics(Handle()).NonClientMetrics();
    SetIcons();
    Form_MetricsChanged();
    if (IsIconic(Handle())) return;
    const SIZE size = ClientSize();
    Form_Resize(size.cx, size.cy);
}

void Form::FollowMetrics() {
    if (Handle() != nullptr && !IsMadeForSettings()) ChangeMetrics();
}

void Form::PaintBackground(HDC context) const {
    const SIZE size = ClientSize();
    const RECT area{0, 0, size.cx, size.cy};
    FillRect(context, &area, BrushOf(COLOR_BTNFACE));
}

LRESULT Form::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto answer = AnswerForLook(Handle(), message, wParam, lParam)) return *answer;
    if (const auto answer = Control::Reflect(message, wParam, lParam)) return *answer;
    switch (message) {
        case WM_CLOSE: {
            bool cancel = false;
            Form_QueryUnload(cancel);
            if (!cancel) DestroyWindow(Handle());
            return 0;
        }
        case WM_DESTROY:
            Form_Unload();
            return 0;
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) Form_Resize(LOWORD(lParam), HIWORD(lParam));
            return 0;
        case WM_GETMINMAXINFO: {
            const Metrics metrics(Handle());
            POINT& smallest = reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize;
            smallest.x = std::max<LONG>(smallest.x, metrics.Scale(MinimumSize().cx));
            smallest.y = std::max<LONG>(smallest.y, metrics.Scale(MinimumSize().cy));
            return 0;
        }
        case WM_PARENTNOTIFY:
            if (LOWORD(wParam) == WM_CREATE) {
                RefuseInputMethod(reinterpret_cast<HWND>(lParam));
                DressControl(reinterpret_cast<HWND>(lParam));
            }
            return Default(message, wParam, lParam);
        // Controls with a theme have both of them painted below their round corners.
        case WM_ERASEBKGND:
        case WM_PRINTCLIENT:
            PaintBackground(reinterpret_cast<HDC>(wParam));
            return message == WM_ERASEBKGND ? 1 : 0;
        case WM_DPICHANGED: {
            const RECT& suggested = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(Handle(), nullptr, suggested.left, suggested.top,
                         suggested.right - suggested.left, suggested.bottom - suggested.top,
                         SWP_NOZORDER | SWP_NOACTIVATE);
            ChangeMetrics();
            return 0;
        }
        case WM_SYSCOLORCHANGE:
            // The controls of a part are told by the window that it is in.
            if (!IsPart(Handle())) TellColorChange(Handle());
            return 0;
        case WM_SETTINGCHANGE:
            // Comes for each setting of the system, most of which change nothing here.
            FollowMetrics();
            return Default(message, wParam, lParam);
        case WM_THEMECHANGED:
            ChangeMetrics();
            return Default(message, wParam, lParam);
        case WM_INITMENU:
            Form_MenuOpen();
            return 0;
        case WM_COMMAND:
            if (lParam != 0) return Default(message, wParam, lParam);  // a control's own
            Form_Command(LOWORD(wParam));
            return 0;
        default:
            return Default(message, wParam, lParam);
    }
}

}  // namespace tessary
