#include "ui/main/start_hint.h"

#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "places/place_memory.h"
#include "res/resource.h"
#include "ui/form/appearance.h"
#include "ui/form/picture_box.h"
#include "ui/form/view_text.h"
#include "ui/keys/key_map.h"

namespace tessary {
namespace {

constexpr wchar_t kDrop[] = L"ここに画像やフォルダをドロップ";
constexpr wchar_t kOpen[] = L" で開く";
constexpr wchar_t kOpenByMenu[] = L"「ファイル」メニューで開く";
constexpr wchar_t kRecent[] = L"最近使ったもの";

// Pixels at 96 dpi.
constexpr int kWidth = 420;
constexpr int kMargin = 12;
constexpr int kGap = 18;     // above the files
constexpr int kPadding = 4;  // above and below a line's text, and beside it

constexpr int kHeadPercent = 150;  // the first line's size

// By the key that the user has for it.
std::wstring OpenText() {
    const KeyMap& keys = ChosenKeys();
    const auto found = keys.find(menuFileOpen);
    if (found == keys.end() || found->second.empty()) return kOpenByMenu;
    return NameOf(found->second.front()) + kOpen;
}

UniqueFont Enlarged(HFONT font, int percent) {
    LOGFONTW design{};
    GetObjectW(font, sizeof(design), &design);
    design.lfHeight = MulDiv(design.lfHeight, percent, 100);
    return UniqueFont(CreateFontIndirectW(&design));
}

}  // namespace

// --- A file ---

bool HintLink::Create(HWND parent, std::function<Look()> look) {
    look_ = std::move(look);
    return CreateChild(parent, L"BUTTON", WS_TABSTOP | BS_OWNERDRAW);
}

void HintLink::OnCommand(WORD notification, WORD /*id*/) {
    if (notification == BN_CLICKED && click_) click_();
}

std::optional<LRESULT> HintLink::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETCURSOR:
            SetCursor(LoadCursorW(nullptr, IDC_HAND));
            return TRUE;
        case WM_ERASEBKGND:
            return 1;
        case WM_MOUSEMOVE:
            if (!std::exchange(isHot_, true)) {
                TRACKMOUSEEVENT leave{sizeof(leave), TME_LEAVE, Handle(), 0};
                TrackMouseEvent(&leave);
                InvalidateRect(Handle(), nullptr, FALSE);
            }
            break;
        case WM_MOUSELEAVE:
            isHot_ = false;
            InvalidateRect(Handle(), nullptr, FALSE);
            break;
        default:
            break;
    }
    return Control::OnOwnMessage(message, wParam, lParam);
}

// The name counts: a path that is too long loses the middle.
void HintLink::OnDrawItem(const DRAWITEMSTRUCT& item) {
    const Look look = look_();
    const Metrics metrics(Handle());
    const HDC screen = item.hDC;
    RECT area = item.rcItem;
    LOGFONTW design{};
    GetObjectW(look.font, sizeof(design), &design);
    const bool isFocused = (item.itemState & ODS_FOCUS) != 0;
    design.lfUnderline = isHot_ ? TRUE : FALSE;
    const UniqueFont font(CreateFontIndirectW(&design));
    const HGDIOBJ former = SelectObject(screen, font.Get());
    // The system's dotted rectangle is not to be seen on a medium grey.
    SetBkColor(screen, isFocused ? ColorOf(COLOR_HIGHLIGHT) : look.ground);
    SetTextColor(screen, isFocused ? ColorOf(COLOR_HIGHLIGHTTEXT) : ReadableOn(look.ground));
    ExtTextOutW(screen, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    InflateRect(&area, -metrics.Scale(kPadding), 0);
    std::wstring text = Text();
    DrawTextW(screen, text.data(), static_cast<int>(text.size()), &area,
              DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_PATH_ELLIPSIS);
    SelectObject(screen, former);
}

// --- All of it ---

bool StartHint::Create(HWND window, Events events) {
    events_ = std::move(events);
    if (!Window::Create({.className = L"TessaryStartHint",
                         .text = kDrop,
                         .style = WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS,
                         .extendedStyle = WS_EX_CONTROLPARENT,
                         .parent = window})) {
        return false;
    }
    for (size_t i = 0; i < kMostFiles; ++i) {
        links_[i].Create(Handle(), [this] {
            return HintLink::Look{font_.Get(), events_.ground()};
        });
        links_[i].OnClick([this, i] {
            if (i < files_.size()) events_.open(files_[i]);
        });
        links_[i].OnKeyDown(
            [this, i](int keyCode, int shift) { return OnLinkKey(i, keyCode, shift); });
    }
    ChangeMetrics();
    return true;
}

void StartHint::ChangeMetrics() {
    font_ = Metrics(Handle()).MessageFont();
    headFont_ = Enlarged(font_.Get(), kHeadPercent);
    Arrange();
}

void StartHint::SetOpen(bool isOpen) {
    if (std::exchange(isOpen_, isOpen) == isOpen) return;
    if (isOpen) {
        Refresh();
        Arrange();
    } else if (HasFocus()) {
        events_.leave(true);
    }
    ShowWindow(Handle(), isOpen ? SW_SHOWNA : SW_HIDE);
}

void StartHint::Refresh() {
    if (!isOpen_) return;
    std::vector<std::wstring> files = IsRemembering() ? RecentPaths() : std::vector<std::wstring>();
    if (files.size() > kMostFiles) files.resize(kMostFiles);
    if (files != files_) {
        files_ = std::move(files);
        for (size_t i = 0; i < files_.size(); ++i)
            links_[i].SetText(files_[i]);
        Arrange();
    }
    InvalidateRect(Handle(), nullptr, TRUE);
    for (HintLink& link : links_)
        InvalidateRect(link.Handle(), nullptr, FALSE);
}

int StartHint::LineHeight(HFONT font) const {
    return TextMeter(Handle(), font).LineHeight() + 2 * Metrics(Handle()).Scale(kPadding);
}

void StartHint::Layout(const RECT& view) {
    view_ = view;
    Arrange();
}

void StartHint::Arrange() {
    if (Handle() == nullptr || !isOpen_) return;
    const RECT& view = view_;
    const Metrics metrics(Handle());
    const int margin = metrics.Scale(kMargin);
    const int room = static_cast<int>(view.bottom - view.top) - 2 * margin;
    const int width =
        std::clamp<int>(view.right - view.left - 2 * margin, 0, metrics.Scale(kWidth));
    isHeadLarge_ = TextMeter(Handle(), headFont_.Get()).WidthOf(kDrop) <= width;
    const int line = LineHeight(font_.Get());
    const int head = LineHeight(HeadFont()) + line;
    const int list = head + metrics.Scale(kGap) + line;  // where the files begin
    shown_ = 0;
    while (shown_ < files_.size() && list + static_cast<int>(shown_ + 1) * line <= room)
        ++shown_;
    const int height = std::clamp(shown_ == 0 ? head : list + static_cast<int>(shown_) * line, 0,
                                  std::max(room, 0));
    SetWindowPos(Handle(), HWND_TOP, (view.left + view.right - width) / 2,
                 (view.top + view.bottom - height) / 2, width, height,
                 SWP_NOACTIVATE | SWP_NOCOPYBITS);
    for (size_t i = 0; i < kMostFiles; ++i) {
        if (i < shown_) links_[i].SetBounds(0, list + static_cast<int>(i) * line, width, line);
        links_[i].SetVisible(i < shown_);
    }
    InvalidateRect(Handle(), nullptr, TRUE);
}

bool StartHint::TakeFocus() const {
    if (!isOpen_ || shown_ == 0) return false;
    links_[0].SetFocus();
    return true;
}

bool StartHint::OnLinkKey(size_t link, int keyCode, int shift) {
    switch (keyCode) {
        case VK_UP:
        case VK_LEFT:
            if (link > 0) links_[link - 1].SetFocus();
            return true;
        case VK_DOWN:
        case VK_RIGHT:
            if (link + 1 < shown_) links_[link + 1].SetFocus();
            return true;
        case VK_RETURN:
            SendMessageW(links_[link].Handle(), BM_CLICK, 0, 0);
            return true;
        case VK_TAB:
            events_.leave((shift & kShiftMask) != 0);
            return true;
        default:
            return false;
    }
}

void StartHint::Paint(HDC screen) const {
    RECT area{};
    GetClientRect(Handle(), &area);
    const COLORREF ground = events_.ground();
    SetBkColor(screen, ground);
    SetTextColor(screen, ReadableOn(ground));
    ExtTextOutW(screen, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    const int line = LineHeight(font_.Get());
    const auto write = [&](const std::wstring& text, HFONT font, int height, UINT style) {
        RECT place{area.left, area.top, area.right, area.top + height};
        const HGDIOBJ former = SelectObject(screen, font);
        DrawTextW(screen, text.c_str(), -1, &place,
                  style | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
        SelectObject(screen, former);
        area.top += height;
    };
    write(kDrop, HeadFont(), LineHeight(HeadFont()), DT_CENTER);
    write(OpenText(), font_.Get(), line, DT_CENTER);
    if (shown_ == 0) return;
    const Metrics metrics(Handle());
    area.top += metrics.Scale(kGap);
    area.left += metrics.Scale(kPadding);
    const int top = area.top;
    write(kRecent, font_.Get(), line, DT_LEFT);
    const RECT under{0, top + line - 1, area.right, top + line};
    SetBkColor(screen, ReadableOn(ground));
    ExtTextOutW(screen, 0, 0, ETO_OPAQUE, &under, nullptr, 0, nullptr);
}

LRESULT StartHint::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto answer = Control::Reflect(message, wParam, lParam)) return *answer;
    switch (message) {
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT: {
            PAINTSTRUCT paint;
            Paint(BeginPaint(Handle(), &paint));
            EndPaint(Handle(), &paint);
            return 0;
        }
        case WM_PRINTCLIENT:
            Paint(reinterpret_cast<HDC>(wParam));
            return 0;
        case WM_CONTEXTMENU:
            events_.contextMenu(lParam);
            return 0;
        default:
            return Default(message, wParam, lParam);
    }
}

}  // namespace tessary
