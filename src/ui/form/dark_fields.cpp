#include "ui/form/dark_fields.h"

// The common controls need the types of windows.h.
#include <commctrl.h>

#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"
#include "ui/form/system_look.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kTextMargin = 4;
constexpr int kArrow = 4;  // half of its width

constexpr int kMostCue = 128;

LONG StyleOf(HWND window) {
    return GetWindowLongW(window, GWL_STYLE);
}

bool HasFocusWithin(HWND window) {
    const HWND focus = GetFocus();
    return focus == window || IsChild(window, focus);
}

COLORREF EdgeOf(HWND control) {
    if (!IsWindowEnabled(control)) return kDark.line;
    return HasFocusWithin(control) ? kDark.accent : kDark.edge;
}

// What the field says as long as nothing is in it.
std::wstring CueOf(HWND edit) {
    wchar_t cue[kMostCue] = {};
    if (GetWindowTextLengthW(edit) != 0) return {};
    SendMessageW(edit, EM_GETCUEBANNER, reinterpret_cast<WPARAM>(cue), kMostCue);
    return cue;
}

UINT StyleOfText(LONG style) {
    UINT result = (style & SS_NOPREFIX) != 0 ? DT_NOPREFIX : 0;
    switch (style & SS_TYPEMASK) {
        case SS_CENTER:
            result |= DT_CENTER | DT_WORDBREAK;
            break;
        case SS_RIGHT:
            result |= DT_RIGHT | DT_WORDBREAK;
            break;
        case SS_LEFT:
            result |= DT_WORDBREAK;
            break;
        default:
            result |= DT_SINGLELINE;
            break;
    }
    constexpr UINT kBreaks = DT_WORDBREAK;
    switch (style & SS_ELLIPSISMASK) {
        case SS_ENDELLIPSIS:
            return (result & ~kBreaks) | DT_SINGLELINE | DT_END_ELLIPSIS;
        case SS_PATHELLIPSIS:
            return (result & ~kBreaks) | DT_SINGLELINE | DT_PATH_ELLIPSIS;
        case SS_WORDELLIPSIS:
            return (result & ~kBreaks) | DT_SINGLELINE | DT_WORD_ELLIPSIS;
        default:
            break;
    }
    if ((style & SS_CENTERIMAGE) == 0) return result;
    return (result & ~kBreaks) | DT_SINGLELINE | DT_VCENTER;
}

}  // namespace

void PaintEdge(HWND control) {
    constexpr LONG kEdges = WS_EX_CLIENTEDGE | WS_EX_STATICEDGE;
    const LONG edges = GetWindowLongW(control, GWL_EXSTYLE) & kEdges;
    constexpr LONG kBothBars = WS_HSCROLL | WS_VSCROLL;
    const bool hasEdge = edges != 0 || (StyleOf(control) & WS_BORDER) != 0;
    // Where the bars are light it may be so too.
    const bool hasCorner = (StyleOf(control) & kBothBars) == kBothBars && HasDarkLooks();
    if (!hasEdge && !hasCorner) return;
    RECT area{};
    GetWindowRect(control, &area);
    const POINT origin{area.left, area.top};
    OffsetRect(&area, -area.left, -area.top);
    const HDC context = GetWindowDC(control);
    if (context == nullptr) return;
    if (hasCorner) {
        RECT client{};
        GetClientRect(control, &client);
        POINT corner{client.right, client.bottom};
        ClientToScreen(control, &corner);
        Fill(context, {corner.x - origin.x, corner.y - origin.y, area.right, area.bottom},
             kDark.face);
    }
    if (!hasEdge) {
        ReleaseDC(control, context);
        return;
    }
    // A line between parts has such an edge and no more.
    Frame(context, area, edges == WS_EX_STATICEDGE ? kDark.line : EdgeOf(control));
    const int width = (edges & WS_EX_CLIENTEDGE) != 0 ? GetSystemMetrics(SM_CXEDGE) : 1;
    for (int i = 1; i < width; ++i) {
        InflateRect(&area, -1, -1);
        FrameRect(context, &area, BrushIn(kDark.field));
    }
    ReleaseDC(control, context);
}

void PaintComboBox(HWND box, HDC context, const RECT& client) {
    COMBOBOXINFO info{};
    info.cbSize = sizeof(info);
    GetComboBoxInfo(box, &info);
    const Metrics metrics(box);
    const bool isEnabled = IsWindowEnabled(box) != FALSE;
    const bool hasField = (StyleOf(box) & 3) == CBS_DROPDOWN;
    const COLORREF ink = isEnabled ? kDark.text : kDark.disabledText;
    Fill(context, client, isEnabled ? kDark.field : kDark.face);
    Frame(context, client, EdgeOf(box), metrics.Scale(1));
    const int half = metrics.Scale(kArrow);
    const LONG middle = (info.rcButton.left + info.rcButton.right) / 2;
    const LONG top = (client.bottom - half) / 2;
    const POINT arrow[] = {{middle - half, top}, {middle + half, top}, {middle, top + half}};
    FillShape(context, arrow, 3, ink);
    if (hasField) return;
    const FontInUse font(box, context);
    RECT area{client.left + metrics.Scale(kTextMargin), client.top,
              info.rcButton.left - metrics.Scale(1), client.bottom};
    Write(context, TextOfWindow(box), area, ink,
          DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX | DT_END_ELLIPSIS);
    if (!ShowsFocus(box)) return;
    InflateRect(&area, metrics.Scale(kTextMargin) / 2, -metrics.Scale(3));
    PaintFocus(context, area);
}

bool PaintsEditWrong(HWND edit) {
    if ((StyleOf(edit) & ES_MULTILINE) != 0) return false;
    return !IsWindowEnabled(edit) || !CueOf(edit).empty();
}

void PaintEdit(HWND edit, HDC context, const RECT& client) {
    const bool isEnabled = IsWindowEnabled(edit) != FALSE;
    const bool isReadOnly = (StyleOf(edit) & ES_READONLY) != 0;
    Fill(context, client, isEnabled && !isReadOnly ? kDark.field : kDark.face);
    RECT area{};
    SendMessageW(edit, EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    const FontInUse font(edit, context);
    const std::wstring cue = CueOf(edit);
    Write(context, cue.empty() ? TextOfWindow(edit) : cue, area, kDark.disabledText,
          DT_LEFT | DT_SINGLELINE | DT_NOPREFIX | DT_EDITCONTROL);
}

bool PaintsTextWrong(HWND text) {
    const LONG kind = StyleOf(text) & SS_TYPEMASK;
    if (kind == SS_ETCHEDHORZ) return true;
    const bool isText = kind == SS_LEFT || kind == SS_CENTER || kind == SS_RIGHT ||
                        kind == SS_LEFTNOWORDWRAP || kind == SS_SIMPLE;
    return isText && !IsWindowEnabled(text);
}

void PaintText(HWND text, HDC context, const RECT& client) {
    const LONG style = StyleOf(text);
    if ((style & SS_TYPEMASK) == SS_ETCHEDHORZ) {
        Fill(context, client, kDark.face);
        return Fill(context, {client.left, client.top, client.right, client.top + 1}, kDark.line);
    }
    Fill(context, client, kDark.face);
    const FontInUse font(text, context);
    Write(context, TextOfWindow(text), client, kDark.disabledText,
          StyleOfText(style) | DT_EXPANDTABS | MnemonicStyle(text));
}

}  // namespace tessary
