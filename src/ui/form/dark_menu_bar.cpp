#include "ui/form/dark_menu_bar.h"

#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"
#include "ui/form/reparent.h"
#include "ui/form/system_look.h"

namespace tessary {
namespace {

// Messages that no header names, by which the system asks whoever wants to draw a menu bar; and
// what they bring along, as far as it is used here.
constexpr UINT kDrawMenu = 0x91;
constexpr UINT kDrawMenuItem = 0x92;

struct MenuToDraw {
    HMENU menu;
    HDC context;
    DWORD flags;
};

struct ItemToDraw {
    DRAWITEMSTRUCT item;
    MenuToDraw menu;
    int position;
};

constexpr int kMostText = 128;

void PaintBar(HWND window, const MenuToDraw& draw) {
    MENUBARINFO bar{};
    bar.cbSize = sizeof(bar);
    if (!GetMenuBarInfo(window, OBJID_MENU, 0, &bar)) return;
    RECT frame{};
    GetWindowRect(window, &frame);
    OffsetRect(&bar.rcBar, -frame.left, -frame.top);
    Fill(draw.context, bar.rcBar, kDark.face);
}

void PaintItem(HWND window, const ItemToDraw& draw) {
    wchar_t text[kMostText] = {};
    MENUITEMINFOW info{};
    info.cbSize = sizeof(info);
    info.fMask = MIIM_STRING;
    info.dwTypeData = text;
    info.cch = kMostText - 1;
    GetMenuItemInfoW(draw.menu.menu, static_cast<UINT>(draw.position), TRUE, &info);
    const UINT state = draw.item.itemState;
    const bool isChosen = (state & ODS_SELECTED) != 0;
    const bool isHot = (state & ODS_HOTLIGHT) != 0;
    const bool isGrey = (state & (ODS_GRAYED | ODS_DISABLED | ODS_INACTIVE)) != 0;
    const NONCLIENTMETRICSW metrics = Metrics(window).NonClientMetrics();
    const UniqueFont font(CreateFontIndirectW(&metrics.lfMenuFont));
    const HDC context = draw.menu.context;
    const HGDIOBJ former = SelectObject(context, font.Get());
    Fill(context, draw.item.rcItem, isChosen ? kDark.button : isHot ? kDark.hot : kDark.face);
    Write(
        context, text, draw.item.rcItem, isGrey ? kDark.disabledText : kDark.text,
        DT_CENTER | DT_VCENTER | DT_SINGLELINE | ((state & ODS_NOACCEL) != 0 ? DT_HIDEPREFIX : 0));
    SelectObject(context, former);
}

// The system draws a light line between the bar and the client area, with the frame.
void CoverLine(HWND window) {
    if (IsIconic(window)) return;
    RECT frame{};
    RECT client{};
    GetWindowRect(window, &frame);
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
    OffsetRect(&client, -frame.left, -frame.top);
    const HDC context = GetWindowDC(window);
    if (context == nullptr) return;
    Fill(context, {client.left, client.top - 1, client.right, client.top}, kDark.face);
    ReleaseDC(window, context);
}

}  // namespace

std::optional<LRESULT> PaintMenuBar(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (IsPart(window) || GetMenu(window) == nullptr || !HasDarkLooks()) return std::nullopt;
    switch (message) {
        case kDrawMenu:
            if (lParam == 0) return std::nullopt;
            PaintBar(window, *reinterpret_cast<const MenuToDraw*>(lParam));
            return 0;
        case kDrawMenuItem:
            if (lParam == 0) return std::nullopt;
            PaintItem(window, *reinterpret_cast<const ItemToDraw*>(lParam));
            return 0;
        case WM_NCPAINT:
        case WM_NCACTIVATE: {
            const LRESULT answer = DefWindowProcW(window, message, wParam, lParam);
            CoverLine(window);
            return answer;
        }
        default:
            return std::nullopt;
    }
}

}  // namespace tessary
