#include "ui/form/virtual_list.h"

#include <windowsx.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "app/base/error.h"
#include "ui/form/entry_paint.h"
#include "ui/form/metrics.h"
#include "ui/form/picture_box.h"

namespace tessary {
namespace {

constexpr UINT kShowContent = WM_APP + 1;
constexpr UINT kHearUser = WM_APP + 2;

constexpr int kRowPadding = 1;  // above and below an entry's text, in pixels at 96 dpi

// With more entries to mark than that the control is not to draw each of them.
constexpr int kManyMarks = 50;

// For its own life a flag is up.
class Raised {
  public:
    explicit Raised(bool& flag) : flag_(flag), former_(std::exchange(flag, true)) {}
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;
    ~Raised() { flag_ = former_; }

  private:
    bool& flag_;
    bool former_;
};

}  // namespace

bool VirtualList::Create(HWND parent, ListContent& content, bool choosesSeveral) {
    content_ = &content;
    choosesSeveral_ = choosesSeveral;
    grid_.reset();
    return CreateRows(parent);
}

bool VirtualList::CreateRows(HWND parent) {
    shownCount_ = 0;
    shownSelected_ = -1;
    showsSeveral_ = false;
    isPending_ = false;
    const DWORD style = LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_OWNERDATA | LVS_SHOWSELALWAYS |
                        WS_TABSTOP | (choosesSeveral_ ? 0 : LVS_SINGLESEL);
    if (!CreateChild(parent, WC_LISTVIEWW, style, WS_EX_CLIENTEDGE)) return false;
    constexpr DWORD kLooks = LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_INFOTIP;
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, kLooks, kLooks);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    Send(LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    return true;
}

bool VirtualList::CreateGrid(HWND parent) {
    isPending_ = false;
    const DWORD style = WS_TABSTOP | WS_CLIPSIBLINGS | WS_BORDER;
    if (!CreateChild(parent, PictureGrid::Class(), style, 0, 0, name_.c_str())) {
        return false;
    }
    grid_ = std::make_shared<PictureGrid>(Handle(), *content_, events_, choosesSeveral_);
    grid_->SetPlaceholder(placeholder_);
    return true;
}

// The other window takes the place of the one before, among its neighbours too.
void VirtualList::SetLook(int side, bool hasNames) {
    if (Handle() == nullptr) return;
    if ((side > 0) != (grid_ != nullptr)) {
        const HWND former = Handle();
        const HWND parent = GetParent(former);
        const HWND before = GetWindow(former, GW_HWNDPREV);
        const bool isVisible = (GetWindowLongW(former, GWL_STYLE) & WS_VISIBLE) != 0;
        const bool isEnabled = IsEnabled();
        const bool hasFocus = HasFocus();
        const auto font = reinterpret_cast<HFONT>(Send(WM_GETFONT));
        RECT place{};
        GetWindowRect(former, &place);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
        if (!grid_) name_ = Text();
        DestroyWindow(former);
        grid_.reset();
        if (side > 0 ? !CreateGrid(parent) : !CreateRows(parent)) return;
        if (!isVisible) SetVisible(false);
        SetText(name_);
        SetFont(font);
        SetWindowPos(Handle(), before != nullptr ? before : HWND_TOP, place.left, place.top,
                     place.right - place.left, place.bottom - place.top, SWP_NOACTIVATE);
        SetEnabled(isEnabled);
        if (hasFocus) SetFocus();
    }
    if (grid_) grid_->SetLook(side, hasNames);
    CursorMoved();
}

void VirtualList::SetPlaceholder(const std::wstring& text) {
    placeholder_ = text;
    if (grid_) grid_->SetPlaceholder(text);
    Later();
}

int VirtualList::Count() const {
    if (content_ == nullptr) return 0;
    return IsPlaceholder() ? 1 : content_->Count();
}

std::wstring VirtualList::Item(int index) const {
    if (IsPlaceholder()) return index == 0 ? placeholder_ : std::wstring();
    return content_->Text(index);
}

void VirtualList::FitColumn() const {
    RECT client{};
    GetClientRect(Handle(), &client);
    Send(LVM_SETCOLUMNWIDTH, 0, client.right);
}

// The height of an image makes that of a row.
void VirtualList::FitRows() {
    const TextMeter text(Handle(), reinterpret_cast<HFONT>(Send(WM_GETFONT)));
    const int height = text.LineHeight() + 2 * Metrics(Handle()).Scale(kRowPadding);
    const HIMAGELIST images = ImageList_Create(1, height, ILC_COLOR32, 0, 1);
    const auto former = Send(LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images));
    if (former != 0) ImageList_Destroy(reinterpret_cast<HIMAGELIST>(former));
}

// --- Showing the content ---

void VirtualList::Later() {
    if (Handle() == nullptr || isPending_) return;
    isPending_ = PostMessageW(Handle(), kShowContent, 0, 0) != FALSE;
    if (!isPending_) ShowContent();
}

void VirtualList::CursorMoved() {
    if (Handle() == nullptr) return;
    shownCursor_ = -2;
    ShowContent();
}

void VirtualList::ShowContent() {
    if (Handle() == nullptr || isShowing_) return;
    const Raised showing(isShowing_);
    if (grid_) return grid_->Show(std::exchange(shownCursor_, content_->Cursor()) == -2);
    const int count = Count();
    if (std::exchange(shownCount_, count) != count) {
        Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(count),
             LVSICF_NOSCROLL | LVSICF_NOINVALIDATEALL);
    }
    ShowChosen();
    const int cursor = content_->Cursor();
    if (std::exchange(shownCursor_, cursor) != cursor && cursor >= 0) {
        SetState(cursor, LVIS_FOCUSED, LVIS_FOCUSED);
        // What follows a key or a click there is at its place already.
        Send(LVM_SETSELECTIONMARK, 0, cursor);
        Send(LVM_ENSUREVISIBLE, static_cast<WPARAM>(cursor), FALSE);
    }
    InvalidateRect(Handle(), nullptr, FALSE);
}

void VirtualList::SetState(int index, UINT state, UINT mask) const {
    LVITEMW item{};
    item.stateMask = mask;
    item.state = state;
    Send(LVM_SETITEMSTATE, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&item));
}

// What the control holds as selected are the chosen ones, or the entry in view: so other programs
// are told, and so its own keys go on from it.
void VirtualList::ShowChosen() {
    const int cursor = content_->Cursor();
    const int chosen = content_->ChosenCount();
    const auto selected = static_cast<int>(Send(LVM_GETSELECTEDCOUNT));
    if (chosen == 0 && !showsSeveral_ && selected <= 1) {
        if (cursor >= 0 && HasState(cursor, LVIS_SELECTED)) return;
        // The control looks for it entry by entry.
        if (selected > 0 && (shownSelected_ < 0 || !HasState(shownSelected_, LVIS_SELECTED))) {
            shownSelected_ =
                static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
        }
        if (selected > 0) SetState(shownSelected_, 0, LVIS_SELECTED);
        if (cursor >= 0) SetState(cursor, LVIS_SELECTED, LVIS_SELECTED);
        shownSelected_ = cursor;
        return;
    }
    if (chosen > 0 && selected == chosen) {
        const std::vector<int> now = AllSelected();
        if (std::ranges::all_of(now, [&](int index) { return content_->IsChosen(index); })) {
            showsSeveral_ = true;
            return;
        }
    }
    const bool isMuch = std::max(chosen, selected) > kManyMarks;
    if (isMuch) Send(WM_SETREDRAW, FALSE);
    SetState(-1, 0, LVIS_SELECTED);
    if (chosen == 0 && cursor >= 0) SetState(cursor, LVIS_SELECTED, LVIS_SELECTED);
    if (chosen > 0 && chosen == content_->Count()) {
        SetState(-1, LVIS_SELECTED, LVIS_SELECTED);
    } else if (chosen > 0) {
        for (int i = 0; i < content_->Count(); ++i)
            if (content_->IsChosen(i)) SetState(i, LVIS_SELECTED, LVIS_SELECTED);
    }
    if (isMuch) Send(WM_SETREDRAW, TRUE);
    showsSeveral_ = chosen > 0;
}

std::vector<int> VirtualList::AllSelected() const {
    std::vector<int> selected;
    for (int index = -1;;) {
        index = static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(index), LVNI_SELECTED));
        if (index < 0) return selected;
        selected.push_back(index);
    }
}

int64_t VirtualList::ScrollPlace() const {
    return grid_ ? grid_->Scrolled() : Send(LVM_GETTOPINDEX);
}

void VirtualList::ScrollBack(int64_t place) {
    if (grid_) return grid_->ScrollTo(place);
    const auto away = static_cast<int>(place - ScrollPlace());
    RECT row{};
    row.left = LVIR_BOUNDS;
    if (away == 0 || Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row)) == FALSE) return;
    Send(LVM_SCROLL, 0, away * (row.bottom - row.top));
}

// --- What the user does ---

std::optional<LRESULT> VirtualList::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto answer = Control::OnOwnMessage(message, wParam, lParam)) return answer;
    switch (message) {
        case kShowContent:
            isPending_ = false;
            ShowContent();
            return 0;
        case WM_PAINT:
            if (isPending_) ShowContent();
            break;
        default:
            break;
    }
    // An event may have another look chosen, and the grid is in the middle of it.
    const std::shared_ptr<PictureGrid> grid = grid_;
    return grid ? grid->OnMessage(message, wParam, lParam) : OnRowsMessage(message, wParam, lParam);
}

std::optional<LRESULT> VirtualList::OnRowsMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE: {
            const LRESULT answer = OwnDefault(message, wParam, lParam);
            FitColumn();
            return answer;
        }
        case WM_SETFONT: {
            const LRESULT answer = OwnDefault(message, wParam, lParam);
            FitRows();
            return answer;
        }
        case WM_CONTEXTMENU:
            AskForMenu(lParam);
            return 0;
        case WM_KEYDOWN:
            if (wParam == 'A' && CurrentShiftState() == kCtrlMask) {
                ChooseAll();
                return 0;
            }
            return Hear(message, wParam, lParam);
        case WM_CHAR:
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONUP:
        case WM_MOUSEMOVE:
        case WM_TIMER:
            return Hear(message, wParam, lParam);
        case LVM_SETITEMSTATE: {  // as screen readers do, several for one choice
            const LRESULT answer = OwnDefault(message, wParam, lParam);
            if (isTouched_ && depth_ == 0) PostMessageW(Handle(), kHearUser, 0, 0);
            return answer;
        }
        case kHearUser:
            HearUser();
            return 0;
        default:
            return std::nullopt;
    }
}

// What has become selected is looked at when the control has done with the message: it may send
// several notifications about one click.
LRESULT VirtualList::Hear(UINT message, WPARAM wParam, LPARAM lParam) {
    ++depth_;
    const LRESULT answer = OwnDefault(message, wParam, lParam);
    if (--depth_ == 0) HearUser();
    return answer;
}

void VirtualList::HearUser() {
    if (isShowing_ || !std::exchange(isTouched_, false) || Handle() == nullptr || grid_) return;
    const auto focused =
        static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    const LRESULT count = Send(LVM_GETSELECTEDCOUNT);
    showsSeveral_ = showsSeveral_ || count > 1;
    const bool isOne = count == 1 && focused >= 0 && HasState(focused, LVIS_SELECTED);
    // A handler may make the window close, and with it everything here.
    if (isOne && events_.select) events_.select(focused);
    if (!isOne && events_.choose) events_.choose(count == 0 ? std::vector<int>() : AllSelected());
    if (Handle() != nullptr) ShowContent();
}

void VirtualList::ChooseAll() {
    if (!events_.choose || content_->Count() == 0) return;
    std::vector<int> all(static_cast<size_t>(content_->Count()));
    std::iota(all.begin(), all.end(), 0);
    events_.choose(std::move(all));
}

void VirtualList::AskForMenu(LPARAM place) {
    HearUser();
    POINT at{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (Handle() == nullptr || grid_ || !events_.menu) return;
    if (place == -1) {  // by a key
        RECT entry{};
        entry.left = LVIR_BOUNDS;
        Send(LVM_GETITEMRECT, static_cast<WPARAM>(std::max(Selected(), 0)),
             reinterpret_cast<LPARAM>(&entry));
        RECT client{};
        GetClientRect(Handle(), &client);
        at = {entry.left, std::clamp(entry.bottom, 0L, client.bottom)};
        ClientToScreen(Handle(), &at);
    }
    events_.menu(at);
}

std::optional<LRESULT> VirtualList::OnNotify(NMHDR& header) {
    switch (header.code) {
        case LVN_GETDISPINFOW:
            GiveText(reinterpret_cast<NMLVDISPINFOW&>(header).item);
            return 0;
        case LVN_GETINFOTIPW:
            GiveTip(reinterpret_cast<NMLVGETINFOTIPW&>(header));
            return 0;
        case LVN_ODFINDITEMW:
            return Find(reinterpret_cast<const NMLVFINDITEMW&>(header));
        case LVN_ITEMCHANGED: {
            const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
            const bool isSelection = ((change.uOldState ^ change.uNewState) & LVIS_SELECTED) != 0;
            if (isSelection && !isShowing_) isTouched_ = true;
            return 0;
        }
        case LVN_ODSTATECHANGED:
            if (!isShowing_) isTouched_ = true;
            return 0;
        case NM_CUSTOMDRAW:
            return Draw(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
        default:
            return std::nullopt;
    }
}

void VirtualList::GiveText(LVITEMW& item) const {
    if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
    lstrcpynW(item.pszText, Item(item.iItem).c_str(), item.cchTextMax);
}

void VirtualList::GiveTip(NMLVGETINFOTIPW& tip) const {
    if (tip.pszText == nullptr || tip.cchTextMax <= 0 || IsPlaceholder()) return;
    lstrcpynW(tip.pszText, content_->Tip(tip.iItem).c_str(), tip.cchTextMax);
}

// What is typed over the list looks for the entry that begins with it.
LRESULT VirtualList::Find(const NMLVFINDITEMW& wanted) const {
    constexpr UINT kByText = LVFI_STRING | LVFI_PARTIAL;
    if ((wanted.lvfi.flags & kByText) == 0) return -1;
    return FindEntry(*content_, wanted.lvfi.psz, wanted.iStart);
}

// --- Drawing ---

LRESULT VirtualList::Draw(const NMLVCUSTOMDRAW& draw) const {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT:
            return CDRF_NOTIFYITEMDRAW;
        case CDDS_ITEMPREPAINT:
            DrawEntry(draw.nmcd.hdc, static_cast<int>(draw.nmcd.dwItemSpec),
                      (draw.nmcd.uItemState & CDIS_FOCUS) != 0);
            return CDRF_SKIPDEFAULT;
        default:
            return CDRF_DODEFAULT;
    }
}

// A disabled list looks as it did: it is disabled for the moment of a load, and would blink.
void VirtualList::DrawEntry(HDC context, int index, bool isFocused) const {
    if (index >= Count()) return;
    RECT area{};
    area.left = LVIR_BOUNDS;
    Send(LVM_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&area));
    PaintEntry(context, area,
               {.dpi = Metrics(Handle()).Dpi(),
                .font = reinterpret_cast<HFONT>(Send(WM_GETFONT)),
                .text = Item(index),
                .isDimmed = IsPlaceholder(),
                .isInView = index == content_->Cursor(),
                .isChosen = content_->IsChosen(index),
                .isFocused = isFocused && HasFocus()});
}

}  // namespace tessary
