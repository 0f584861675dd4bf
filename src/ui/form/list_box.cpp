#include "ui/form/list_box.h"

#include <algorithm>
#include <utility>

#include "ui/form/appearance.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

// Room above and below, and beside, an entry's text, in pixels at 96 dpi.
constexpr int kRowPadding = 1;
constexpr int kTextMargin = 3;

}  // namespace

bool ListBox::CreateForPaths(HWND parent) {
    return CreateChild(parent, L"LISTBOX",
                       WS_VSCROLL | WS_TABSTOP | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT |
                           LBS_OWNERDRAWFIXED | LBS_HASSTRINGS,
                       WS_EX_CLIENTEDGE);
}

std::wstring ListBox::Item(int index) const {
    const auto length = static_cast<int>(Send(LB_GETTEXTLEN, static_cast<WPARAM>(index)));
    if (length <= 0) return {};
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    Send(LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text.data()));
    text.resize(static_cast<size_t>(length));
    return text;
}

void ListBox::Expect(int count) {
    constexpr LPARAM kBytesOfText = 120;  // of a path
    Send(LB_INITSTORAGE, static_cast<WPARAM>(count), count * kBytesOfText);
}

// Straight to the list's own procedure: many entries are added at once.
int ListBox::Add(const std::wstring& text) {
    return static_cast<int>(OwnDefault(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str())));
}

void ListBox::Remove(int index) {
    Send(LB_DELETESTRING, static_cast<WPARAM>(index));
}

std::vector<int> ListBox::AllSelected() const {
    std::vector<int> indexes(static_cast<size_t>(std::max<LRESULT>(Send(LB_GETSELCOUNT), 0)));
    const LRESULT count =
        Send(LB_GETSELITEMS, indexes.size(), reinterpret_cast<LPARAM>(indexes.data()));
    indexes.resize(static_cast<size_t>(std::max<LRESULT>(count, 0)));
    return indexes;
}

void ListBox::MarkOnly(int index) {
    Send(LB_SETSEL, FALSE, -1);
    Send(LB_SETSEL, TRUE, index);
    Send(LB_SETCARETINDEX, static_cast<WPARAM>(index), FALSE);
}

void ListBox::FontChanged() {
    const TextMeter text(Handle(), reinterpret_cast<HFONT>(Send(WM_GETFONT)));
    const Metrics metrics(Handle());
    textMargin_ = metrics.Scale(kTextMargin);
    Send(LB_SETITEMHEIGHT, 0, text.LineHeight() + 2 * metrics.Scale(kRowPadding));
}

void ListBox::SetDimmed(bool dimmed) {
    if (std::exchange(dimmed_, dimmed) != dimmed) InvalidateRect(Handle(), nullptr, TRUE);
}

void ListBox::OnCommand(WORD notification, WORD /*id*/) {
    // A handler may make the window close, and with it everything here.
    if (notification == LBN_SELCHANGE && click_) click_();
    if (notification == LBN_DBLCLK && doubleClick_) doubleClick_();
    if (notification == LBN_SELCANCEL && cancel_) cancel_();
}

// A disabled list looks as it did: it is disabled for the moment of a load, and would blink.
void ListBox::OnDrawItem(const DRAWITEMSTRUCT& item) {
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    SetBkColor(item.hDC, ColorOf(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    SetTextColor(item.hDC, ColorOf(selected  ? COLOR_HIGHLIGHTTEXT
                                   : dimmed_ ? COLOR_GRAYTEXT
                                             : COLOR_WINDOWTEXT));
    RECT area = item.rcItem;
    InflateRect(&area, -textMargin_, 0);
    std::wstring text;
    SIZE size{};
    if (item.itemID != static_cast<UINT>(-1)) {
        text = Item(static_cast<int>(item.itemID));
        GetTextExtentPoint32W(item.hDC, text.c_str(), static_cast<int>(text.size()), &size);
    }
    const bool fits = size.cx <= area.right - area.left;
    ExtTextOutW(item.hDC, area.left, (area.top + area.bottom - size.cy) / 2, ETO_OPAQUE,
                &item.rcItem, text.c_str(), fits ? static_cast<UINT>(text.size()) : 0, nullptr);
    if (!fits) {
        DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &area,
                  DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_PATH_ELLIPSIS);
    }
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0) {
        DrawFocusRect(item.hDC, &item.rcItem);
    }
}

}  // namespace tessary
