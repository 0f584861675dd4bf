// The main window on the full screen, and the stepping keys.
#include "app/settings/modValue.h"
#include "ui/form/activity.h"
#include "ui/main/frmMain.h"

namespace tessary {

void frmMain::RegisterFullScreenCommands() {
    commands_.Register(commandFullScreen, {.run = [this] { SetFullScreen(!fullScreen_.IsOn()); },
                                           .checked = [this] { return fullScreen_.IsOn(); },
                                           .whileLoading = true});
    commands_.Register(commandEscape, {.run = [this] { Escape(); }, .whileLoading = true});
}

// One thing at a time, the nearest one first; with the full screen a show ends too. A read that
// does not stop keeps nobody on the full screen.
void frmMain::Escape() {
    if (silence_.IsAsking()) return silence_.Say(SilenceBar::Answer::kGiveUp);
    const bool playing =
        controlBar_ != nullptr && (controlBar_->IsPlaying() || controlBar_->IsPaused());
    const bool stopsRead = fullScreen_.IsOn() ? TakesStop() : IsReadUnderWay();
    if (playing || stopsRead) commands_.Run(menuControl_2);
    if (stopsRead && !playing) return;
    const bool inBar = controlBar_ != nullptr && controlBar_->TakesEscape();
    if (!playing && (inBar || hint_.HasFocus())) {
        TakeFocus();
    } else if (info_.IsOpen() && !playing) {
        ShowInfo(false);
    } else if (fullScreen_.IsOn()) {
        SetFullScreen(false);
    } else if (!playing && (controlBar_ == nullptr || !controlBar_->ForgetChosen())) {
        commands_.Run(commandCancelDelete);
    }
}

// The control bar is out of sight meanwhile, and comes back when it was there before.
void frmMain::SetFullScreen(bool on) {
    if (on == fullScreen_.IsOn() || IsIconic(Handle())) return;
    stage_.EndDrag();
    if (on) {
        barComesBack_ = controlBar_ != nullptr && controlBar_->IsVisible();
        if (barComesBack_) controlBar_->SetVisible(false);
    }
    ShowWindow(statusInformation_.Handle(), on ? SW_HIDE : SW_SHOWNA);
    pictureView_.SetBackground(on ? static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)) : nullptr);
    hint_.Refresh();
    if (on) {
        fullScreen_.Enter(Handle());
        restingPointer_.Start(pictureView_.Handle());
    } else {
        restingPointer_.Stop();
        barPeek_.End();
        fullScreen_.Leave(Handle());
        if (barComesBack_) controlBar_->SetVisible(true);
    }
    TakeFocus();
    RoomChanged();
    if (on) NotePlace();
}

// The full screen has no title. What else is being told is more than that.
void frmMain::NotePlace() {
    const std::wstring& note = pictureView_.Note();
    const bool isFree = note.empty() || note == placeNote_;
    if (!fullScreen_.IsOn() || Values().general.notePlace == 0 || !isFree) return;
    placeNote_ = place_;
    ShowNote(place_);
}

void frmMain::ScreenChanged() {
    if (fullScreen_.IsOn() && !IsIconic(Handle())) fullScreen_.Cover(Handle());
    RoomChanged();
}

void frmMain::RegisterStepCommands() {
    const auto hasFiles = [this] { return controlBar_ != nullptr && controlBar_->HasFiles(); };
    commands_.Register(commandStepForward, {.run = [this] { Step(BarButton::kStepForward); },
                                            .enabled = hasFiles,
                                            .whileLoading = true});
    commands_.Register(
        commandStepBack,
        {.run = [this] { Step(BarButton::kStepBack); }, .enabled = hasFiles, .whileLoading = true});
    for (const bool back : {false, true}) {
        commands_.Register(back ? commandReadBack : commandReadOn,
                           {.run = [this, back] { ReadOn(back); },
                            .enabled = [=, this] { return PictureShown() || hasFiles(); },
                            .whileLoading = true});
    }
    commands_.Register(
        commandPauseMotion,
        {.run = [this] { controlBar_->PauseMotion(); },
         .enabled =
             [this] {
                 return controlBar_ != nullptr &&
                        (controlBar_->IsPlaying() || controlBar_->IsPaused());
             },
         .checked = [this] { return controlBar_ != nullptr && controlBar_->IsPaused(); },
         .whileLoading = true});
}

// Down through a picture that is higher than the view, then to the next one; or the other way. A
// motion stands still, or goes on.
void frmMain::ReadOn(bool back) {
    if (commands_.Run(commandPauseMotion)) return;
    if (Values().general.spaceScrolls != 0 && stage_.ScrollPage(back)) return;
    if (!back) return Step(BarButton::kStepForward);
    if (controlBar_ != nullptr && MayPress()) controlBar_->StepBackToBottom();
}

bool frmMain::TakesSideButton(const MSG& message) {
    switch (message.message) {
        case WM_XBUTTONDOWN:
        case WM_XBUTTONDBLCLK:
            if (IsWindowEnabled(Handle())) {
                Step(HIWORD(message.wParam) == XBUTTON1 ? BarButton::kStepBack
                                                        : BarButton::kStepForward);
            }
            return true;
        case WM_XBUTTONUP:  // the system would make a command for other programs of it
            return true;
        default:
            return false;
    }
}

// While the control bar's pictures are read it takes note of what is pressed.
bool frmMain::MayPress() const {
    return (!IsReadUnderWay() || IsReading()) && !CurrentActivity().quitRequested;
}

void frmMain::Step(BarButton button) {
    if (controlBar_ != nullptr && MayPress()) controlBar_->Press(button);
}

}  // namespace tessary
