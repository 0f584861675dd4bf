// The control bar's toolbar: the player's buttons, display size, and what else it starts.
#include <algorithm>
#include <utility>

#include "app/settings/modValue.h"
#include "picture/show/modShowPicture.h"
#include "res/resource.h"
#include "ui/control/frmControl.h"
#include "ui/control/toolbar_images.h"
#include "ui/control/toolbar_items.h"
#include "ui/form/activity.h"
#include "ui/form/menu.h"

namespace tessary {
namespace {

// Whether the button is of no use while the list is being filled, or the program works at something
// else than the pictures of the list.
bool IsOfPlayerGroup(BarButton button) {
    switch (button) {
        case BarButton::kStop:
        case BarButton::kDisplaySize:
        case BarButton::kFold:
        case BarButton::kCancelDelete:
        case BarButton::kPauseFrames:
            return false;
        default:
            return true;
    }
}

// Whether the button would pull the list away from under a running motion.
bool WaitsForTheEnd(BarButton button) {
    return button == BarButton::kOpen || button == BarButton::kSave ||
           button == BarButton::kDeleteList;
}

}  // namespace

void frmControl::CoolBar_ButtonClick(BarButton button) {
    toBottom_ = std::exchange(wantsBottom_, false);
    if (!IsUsable(button)) return;
    if (IsLoading() && BecomesWish(button)) return;
    const bool isStep = button == BarButton::kStepBack || button == BarButton::kStepForward;
    if (isStep && StepsWait()) return WishStep(button == BarButton::kStepBack ? -1 : 1);
    switch (button) {
        case BarButton::kRewind:
        case BarButton::kReversePlay:
        case BarButton::kPlay:
        case BarButton::kFastForward:
            return StartMotion(button);
        case BarButton::kStepBack:
        case BarButton::kStepForward:
            return Step(button);
        case BarButton::kStop:
            return StopMotion();
        case BarButton::kDisplaySize:
            return SetDisplaySize(NextSizeMode());
        case BarButton::kOpen:
            window_.Commands().Run(menuFileOpen);
            return;
        case BarButton::kSave:
            window_.Commands().Run(menuFileSaveAs);
            return;
        case BarButton::kDeleteList:
            return AddToDeleteList();
        case BarButton::kFold:
            return SetRollUp(!IsRollUp());
        case BarButton::kCancelDelete:
            return deleteList_.PutAllBack();
        case BarButton::kPauseFrames:
            window_.Commands().Run(commandPauseFrames);
            return;
    }
}

// Whether the button has to wait for the end of a load.
bool frmControl::BecomesWish(BarButton button) {
    switch (button) {
        case BarButton::kStepBack:
            WishStep(-1);
            return true;
        case BarButton::kStepForward:
            WishStep(1);
            return true;
        case BarButton::kOpen:
            WishCommand(menuFileOpen);
            return true;
        case BarButton::kSave:
            WishCommand(menuFileSaveAs);
            return true;
        case BarButton::kDeleteList:
            WishMark();
            return true;
        default:
            return false;
    }
}

void frmControl::StartMotion(BarButton motion) {
    wishes_.steps = 0;  // its steps would end the motion
    wishes_.isMotion = IsLoading();
    ++starts_;
    player_.Start(motion);
    UpdateToolbar();
    if (motion != BarButton::kRewind || !sequence_.IsInArchive() || IsLoading()) return;
    FileSequence::MemberEntries& members = sequence_.Members();
    if (members.Cursor() > 0) members.Select(members.Cursor() - 1);
}

void frmControl::PauseMotion() {
    if (!player_.IsPlaying() && !player_.IsPaused()) return;
    player_.TogglePause();
    window_.ShowNote(player_.IsPaused() ? L"一時停止（Space で再開）" : L"再開");
    UpdateToolbar();
}

void frmControl::StepBackToBottom() {
    wantsBottom_ = true;
    CoolBar_ButtonClick(BarButton::kStepBack);
}

// A picture that is there in a moment is shown, when only the motion was to stop.
void frmControl::StopMotion() {
    ++stops_;
    wishes_.ForgetMoves();
    if (!player_.IsPlaying() || window_.IsReadingLong()) window_.StopReading();
    EndMotion();
}

// Where a fast motion ends the user waits for what it only passed.
void frmControl::EndMotion() {
    const bool wasFast = player_.IsFast();
    player_.Stop();
    UpdateToolbar();
    if (!wasFast || !passedBy_ || wishes_.Moves()) return;
    FileSequence::FileEntries& files = sequence_.Files();
    if (files.Cursor() < 0) files.SetCursor(files.IndexOf(shownPath_));
    wishes_.Click(true, true, false);
    WishIsThere();
}

void frmControl::Step(BarButton button) {
    player_.HaltTimer();
    StepAndStay(button == BarButton::kStepBack ? -1 : 1, sequence_.IsInArchive());
}

// Nothing moves while another window, a dialog or a message, has the program's attention, nor while
// a menu is open or a window being dragged: a load would take the messages that they wait for.
bool frmControl::MayStep() const {
    GUITHREADINFO state{};
    state.cbSize = sizeof(state);
    constexpr DWORD kInLoop =
        GUI_INMENUMODE | GUI_INMOVESIZE | GUI_POPUPMENUMODE | GUI_SYSTEMMENUMODE;
    if (GetGUIThreadInfo(GetCurrentThreadId(), &state) && (state.flags & kInLoop) != 0) {
        return false;
    }
    return formLoaded_ && busy_ == 0 && !IsReadUnderWay() && !CurrentActivity().quitRequested &&
           IsWindowEnabled(window_.Handle());
}

// What a click on the button leads to.
int frmControl::NextSizeMode() {
    const bool isAll = Values().general.sizeButton == kSizeButtonAll;
    const int last = isAll ? kLastSizeMode : kSizeModeScreen;
    const int mode = Values().fixSizeValue;
    return mode >= last ? int{kSizeModeOriginal} : mode + 1;
}

void frmControl::SetDisplaySize(int sizeMode) {
    Values().fixSizeValue = static_cast<int16_t>(sizeMode);
    ShowDisplaySizeImage();
    window_.FollowSizeMode();
}

void frmControl::SetImage(BarButton button, ToolbarImage image) {
    coolBar_.SetImage(static_cast<int>(button), static_cast<int>(image));
}

void frmControl::ShowDisplaySizeImage() {
    const int mode = std::clamp<int>(Values().fixSizeValue, kSizeModeOriginal, kLastSizeMode);
    SetImage(BarButton::kDisplaySize, SizeModeImage(mode));
}

// The menu drops down below the button; where the screen has no room, it rises above it.
void frmControl::CoolBar_ButtonDropDown(BarButton button, const RECT& place) {
    const int resource = button == BarButton::kDisplaySize ? menuDisplaySizeWindow
                         : button == BarButton::kOpen      ? menuOpenWindow
                                                           : menuSaveWindow;
    const UniqueMenu window = LoadMenuResource(resource);
    const HMENU popup = GetSubMenu(window.Get(), 0);
    window_.Commands().ShowState(popup);
    TPMPARAMS besides{sizeof(TPMPARAMS), place};
    const int chosen = TrackPopupMenuEx(popup, TPM_RETURNCMD | TPM_LEFTBUTTON | TPM_VERTICAL,
                                        place.left, place.bottom, Handle(), &besides);
    if (chosen != 0) window_.Commands().Run(chosen);
}

bool frmControl::IsUsable(BarButton button) const {
    if ((listsChange_ || (IsReadUnderWay() && !IsLoading())) && IsOfPlayerGroup(button))
        return false;
    if (player_.IsPlaying() && WaitsForTheEnd(button)) return false;
    switch (button) {
        case BarButton::kOpen:
            return window_.Commands().IsRegistered(menuFileOpen);
        case BarButton::kSave:
            // Not whether the command runs now: during a load the button would go grey twice.
            return window_.PictureShown() && window_.Commands().IsRegistered(menuFileSaveAs);
        case BarButton::kFold:
            return !place_.IsPanelOpen();
        case BarButton::kCancelDelete:
            return place_.IsPanelOpen();
        case BarButton::kPauseFrames:
            return window_.Frames().IsThere();
        default:
            return true;
    }
}

void frmControl::UpdateToolbar() {
    const bool stands = window_.Frames().IsThere() && window_.Frames().IsPaused();
    SetImage(BarButton::kPauseFrames,
             stands ? ToolbarImage::kPlayFrames : ToolbarImage::kPauseFrames);
    const bool isOn = player_.IsPlaying() || player_.IsPaused();
    for (const ToolbarItem& item : ControlBarItems()) {
        if (item.kind == ToolbarItem::Kind::kSeparator) continue;
        const auto button = static_cast<BarButton>(item.index);
        coolBar_.EnableButton(item.index, IsUsable(button));
        coolBar_.CheckButton(item.index, isOn && button == player_.PlayMode());
    }
}

}  // namespace tessary
