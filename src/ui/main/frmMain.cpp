#include "ui/main/frmMain.h"

#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "app/settings/settings.h"
#include "picture/current_picture.h"
#include "picture/show/picture_text.h"
#include "plugin/call_log.h"
#include "ui/form/activity.h"
#include "ui/form/clipboard.h"
#include "ui/form/menu.h"
#include "ui/form/message_loop.h"
#include "ui/form/screen.h"
#include "ui/form/session_hold.h"
#include "ui/keys/key_map.h"
#include "ui/main/appearance_commands.h"
#include "ui/main/window_placement.h"

namespace tessary {
namespace {

constexpr FormDesign kDesign{.className = L"TessaryMainWindow",
                             .caption = L"てっさりビューア",
                             .menu = menuMainWindow,
                             .icon = iconApplication};

// The buttons that the items of the control menu press.
constexpr BarButton kControlButtons[] = {BarButton::kRewind,      BarButton::kReversePlay,
                                         BarButton::kStop,        BarButton::kPlay,
                                         BarButton::kFastForward, BarButton::kFold};

}  // namespace

frmMain::frmMain(MainWindowServices services)
    : Form(kDesign),
      services_(std::move(services)),
      frames_(services_.frameReaders, [this] { pictureView_.Nudge(); },
              {.maySeeIt = [this] { return MaySeeFrames(); },
               .show = [this](PlayedFrame frame,
                              bool isInMotion) { ShowFrame(std::move(frame), isInMotion); },
               .stoppedMoving = [this] { stage_.Sharpen(); },
               .told = [this] { ShowScale(); },
               .changed =
                   [this] {
                       ShowScale();
                       if (pictureShownChanged_) pictureShownChanged_();
                   }}),
      accelerators_(
          ChosenAccelerators, [this] { return Handle(); },
          [this](const MSG& key) {
              const bool isButtons = (silence_.HasFocus() || hint_.HasFocus()) &&
                                     (key.wParam == VK_RETURN || key.wParam == VK_SPACE);
              return GetAncestor(key.hwnd, GA_ROOT) == Handle() && !isButtons &&
                     !info_.TakesKey(key.wParam) &&
                     !(controlBar_ != nullptr && controlBar_->Holds(key.hwnd));
          }) {
    RegisterCommands();
}

void frmMain::SetControlBar(ControlBar& controlBar) {
    controlBar_ = &controlBar;
    commands_.Register(menuViewControlBar,
                       {.run = [&controlBar] { controlBar.ShowForUser(!controlBar.IsVisible()); },
                        .checked = [&controlBar] { return controlBar.IsVisible(); },
                        .whileLoading = true});
    int item = menuControl_0;
    for (const BarButton button : kControlButtons) {
        // Stopping and folding load nothing.
        const bool harmless = button == BarButton::kStop || button == BarButton::kFold;
        commands_.Register(item++, {.run = [&controlBar, button] { controlBar.Press(button); },
                                    .enabled = [this, harmless] { return harmless || MayPress(); },
                                    .whileLoading = true});
    }
    commands_.OnTooEarly([this] { return IsReading() && !CurrentActivity().quitRequested; },
                         [&controlBar](int id) { controlBar.WishCommand(id); });
}

void frmMain::RegisterCommands() {
    const auto pictureShown = [this] { return PictureShown(); };
    commands_.Register(menuFileExit, {.run = [this] { Unload(); }, .whileLoading = true});
    commands_.Register(menuEditClear,
                       {.run = [this] { menuEditClear_Click(); }, .enabled = pictureShown});
    for (int item = menuPopupGraphicInfo; item <= menuPopupColorDepth; ++item) {
        commands_.Register(item, {.run = [this, item] { menuPopup_Click(item); },
                                  .enabled = pictureShown,
                                  .whileLoading = true});
    }
    commands_.Register(commandOtherWindow,
                       {.run = [this] { GoToOtherWindow(); }, .whileLoading = true});
    RegisterStepCommands();
    RegisterViewCommands();
    RegisterBackdropCommands();
    RegisterFrameCommands();
    RegisterFullScreenCommands();
    RegisterAppearanceCommands(commands_);
}

void frmMain::Form_Load() {
    CreateControls();
    PlaceWindow();
    AcceptDroppedFiles();
    OpenCommandLine();
    hook_.Install(Handle(), [this](UINT message, WPARAM wParam, LPARAM lParam) {
        return OnSystemMessage(message, wParam, lParam);
    });
    ShowPluginCount();
    SetPanelText(kShownFilePanel, L"");
    info_.SetOpen(Values().general.showInfo != 0);
    commands_.ShowState(GetMenu(Handle()));
    FollowEmptiness();
}

void frmMain::CreateControls() {
    statusInformation_.Create(Handle());
    const auto changed = [this] { ArrangeParts(); };
    const auto left = [this](bool back) {
        if (back || controlBar_ == nullptr) return TakeFocus();
        controlBar_->TakeFocus(BarFocus::kFirst);
    };
    silence_.Create(Handle(), changed, left);
    info_.Create(Handle(), changed, left);
    CreatePictureView();
    CreateHint();
}

// Where it was left, else half the screen's width and height, in the middle of what the taskbar
// leaves.
void frmMain::PlaceWindow() {
    if (const std::optional<MainPlacement> kept = ReadMainPlacement()) {
        startsMaximized_ = kept->maximized;
        // Its screen's resolution is known when the window is there, and has it scale itself on its
        // way.
        for (int pass = 0; pass < 2; ++pass) {
            WINDOWPLACEMENT placement{};
            placement.length = sizeof(placement);
            placement.rcNormalPosition = PlaceOnScreens(*kept, Metrics(Handle()).Dpi());
            placement.showCmd = SW_HIDE;
            SetWindowPlacement(Handle(), &placement);
        }
        return;
    }
    const int width = GetSystemMetrics(SM_CXSCREEN) / 2;
    const int height = GetSystemMetrics(SM_CYSCREEN) / 2;
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    SetWindowPos(Handle(), nullptr, (work.left + work.right - width) / 2,
                 (work.top + work.bottom - height) / 2, width, height,
                 SWP_NOZORDER | SWP_NOACTIVATE);
}

void frmMain::Show() {
    WINDOWPLACEMENT placement{};
    placement.length = sizeof(placement);
    GetWindowPlacement(Handle(), &placement);
    placement.flags = startsMaximized_ ? WPF_RESTORETOMAXIMIZED : 0;
    placement.showCmd = startsMaximized_ ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL;
    switch (services_.showCommand) {
        case SW_SHOWMAXIMIZED:
        case SW_SHOWMINIMIZED:
        case SW_MINIMIZE:
        case SW_SHOWMINNOACTIVE:
            placement.showCmd = static_cast<UINT>(services_.showCommand);
            break;
        default:
            break;
    }
    // The system may put what the starter wants in place of the first command, and only of that.
    for (int pass = 0; pass < 2; ++pass)
        SetWindowPlacement(Handle(), &placement);
}

void frmMain::SavePlacement() const {
    SaveMainPlacement(fullScreen_.Placement(Handle()), fullScreen_.Dpi(Handle()));
}

void frmMain::MakeRoomAbove(int pixels) {
    RECT frame{};
    GetWindowRect(Handle(), &frame);
    const int room = static_cast<int>(ScreenOf(Handle()).rcWork.bottom - frame.bottom);
    SetWindowPos(Handle(), nullptr, frame.left,
                 frame.top + std::clamp(pixels, 0, std::max(room, 0)), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE frmMain::MinimumSize() const {
    return {320, 240};
}

std::optional<LRESULT> frmMain::OnSystemMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SETCURSOR:
            if (silence_.Holds(reinterpret_cast<HWND>(wParam)) ||
                info_.Holds(reinterpret_cast<HWND>(wParam)) ||
                hint_.Holds(reinterpret_cast<HWND>(wParam)) ||
                (controlBar_ != nullptr && controlBar_->Holds(reinterpret_cast<HWND>(wParam)))) {
                return std::nullopt;
            }
            // A disabled window is told HTERROR wherever the pointer is.
            if (!IsReadUnderWay() ||
                (LOWORD(lParam) != HTCLIENT && LOWORD(lParam) != static_cast<WORD>(HTERROR))) {
                return std::nullopt;
            }
            SetCursor(LoadCursorW(nullptr, IDC_WAIT));
            return TRUE;
        case kOpenFilesMessage:
            // The end of a Reading posts it again.
            if (!IsReading()) OpenNow(std::exchange(filesToOpen_, {}));
            FollowEmptiness();
            return 0;
        case kHintMessage:
            ShowHintOrNot();
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE) {
                backToBar_ = controlBar_ != nullptr && controlBar_->NoteFocus();
            } else {
                hint_.Refresh();  // a dialog, or another copy, may have forgotten something
            }
            return std::nullopt;
        case WM_SYSCOLORCHANGE:
            hint_.Refresh();
            return std::nullopt;
        case WM_SETFOCUS:  // the keys are the picture's
            TakeFocusBack();
            return 0;
        case WM_SYSCOMMAND:
            // Which of the two the system asks depends on who is active.
            if ((wParam & 0xFFF0) == SC_SCREENSAVE && controlBar_ != nullptr &&
                controlBar_->IsPlaying()) {
                return 0;
            }
            // The control bar sends the keys for the menu here.
            if ((wParam & 0xFFF0) == SC_KEYMENU && GetActiveWindow() != Handle()) TakeFocus();
            return std::nullopt;
        case WM_WINDOWPOSCHANGING:
            fullScreen_.Keep(Handle(), *reinterpret_cast<WINDOWPOS*>(lParam));
            return std::nullopt;
        case WM_SIZE:
            // The control bar may have come up meanwhile; some systems show nobody's pop-ups.
            if (wParam != SIZE_MINIMIZED) ShowOwnedPopups(Handle(), TRUE);
            return std::nullopt;
        case WM_MOVE:
            stage_.MonitorMayHaveChanged();
            return std::nullopt;
        case WM_DISPLAYCHANGE:
            stage_.ForgetColors();
            ScreenChanged();
            return std::nullopt;
        case WM_SETTINGCHANGE:
            stage_.ForgetColors();
            return std::nullopt;
        case WM_QUERYENDSESSION:
            return !IsSessionHeld(Handle());  // a load does not keep the user from logging off
        case WM_ENDSESSION:
            if (wParam != FALSE) EndSession();
            return 0;
        default:
            return std::nullopt;
    }
}

// The process ends when this returns.
void frmMain::EndSession() {
    ExcuseLastCall();
    if (!IsReadUnderWay()) {
        DestroyWindow(Handle());
        return;
    }
    // Plug-ins are at work below us and must stay; what the user has chosen is saved all the same.
    CurrentActivity().quitRequested = true;
    if (controlBar_ != nullptr) controlBar_->SavePlace();
    SavePlacement();
    WriteGeneralSettings();
    WriteConvertSettings();
}

void frmMain::Form_QueryUnload(bool& cancel) {
    if (!IsReadUnderWay()) {
        CurrentActivity().quitRequested = false;  // the user is asked anew, and may stay
        cancel = controlBar_ != nullptr && !controlBar_->MayClose();
        // Who asked once more while files were being deleted got no other answer.
        if (cancel) CurrentActivity().quitRequested = false;
        return;
    }
    cancel = true;
    if (!refusesToClose_ || !refusesToClose_()) CurrentActivity().quitRequested = true;
}

void frmMain::CloseIfAsked() const {
    if (CurrentActivity().quitRequested && !IsReadUnderWay())
        PostMessageW(Handle(), WM_CLOSE, 0, 0);
}

void frmMain::Form_Unload() {
    barPeek_.End();
    if (controlBar_ != nullptr) controlBar_->Unload();
    SavePlacement();
    restingPointer_.Stop();
    info_.Stop();
    fullScreen_ = {};
    ClearPicture();
    frames_.End();
    windowDrop_.Revoke();
    viewDrop_.Revoke();
    hook_.Restore();
}

void frmMain::Form_Terminate() {
    SetCurrentPicture({});
    if (services_.endProgram) services_.endProgram();
}

std::wstring frmMain::PluginCountText() const {
    const int count = services_.pluginCount ? services_.pluginCount() : 0;
    return std::to_wstring(count) + L"個のプラグイン";
}

void frmMain::ShowPluginCount() {
    SetPanelText(kPluginCountPanel, PluginCountText());
}

void frmMain::SetPictureSource(PictureSource source) {
    source_ = std::move(source);
    sourceStamp_ = source_.path.empty() ? std::nullopt : StampOf(source_.path);
    ShowPluginCount();
    ShowScale();
    if (sourceTold_) sourceTold_();
}

void frmMain::TellPlace(const std::wstring& place) {
    if (std::exchange(place_, place) == place) return;
    ShowTitle();
    // Nobody steps through a show.
    if (controlBar_ == nullptr || !controlBar_->IsPlaying()) NotePlace();
}

void frmMain::ShowTitle() const {
    std::wstring title = kDesign.caption;
    if (!place_.empty() && Values().general.plainTitle == 0) title = place_ + L" — " + title;
    // Setting it paints the frame.
    std::wstring former(static_cast<size_t>(GetWindowTextLengthW(Handle())) + 1, L'\0');
    former.resize(static_cast<size_t>(
        GetWindowTextW(Handle(), former.data(), static_cast<int>(former.size()))));
    if (former != title) SetWindowTextW(Handle(), title.c_str());
}

std::wstring frmMain::ShownFile() const {
    const bool isWhole = PictureShown() && !source_.isSpread && source_.page <= 1 &&
                         orientation_ == exif::kUpright &&
                         FileNameOf(source_.path) == source_.fileName && sourceStamp_ &&
                         StampOf(source_.path) == sourceStamp_;
    return isWhole ? source_.path : std::wstring();
}

void frmMain::menuEditClear_Click() {
    SetCurrentPicture({});
    ClearPicture();
    SetPanelText(kPluginCountPanel, L"");
    ShowForeignPicture({});
}

void frmMain::ShowForeignPicture(const std::wstring& info) {
    const std::wstring size = info.empty() ? std::wstring() : PictureInfoTail() + L' ';
    SetPanelText(kShownFilePanel, std::wstring(TrimSpaces(size + PluginCountText())));
    if (controlBar_ != nullptr) controlBar_->PictureReplaced(info);
}

void frmMain::menuPopup_Click(int item) {
    if (!CurrentPicture()) return;
    CopyTextToClipboard(Handle(), PicturePopupCopyText(item, source_, CurrentPicture()));
}

}  // namespace tessary
