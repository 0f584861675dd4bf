#include "ui/form/dark_bars.h"

// The common controls need the types of windows.h.
#include <commctrl.h>

#include <algorithm>

#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kTextMargin = 4;
constexpr int kHeaderMargin = 6;
constexpr int kDot = 2;  // of the grip

constexpr int kMostParts = 32;
constexpr int kMostHeading = 128;

void PaintGrip(HWND bar, HDC context, const RECT& client) {
    const int dot = Metrics(bar).Scale(kDot);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column <= row; ++column) {
            const LONG right = client.right - dot - 2 * column * dot;
            const LONG bottom = client.bottom - dot - 2 * (2 - row) * dot;
            Fill(context, {right - dot, bottom - dot, right, bottom}, kDark.edge);
        }
    }
}

}  // namespace

void PaintStatusBar(HWND bar, HDC context, const RECT& client) {
    const FontInUse font(bar, context);
    const Metrics metrics(bar);
    Fill(context, client, kDark.face);
    Fill(context, {client.left, client.top, client.right, client.top + 1}, kDark.line);
    const int parts = std::min(static_cast<int>(SendMessageW(bar, SB_GETPARTS, 0, 0)), kMostParts);
    for (int part = 0; part < parts; ++part) {
        RECT area{};
        SendMessageW(bar, SB_GETRECT, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(&area));
        const LRESULT length =
            LOWORD(SendMessageW(bar, SB_GETTEXTLENGTHW, static_cast<WPARAM>(part), 0));
        std::wstring text(static_cast<size_t>(length) + 1, L'\0');
        SendMessageW(bar, SB_GETTEXTW, static_cast<WPARAM>(part),
                     reinterpret_cast<LPARAM>(text.data()));
        text.resize(static_cast<size_t>(length));
        if (part + 1 < parts) {
            Fill(context, {area.right - 1, area.top + 2, area.right, area.bottom - 2}, kDark.line);
        }
        InflateRect(&area, -metrics.Scale(kTextMargin), 0);
        Write(context, text, area, kDark.text, DT_LEFT | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX);
    }
    const bool hasGrip = (GetWindowLongW(bar, GWL_STYLE) & SBARS_SIZEGRIP) != 0;
    if (hasGrip && !IsZoomed(GetParent(bar))) PaintGrip(bar, context, client);
}

void PaintProgressBar(HWND bar, HDC context, const RECT& client) {
    PBRANGE range{};
    SendMessageW(bar, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    const auto position = static_cast<int>(SendMessageW(bar, PBM_GETPOS, 0, 0));
    Fill(context, client, kDark.field);
    Frame(context, client, kDark.edge);
    RECT inside = client;
    InflateRect(&inside, -1, -1);
    const int whole = range.iHigh - range.iLow;
    if (whole <= 0) return;
    inside.right = inside.left + MulDiv(inside.right - inside.left, position - range.iLow, whole);
    Fill(context, inside, kDark.accent);
}

void PaintSlider(HWND slider, HDC context, const RECT& client) {
    const bool isEnabled = IsWindowEnabled(slider) != FALSE;
    const LONG style = GetWindowLongW(slider, GWL_STYLE);
    Fill(context, client, kDark.face);
    RECT channel{};
    RECT thumb{};
    SendMessageW(slider, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
    SendMessageW(slider, TBM_GETTHUMBRECT, 0, reinterpret_cast<LPARAM>(&thumb));
    Fill(context, channel, isEnabled ? kDark.field : kDark.face);
    Frame(context, channel, isEnabled ? kDark.edge : kDark.line);
    if ((style & TBS_NOTICKS) == 0) {
        const int length = Metrics(slider).Scale(4);
        const auto paintTick = [&](LONG at) {
            const LONG top = thumb.bottom + 1;
            Fill(context, {at, top, at + 1, top + length}, kDark.edge);
        };
        // The first and the last one are not counted among those that have a place.
        const LONG half = (thumb.right - thumb.left) / 2;
        paintTick(channel.left + half);
        paintTick(channel.right - half - 1);
        const LRESULT ticks = SendMessageW(slider, TBM_GETNUMTICS, 0, 0);
        for (LRESULT tick = 0; tick + 2 < ticks; ++tick) {
            const LRESULT at = SendMessageW(slider, TBM_GETTICPOS, static_cast<WPARAM>(tick), 0);
            if (at >= 0) paintTick(static_cast<LONG>(at));
        }
    }
    const bool isHeld = GetCapture() == slider;
    Fill(context, thumb, !isEnabled ? kDark.line : isHeld ? kDark.highlightText : kDark.accent);
    if (ShowsFocus(slider)) PaintFocus(context, client);
}

void PaintHeader(HWND header, HDC context, const RECT& client) {
    const FontInUse font(header, context);
    const Metrics metrics(header);
    Fill(context, client, kDark.button);
    const auto count = static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0));
    for (int item = 0; item < count; ++item) {
        RECT area{};
        SendMessageW(header, HDM_GETITEMRECT, static_cast<WPARAM>(item),
                     reinterpret_cast<LPARAM>(&area));
        wchar_t text[kMostHeading] = {};
        HDITEMW heading{};
        heading.mask = HDI_TEXT | HDI_FORMAT;
        heading.pszText = text;
        heading.cchTextMax = kMostHeading;
        SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(item),
                     reinterpret_cast<LPARAM>(&heading));
        Fill(context, {area.right - 1, area.top, area.right, area.bottom}, kDark.edge);
        InflateRect(&area, -metrics.Scale(kHeaderMargin), 0);
        const bool isRight = (heading.fmt & HDF_JUSTIFYMASK) == HDF_RIGHT;
        Write(context, text, area, kDark.text,
              (isRight ? DT_RIGHT : DT_LEFT) | DT_VCENTER | DT_SINGLELINE | DT_NOPREFIX |
                  DT_END_ELLIPSIS);
    }
    Fill(context, {client.left, client.bottom - 1, client.right, client.bottom}, kDark.edge);
}

}  // namespace tessary
