#include "ui/form/picture_grid.h"

#include <commctrl.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "ui/form/appearance.h"
#include "ui/form/metrics.h"
#include "ui/form/window.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kPictureMargin = 5;  // around a picture
constexpr int kCellGap = 2;        // around that
constexpr int kLeastSide = 16;

std::wstring TextOf(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(
        static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

}  // namespace

PictureGrid::PictureGrid(HWND window, ListContent& content, const ListEvents& events,
                         bool choosesSeveral)
    : window_(window),
      content_(content),
      events_(events),
      choosesSeveral_(choosesSeveral),
      name_(TextOf(window)) {}

PictureGrid::~PictureGrid() {
    if (tips_ != nullptr) DestroyWindow(tips_);
}

const wchar_t* PictureGrid::Class() {
    static constexpr wchar_t kClass[] = L"TessaryPictureGrid";
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = ProgramInstance();
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClass;
    RegisterClassExW(&windowClass);  // fails harmlessly from the second window on
    return kClass;
}

void PictureGrid::SetLook(int side, bool hasNames) {
    sideAt96Dpi_ = side;
    hasNames_ = hasNames;
    side_ = Metrics(window_).Scale(side);
    LayOut();
}

void PictureGrid::SetPlaceholder(const std::wstring& text) {
    placeholder_ = text;
    InvalidateRect(window_, nullptr, FALSE);
}

// --- Layout ---

// What the user looks at stays where it is: the entry in view where it is in sight, else the first
// that is. The scroll bar's width is counted in only where there is one.
void PictureGrid::LayOut() {
    if (std::exchange(isLayingOut_, true)) return;
    const Metrics metrics(window_);
    RECT client{};
    GetClientRect(window_, &client);
    const bool hasBar = (GetWindowLongW(window_, GWL_STYLE) & WS_VSCROLL) != 0;
    const int bar = GetSystemMetrics(SM_CXVSCROLL);
    const int around = 2 * metrics.Scale(kPictureMargin + kCellGap);
    const int label = hasNames_ ? TextMeter(window_, font_).LineHeight() : 0;
    const int cursor = content_.Cursor();
    const RECT cell = layout_.Count() > 0 ? layout_.Cell(std::max(cursor, 0), scrolled_) : RECT{};
    const bool isInSight =
        cursor >= 0 && cursor < layout_.Count() && cell.bottom > 0 && cell.top < layout_.View().cy;
    const int stays = isInSight ? cursor : layout_.FirstIn(0, scrolled_);
    const int64_t place = layout_.Count() > 0 ? layout_.Cell(stays, scrolled_).top : 0;

    const auto layOutIn = [&](int width) {
        picture_.side = std::max(std::min(side_, width - around), kLeastSide);
        picture_.margin = metrics.Scale(kPictureMargin);
        picture_.label = label;
        layout_ =
            GridLayout(content_.Count(), {picture_.side + around, picture_.side + around + label},
                       {width, client.bottom});
    };
    const int whole = client.right + (hasBar ? bar : 0);
    layOutIn(whole);
    if (layout_.MostScrolled() > 0) layOutIn(std::max(whole - bar, 1));
    if (stays < layout_.Count()) {
        scrolled_ = layout_.Cell(stays, 0).top - place;
        if (isInSight) scrolled_ = layout_.ScrolledTo(stays, scrolled_);
    }
    scrolled_ = std::clamp<int64_t>(scrolled_, 0, layout_.MostScrolled());
    TellScrollBar();
    isLayingOut_ = false;
    InvalidateRect(window_, nullptr, FALSE);
}

// Pixels; in larger units where the system's numbers end.
int PictureGrid::Step() const {
    return static_cast<int>(layout_.Height() / std::numeric_limits<int>::max()) + 1;
}

void PictureGrid::TellScrollBar() {
    SCROLLINFO info{};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    info.nMax = static_cast<int>(std::max<int64_t>(layout_.Height() / Step() - 1, 0));
    info.nPage = static_cast<UINT>(std::max<int>(layout_.View().cy / Step(), 1));
    info.nPos = static_cast<int>(scrolled_ / Step());
    SetScrollInfo(window_, SB_VERT, &info, TRUE);
}

void PictureGrid::ScrollTo(int64_t place) {
    place = std::clamp<int64_t>(place, 0, layout_.MostScrolled());
    const int64_t away = scrolled_ - place;
    if (away == 0) return;
    scrolled_ = place;
    hot_ = -1;
    if (tips_ != nullptr) SendMessageW(tips_, TTM_POP, 0, 0);
    TellScrollBar();
    const bool isNear = away < layout_.View().cy && -away < layout_.View().cy;
    if (isNear) {
        ScrollWindowEx(window_, 0, static_cast<int>(away), nullptr, nullptr, nullptr, nullptr,
                       SW_INVALIDATE);
    } else {
        InvalidateRect(window_, nullptr, FALSE);
    }
}

// --- The content ---

void PictureGrid::Show(bool isCursorAnew) {
    if (content_.Count() != layout_.Count()) LayOut();
    const int cursor = content_.Cursor();
    if ((std::exchange(shownCursor_, cursor) != cursor || isCursorAnew) && cursor >= 0) {
        anchor_ = cursor;
        Focus(cursor);
    }
    focus_ = std::clamp(focus_, 0, std::max(layout_.Count() - 1, 0));
    anchor_ = std::clamp(anchor_, 0, std::max(layout_.Count() - 1, 0));
    InvalidateRect(window_, nullptr, FALSE);
}

void PictureGrid::ShowNews() {
    std::erase_if(coming_, [this](int index) {
        if (content_.PictureOf(index).state == EntryPicture::State::kComing) return false;
        InvalidateCell(index);
        return true;
    });
}

void PictureGrid::InvalidateCell(int index) const {
    if (index < 0 || index >= layout_.Count()) return;
    const RECT cell = layout_.Cell(index, scrolled_);
    InvalidateRect(window_, &cell, FALSE);
}

void PictureGrid::Focus(int index) {
    InvalidateCell(std::exchange(focus_, index));
    InvalidateCell(index);
    ScrollTo(layout_.ScrolledTo(index, scrolled_));
    TellFocus();
}

// For whoever has the screen read out: the window bears the name of its entry.
void PictureGrid::TellFocus() const {
    if (GetFocus() != window_) return;
    const std::wstring entry = content_.Text(focus_);
    SetWindowTextW(window_, entry.empty() ? name_.c_str() : (name_ + L": " + entry).c_str());
    NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, window_, OBJID_CLIENT, CHILDID_SELF);
}

// --- Messages ---

std::optional<LRESULT> PictureGrid::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCPAINT:
            DefWindowProcW(window_, message, wParam, lParam);
            PaintFrame();
            return 0;
        case WM_ERASEBKGND:
            return 1;  // painting covers everything
        case WM_PAINT:
            Paint();
            return 0;
        case WM_PRINTCLIENT:
            PaintArea(reinterpret_cast<HDC>(wParam), {0, 0, layout_.View().cx, layout_.View().cy});
            return 0;
        case WM_SIZE:
            LayOut();
            return 0;
        case WM_SETFONT:
            font_ = reinterpret_cast<HFONT>(wParam);
            SetLook(sideAt96Dpi_, hasNames_);
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(font_);
        case WM_SYSCOLORCHANGE:
        case WM_ENABLE:
            InvalidateRect(window_, nullptr, FALSE);
            return 0;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            InvalidateCell(focus_);
            TellFocus();
            return 0;
        default:
            return OnInput(message, wParam, lParam);
    }
}

// --- Painting ---

// As thin and light as around the system's lists.
void PictureGrid::PaintFrame() const {
    RECT frame{};
    GetWindowRect(window_, &frame);
    OffsetRect(&frame, -frame.left, -frame.top);
    const HDC context = GetWindowDC(window_);
    FrameRect(context, &frame, BrushOf(COLOR_BTNSHADOW));
    ReleaseDC(window_, context);
}

void PictureGrid::Paint() {
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(window_, &paint);
    const RECT& area = paint.rcPaint;
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    if (width > 0 && height > 0) {
        const UniqueMemoryDc memory(CreateCompatibleDC(screen));
        const UniqueBitmap bitmap(CreateCompatibleBitmap(screen, width, height));
        if (memory && bitmap) {
            const HGDIOBJ former = SelectObject(memory.Get(), bitmap.Get());
            SetViewportOrgEx(memory.Get(), -area.left, -area.top, nullptr);
            PaintArea(memory.Get(), area);
            BitBlt(screen, area.left, area.top, width, height, memory.Get(), area.left, area.top,
                   SRCCOPY);
            SelectObject(memory.Get(), former);
        } else {
            PaintArea(screen, area);
        }
    }
    EndPaint(window_, &paint);
    const int first = layout_.FirstIn(0, scrolled_);
    const int end = layout_.EndOf(layout_.View().cy, scrolled_);
    std::erase_if(coming_, [&](int index) { return index < first || index >= end; });
    content_.InSight(first, end - 1);
}

void PictureGrid::PaintArea(HDC context, const RECT& area) {
    FillRect(context, &area, BrushOf(COLOR_WINDOW));
    const int end = std::min(layout_.EndOf(area.bottom, scrolled_), content_.Count());
    for (int index = layout_.FirstIn(area.top, scrolled_); index < end; ++index)
        PaintCell(context, index);
    if (content_.Count() > 0 || placeholder_.empty()) return;
    const HGDIOBJ former = font_ != nullptr ? SelectObject(context, font_) : nullptr;
    RECT text{0, 0, layout_.View().cx, layout_.View().cy};
    const int margin = Metrics(window_).Scale(kPictureMargin);
    InflateRect(&text, -margin, -margin);
    SetTextColor(context, ColorOf(COLOR_GRAYTEXT));
    SetBkMode(context, TRANSPARENT);
    DrawTextW(context, placeholder_.c_str(), -1, &text, DT_CENTER | DT_NOPREFIX | DT_WORDBREAK);
    SetBkMode(context, OPAQUE);
    if (former != nullptr) SelectObject(context, former);
}

void PictureGrid::PaintCell(HDC context, int index) {
    const RECT cell = layout_.Cell(index, scrolled_);
    const EntryPicture picture = content_.PictureOf(index);
    if (picture.state == EntryPicture::State::kComing &&
        std::ranges::find(coming_, index) == coming_.end()) {
        coming_.push_back(index);
    }
    RECT area = cell;
    const int gap = Metrics(window_).Scale(kCellGap);
    InflateRect(&area, -gap, -gap);
    PaintPictureEntry(context, area, picture_,
                      {.dpi = Metrics(window_).Dpi(),
                       .font = font_,
                       .text = content_.Text(index),
                       .isInView = index == content_.Cursor(),
                       .isChosen = content_.IsChosen(index),
                       .isFocused = index == focus_ && GetFocus() == window_},
                      picture);
}

}  // namespace tessary
