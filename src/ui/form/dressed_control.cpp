#include "ui/form/dressed_control.h"

// The common controls need the types of windows.h.
#include <commctrl.h>

#include <algorithm>
#include <iterator>

#include "ui/form/appearance.h"
#include "ui/form/dark_bars.h"
#include "ui/form/dark_buttons.h"
#include "ui/form/dark_fields.h"
#include "ui/form/dark_paint.h"
#include "ui/form/system_look.h"

namespace tessary {
namespace {

constexpr UINT_PTR kSubclass = 1;

struct Kind {
    const wchar_t* className;
    DarkPainter painter;               // null: the system paints it
    bool (*isNeeded)(HWND) = nullptr;  // whether the painter is at the moment; null: always
    bool usesTheme = false;            // has scroll bars, or parts that the system draws dark
    void (*tell)(HWND) = nullptr;      // tells the control its colours
};

void TellList(HWND list) {
    SendMessageW(list, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(ColorOf(COLOR_WINDOW)));
    SendMessageW(list, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(ColorOf(COLOR_WINDOW)));
    SendMessageW(list, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(ColorOf(COLOR_WINDOWTEXT)));
}

void TellTree(HWND tree) {
    constexpr LPARAM kAsSystem = -1;
    const auto tell = [&](UINT message, COLORREF color) {
        SendMessageW(tree, message, 0, IsDark() ? static_cast<LPARAM>(color) : kAsSystem);
    };
    tell(TVM_SETBKCOLOR, kDark.field);
    tell(TVM_SETTEXTCOLOR, kDark.text);
    SendMessageW(tree, TVM_SETLINECOLOR, 0,
                 static_cast<LPARAM>(IsDark() ? kDark.edge : CLR_DEFAULT));
}

// Where the system draws tips by a theme it leaves these alone.
void TellTip(HWND tip) {
    SendMessageW(tip, TTM_SETTIPBKCOLOR, ColorOf(COLOR_INFOBK), 0);
    SendMessageW(tip, TTM_SETTIPTEXTCOLOR, ColorOf(COLOR_INFOTEXT), 0);
}

// The list that drops down is no child of the box.
void TellComboBox(HWND box) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof(info);
    if (GetComboBoxInfo(box, &info) && info.hwndList != nullptr) {
        ShowControlDark(info.hwndList, IsDark());
    }
}

bool IsOurs(HWND button) {
    return (GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK) != BS_OWNERDRAW;
}

constexpr Kind kKinds[] = {
    {.className = L"Button", .painter = PaintButton, .isNeeded = IsOurs},
    {.className = L"Edit", .painter = PaintEdit, .isNeeded = PaintsEditWrong, .usesTheme = true},
    {.className = L"Static", .painter = PaintText, .isNeeded = PaintsTextWrong},
    {.className = L"ComboBox", .painter = PaintComboBox, .tell = TellComboBox},
    {.className = L"ListBox", .painter = nullptr, .usesTheme = true},
    {.className = WC_LISTVIEWW, .painter = nullptr, .usesTheme = true, .tell = TellList},
    {.className = WC_TREEVIEWW, .painter = nullptr, .usesTheme = true, .tell = TellTree},
    {.className = WC_HEADERW, .painter = PaintHeader},
    {.className = STATUSCLASSNAMEW, .painter = PaintStatusBar},
    {.className = PROGRESS_CLASSW, .painter = PaintProgressBar},
    {.className = TRACKBAR_CLASSW, .painter = PaintSlider},
    {.className = TOOLTIPS_CLASSW, .painter = nullptr, .usesTheme = true, .tell = TellTip},
    {.className = L"TessaryPictureBox", .painter = nullptr, .usesTheme = true},
};

const Kind* KindOf(HWND control) {
    wchar_t name[64] = {};
    GetClassNameW(control, name, static_cast<int>(std::size(name)));
    const auto* const found = std::ranges::find_if(
        kKinds, [&](const Kind& kind) { return lstrcmpiW(kind.className, name) == 0; });
    return found == std::end(kKinds) ? nullptr : found;
}

bool IsGroupBox(HWND control, const Kind& kind) {
    return kind.painter == PaintButton &&
           (GetWindowLongW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

bool PaintsItself(HWND control, const Kind& kind) {
    return kind.painter != nullptr && (kind.isNeeded == nullptr || kind.isNeeded(control));
}

void PaintGroup(HWND box) {
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(box, &paint);
    RECT client{};
    GetClientRect(box, &client);
    PaintGroupBox(box, screen, client);
    EndPaint(box, &paint);
}

// After these the system may have drawn a control without being asked to paint.
bool MayHaveDrawn(UINT message) {
    constexpr UINT kMessages[] = {
        BM_SETSTATE,      BM_SETCHECK,       BM_SETSTYLE, CB_SETCURSEL,     CB_RESETCONTENT,
        WM_SETTEXT,       WM_ENABLE,         WM_SETFOCUS, WM_KILLFOCUS,     WM_COMMAND,
        WM_KEYDOWN,       WM_KEYUP,          WM_CHAR,     WM_LBUTTONUP,     WM_LBUTTONDOWN,
        WM_MOUSEWHEEL,    WM_SYSKEYDOWN,     WM_SYSKEYUP, WM_UPDATEUISTATE, WM_MOUSELEAVE,
        WM_LBUTTONDBLCLK, WM_CAPTURECHANGED, TBM_SETPOS,  WM_SETFONT};
    return std::ranges::find(kMessages, message) != std::end(kMessages);
}

bool MovesFocus(UINT message) {
    return message == WM_SETFOCUS || message == WM_KILLFOCUS || message == WM_ENABLE;
}

LRESULT ColorsOfChild(UINT message, WPARAM wParam) {
    const auto context = reinterpret_cast<HDC>(wParam);
    const COLORREF ground = message == WM_CTLCOLORSTATIC ? kDark.face : kDark.field;
    SetTextColor(context, kDark.text);
    SetBkColor(context, ground);
    return reinterpret_cast<LRESULT>(BrushIn(ground));
}

LRESULT Dark(HWND control, const Kind& kind, UINT message, WPARAM wParam, LPARAM lParam) {
    const auto usual = [&] { return DefSubclassProc(control, message, wParam, lParam); };
    switch (message) {
        case WM_NCPAINT: {
            const LRESULT answer = usual();
            PaintEdge(control);
            return answer;
        }
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORSTATIC:  // of the parts of a box
            return ColorsOfChild(message, wParam);
        case WM_PAINT:
            if (IsGroupBox(control, kind)) {
                PaintGroup(control);
                return 0;
            }
            if (!PaintsItself(control, kind)) return usual();
            PaintBuffered(control, kind.painter);
            return 0;
        case WM_ERASEBKGND:
            return PaintsItself(control, kind) ? 1 : usual();
        case WM_PRINTCLIENT:
            if (!PaintsItself(control, kind)) return usual();
            RECT client;
            GetClientRect(control, &client);
            IsGroupBox(control, kind)
                ? PaintGroupBox(control, reinterpret_cast<HDC>(wParam), client)
                : kind.painter(control, reinterpret_cast<HDC>(wParam), client);
            return 0;
        default:
            break;
    }
    const LRESULT answer = usual();
    if (MovesFocus(message)) {
        // Some systems paint all of a control only when they erase it.
        RedrawWindow(control, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE | RDW_ERASE);
    } else if (kind.painter != nullptr && MayHaveDrawn(message)) {
        InvalidateRect(control, nullptr, FALSE);
    }
    return answer;
}

LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wParam, LPARAM lParam,
                           UINT_PTR /*id*/, DWORD_PTR kind) {
    if (message == WM_NCDESTROY) RemoveWindowSubclass(control, Procedure, kSubclass);
    if (message == WM_NCDESTROY || !IsDark())
        return DefSubclassProc(control, message, wParam, lParam);
    return Dark(control, *reinterpret_cast<const Kind*>(kind), message, wParam, lParam);
}

}  // namespace

bool IsToolTip(HWND window) {
    const Kind* const kind = KindOf(window);
    return kind != nullptr && kind->tell == TellTip;
}

void DressAsItIs(HWND control) {
    const Kind* const kind = KindOf(control);
    if (kind == nullptr) return;
    const bool isTip = kind->tell == TellTip;
    if (IsDark() && !isTip) {
        SetWindowSubclass(control, Procedure, kSubclass, reinterpret_cast<DWORD_PTR>(kind));
    } else if (!isTip) {
        RemoveWindowSubclass(control, Procedure, kSubclass);
    }
    if (kind->usesTheme) ShowControlDark(control, IsDark());
    if (kind->tell != nullptr) kind->tell(control);
    if (IsDark()) {
        RedrawWindow(control, nullptr, nullptr, RDW_FRAME | RDW_INVALIDATE | RDW_ERASE);
    }
}

}  // namespace tessary
