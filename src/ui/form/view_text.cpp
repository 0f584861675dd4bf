#include "ui/form/view_text.h"

#include <algorithm>
#include <cstdlib>

#include "app/base/handles.h"
#include "ui/form/appearance.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kMargin = 16;   // between the text and the area's edges
constexpr int kPadding = 10;  // inside the box of a note

// Long names have no blanks to break at.
constexpr UINT kStyle = DT_CENTER | DT_WORDBREAK | DT_EDITCONTROL | DT_NOPREFIX;

int BrightnessOf(COLORREF colour) {
    return 3 * GetRValue(colour) + 6 * GetGValue(colour) + GetBValue(colour);
}

// A text and the rectangle that it needs in the middle of an area of this width.
class LaidOutText {
  public:
    LaidOutText(HWND window, HDC screen, const std::wstring& text, int padding)
        : text_(text), font_(Metrics(window).MessageFont()), padding_(padding) {
        RECT area{};
        GetClientRect(window, &area);
        const int margin = Metrics(window).Scale(kMargin) + padding;
        RECT needed{0, 0, std::max<LONG>(area.right - 2 * margin, 1), 0};
        const HGDIOBJ former = SelectObject(screen, font_.Get());
        DrawTextW(screen, text.c_str(), -1, &needed, kStyle | DT_CALCRECT);
        SelectObject(screen, former);
        size_ = {needed.right + 2 * padding, needed.bottom + 2 * padding};
        area_ = {area.right, area.bottom};
    }

    SIZE Area() const { return area_; }
    SIZE Size() const { return size_; }

    // Paints ground and text off the screen first: they would flicker.
    RECT PaintAt(HDC screen, int left, int top, COLORREF ground, COLORREF colour) const {
        const RECT place{left, top, left + size_.cx, top + size_.cy};
        const UniqueMemoryDc memory(CreateCompatibleDC(screen));
        const UniqueBitmap bitmap(CreateCompatibleBitmap(screen, size_.cx, size_.cy));
        if (!memory || !bitmap) return {};
        const HGDIOBJ formerBitmap = SelectObject(memory.Get(), bitmap.Get());
        const HGDIOBJ formerFont = SelectObject(memory.Get(), font_.Get());
        RECT all{0, 0, size_.cx, size_.cy};
        SetBkColor(memory.Get(), ground);
        SetTextColor(memory.Get(), colour);
        ExtTextOutW(memory.Get(), 0, 0, ETO_OPAQUE, &all, nullptr, 0, nullptr);
        InflateRect(&all, -padding_, -padding_);
        DrawTextW(memory.Get(), text_.c_str(), -1, &all, kStyle);
        BitBlt(screen, left, top, size_.cx, size_.cy, memory.Get(), 0, 0, SRCCOPY);
        SelectObject(memory.Get(), formerFont);
        SelectObject(memory.Get(), formerBitmap);
        return place;
    }

  private:
    const std::wstring& text_;
    UniqueFont font_;
    int padding_;
    SIZE size_{};
    SIZE area_{};
};

}  // namespace

COLORREF ReadableOn(COLORREF background) {
    const auto distance = [&](int index) {
        return std::abs(BrightnessOf(ColorOf(index)) - BrightnessOf(background));
    };
    return ColorOf(distance(COLOR_WINDOWTEXT) >= distance(COLOR_WINDOW) ? COLOR_WINDOWTEXT
                                                                        : COLOR_WINDOW);
}

RECT PaintReason(HDC screen, HWND window, const std::wstring& text, COLORREF background) {
    const LaidOutText laidOut(window, screen, text, 0);
    const SIZE area = laidOut.Area();
    const SIZE size = laidOut.Size();
    // Where there is too little room the beginning counts.
    return laidOut.PaintAt(screen, (area.cx - size.cx) / 2,
                           std::max<LONG>((area.cy - size.cy) / 2, 0), background,
                           ReadableOn(background));
}

RECT PaintNote(HDC screen, HWND window, const std::wstring& text) {
    const Metrics metrics(window);
    const LaidOutText laidOut(window, screen, text, metrics.Scale(kPadding));
    const SIZE area = laidOut.Area();
    const SIZE size = laidOut.Size();
    const RECT place =
        laidOut.PaintAt(screen, (area.cx - size.cx) / 2,
                        std::max<LONG>(area.cy - size.cy - metrics.Scale(kMargin), 0),
                        ColorOf(COLOR_INFOBK), ColorOf(COLOR_INFOTEXT));
    FrameRect(screen, &place, BrushOf(COLOR_INFOTEXT));
    return place;
}

}  // namespace tessary
