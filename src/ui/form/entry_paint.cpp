#include "ui/form/entry_paint.h"

#include "app/base/handles.h"
#include "ui/form/appearance.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMargin = 3;     // beside the text
constexpr int kMarkSize = 10;  // of the mark of a chosen entry
constexpr int kMarkLine = 2;

constexpr int kShare = 4;  // one part of the highlight in so many makes the ground of chosen ones

COLORREF Blend(COLORREF one, COLORREF other) {
    const auto mix = [](int a, int b) { return (a + b * (kShare - 1)) / kShare; };
    return RGB(mix(GetRValue(one), GetRValue(other)), mix(GetGValue(one), GetGValue(other)),
               mix(GetBValue(one), GetBValue(other)));
}

COLORREF GroundOf(const EntryLook& look) {
    const COLORREF window = ColorOf(COLOR_WINDOW);
    if (look.isInView) return ColorOf(COLOR_HIGHLIGHT);
    return look.isChosen && !IsHighContrast() ? Blend(ColorOf(COLOR_HIGHLIGHT), window) : window;
}

COLORREF InkOf(const EntryLook& look) {
    if (look.isInView) return ColorOf(COLOR_HIGHLIGHTTEXT);
    return ColorOf(look.isDimmed ? COLOR_GRAYTEXT : COLOR_WINDOWTEXT);
}

// A tick, for whoever cannot tell the grounds apart.
void PaintMark(HDC context, const RECT& area, COLORREF ink, int dpi) {
    const int line = MulDiv(kMarkLine, dpi, USER_DEFAULT_SCREEN_DPI);
    const UniquePen pen(CreatePen(PS_SOLID, line, ink));
    const HGDIOBJ former = SelectObject(context, pen.Get());
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const POINT tick[] = {{area.left, area.top + height / 2},
                          {area.left + width / 3, area.bottom - height / 6},
                          {area.right, area.top + height / 6}};
    Polyline(context, tick, 3);
    SelectObject(context, former);
}

}  // namespace

namespace {

// One that could not be read has a cross; one that comes has nothing yet.
void PaintSmall(HDC context, const RECT& square, const EntryPicture& picture, COLORREF ink,
                int dpi) {
    if (picture.state == EntryPicture::State::kThere) {
        const int width = picture.info->bmiHeader.biWidth;
        const int height = picture.info->bmiHeader.biHeight;
        const int left = (square.left + square.right - width) / 2;
        const int top = (square.top + square.bottom - height) / 2;
        SetDIBitsToDevice(context, left, top, static_cast<DWORD>(width), static_cast<DWORD>(height),
                          0, 0, 0, static_cast<UINT>(height), picture.rows, picture.info,
                          DIB_RGB_COLORS);
        return;
    }
    if (picture.state == EntryPicture::State::kNone) return;
    RECT frame = square;
    const int inset = (square.right - square.left) / 8;
    InflateRect(&frame, -inset, -inset);
    FrameRect(context, &frame, GetSysColorBrush(COLOR_BTNSHADOW));
    if (picture.state != EntryPicture::State::kFailed) return;
    const int line = MulDiv(kMarkLine, dpi, USER_DEFAULT_SCREEN_DPI);
    const UniquePen pen(CreatePen(PS_SOLID, line, ink));
    const HGDIOBJ former = SelectObject(context, pen.Get());
    const int reach = inset;
    const int x = (square.left + square.right) / 2;
    const int y = (square.top + square.bottom) / 2;
    MoveToEx(context, x - reach, y - reach, nullptr);
    LineTo(context, x + reach, y + reach);
    MoveToEx(context, x - reach, y + reach, nullptr);
    LineTo(context, x + reach, y - reach);
    SelectObject(context, former);
}

}  // namespace

void PaintPictureEntry(HDC context, const RECT& square, const PictureLayout& layout,
                       const EntryLook& look, const EntryPicture& picture) {
    const HGDIOBJ formerFont = look.font != nullptr ? SelectObject(context, look.font) : nullptr;
    const COLORREF ink = InkOf(look);
    RECT area = square;
    InflateRect(&area, layout.margin, layout.margin);
    area.bottom += layout.label;
    SetBkColor(context, GroundOf(look));
    SetTextColor(context, ink);
    ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, L"", 0, nullptr);
    PaintSmall(context, square, picture, ink, look.dpi);
    const auto count = static_cast<int>(look.text.size());
    if (layout.label > 0) {
        RECT text{square.left, square.bottom, square.right, area.bottom};
        DrawTextW(context, look.text.c_str(), count, &text,
                  DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    } else if (picture.state != EntryPicture::State::kThere) {
        RECT text = square;
        DrawTextW(context, look.text.c_str(), count, &text,
                  DT_SINGLELINE | DT_CENTER | DT_BOTTOM | DT_NOPREFIX | DT_END_ELLIPSIS);
    }
    if (look.isChosen) {
        const int size = MulDiv(kMarkSize, look.dpi, USER_DEFAULT_SCREEN_DPI);
        RECT mark{square.right - 2 * size, square.top, square.right, square.top + 2 * size};
        FillRect(context, &mark, GetSysColorBrush(COLOR_HIGHLIGHT));
        InflateRect(&mark, -size / 2, -size / 2);
        PaintMark(context, mark, GetSysColor(COLOR_HIGHLIGHTTEXT), look.dpi);
    }
    if (look.isFocused) DrawFocusRect(context, &area);
    if (formerFont != nullptr) SelectObject(context, formerFont);
}

void PaintEntry(HDC context, const RECT& area, const EntryLook& look) {
    const auto scale = [&](int pixels) {
        return MulDiv(pixels, look.dpi, USER_DEFAULT_SCREEN_DPI);
    };
    const HGDIOBJ formerFont = look.font != nullptr ? SelectObject(context, look.font) : nullptr;
    const COLORREF ink = InkOf(look);
    SetBkColor(context, GroundOf(look));
    SetTextColor(context, ink);
    ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, L"", 0, nullptr);
    RECT text = area;
    InflateRect(&text, -scale(kMargin), 0);
    if (look.isChosen) {
        const int size = scale(kMarkSize);
        const int top = (area.top + area.bottom - size) / 2;
        PaintMark(context, {text.right - size, top, text.right, top + size}, ink, look.dpi);
        text.right -= size + scale(kMargin);
    }
    DrawTextW(context, look.text.c_str(), static_cast<int>(look.text.size()), &text,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_PATH_ELLIPSIS);
    if (look.isFocused) DrawFocusRect(context, &area);
    if (formerFont != nullptr) SelectObject(context, formerFont);
}

}  // namespace tessary
