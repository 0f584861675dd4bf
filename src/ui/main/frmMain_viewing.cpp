// The picture in the main window: what the mouse and the keys do to it, and what is told of it.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

#include "app/settings/modValue.h"
#include "picture/current_picture.h"
#include "picture/show/picture_text.h"
#include "picture/view/picture_kernel.h"
#include "ui/form/activity.h"
#include "ui/form/busy_pointer.h"
#include "ui/form/menu.h"
#include "ui/form/screen.h"
#include "ui/main/frmMain.h"

namespace tessary {

void frmMain::CreatePictureView() {
    pictureView_.Create(
        Handle(),
        {.keyDown = [this](int keyCode, int shift) { pictureView_KeyDown(keyCode, shift); },
         .mouseDown = [this](int button, POINT at) { pictureView_MouseDown(button, at); },
         .doubleClick = [this](POINT at) { pictureView_DoubleClick(at); },
         .mouseMove = [this](POINT at, bool left) { pictureView_MouseMove(at, left); },
         .mouseUp = [this](int) { pictureView_MouseUp(); },
         .captureLost = [this] { stage_.EndDrag(); },
         .wheel = [this](int notches, int shift,
                         POINT at) { pictureView_Wheel(notches, shift, at); },
         .pinch =
             [this](double factor, POINT at) {
                 stage_.ZoomBy(factor, at);
                 ShowScale();
             },
         .scroll = [this](int bar, int code, int place) { stage_.Scroll(bar, code, place); },
         .sized = [this] { RoomChanged(); },
         .nudged =
             [this] {
                 stage_.ShowSharp();
                 frames_.ShowDue();
             },
         .paint = [this](HDC screen, const RECT& area) { return stage_.Paint(screen, area); },
         .contextMenu = [this](POINT onScreen) { pictureView_ContextMenu(onScreen); },
         .pointer = [this] { return pictureView_Pointer(); }});
    stage_.OnSeen([this] { frames_.Seen(stage_.SharpWish()); });
}

void frmMain::RegisterViewCommands() {
    const auto pictureShown = [this] { return PictureShown(); };
    const auto add = [&](int command, std::function<void()> change) {
        commands_.Register(command, {.run =
                                         [this, change = std::move(change)] {
                                             change();
                                             ShowScale();
                                         },
                                     .enabled = pictureShown,
                                     .whileLoading = true});
    };
    add(commandZoomIn, [this] { stage_.ZoomBySteps(1, {}); });
    add(commandZoomOut, [this] { stage_.ZoomBySteps(-1, {}); });
    add(commandToggleFit, [this] { stage_.ToggleFit({}); });
    for (const auto& [command, turn] : {std::pair{commandTurnRight, Turn::kRight},
                                        {commandTurnLeft, Turn::kLeft},
                                        {commandTurnHalf, Turn::kHalf},
                                        {commandMirror, Turn::kMirror},
                                        {commandFlip, Turn::kFlip}}) {
        commands_.Register(
            command, {.run = [this, turn = turn] { TurnPicture(turn); }, .enabled = pictureShown});
    }
    commands_.Register(commandShowInfo, {.run = [this] { ShowInfo(!info_.IsOpen()); },
                                         .checked = [this] { return info_.IsOpen(); },
                                         .whileLoading = true});
    commands_.Register(commandEnlargeSmall,
                       {.run =
                            [this] {
                                int16_t& enlarges = Values().general.enlargeSmall;
                                enlarges = enlarges == 0 ? 1 : 0;
                                FollowSizeMode();
                            },
                        .checked = [] { return Values().general.enlargeSmall != 0; },
                        .whileLoading = true});
}

void frmMain::RegisterBackdropCommands() {
    for (int16_t backdrop = 0; backdrop <= kLastBackdrop; ++backdrop) {
        commands_.Register(commandBackdrop_0 + backdrop,
                           {.run = [this, backdrop] { SetBackdrop(backdrop); },
                            .checked = [backdrop] { return Values().general.backdrop == backdrop; },
                            .whileLoading = true});
    }
    commands_.Register(commandBackdrop, {.run =
                                             [this] {
                                                 const int next = Values().general.backdrop + 1;
                                                 SetBackdrop(next > kLastBackdrop
                                                                 ? kBackdropSquares
                                                                 : static_cast<int16_t>(next));
                                             },
                                         .whileLoading = true});
}

void frmMain::SetBackdrop(int16_t backdrop) {
    Values().general.backdrop = backdrop;
    stage_.SetBackdrop(backdrop);
}

// The turned picture is the current one until another file is shown: so it is saved and copied.
void frmMain::TurnPicture(Turn turn) {
    if (!CurrentPicture()) return;
    const BusyPointer busy;
    Picture turned = TurnedPicture(CurrentPicture(), turn);
    if (!turned) return ShowNote(L"メモリが足りないため、画像の向きを変えられません。");
    turned.SetOrigin(CurrentPicture().Origin());
    SetCurrentPicture(std::move(turned), std::wstring(CurrentPictureDamage()));
    PutIntoView(CurrentPicture().Another(), {});
    orientation_ = exif::Composed(orientation_, OrientationOf(turn));
    frames_.Turned(orientation_);
}

void frmMain::RegisterFrameCommands() {
    constexpr int kToFirst = std::numeric_limits<int>::min();
    for (const auto& [command, step] : {std::pair{commandNextFrame, 1},
                                        {commandFormerFrame, -1},
                                        {commandFirstFrame, kToFirst}}) {
        commands_.Register(command, {.run = [this, step = step] { StepFrame(step); },
                                     .enabled =
                                         [this] {
                                             return frames_.IsThere() || (controlBar_ != nullptr &&
                                                                          controlBar_->HasPages());
                                         }});
    }
    commands_.Register(commandPauseFrames,
                       {.run = [this] { frames_.TogglePause(); },
                        .enabled = [this] { return frames_.IsThere(); },
                        .checked = [this] { return frames_.IsThere() && frames_.IsPaused(); }});
    commands_.Register(commandPlayAnimations,
                       {.run =
                            [this] {
                                int16_t& plays = Values().general.playAnimation;
                                plays = plays == 0 ? 1 : 0;
                                if (frames_.IsPaused() == (plays != 0)) frames_.TogglePause();
                            },
                        .checked = [] { return Values().general.playAnimation != 0; },
                        .whileLoading = true});
}

// Of an animation or among pages.
void frmMain::StepFrame(int frames) {
    if (!frames_.IsThere()) return controlBar_->StepPage(frames);
    frames < -1 ? frames_.GoToFirst() : frames_.Step(frames);
}

// A dialog is about the frame that is seen, and what is read is about to take its place.
bool frmMain::MaySeeFrames() const {
    return IsWindowVisible(Handle()) && !IsIconic(Handle()) && IsWindowEnabled(Handle()) &&
           !IsReadUnderWay();
}

// It is the picture that is saved and copied. What is seen for long enough becomes sharp later.
void frmMain::ShowFrame(PlayedFrame frame, bool isInMotion) {
    frame.picture.SetOrigin(CurrentPicture().Origin());
    // What is wrong with a frame is wrong with the file.
    const bool isFirstDamage = CurrentPictureDamage().empty() && !frame.damage.empty();
    SetCurrentPicture(std::move(frame.picture),
                      isFirstDamage ? frame.damage : std::wstring(CurrentPictureDamage()));
    if (isFirstDamage) {
        SetPanelText(kShownFilePanel, statusInformation_.PanelText(kShownFilePanel) + kDamagedMark);
        if (controlBar_ != nullptr) controlBar_->PictureIsDamaged();
        info_.PictureChanged();
    }
    stage_.ShowFrame(std::move(frame.pixels), std::move(frame.sharp));
    if (!isInMotion || frame.shown >= kBrief) stage_.Sharpen();
}

void frmMain::pictureView_Wheel(int notches, int shift, POINT at) {
    if ((shift & kCtrlMask) != 0) {
        stage_.ZoomBySteps(notches, at);
        return ShowScale();
    }
    for (; notches > 0; --notches)
        Step(BarButton::kStepBack);
    for (; notches < 0; ++notches)
        Step(BarButton::kStepForward);
}

void frmMain::pictureView_DoubleClick(POINT at) {
    const bool zooms = Values().general.doubleClick != kDoubleClickFullScreen;
    if (!zooms || !PictureShown()) {
        commands_.Run(commandFullScreen);
        return;
    }
    stage_.EndDrag();  // of the first click
    stage_.ToggleFit(at);
    ShowScale();
}

void frmMain::pictureView_KeyDown(int keyCode, int shift) {
    if (keyCode == VK_DOWN && hint_.TakeFocus()) return;
    if (TurnsPage(keyCode) || stage_.KeyDown(keyCode)) return;
    switch (keyCode) {
        case VK_RETURN:
            return Step((shift & kShiftMask) != 0 ? BarButton::kStepBack : BarButton::kStepForward);
        case VK_TAB:
            if ((shift & kShiftMask) == 0 &&
                (silence_.MoveFocus(false) || hint_.TakeFocus() || info_.TakeFocus())) {
                return;
            }
            if (controlBar_ == nullptr) return;
            return controlBar_->TakeFocus((shift & kShiftMask) != 0 ? BarFocus::kLast
                                                                    : BarFocus::kFirst);
        default:
            return;
    }
}

// In an open book the keys lead where the pages lie, unless there is more to see on that side.
bool frmMain::TurnsPage(int keyCode) {
    const PageSide next = controlBar_ != nullptr ? controlBar_->NextPageSide() : PageSide::kNone;
    const bool isLeft = keyCode == VK_LEFT;
    if (next == PageSide::kNone || (!isLeft && keyCode != VK_RIGHT)) return false;
    if (stage_.Seen().Shown().cx > stage_.Seen().Area().cx) return false;
    Step((next == PageSide::kLeft) == isLeft ? BarButton::kStepForward : BarButton::kStepBack);
    return true;
}

void frmMain::pictureView_MouseDown(int button, POINT at) {
    if (button != kLeftButton) return;
    const bool follows = stage_.Seen().CanScroll() && (CurrentShiftState() & kCtrlMask) == 0;
    pressedAt_ = !follows && stage_.Covers(at) ? std::optional(at) : std::nullopt;
    stage_.BeginDrag(at);
}

void frmMain::pictureView_MouseMove(POINT at, bool leftButton) {
    restingPointer_.Seen(at);
    if (!leftButton) return pictureView_MouseUp();
    if (!pressedAt_) return stage_.DragTo(at);
    if (std::abs(at.x - pressedAt_->x) < GetSystemMetrics(SM_CXDRAG) &&
        std::abs(at.y - pressedAt_->y) < GetSystemMetrics(SM_CYDRAG)) {
        return;
    }
    pictureView_MouseUp();
    if (pictureDragged_) pictureDragged_();
}

void frmMain::pictureView_MouseUp() {
    pressedAt_.reset();
    stage_.EndDrag();
}

void frmMain::pictureView_ContextMenu(POINT onScreen) {
    restingPointer_.Wake();
    const UniqueMenu window = LoadMenuResource(menuPopupWindow);
    const HMENU popup = GetSubMenu(window.Get(), 0);
    const Picture* const picture = PictureShown() && CurrentPicture() ? &CurrentPicture() : nullptr;
    ForEachMenuCommand(popup, [&](int item) {
        SetMenuCaption(popup, item, AsMenuCaption(PicturePopupText(item, source_, picture)));
    });
    // The full screen has no other menu.
    AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
    const UniqueMenu bar = LoadMenuResource(menuMainWindow);
    for (const int command :
         {commandStepForward, commandStepBack, commandRename, commandDelete, commandAddToDeleteList,
          commandCopyPath, commandShowInFolder, commandShowInfo, commandFullScreen}) {
        AppendMenuW(popup, MF_STRING, command, MenuCaption(bar.Get(), command).c_str());
    }
    commands_.ShowState(popup);
    TrackPopupMenuEx(popup, TPM_RIGHTBUTTON, onScreen.x, onScreen.y, Handle(), nullptr);
}

const wchar_t* frmMain::pictureView_Pointer() const {
    if (restingPointer_.IsHidden()) return nullptr;
    if (IsReadUnderWay()) return IDC_WAIT;
    return stage_.Seen().CanScroll() ? IDC_HAND : IDC_ARROW;
}

// On the full screen all of the screen, and no scroll bars.
void frmMain::RoomChanged() {
    const MONITORINFO screen = ScreenOf(Handle());
    const bool isFull = fullScreen_.IsOn();
    stage_.RoomChanged(SizeOf(isFull ? screen.rcMonitor : screen.rcWork), !isFull);
    ShowScale();
}

SightRoom frmMain::Room() const {
    return stage_.Room();
}

void frmMain::FollowSizeMode() {
    stage_.SetRule(ChosenFitRule());
    ShowScale();
}

void frmMain::FollowLight() {
    stage_.SetLight(ChosenLight());
}

void frmMain::ShowScale() {
    const long percent = std::lround(stage_.Seen().Scale() * 100);
    std::wstring text =
        PictureShown() ? std::to_wstring(std::max(percent, 1L)) + L" %" : std::wstring();
    if (frames_.IsThere()) text += L"   " + frames_.Text();
    if (PictureShown() && source_.pages > 0) {
        text += L"   " + std::to_wstring(source_.page) + L" / " + std::to_wstring(source_.pages) +
                L" ページ";
    }
    if (statusInformation_.PanelText(kScalePanel) != text) SetPanelText(kScalePanel, text);
}

void frmMain::ShowInfo(bool on) {
    Values().general.showInfo = on ? 1 : 0;
    info_.SetOpen(on);
}

void frmMain::SetPicture(Picture picture, const Picture& prepared) {
    stage_.FollowRule(ChosenFitRule());
    stage_.KeepZoom(Values().general.keepZoom != 0 || keptPlace_);
    stage_.SetBackdrop(Values().general.backdrop);
    stage_.SetLight(ChosenLight());
    frames_.Set({});
    PutIntoView(std::move(picture), prepared);
    orientation_ = exif::kUpright;
    if (keptPlace_) stage_.MoveTo(*keptPlace_);
    if (!keptPlace_ && controlBar_ != nullptr && controlBar_->NextPageSide() == PageSide::kLeft) {
        stage_.ScrollToRight();
    }
    if (arrivesAtBottom_) stage_.ScrollToBottom();
}

void frmMain::ShowAnew(const std::wstring& path) {
    keptPlace_ = stage_.Seen().Position();
    const bool isShown = controlBar_ != nullptr && controlBar_->ShowAnew(path);
    keptPlace_.reset();
    if (isShown || source_.path != path) return;
    orientation_ = exif::kUpright;
    sourceStamp_ = StampOf(path);
}

void frmMain::ClearPicture() {
    source_ = {};
    sourceStamp_.reset();
    orientation_ = exif::kUpright;
    frames_.Set({});
    PutIntoView({}, {});
}

void frmMain::ShowReason(const std::wstring& reason) {
    ClearPicture();
    pictureView_.SetReason(reason);
    ShowPluginCount();
}

void frmMain::PutIntoView(Picture picture, const Picture& prepared) {
    const bool wasShown = PictureShown();
    stage_.SetPicture(std::move(picture), prepared);
    ShowScale();
    info_.PictureChanged();
    FollowEmptiness();
    if (PictureShown() != wasShown && pictureShownChanged_) pictureShownChanged_();
}

}  // namespace tessary
