#include "ui/form/entry_paint.h"

#include <algorithm>
#include <iterator>

#include "app/base/handles.h"
#include "app/base/text.h"
#include "ui/form/appearance.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMargin = 3;     // beside the text
constexpr int kMarkSize = 10;  // of the mark of a chosen entry
constexpr int kMarkLine = 2;

constexpr int kShare = 4;  // one part of the highlight in so many makes the ground of chosen ones

// Characters.
constexpr size_t kLongestKind = 5;  // the extension of a file, on its sheet
constexpr size_t kTail = 8;         // that stay of a name that is too wide

COLORREF Blend(COLORREF one, COLORREF other, int share) {
    const auto mix = [share](int a, int b) { return (a + b * (share - 1)) / share; };
    return RGB(mix(GetRValue(one), GetRValue(other)), mix(GetGValue(one), GetGValue(other)),
               mix(GetBValue(one), GetBValue(other)));
}

COLORREF GroundOf(const EntryLook& look) {
    const COLORREF window = ColorOf(COLOR_WINDOW);
    if (look.isInView) return ColorOf(COLOR_HIGHLIGHT);
    const bool isMixed = look.isChosen && !IsHighContrast();
    return isMixed ? Blend(ColorOf(COLOR_HIGHLIGHT), window, kShare) : window;
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

// One part of the ink in so many makes lines around pictures.
constexpr int kFrameShare = 5;

COLORREF FrameColor() {
    return Blend(ColorOf(COLOR_WINDOWTEXT), ColorOf(COLOR_WINDOW), kFrameShare);
}

void Fill(HDC context, const RECT& area, COLORREF color) {
    SetBkColor(context, color);
    ExtTextOutW(context, 0, 0, ETO_OPAQUE, &area, L"", 0, nullptr);
}

// The picture in its size, or as much smaller as the square is.
void PaintPicture(HDC context, const RECT& square, const EntryPicture& picture) {
    const int side = square.right - square.left;
    const SIZE whole{picture.info->bmiHeader.biWidth, picture.info->bmiHeader.biHeight};
    const LONG longer = std::max({whole.cx, whole.cy, LONG{side}});
    const int width = std::max(MulDiv(whole.cx, side, longer), 1);
    const int height = std::max(MulDiv(whole.cy, side, longer), 1);
    const RECT place{(square.left + square.right - width) / 2,
                     (square.top + square.bottom - height) / 2,
                     (square.left + square.right - width) / 2 + width,
                     (square.top + square.bottom - height) / 2 + height};
    RECT frame = place;
    InflateRect(&frame, 1, 1);
    Fill(context, frame, FrameColor());
    if (width == whole.cx && height == whole.cy) {
        SetDIBitsToDevice(context, place.left, place.top, static_cast<DWORD>(width),
                          static_cast<DWORD>(height), 0, 0, 0, static_cast<UINT>(height),
                          picture.rows, picture.info, DIB_RGB_COLORS);
        return;
    }
    SetStretchBltMode(context, HALFTONE);
    StretchDIBits(context, place.left, place.top, width, height, 0, 0, whole.cx, whole.cy,
                  picture.rows, picture.info, DIB_RGB_COLORS, SRCCOPY);
}

// A sheet of paper with a corner turned down, and what kind of file it is.
void PaintSheet(HDC context, const RECT& square, const EntryLook& look) {
    const int side = square.right - square.left;
    const int height = side * 5 / 8;
    const int width = height * 4 / 5;
    const int corner = width / 4;
    const int left = square.left + (side - width) / 2;
    const int top = square.top + (side - height) / 2;
    const POINT sheet[] = {{left, top},
                           {left + width - corner, top},
                           {left + width, top + corner},
                           {left + width, top + height},
                           {left, top + height}};
    const POINT fold[] = {{left + width - corner, top},
                          {left + width - corner, top + corner},
                          {left + width, top + corner}};
    const UniquePen pen(CreatePen(PS_SOLID, 1, ColorOf(COLOR_GRAYTEXT)));
    const HGDIOBJ formerPen = SelectObject(context, pen.Get());
    const HGDIOBJ formerBrush = SelectObject(context, BrushOf(COLOR_WINDOW));
    Polygon(context, sheet, static_cast<int>(std::size(sheet)));
    Polyline(context, fold, static_cast<int>(std::size(fold)));
    SelectObject(context, formerBrush);
    SelectObject(context, formerPen);
    const size_t dot = look.text.rfind(L'.');
    if (dot == look.text.npos || look.text.size() - dot > kLongestKind + 1) return;
    const std::wstring kind = ToUpper(look.text.substr(dot + 1));
    RECT text{left, top + corner, left + width, top + height};
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, ColorOf(COLOR_GRAYTEXT));
    DrawTextW(context, kind.c_str(), static_cast<int>(kind.size()), &text,
              DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX);
    SetBkMode(context, OPAQUE);
}

// A name as wide as there is room, without its middle: files of a camera differ at the end.
std::wstring Shortened(HDC context, const std::wstring& text, int width) {
    const auto widthOf = [&](const std::wstring& part) {
        SIZE size{};
        GetTextExtentPoint32W(context, part.c_str(), static_cast<int>(part.size()), &size);
        return size.cx;
    };
    if (widthOf(text) <= width) return text;
    const std::wstring tail = L"\u2026" + text.substr(text.size() - std::min(text.size(), kTail));
    int fits = 0;
    SIZE size{};
    GetTextExtentExPointW(context, text.c_str(), static_cast<int>(text.size()),
                          std::max<int>(width - widthOf(tail), 0), &fits, nullptr, &size);
    return text.substr(0, static_cast<size_t>(std::max(fits, 1))) + tail;
}

}  // namespace

void PaintPictureEntry(HDC context, const RECT& area, const PictureLayout& layout,
                       const EntryLook& look, const EntryPicture& picture) {
    const HGDIOBJ formerFont = look.font != nullptr ? SelectObject(context, look.font) : nullptr;
    const int left = (area.left + area.right - layout.side) / 2;
    const int top = area.top + layout.margin;
    const RECT square{left, top, left + layout.side, top + layout.side};
    const bool isThere = picture.state == EntryPicture::State::kThere;
    const bool isComing = picture.state == EntryPicture::State::kComing;
    Fill(context, area, GroundOf(look));
    if (isThere) {
        PaintPicture(context, square, picture);
    } else if (isComing) {
        RECT frame = square;
        const int inset = layout.side / 8;
        InflateRect(&frame, -inset, -inset);
        Fill(context, frame, FrameColor());
        InflateRect(&frame, -1, -1);
        Fill(context, frame, GroundOf(look));
    } else {
        PaintSheet(context, square, look);
    }
    SetBkColor(context, GroundOf(look));
    SetTextColor(context, InkOf(look));
    if (layout.label > 0 || !(isThere || isComing)) {
        RECT text{area.left + layout.margin / 2, square.bottom, area.right - layout.margin / 2,
                  area.bottom};
        if (layout.label == 0) text.top -= layout.side / 6;
        const std::wstring name = Shortened(context, look.text, text.right - text.left);
        DrawTextW(context, name.c_str(), static_cast<int>(name.size()), &text,
                  DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX);
    }
    if (look.isChosen) {
        const int size = MulDiv(kMarkSize, look.dpi, USER_DEFAULT_SCREEN_DPI);
        RECT mark{square.right - 2 * size, square.top, square.right, square.top + 2 * size};
        Fill(context, mark, ColorOf(COLOR_HIGHLIGHT));
        InflateRect(&mark, -size / 2, -size / 2);
        PaintMark(context, mark, ColorOf(COLOR_HIGHLIGHTTEXT), look.dpi);
    }
    if (look.isFocused) {
        SetTextColor(context, InkOf(look));
        SetBkColor(context, GroundOf(look));
        DrawFocusRect(context, &area);
    }
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
