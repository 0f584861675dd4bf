#include "ui/form/toolbar.h"

#include <windowsx.h>

#include <algorithm>

#include "app/base/raised_flag.h"
#include "ui/form/appearance.h"
#include "ui/form/dark_paint.h"
#include "ui/form/metrics.h"

namespace tessary {
namespace {

// In pixels at 96 dpi.
constexpr int kImageSize = 16;
constexpr int kButtonSize = 24;
constexpr int kSeparatorWidth = 8;

// Between an image and the edge of its button, in pixels of the screen. Some versions put images
// this far from the upper edge and not into the middle, so images come with their own margins.
constexpr int kImageMargin = 2;

bool IsDarkColor(COLORREF color) {
    return GetRValue(color) * 299 + GetGValue(color) * 587 + GetBValue(color) * 114 < 128 * 1000;
}

std::wstring ToolTipOf(const ToolbarItem& item) {
    return item.keys.empty() ? item.name : item.name + L" (" + item.keys + L")";
}

}  // namespace

bool Toolbar::Create(HWND parent, std::span<const ToolbarItem> items, const ToolbarImages& images,
                     int id) {
    const INITCOMMONCONTROLSEX controls{sizeof(controls), ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    images_ = images;
    states_.clear();
    for (const ToolbarItem& item : items)
        states_.push_back({.kind = item.kind,
                           .image = item.image,
                           .name = item.name,
                           .toolTip = ToolTipOf(item)});
    if (!CreateChild(parent, TOOLBARCLASSNAMEW,
                     WS_TABSTOP | CCS_NOPARENTALIGN | CCS_NORESIZE | CCS_NODIVIDER | TBSTYLE_FLAT |
                         TBSTYLE_TOOLTIPS,
                     0, id)) {
        return false;
    }
    Send(TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON));
    Send(TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_DRAWDDARROWS | TBSTYLE_EX_DOUBLEBUFFER);
    Send(TB_SETMAXTEXTROWS, 0);  // the texts are for screen readers
    // Also while another window is the active one, as the main window mostly is.
    SetWindowLongW(ToolTips(), GWL_STYLE, GetWindowLongW(ToolTips(), GWL_STYLE) | TTS_ALWAYSTIP);
    ChangeMetrics();
    return true;
}

void Toolbar::ChangeMetrics() {
    changesLater_ = isMenuOpen_;
    if (changesLater_) return;
    MakeImages();
    MakeButtons();
    if (TakeRows(wrapWidth_)) MakeButtons();
}

void Toolbar::MakeImages() {
    const Metrics metrics(Handle());
    const ImageLook look{.pixels = metrics.Scale(kImageSize),
                         .onDark = IsDarkColor(ColorOf(COLOR_BTNFACE))};
    const int cell = metrics.Scale(kButtonSize) - 2 * kImageMargin;
    std::vector<ArgbImage> images;
    for (int image = 1; image <= images_.count; ++image)
        images.push_back(Centred(images_.draw(image, look), cell));
    UniqueImageList normal = MakeImageList(images);
    for (ArgbImage& image : images)
        image = Greyed(std::move(image));
    UniqueImageList greyed = MakeImageList(images);
    Send(TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(normal.Get()));
    Send(TB_SETDISABLEDIMAGELIST, 0, reinterpret_cast<LPARAM>(greyed.Get()));
    normal_ = std::move(normal);
    greyed_ = std::move(greyed);
}

// Made anew for each resolution: some versions take a button size for buttons to come only.
void Toolbar::MakeButtons() {
    const Metrics metrics(Handle());
    while (Send(TB_DELETEBUTTON, 0) != 0) {
    }
    const int size = metrics.Scale(kButtonSize);
    Send(TB_SETPADDING, 0, MAKELPARAM(2 * kImageMargin, 2 * kImageMargin));
    Send(TB_SETBUTTONSIZE, 0, MAKELPARAM(size, size));
    std::vector<TBBUTTON> buttons;
    for (const State& state : states_) {
        TBBUTTON& button = buttons.emplace_back();
        button.idCommand = static_cast<int>(buttons.size());
        button.iString = -1;
        if (state.kind == ToolbarItem::Kind::kSeparator) {
            button.iBitmap = metrics.Scale(kSeparatorWidth);
            button.fsStyle = BTNS_SEP;
            button.fsState = SystemState(state);
            continue;
        }
        button.iBitmap = state.image - 1;
        button.fsStyle = state.kind == ToolbarItem::Kind::kDropDown ? BTNS_DROPDOWN : BTNS_BUTTON;
        button.fsState = SystemState(state);
        button.iString = reinterpret_cast<INT_PTR>(state.name.c_str());  // copied
    }
    Send(TB_ADDBUTTONSW, buttons.size(), reinterpret_cast<LPARAM>(buttons.data()));
    Send(TB_SETBUTTONSIZE, 0, MAKELPARAM(size, size));  // texts may have changed it
    for (size_t i = 0; i < states_.size(); ++i) {
        if (states_[i].kind != ToolbarItem::Kind::kDropDown) continue;
        const RECT place = ButtonRectangle(static_cast<int>(i) + 1);
        dropDownWidth_ = place.right - place.left;
    }
}

int Toolbar::WidthOf(const State& state) const {
    const Metrics metrics(Handle());
    switch (state.kind) {
        case ToolbarItem::Kind::kSeparator:
            return metrics.Scale(kSeparatorWidth);
        case ToolbarItem::Kind::kDropDown:
            return dropDownWidth_;
        case ToolbarItem::Kind::kButton:
            break;
    }
    return metrics.Scale(kButtonSize);
}

SIZE Toolbar::BreakRows(std::vector<State>& states, int width) const {
    for (State& state : states)
        state.endsRow = state.hidden = false;
    const size_t count = states.size();
    int widest = 0;
    int used = 0;
    int rows = 1;
    const auto endRow = [&](size_t last) {
        states[last].endsRow = true;
        used = 0;
        ++rows;
    };
    for (size_t i = 0; i < count;) {
        size_t end = i;  // of the buttons up to the next separator
        int group = 0;
        while (end < count && states[end].kind != ToolbarItem::Kind::kSeparator)
            group += WidthOf(states[end++]);
        if (width > 0 && i > 1 && used + group > width) {
            states[i - 1].hidden = true;
            endRow(i - 2);
        }
        for (; i < end; ++i) {
            const int own = WidthOf(states[i]);
            if (width > 0 && used > 0 && used + own > width) endRow(i - 1);
            used += own;
            widest = std::max(widest, used);
        }
        if (i < count) used += WidthOf(states[i++]);
    }
    const RECT first = ButtonRectangle(1);
    return {widest, rows * (first.bottom - first.top)};
}

// Whether that has changed anything.
bool Toolbar::TakeRows(int width) {
    std::vector<State> states = states_;
    BreakRows(states, width);
    const bool isSame = std::ranges::equal(states_, states, [](const State& was, const State& is) {
        return was.endsRow == is.endsRow && was.hidden == is.hidden;
    });
    states_ = std::move(states);
    return !isSame;
}

SIZE Toolbar::SizeIn(int width) const {
    std::vector<State> states = states_;
    return BreakRows(states, width);
}

void Toolbar::Wrap(int width) {
    wrapWidth_ = width;
    if (isMenuOpen_) {
        changesLater_ = true;
    } else if (TakeRows(width)) {
        MakeButtons();
    }
}

void Toolbar::EnableButton(int index, bool enabled) {
    if (std::exchange(StateOf(index).enabled, enabled) != enabled) ShowState(index);
}

void Toolbar::CheckButton(int index, bool checked) {
    if (std::exchange(StateOf(index).checked, checked) != checked) ShowState(index);
}

void Toolbar::SetImage(int index, int image) {
    if (std::exchange(StateOf(index).image, image) == image) return;
    Send(TB_CHANGEBITMAP, static_cast<WPARAM>(index), MAKELPARAM(image - 1, 0));
}

BYTE Toolbar::SystemState(const State& state) {
    return static_cast<BYTE>(
        (state.enabled ? TBSTATE_ENABLED : 0) | (state.checked ? TBSTATE_CHECKED : 0) |
        (state.endsRow ? TBSTATE_WRAP : 0) | (state.hidden ? TBSTATE_HIDDEN : 0));
}

void Toolbar::ShowState(int index) {
    Send(TB_SETSTATE, static_cast<WPARAM>(index), MAKELPARAM(SystemState(StateOf(index)), 0));
}

RECT Toolbar::ButtonRectangle(int index) const {
    RECT rectangle{};
    Send(TB_GETRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&rectangle));
    return rectangle;
}

bool Toolbar::IsPressable(int index) const {
    return StateOf(index).kind != ToolbarItem::Kind::kSeparator && StateOf(index).enabled;
}

// The handlers may change or destroy the toolbar, so they run as copies.
void Toolbar::Press(int index) const {
    const auto handler = button_;
    if (handler && IsPressable(index)) handler(index);
}

// The system works with the button until its handler has returned: none is made anew before.
void Toolbar::DropDown(int index) {
    if (StateOf(index).kind != ToolbarItem::Kind::kDropDown || !IsPressable(index)) return;
    RECT button = ButtonRectangle(index);
    MapWindowPoints(Handle(), nullptr, reinterpret_cast<POINT*>(&button), 2);
    const auto handler = dropDown_;
    SendMessageW(ToolTips(), TTM_POP, 0, 0);
    SendMessageW(ToolTips(), TTM_ACTIVATE, FALSE, 0);  // they would appear over the menu
    if (handler) {
        const RaisedFlag open(isMenuOpen_);
        handler(index, button);
    }
    if (Handle() == nullptr) return;
    SendMessageW(ToolTips(), TTM_ACTIVATE, TRUE, 0);
    if (changesLater_) PostMessageW(Handle(), WM_SYSCOLORCHANGE, 0, 0);
}

void Toolbar::OnCommand(WORD notification, WORD id) {
    if (notification == BN_CLICKED) Press(id);
}

std::optional<LRESULT> Toolbar::OnNotify(NMHDR& header) {
    switch (header.code) {
        case TBN_DROPDOWN:
            DropDown(reinterpret_cast<const NMTOOLBARW&>(header).iItem);
            return TBDDRET_DEFAULT;
        case TBN_GETINFOTIPW: {
            const auto& tip = reinterpret_cast<const NMTBGETINFOTIPW&>(header);
            lstrcpynW(tip.pszText, StateOf(tip.iItem).toolTip.c_str(), tip.cchTextMax);
            return 0;
        }
        case NM_CUSTOMDRAW:
            if (!IsDark()) return std::nullopt;
            return Draw(reinterpret_cast<const NMTBCUSTOMDRAW&>(header));
        default:
            return std::nullopt;
    }
}

// --- Dark ---

LRESULT Toolbar::Draw(const NMTBCUSTOMDRAW& draw) const {
    switch (draw.nmcd.dwDrawStage) {
        case CDDS_PREPAINT: {
            RECT area{};
            GetClientRect(Handle(), &area);
            Fill(draw.nmcd.hdc, area, kDark.face);
            return CDRF_NOTIFYITEMDRAW;
        }
        case CDDS_ITEMPREPAINT:
            DrawButton(draw);
            return CDRF_SKIPDEFAULT;
        default:
            return CDRF_DODEFAULT;
    }
}

// All of it: the system's arrow would be black.
void Toolbar::DrawButton(const NMTBCUSTOMDRAW& draw) const {
    const auto index = static_cast<int>(draw.nmcd.dwItemSpec);
    if (index < 1 || index > static_cast<int>(states_.size())) return;
    const State& state = states_[static_cast<size_t>(index) - 1];
    const HDC context = draw.nmcd.hdc;
    const RECT area = ButtonRectangle(index);
    const Metrics metrics(Handle());
    if (state.kind == ToolbarItem::Kind::kSeparator) {
        const LONG middle = (area.left + area.right) / 2;
        return Fill(context, {middle, area.top + 3, middle + 1, area.bottom - 3}, kDark.line);
    }
    const UINT now = draw.nmcd.uItemState;
    const bool isPressed = (now & CDIS_SELECTED) != 0;
    const bool isHot = (now & CDIS_HOT) != 0;
    if (state.enabled && (isPressed || isHot || state.checked)) {
        Fill(context, area, isPressed || state.checked ? kDark.pressed : kDark.hot);
        Frame(context, area, isHot ? kDark.accent : kDark.edge);
    }
    const int size = metrics.Scale(kButtonSize);
    const int cell = size - 2 * kImageMargin;
    ImageList_Draw((state.enabled ? normal_ : greyed_).Get(), state.image - 1, context,
                   area.left + (size - cell) / 2, (area.top + area.bottom - cell) / 2,
                   ILD_TRANSPARENT);
    if (state.kind != ToolbarItem::Kind::kDropDown) return;
    const LONG middle = (area.left + size + area.right) / 2;
    const int half = metrics.Scale(3);
    const LONG top = (area.top + area.bottom - half) / 2;
    const POINT arrow[] = {{middle - half, top}, {middle + half, top}, {middle, top + half}};
    FillShape(context, arrow, 3, state.enabled ? kDark.text : kDark.disabledText);
}

std::optional<LRESULT> Toolbar::OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (const auto answer = Control::OnOwnMessage(message, wParam, lParam)) return answer;
    switch (message) {
        case WM_ERASEBKGND: {
            RECT area{};
            GetClientRect(Handle(), &area);
            FillRect(reinterpret_cast<HDC>(wParam), &area, BrushOf(COLOR_BTNFACE));
            return TRUE;
        }
        case WM_SYSCOLORCHANGE:
            OwnDefault(message, wParam, lParam);
            ChangeMetrics();
            return 0;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            if (ButtonAt(lParam) != 0) return std::nullopt;
            if (const auto handler = backgroundPress_) handler();
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_SETFOCUS:
            OwnDefault(message, wParam, lParam);
            Send(TB_SETANCHORHIGHLIGHT, TRUE);
            MoveTo(current_, 1);
            return 0;
        case WM_KILLFOCUS:
            Send(TB_SETANCHORHIGHLIGHT, FALSE);
            Send(TB_SETHOTITEM, static_cast<WPARAM>(-1));
            return std::nullopt;
        case WM_KEYDOWN:
            if (Key(static_cast<int>(wParam))) return 0;
            return std::nullopt;
        case WM_SYSKEYDOWN:
            if (wParam != VK_DOWN) return std::nullopt;
            DropDown(current_);
            return 0;
        default:
            return std::nullopt;
    }
}

// 0 where there is none.
int Toolbar::ButtonAt(LPARAM position) const {
    POINT at{GET_X_LPARAM(position), GET_Y_LPARAM(position)};
    const LRESULT item = Send(TB_HITTEST, 0, reinterpret_cast<LPARAM>(&at));
    return item < 0 ? 0 : static_cast<int>(item) + 1;
}

bool Toolbar::Key(int keyCode) {
    switch (keyCode) {
        case VK_LEFT:
            MoveTo(current_ - 1, -1);
            return true;
        case VK_RIGHT:
            MoveTo(current_ + 1, 1);
            return true;
        case VK_HOME:
            MoveTo(1, 1);
            return true;
        case VK_END:
            MoveTo(static_cast<int>(states_.size()), -1);
            return true;
        case VK_SPACE:
        case VK_RETURN:
            Press(current_);
            return true;
        case VK_F4:
            DropDown(current_);
            return true;
        default:
            return false;
    }
}

// The first button from `index` on that can be pressed; the keyboard stays where it is if none can.
void Toolbar::MoveTo(int index, int direction) {
    const auto count = static_cast<int>(states_.size());
    while (index >= 1 && index <= count && !IsPressable(index))
        index += direction;
    if (index >= 1 && index <= count) current_ = index;
    Send(TB_SETHOTITEM, static_cast<WPARAM>(current_ - 1));
}

}  // namespace tessary
