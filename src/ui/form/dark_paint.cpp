#include "ui/form/dark_paint.h"

namespace tessary {
namespace {

// Such as the field of a box: it is painted before, and not again.
void SpareChildren(HWND control, HDC context) {
    for (HWND child = GetWindow(control, GW_CHILD); child != nullptr;
         child = GetWindow(child, GW_HWNDNEXT)) {
        RECT area{};
        GetWindowRect(child, &area);
        MapWindowPoints(nullptr, control, reinterpret_cast<POINT*>(&area), 2);
        if ((GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) != 0)
            ExcludeClipRect(context, area.left, area.top, area.right, area.bottom);
    }
}

}  // namespace

void Frame(HDC context, RECT area, COLORREF color, int thickness) {
    for (int i = 0; i < thickness; ++i) {
        FrameRect(context, &area, BrushIn(color));
        InflateRect(&area, -1, -1);
    }
}

void FillShape(HDC context, const POINT* points, int count, COLORREF color) {
    const UniquePen pen(CreatePen(PS_SOLID, 1, color));
    const HGDIOBJ formerPen = SelectObject(context, pen.Get());
    const HGDIOBJ formerBrush = SelectObject(context, BrushIn(color));
    Polygon(context, points, count);
    SelectObject(context, formerBrush);
    SelectObject(context, formerPen);
}

void PaintFocus(HDC context, const RECT& area) {
    const COLORREF text = SetTextColor(context, RGB(0, 0, 0));
    const COLORREF ground = SetBkColor(context, RGB(0xFF, 0xFF, 0xFF));
    DrawFocusRect(context, &area);
    SetBkColor(context, ground);
    SetTextColor(context, text);
}

void Write(HDC context, const std::wstring& text, RECT area, COLORREF color, UINT style) {
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, color);
    DrawTextW(context, text.c_str(), static_cast<int>(text.size()), &area, style);
}

std::wstring TextOfWindow(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

UINT MnemonicStyle(HWND control) {
    const LRESULT state = SendMessageW(control, WM_QUERYUISTATE, 0, 0);
    return (state & UISF_HIDEACCEL) != 0 ? DT_HIDEPREFIX : 0;
}

bool ShowsFocus(HWND control) {
    return GetFocus() == control &&
           (SendMessageW(control, WM_QUERYUISTATE, 0, 0) & UISF_HIDEFOCUS) == 0;
}

FontInUse::FontInUse(HWND control, HDC context) : context_(context) {
    const auto font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    if (font != nullptr) former_ = SelectObject(context, font);
}

FontInUse::~FontInUse() {
    if (former_ != nullptr) SelectObject(context_, former_);
}

void PaintBuffered(HWND control, DarkPainter painter) {
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(control, &paint);
    RECT client{};
    GetClientRect(control, &client);
    const UniqueMemoryDc memory(CreateCompatibleDC(screen));
    const UniqueBitmap bitmap(CreateCompatibleBitmap(screen, client.right, client.bottom));
    if (memory && bitmap) {
        const HGDIOBJ former = SelectObject(memory.Get(), bitmap.Get());
        painter(control, memory.Get(), client);
        SpareChildren(control, screen);
        BitBlt(screen, 0, 0, client.right, client.bottom, memory.Get(), 0, 0, SRCCOPY);
        SelectObject(memory.Get(), former);
    } else {
        painter(control, screen, client);
    }
    EndPaint(control, &paint);
}

}  // namespace tessary
