#include "ui/form/dark_buttons.h"

// The common controls need the types of windows.h.
#include <commctrl.h>

#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMark = 13;  // a check box's or an option button's
constexpr int kMarkGap = 4;
constexpr int kFocusMargin = 3;
constexpr int kGroupTextLeft = 7;
constexpr int kGroupTextGap = 2;

struct Look {
    bool isEnabled;
    bool isPressed;
    bool isHot;
    bool isChecked;

    explicit Look(HWND button) {
        const LRESULT state = SendMessageW(button, BM_GETSTATE, 0, 0);
        isEnabled = IsWindowEnabled(button) != FALSE;
        isPressed = (state & BST_PUSHED) != 0;
        isHot = isEnabled && (state & BST_HOT) != 0;
        isChecked = (state & 3) == BST_CHECKED;
    }

    COLORREF Ink() const { return isEnabled ? kDark.text : kDark.disabledText; }
    COLORREF Ground() const {
        if (!isEnabled) return kDark.face;
        if (isPressed) return kDark.pressed;
        return isHot ? kDark.hot : kDark.button;
    }
};

LONG StyleOf(HWND button) {
    return GetWindowLongW(button, GWL_STYLE);
}

bool IsOption(LONG kind) {
    return kind == BS_RADIOBUTTON || kind == BS_AUTORADIOBUTTON;
}

bool IsMarked(LONG style) {
    const LONG kind = style & BS_TYPEMASK;
    const bool isCheck = kind == BS_CHECKBOX || kind == BS_AUTOCHECKBOX || kind == BS_3STATE ||
                         kind == BS_AUTO3STATE;
    return (isCheck || IsOption(kind)) && (style & BS_PUSHLIKE) == 0;
}

void PaintPush(HWND button, HDC context, const RECT& client) {
    const Look look(button);
    const Metrics metrics(button);
    const bool isDefault = (StyleOf(button) & BS_TYPEMASK) == BS_DEFPUSHBUTTON;
    Fill(context, client, look.isChecked && look.isEnabled ? kDark.highlight : look.Ground());
    if (isDefault && look.isEnabled) {
        Frame(context, client, kDark.accent, metrics.Scale(2));
    } else {
        Frame(context, client, look.isEnabled ? kDark.edge : kDark.line, metrics.Scale(1));
    }
    Write(context, TextOfWindow(button), client,
          look.isChecked && look.isEnabled ? kDark.highlightText : look.Ink(),
          DT_CENTER | DT_VCENTER | DT_SINGLELINE | MnemonicStyle(button));
    if (!ShowsFocus(button)) return;
    RECT focus = client;
    InflateRect(&focus, -metrics.Scale(kFocusMargin), -metrics.Scale(kFocusMargin));
    PaintFocus(context, focus);
}

void PaintTick(HDC context, const RECT& mark, COLORREF ink, int line) {
    const LONG size = mark.right - mark.left;
    LOGBRUSH brush{BS_SOLID, ink, 0};
    const UniquePen pen(
        ExtCreatePen(PS_GEOMETRIC | PS_SOLID, static_cast<DWORD>(line), &brush, 0, nullptr));
    const HGDIOBJ former = SelectObject(context, pen.Get());
    const POINT tick[] = {{mark.left + size * 2 / 10, mark.top + size * 5 / 10},
                          {mark.left + size * 4 / 10, mark.top + size * 7 / 10},
                          {mark.left + size * 8 / 10, mark.top + size * 3 / 10}};
    Polyline(context, tick, 3);
    SelectObject(context, former);
}

void PaintCircle(HDC context, const RECT& area, COLORREF edge, COLORREF ground, int line) {
    const UniquePen pen(CreatePen(PS_INSIDEFRAME, line, edge));
    const HGDIOBJ formerPen = SelectObject(context, pen.Get());
    const HGDIOBJ formerBrush = SelectObject(context, BrushIn(ground));
    Ellipse(context, area.left, area.top, area.right, area.bottom);
    SelectObject(context, formerBrush);
    SelectObject(context, formerPen);
}

void PaintMarked(HWND button, HDC context, const RECT& client) {
    const Look look(button);
    const Metrics metrics(button);
    const int size = metrics.Scale(kMark);
    const int top = static_cast<int>(client.bottom - size) / 2;
    const RECT mark{0, top, size, top + size};
    const bool isFilled = look.isChecked && look.isEnabled;
    const COLORREF edge = !look.isEnabled ? kDark.line : isFilled ? kDark.accent : kDark.edge;
    const COLORREF ground =
        look.isEnabled && !look.isPressed && !look.isHot ? kDark.field : look.Ground();
    Fill(context, client, kDark.face);
    if (IsOption(StyleOf(button) & BS_TYPEMASK)) {
        PaintCircle(context, mark, edge, ground, metrics.Scale(1));
        RECT dot = mark;
        InflateRect(&dot, -size * 3 / 10, -size * 3 / 10);
        const COLORREF ink = look.isEnabled ? kDark.accent : kDark.disabledText;
        if (look.isChecked) PaintCircle(context, dot, ink, ink, 1);
    } else {
        Fill(context, mark, isFilled ? kDark.highlight : ground);
        Frame(context, mark, edge, metrics.Scale(1));
        const COLORREF ink = isFilled ? kDark.highlightText : kDark.disabledText;
        if (look.isChecked) PaintTick(context, mark, ink, metrics.Scale(2));
    }
    const std::wstring text = TextOfWindow(button);
    const UINT style = DT_LEFT | DT_SINGLELINE | MnemonicStyle(button);
    RECT needed{};
    DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &needed, style | DT_CALCRECT);
    RECT area = client;
    area.left = size + metrics.Scale(kMarkGap);
    Write(context, text, area, look.Ink(), style | DT_VCENTER);
    if (!ShowsFocus(button) || text.empty()) return;
    const LONG middle = client.bottom / 2;
    RECT focus{area.left - 1, middle - needed.bottom / 2, area.left + needed.right + 1,
               middle + (needed.bottom + 1) / 2};
    IntersectRect(&focus, &focus, &client);
    PaintFocus(context, focus);
}

}  // namespace

void PaintButton(HWND button, HDC context, const RECT& client) {
    const FontInUse font(button, context);
    IsMarked(StyleOf(button)) ? PaintMarked(button, context, client)
                              : PaintPush(button, context, client);
}

void PaintGroupBox(HWND box, HDC context, const RECT& client) {
    const FontInUse font(box, context);
    const Metrics metrics(box);
    const std::wstring text = TextOfWindow(box);
    RECT needed{};
    DrawTextW(context, L"M", 1, &needed, DT_SINGLELINE | DT_CALCRECT);
    const LONG top = needed.bottom / 2;
    int state = 0;
    if (!text.empty()) {
        DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &needed,
                  DT_SINGLELINE | DT_CALCRECT);
        OffsetRect(&needed, metrics.Scale(kGroupTextLeft) + metrics.Scale(kGroupTextGap), 0);
        RECT around = needed;
        InflateRect(&around, metrics.Scale(kGroupTextGap), 0);
        // Where another text stood a moment ago.
        Fill(context, around, kDark.face);
        Write(context, text, needed,
              IsWindowEnabled(box) != FALSE ? kDark.text : kDark.disabledText,
              DT_SINGLELINE | MnemonicStyle(box));
        state = SaveDC(context);
        ExcludeClipRect(context, around.left, around.top, around.right, around.bottom);
    }
    Frame(context, {client.left, top, client.right, client.bottom}, kDark.line, metrics.Scale(1));
    if (state != 0) RestoreDC(context, state);
}

}  // namespace tessary
