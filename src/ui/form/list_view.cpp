#include "ui/form/list_view.h"

#include <algorithm>
#include <iterator>

#include "app/base/text.h"
#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

constexpr int kTextMargin = 4;  // beside a text, in pixels at 96 dpi

}  // namespace

void ListView::OnAttached() {
    constexpr DWORD kStyle = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, kStyle, kStyle);
}

void ListView::SetColumns(std::span<const Column> columns) {
    columns_.assign(columns.begin(), columns.end());
    for (size_t i = 0; i < columns_.size(); ++i) {
        LVCOLUMNW insert{};
        insert.mask = LVCF_FMT | LVCF_TEXT | LVCF_SUBITEM;
        insert.fmt = columns_[i].isNumber ? LVCFMT_RIGHT : LVCFMT_LEFT;
        insert.pszText = const_cast<wchar_t*>(columns_[i].caption);  // only read
        insert.iSubItem = static_cast<int>(i);
        Send(LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&insert));
    }
    LayOutColumns();
}

void ListView::SetRows(std::vector<Row> rows) {
    Select(-1);
    rows_ = std::move(rows);
    Send(LVM_SETITEMCOUNT, rows_.size());
    InvalidateRect(Handle(), nullptr, TRUE);
}

void ListView::AddRows(std::vector<Row> rows) {
    std::ranges::move(rows, std::back_inserter(rows_));
    Send(LVM_SETITEMCOUNT, rows_.size(), LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
}

void ListView::Select(int index) {
    LVITEMW state{};
    state.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    state.state = index < 0 ? 0 : state.stateMask;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&state));
    if (index >= 0) Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(index), FALSE);
}

std::vector<int> ListView::AllSelected() const {
    std::vector<int> selected;
    for (int index = -1;;) {
        index = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(index), LVNI_SELECTED));
        if (index < 0) return selected;
        selected.push_back(index);
    }
}

void ListView::SelectAll() {
    LVITEMW state{};
    state.stateMask = state.state = LVIS_SELECTED;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(&state));
}

std::optional<LRESULT> ListView::OnNotify(NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW:
            GiveText(reinterpret_cast<NMLVDISPINFOW&>(header).item);
            return 0;
        case LVN_ODFINDITEMW:
            return FindRow(reinterpret_cast<const NMLVFINDITEMW&>(header));
        case LVN_ITEMCHANGED: {
            const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
            const bool moved = ((change.uOldState ^ change.uNewState) & LVIS_SELECTED) != 0;
            if (moved && select_) select_();
            return 0;
        }
        case NM_CUSTOMDRAW:
            if (!IsDark()) return std::nullopt;
            return Draw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
        case NM_DBLCLK:
            if (Selected() >= 0 && doubleClick_) doubleClick_();
            return 0;
        default:
            return std::nullopt;
    }
}

void ListView::GiveText(LVITEMW& item) const {
    if ((item.mask & LVIF_TEXT) == 0 || item.iItem < 0 || item.iSubItem < 0) return;
    static const std::wstring none;
    const auto row = static_cast<size_t>(item.iItem);
    const auto column = static_cast<size_t>(item.iSubItem);
    const bool isThere = row < rows_.size() && column < rows_[row].size();
    const std::wstring& text = isThere ? rows_[row][column] : none;
    item.pszText = const_cast<wchar_t*>(text.c_str());  // only read
}

// What is typed over the list looks for the row that begins with it.
LRESULT ListView::FindRow(const NMLVFINDITEMW& wanted) const {
    constexpr UINT kByText = LVFI_STRING | LVFI_PARTIAL;
    if ((wanted.lvfi.flags & kByText) == 0 || rows_.empty() || wanted.iStart < 0) return -1;
    const std::wstring_view text = wanted.lvfi.psz;
    for (size_t step = 0; step < rows_.size(); ++step) {
        const size_t index = (static_cast<size_t>(wanted.iStart) + step) % rows_.size();
        if (rows_[index].empty()) continue;
        if (EqualsIgnoreCase(std::wstring_view(rows_[index][0]).substr(0, text.size()), text)) {
            return static_cast<LRESULT>(index);
        }
    }
    return -1;
}

// A dialog that comes to a screen of another resolution gives its controls another font.
std::optional<LRESULT> ListView::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_SIZE && message != WM_SETFONT) {
        return Control::OnOwnMessage(message, wParam, lParam);
    }
    const LRESULT answer = OwnDefault(message, wParam, lParam);
    LayOutColumns();
    return answer;
}

// --- Dark ---

LRESULT ListView::Draw(const NMLVCUSTOMDRAW& draw) const {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT:
            DrawRow(draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec),
                    (draw.nmcd.uItemState & CDIS_FOCUS) != 0);
            return CDRF_SKIPDEFAULT;
        default:
            return CDRF_DODEFAULT;
    }
}

// A selected row would be light where the list has not the focus.
void ListView::DrawRow(HDC context, int index, bool isFocused) const {
    if (index < 0 || static_cast<size_t>(index) >= rows_.size()) return;
    RECT whole{};
    whole.left = LVIR_BOUNDS;
    Send(LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&whole));
    const bool isSelected = Send(LVM_GETITEMSTATE, static_cast<WPARAM>(index), LVIS_SELECTED) != 0;
    const COLORREF ground = !isSelected ? kDark.field : HasFocus() ? kDark.highlight : kDark.hot;
    const bool isEnabled = IsWindowEnabled(Handle()) != FALSE;
    const COLORREF ink = !isEnabled   ? kDark.disabledText
                         : isSelected ? kDark.highlightText
                                      : kDark.text;
    const FontInUse font(Handle(), context);
    Fill(context, whole, ground);
    const int margin = Metrics(Handle()).Scale(kTextMargin);
    const Row& row = rows_[static_cast<size_t>(index)];
    RECT area = whole;
    for (size_t i = 0; i < columns_.size() && i < row.size(); ++i) {
        area.right = area.left + static_cast<LONG>(Send(LVM_GETCOLUMNWIDTH, i));
        RECT text = area;
        InflateRect(&text, -margin, 0);
        Write(context, row[i], text, ink,
              (columns_[i].isNumber ? DT_RIGHT : DT_LEFT) | DT_VCENTER | DT_SINGLELINE |
                  DT_NOPREFIX | DT_END_ELLIPSIS);
        area.left = area.right;
    }
    if (isFocused && HasFocus()) PaintFocus(context, whole);
}

void ListView::LayOutColumns() {
    const Metrics metrics(Handle());
    RECT client{};
    GetClientRect(Handle(), &client);
    int room = client.right;
    for (const Column& column : columns_)
        room -= metrics.Scale(column.width);
    for (size_t i = 0; i < columns_.size(); ++i) {
        const int extra = columns_[i].fills ? std::max(room, 0) : 0;
        Send(LVM_SETCOLUMNWIDTH, i, metrics.Scale(columns_[i].width) + extra);
    }
}

}  // namespace tessary
