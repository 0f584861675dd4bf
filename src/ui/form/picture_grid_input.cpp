// What the user does in a grid of small pictures, as lists of the system have it.
#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include "ui/form/picture_box.h"
#include "ui/form/picture_grid.h"

namespace tessary {
namespace {

constexpr DWORD kTypingPause = 1000;  // milliseconds, behind which another text begins
constexpr int kLinesOfRow = 3;        // of the wheel's

}  // namespace

std::optional<LRESULT> PictureGrid::OnInput(UINT message, WPARAM wParam, LPARAM lParam) {
    const POINT place{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    if (tips_ != nullptr && message >= WM_MOUSEFIRST && message <= WM_MBUTTONUP) {
        MSG relayed{window_, message, wParam, lParam, 0, {}};
        SendMessageW(tips_, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&relayed));
    }
    switch (message) {
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS | DLGC_WANTCHARS;
        case WM_KEYDOWN:
            if (KeyDown(static_cast<int>(wParam))) return 0;
            return std::nullopt;
        case WM_CHAR:
            Type(static_cast<wchar_t>(wParam));
            return 0;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
            Press(place, message == WM_RBUTTONDOWN);
            return 0;
        case WM_MOUSEMOVE:
            MovePointer(place);
            return 0;
        case WM_MOUSEWHEEL:
            if ((GET_KEYSTATE_WPARAM(wParam) & (MK_CONTROL | MK_SHIFT)) != 0) return std::nullopt;
            Turn(GET_WHEEL_DELTA_WPARAM(wParam));
            return 0;
        case WM_VSCROLL:
            ScrollByBar(LOWORD(wParam));
            return 0;
        case WM_CONTEXTMENU:
            AskForMenu(lParam);
            return 0;
        case WM_NOTIFY:
            GiveTip(*reinterpret_cast<NMHDR*>(lParam));
            return 0;
        default:
            return std::nullopt;
    }
}

// --- Choosing ---

bool PictureGrid::KeyDown(int key) {
    const int shift = CurrentShiftState();
    const int count = layout_.Count();
    if (count == 0 || (shift & kAltMask) != 0) return false;
    const bool hasCtrl = (shift & kCtrlMask) != 0;
    if (key == 'A' && shift == kCtrlMask && choosesSeveral_) {
        std::vector<int> all(static_cast<size_t>(count));
        std::iota(all.begin(), all.end(), 0);
        Choose(std::move(all));
        return true;
    }
    switch (key) {
        case VK_SPACE:
            if (!typed_.empty() && !hasCtrl) return false;
            Pick(focus_, shift);
            return true;
        case VK_LEFT:
        case VK_RIGHT:
        case VK_UP:
        case VK_DOWN:
        case VK_HOME:
        case VK_END:
        case VK_PRIOR:
        case VK_NEXT: {
            const int to = layout_.Moved(focus_, key);
            if (hasCtrl && (shift & kShiftMask) == 0 && choosesSeveral_) {
                Focus(to);
            } else {
                Pick(to, (shift & kShiftMask) != 0 ? shift : 0);
            }
            return true;
        }
        default:
            return false;
    }
}

// As the list of the system: one character again and again goes round those that begin with it.
void PictureGrid::Type(wchar_t character) {
    const DWORD now = GetTickCount();
    if (now - std::exchange(lastTyped_, now) > kTypingPause) typed_.clear();
    if (character < L' ' || (character == L' ' && typed_.empty())) return;
    typed_ += character;
    const bool isOneAgain = typed_.find_first_not_of(typed_.front()) == typed_.npos;
    const std::wstring text = isOneAgain ? typed_.substr(0, 1) : typed_;
    const int count = layout_.Count();
    if (count == 0) return;
    const int found = FindEntry(content_, text, isOneAgain ? (focus_ + 1) % count : focus_);
    if (found >= 0) Pick(found, 0);
}

void PictureGrid::Press(POINT place, bool isRight) {
    typed_.clear();
    ::SetFocus(window_);
    const int index = layout_.At(place, scrolled_);
    if (index < 0) {
        if (choosesSeveral_ && content_.ChosenCount() > 0 && events_.choose) events_.choose({});
    } else if (isRight && content_.ChosenCount() > 0 && IsSelected(index)) {
        Focus(index);
    } else {
        Pick(index, isRight ? 0 : CurrentShiftState());
    }
}

std::vector<int> PictureGrid::Selected() const {
    std::vector<int> selected;
    if (content_.ChosenCount() == 0) {
        if (content_.Cursor() >= 0) selected.push_back(content_.Cursor());
        return selected;
    }
    for (int i = 0; i < content_.Count(); ++i)
        if (content_.IsChosen(i)) selected.push_back(i);
    return selected;
}

bool PictureGrid::IsSelected(int index) const {
    return content_.ChosenCount() > 0 ? content_.IsChosen(index) : index == content_.Cursor();
}

// With Shift all from the anchor to here; with Ctrl beside what is chosen already.
void PictureGrid::Pick(int index, int shift) {
    const bool extends = choosesSeveral_ && (shift & kShiftMask) != 0;
    const bool adds = choosesSeveral_ && (shift & kCtrlMask) != 0;
    Focus(index);
    if (!extends) anchor_ = index;
    if (!extends && !adds) {
        if (events_.select) events_.select(index);
        return;
    }
    std::vector<int> chosen = adds ? Selected() : std::vector<int>();
    if (extends) {
        for (int i = std::min(anchor_, index); i <= std::max(anchor_, index); ++i)
            chosen.push_back(i);
    } else if (std::erase(chosen, index) == 0) {
        chosen.push_back(index);
    }
    std::ranges::sort(chosen);
    const auto [rest, end] = std::ranges::unique(chosen);
    chosen.erase(rest, end);
    Choose(std::move(chosen));
}

// One alone comes into view.
void PictureGrid::Choose(std::vector<int> indexes) {
    if (indexes.size() == 1 && indexes.front() == focus_) {
        if (events_.select) events_.select(focus_);
    } else if (events_.choose) {
        events_.choose(std::move(indexes));
    }
}

void PictureGrid::AskForMenu(LPARAM place) {
    if (!events_.menu) return;
    POINT at{GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (place == -1) {  // by a key
        at = {};
        if (layout_.Count() > 0) {
            ScrollTo(layout_.ScrolledTo(focus_, scrolled_));
            const RECT cell = layout_.Cell(focus_, scrolled_);
            at = {cell.left, std::clamp(cell.bottom, 0L, layout_.View().cy)};
        }
        ClientToScreen(window_, &at);
    }
    events_.menu(at);
}

// --- Scrolling ---

// A row for what is three lines elsewhere; by parts of it where the wheel turns finely.
void PictureGrid::Turn(int delta) {
    UINT lines = kLinesOfRow;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    const int page = std::max<int>(layout_.View().cy, 1);
    const int64_t notch =
        lines == WHEEL_PAGESCROLL
            ? page
            : std::min<int64_t>(int64_t{lines} * layout_.RowHeight() / kLinesOfRow, page);
    if ((delta < 0) != (wheelRest_ < 0)) wheelRest_ = 0;
    const int64_t turned = delta * notch + wheelRest_;
    wheelRest_ = static_cast<int>(turned % WHEEL_DELTA);
    ScrollTo(scrolled_ - turned / WHEEL_DELTA);
}

void PictureGrid::ScrollByBar(int code) {
    const int row = layout_.RowHeight();
    const int page = std::max<int>(layout_.View().cy - row / 2, row);
    switch (code) {
        case SB_LINEUP:
            return ScrollTo(scrolled_ - row / 2);
        case SB_LINEDOWN:
            return ScrollTo(scrolled_ + row / 2);
        case SB_PAGEUP:
            return ScrollTo(scrolled_ - page);
        case SB_PAGEDOWN:
            return ScrollTo(scrolled_ + page);
        case SB_TOP:
            return ScrollTo(0);
        case SB_BOTTOM:
            return ScrollTo(layout_.MostScrolled());
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: {
            SCROLLINFO info{};
            info.cbSize = sizeof(info);
            info.fMask = SIF_TRACKPOS;  // the message has room for 16 bits of it
            GetScrollInfo(window_, SB_VERT, &info);
            return ScrollTo(int64_t{info.nTrackPos} * Step());
        }
        default:
            return;
    }
}

// --- What is told of an entry ---

void PictureGrid::MovePointer(POINT place) {
    const int index = layout_.At(place, scrolled_);
    if (std::exchange(hot_, index) == index) return;
    if (tips_ == nullptr && index >= 0) {
        tips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr,
                                WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, window_,
                                nullptr, GetModuleHandleW(nullptr), nullptr);
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V2_SIZE;
        tool.hwnd = window_;
        tool.lpszText = LPSTR_TEXTCALLBACKW;
        SendMessageW(tips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
    if (tips_ == nullptr) return;
    SendMessageW(tips_, TTM_POP, 0, 0);
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V2_SIZE;
    tool.hwnd = window_;
    if (index >= 0) tool.rect = layout_.Cell(index, scrolled_);
    SendMessageW(tips_, TTM_NEWTOOLRECTW, 0, reinterpret_cast<LPARAM>(&tool));
}

void PictureGrid::GiveTip(NMHDR& header) {
    if (header.hwndFrom != tips_ || header.code != TTN_GETDISPINFOW || hot_ < 0) return;
    auto& tip = reinterpret_cast<NMTTDISPINFOW&>(header);
    tipText_ = content_.Tip(hot_);
    tip.lpszText = tipText_.data();
}

}  // namespace tessary
