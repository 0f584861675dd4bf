// Where the control bar stands, whether it is folded up, and what of that is kept between runs.
#include <algorithm>
#include <initializer_list>

#include "app/base/error.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "ui/control/frmControl.h"
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

void frmControl::ReadPlace() {
    const auto setting = [](const wchar_t* key, int32_t other) {
        return Trapped(other,
                       [&] { return ToInt32(GetSetting(kSection, key, ToSettingText(other))); });
    };
    const bool rollUp = Trapped(
        false, [] { return ToBoolean(GetSetting(kSection, L"ControlBarRollUP", L"False")); });
    SetWindowPos(Handle(), nullptr, 0, 0, Metrics(Handle()).Scale(kWidth), 0,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    rollUp ? RollUp() : RollDown();

    RECT main{};
    GetWindowRect(window_.Handle(), &main);
    RECT bar{};
    GetWindowRect(Handle(), &bar);
    const bool isNew = Trapped(true, [] { return GetSetting(kSection, L"ControlBar_X").empty(); });
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
    SetWindowPos(Handle(), nullptr, ToPixels(x), ToPixels(y), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    // The first time the bar takes the place where the main window's menu would be.
    if (isNew) window_.MakeRoomAbove(Metrics(Handle()).Scale(kUnfoldedHeight + kGap));
}

RECT frmControl::Frame() const {
    RECT frame{};
    GetWindowRect(Handle(), &frame);
    return frame;
}

void frmControl::SavePlace() {
    if (Handle() == nullptr) return;
    RECT bar = Frame();
    OffsetRect(&bar, -movedBy_.x, -movedBy_.y);
    const auto save = [&](const wchar_t* key, const std::wstring& text) {
        Trapped([&] { SaveSetting(kSection, key, text); });
    };
    save(L"ControlBarRollUP", ToSettingText(isRollUp_));
    save(L"ControlBar_X", ToSettingText(int32_t{ToTwips(bar.left)}));
    save(L"ControlBar_Y", ToSettingText(int32_t{ToTwips(bar.top)}));
}

void frmControl::SetHeight(int pixelsAt96Dpi) {
    RECT bar{};
    GetWindowRect(Handle(), &bar);
    SetWindowPos(Handle(), nullptr, 0, 0, bar.right - bar.left,
                 Metrics(Handle()).Scale(pixelsAt96Dpi),
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void frmControl::RollUp() {
    SetHeight(kFoldedHeight);
    SetImage(BarButton::kFold, ToolbarImage::kUnfold);
    isRollUp_ = true;
    ShowFoldedOrNot();
}

void frmControl::RollDown() {
    SetHeight(kUnfoldedHeight);
    SetImage(BarButton::kFold, ToolbarImage::kFold);
    isRollUp_ = false;
    ShowFoldedOrNot();
}

void frmControl::SetRollUp(bool rollUp) {
    if (deletePanelOpen_) return;
    rollUp ? RollUp() : RollDown();
}

// What lies outside the window must not take the focus either.
void frmControl::ShowFoldedOrNot() {
    const bool unfolded = deletePanelOpen_ || !isRollUp_;
    if (IsChild(Handle(), GetFocus())) lastFocus_ = GetFocus();
    for (Control* const control :
         std::initializer_list<Control*>{&textFileInfo_, &listFileName_, &listArchiveFile_}) {
        control->SetVisible(unfolded);
    }
    for (Control* const control : std::initializer_list<Control*>{
             &listDelete_, &cmdOK_, &cmdDelList_, &cmdCancel_, &lblMarks_}) {
        control->SetVisible(deletePanelOpen_);
    }
    if (GetFocus() == Handle()) FocusPart(lastFocus_);
}

bool frmControl::IsVisible() const {
    return Handle() != nullptr && IsWindowVisible(Handle());
}

void frmControl::SetVisible(bool visible) {
    if (visible && !Load(window_.Handle())) return;
    if (visible) MoveOntoScreen();
    // Behind the full screen the main window stands elsewhere than when the panel opened.
    if (visible && deletePanelOpen_) PlaceForPanel();
    // The main window keeps the focus when the bar appears, and gets it back when it goes.
    if (Handle() == nullptr) return;
    ShowWindow(Handle(), visible ? SW_SHOWNOACTIVATE : SW_HIDE);
    // With a minimised main window it waits, as what was shown before does.
    if (visible && IsIconic(window_.Handle())) ShowOwnedPopups(window_.Handle(), FALSE);
}

// The screen that the bar was on may be gone, or another now: the buttons must be in reach.
void frmControl::MoveOntoScreen() {
    const RECT bar = Frame();
    const SIZE size = SizeOf(bar);
    const SIZE buttons{size.cx, Metrics(Handle()).Scale(kFoldedHeight)};
    const LONG rowTop = bar.top + HeightAboveToolbar();
    const RECT row{bar.left, rowTop, bar.right, rowTop + buttons.cy};
    const RECT work = ScreenOf(row).rcWork;
    RECT seen{};
    IntersectRect(&seen, &row, &work);
    if (SizeOf(seen).cx >= buttons.cx / 4 && SizeOf(seen).cy >= buttons.cy / 2) return;
    const LONG left = std::max(std::min(bar.left, work.right - size.cx), work.left);
    const LONG top = std::max(std::min(bar.top, work.bottom - size.cy), work.top);
    SetWindowPos(Handle(), nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace tessary
