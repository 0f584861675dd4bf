#include "ui/control/bar_place.h"

#include <algorithm>
#include <string>
#include <utility>

#include "app/base/error.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "ui/control/panel_place.h"
#include "ui/form/screen.h"

namespace tessary {
namespace {

constexpr wchar_t kSection[] = L"Window";

// Pixels at 96 dpi.
constexpr int kWidth = 480;
constexpr int kGap = 4;  // to the main window below

constexpr int kTwipsPerInch = 1440;

// Positions are kept in twips of the desktop: a screen of another resolution does not move them.
int ToTwips(int pixels) {
    return MulDiv(pixels, kTwipsPerInch, DesktopDpi());
}

int ToPixels(int twips) {
    return MulDiv(twips, DesktopDpi(), kTwipsPerInch);
}

}  // namespace

BarPlace::BarPlace(const Form& bar, frmMain& window, Changes changes)
    : bar_(bar), window_(window), changes_(std::move(changes)) {}

void BarPlace::Read(bool isDocked) {
    isPanelOpen_ = panelAbove_ = false;
    movedBy_ = {};
    afloat_.reset();
    isDocked_ = isDocked;
    const bool rollUp = Trapped(
        false, [] { return ToBoolean(GetSetting(kSection, L"ControlBarRollUP", L"False")); });
    if (isDocked_) return ApplyRollUp(rollUp);
    const HWND window = bar_.Handle();
    SetWindowPos(window, nullptr, 0, 0, Metrics(window).Scale(kWidth), 0,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ApplyRollUp(rollUp);
    const bool isNew = Trapped(true, [] { return GetSetting(kSection, L"ControlBar_X").empty(); });
    PlaceAfloat();
    // The first time the bar takes the place where the main window's menu would be.
    if (isNew) window_.MakeRoomAbove(Metrics(window).Scale(kUnfoldedHeight + kGap));
}

void BarPlace::PlaceAfloat() {
    const auto setting = [](const wchar_t* key, int32_t other) {
        return Trapped(other,
                       [&] { return ToInt32(GetSetting(kSection, key, ToSettingText(other))); });
    };
    const HWND window = bar_.Handle();
    RECT main{};
    GetWindowRect(window_.Handle(), &main);
    const RECT bar = Frame();
    const RECT screens = AllScreens();
    int x = std::max(setting(L"ControlBar_X", ToTwips(main.left)), ToTwips(screens.left));
    const int y = std::max(setting(L"ControlBar_Y", ToTwips(main.top)), ToTwips(screens.top));
    const int right = ToTwips(screens.right);
    const int bottom = ToTwips(screens.bottom);
    const int width = ToTwips(bar.right - bar.left);
    const int height = ToTwips(bar.bottom - bar.top);
    if (x + width > right) x = right - width;
    // A bar that reaches below the screen goes to the side, its Y stays.
    if (y + height > bottom) x = bottom - height;
    SetWindowPos(window, nullptr, ToPixels(x), ToPixels(y), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// --- Docked and afloat ---

POINT BarPlace::PlaceInTwips() const {
    RECT bar = Frame();
    OffsetRect(&bar, -movedBy_.x, -movedBy_.y);
    return {ToTwips(bar.left), ToTwips(bar.top)};
}

void BarPlace::Dock() {
    if (isDocked_) return;
    afloat_ = PlaceInTwips();
    isDocked_ = true;
    panelAbove_ = false;
    movedBy_ = {};
}

void BarPlace::Float(std::optional<POINT> at) {
    if (!isDocked_) return;
    isDocked_ = false;
    const HWND window = bar_.Handle();
    SetWindowPos(window, nullptr, 0, 0, Metrics(window).Scale(kWidth), 0,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    ApplyRollUp(isRollUp_);
    const bool isKept =
        Trapped(false, [] { return !GetSetting(kSection, L"ControlBar_X").empty(); });
    if (!at && afloat_) {
        at = POINT{ToPixels(afloat_->x), ToPixels(afloat_->y)};
    } else if (!at && !isKept) {
        at = POINT{};  // upon the picture: nothing else of the main window is hidden there
        ClientToScreen(window_.pictureView().Handle(), &*at);
    }
    if (at) {
        SetWindowPos(window, nullptr, at->x, at->y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    } else {
        PlaceAfloat();
    }
    if (isPanelOpen_) PlaceForPanel();
}

void BarPlace::Save() const {
    const auto save = [&](const wchar_t* key, const std::wstring& text) {
        Trapped([&] { SaveSetting(kSection, key, text); });
    };
    save(L"ControlBarRollUP", ToSettingText(isRollUp_));
    const std::optional<POINT> place = isDocked_ ? afloat_ : PlaceInTwips();
    if (!place) return;  // what is kept stays
    save(L"ControlBar_X", ToSettingText(int32_t{place->x}));
    save(L"ControlBar_Y", ToSettingText(int32_t{place->y}));
}

RECT BarPlace::Frame() const {
    RECT frame{};
    GetWindowRect(bar_.Handle(), &frame);
    return frame;
}

void BarPlace::SetHeight(int pixelsAt96Dpi) {
    if (isDocked_) return;
    const RECT bar = Frame();
    SetWindowPos(bar_.Handle(), nullptr, 0, 0, bar.right - bar.left,
                 Metrics(bar_.Handle()).Scale(pixelsAt96Dpi),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// --- Folding ---

void BarPlace::SetRollUp(bool rollUp) {
    if (!isPanelOpen_) ApplyRollUp(rollUp);
}

void BarPlace::ApplyRollUp(bool rollUp) {
    SetHeight(rollUp ? kFoldedHeight : kUnfoldedHeight);
    isRollUp_ = rollUp;
    changes_.folded();
}

// --- The delete panel ---

void BarPlace::OpenPanel() {
    if (!isPanelOpen_) PlaceForPanel();
    isPanelOpen_ = true;
    // It may reach over the main window now, which some window managers leave in front.
    if (!isDocked_) {
        SetWindowPos(bar_.Handle(), HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    }
    changes_.folded();
}

void BarPlace::ClosePanel() {
    isPanelOpen_ = panelAbove_ = false;
    ApplyRollUp(isRollUp_);
    if (isDocked_) return;
    const RECT frame = Frame();
    const POINT back = std::exchange(movedBy_, {});
    SetWindowPos(bar_.Handle(), nullptr, frame.left - back.x, frame.top - back.y, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    if (IsWindowVisible(bar_.Handle())) MoveOntoScreen();
}

// The panel's buttons must be within reach, and the main window's title and menu in sight.
void BarPlace::PlaceForPanel() {
    if (isDocked_) return;
    const Metrics metrics(bar_.Handle());
    const int height = metrics.Scale(kDeletePanelHeight);
    RECT title{};
    GetWindowRect(window_.Handle(), &title);
    POINT client{};
    ClientToScreen(window_.Handle(), &client);
    title.bottom = client.y;
    RECT bar = Frame();
    OffsetRect(&bar, -movedBy_.x, -movedBy_.y);  // where it was without the panel
    const PanelPlace place = PlacePanel(bar, height, height - metrics.Scale(kUnfoldedHeight),
                                        ScreenOf(bar_.Handle()).rcWork, title);
    panelAbove_ = place.above;
    movedBy_ = {place.frame.left - bar.left, place.frame.top - bar.top};
    SetWindowPos(bar_.Handle(), nullptr, place.frame.left, place.frame.top,
                 place.frame.right - place.frame.left, height, SWP_NOZORDER | SWP_NOACTIVATE);
    changes_.layout();  // the panel may only have changed sides
}

int BarPlace::HeightAboveToolbar() const {
    return panelAbove_ ? Metrics(bar_.Handle()).Scale(kDeletePanelHeight - kUnfoldedHeight) : 0;
}

// --- Within reach ---

void BarPlace::ComeIntoReach() {
    if (isDocked_) return;
    MoveOntoScreen();
    // Behind the full screen the main window stands elsewhere than when the panel opened.
    if (isPanelOpen_) PlaceForPanel();
}

// The screen that the bar was on may be gone, or another now: the buttons must be in reach.
void BarPlace::MoveOntoScreen() {
    const RECT bar = Frame();
    const SIZE size = SizeOf(bar);
    const SIZE buttons{size.cx, Metrics(bar_.Handle()).Scale(kFoldedHeight)};
    const LONG rowTop = bar.top + HeightAboveToolbar();
    const RECT row{bar.left, rowTop, bar.right, rowTop + buttons.cy};
    const RECT work = ScreenOf(row).rcWork;
    RECT seen{};
    IntersectRect(&seen, &row, &work);
    if (SizeOf(seen).cx >= buttons.cx / 4 && SizeOf(seen).cy >= buttons.cy / 2) return;
    const LONG left = std::max(std::min(bar.left, work.right - size.cx), work.left);
    const LONG top = std::max(std::min(bar.top, work.bottom - size.cy), work.top);
    SetWindowPos(bar_.Handle(), nullptr, left, top, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace tessary
