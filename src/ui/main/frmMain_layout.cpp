// How the main window's parts share its client area, and hand the keyboard to each other.
#include <utility>

#include "ui/form/activity.h"
#include "ui/form/metrics.h"
#include "ui/main/client_areas.h"
#include "ui/main/frmMain.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kLeastView = 160;
constexpr int kHotEdge = 2;

}  // namespace

void frmMain::ArrangeParts() {
    if (pictureView_.Handle() == nullptr || IsIconic(Handle())) return;
    const SIZE size = ClientSize();
    Form_Resize(size.cx, size.cy);
}

ClientAreas frmMain::Areas(SIZE client, DockSide side) {
    const int status = fullScreen_.IsOn() ? 0 : statusInformation_.Layout();
    return DivideClient(
        {.client = client,
         .status = status,
         .silence = silence_.Height(),
         .side = side,
         .bar = [this, side](SIZE room) { return controlBar_->DockedExtent(side, room); },
         .barCovers = fullScreen_.IsOn(),
         .info = info_.Width(),
         .leastView = Metrics(Handle()).Scale(kLeastView)});
}

void frmMain::Form_Resize(int width, int height) {
    if (pictureView_.Handle() == nullptr) return;
    const bool hasBar = controlBar_ != nullptr && controlBar_->IsVisible();
    const ClientAreas areas =
        Areas({width, height}, hasBar ? controlBar_->Side() : DockSide::kFloating);
    silence_.Layout(areas.silence);
    info_.Layout(areas.info);
    const RECT& view = areas.view;
    pictureView_.SetBounds(view.left, view.top, view.right - view.left, view.bottom - view.top);
    hint_.Layout(view);
    if (!IsRectEmpty(&areas.bar)) controlBar_->PlaceDocked(areas.bar);
    RoomChanged();
}

RECT frmMain::BarPlaceAt(DockSide side) {
    RECT place = Areas(ClientSize(), side).bar;
    MapWindowPoints(Handle(), nullptr, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// --- The docked bar on the full screen ---

bool frmMain::CallsBar(POINT onScreen) const {
    if (!fullScreen_.IsOn() || controlBar_ == nullptr || controlBar_->IsVisible()) return false;
    RECT area{};
    GetClientRect(Handle(), &area);
    MapWindowPoints(Handle(), nullptr, reinterpret_cast<POINT*>(&area), 2);
    const RECT edge = StripAt(area, controlBar_->Side(), Metrics(Handle()).Scale(kHotEdge));
    return PtInRect(&edge, onScreen) != FALSE;
}

bool frmMain::IsOverBar(POINT onScreen) const {
    return controlBar_ != nullptr && controlBar_->IsVisible() &&
           controlBar_->Holds(WindowFromPoint(onScreen));
}

void frmMain::Form_MetricsChanged() {
    statusInformation_.ChangeMetrics();
    silence_.ChangeMetrics();
    info_.ChangeMetrics();
    hint_.ChangeMetrics();
    if (controlBar_ != nullptr) controlBar_->MainMetricsChanged();
}

// --- How to begin ---

void frmMain::CreateHint() {
    hint_.Create(Handle(), {.open = [this](const std::wstring& path) { OpenLater({path}); },
                            .leave =
                                [this](bool back) {
                                    if (back || controlBar_ == nullptr) return TakeFocus();
                                    controlBar_->TakeFocus(BarFocus::kFirst);
                                },
                            .ground = [this] { return pictureView_.BackgroundColour(); },
                            .contextMenu =
                                [this](LPARAM at) {
                                    SendMessageW(pictureView_.Handle(), WM_CONTEXTMENU,
                                                 reinterpret_cast<WPARAM>(pictureView_.Handle()),
                                                 at);
                                }});
}

// What is being loaded takes the hint away at once. It comes when all is done that empties the
// view: what takes its place may follow.
void frmMain::FollowEmptiness() {
    if (!filesToOpen_.empty() || PictureShown()) return hint_.SetOpen(false);
    if (!std::exchange(hintDue_, true)) PostMessageW(Handle(), kHintMessage, 0, 0);
}

void frmMain::ShowHintOrNot() {
    hintDue_ = false;
    const bool isBusy = !filesToOpen_.empty() || isOpening_ || CurrentActivity().pictureLoading;
    const bool hasFiles = controlBar_ != nullptr && controlBar_->HasFiles();
    hint_.SetOpen(!isBusy && !hasFiles && !PictureShown() && pictureView_.Reason().empty());
}

// --- The keyboard ---

// Between the two windows, or where the bar is a part of this one, from part to part.
void frmMain::GoToOtherWindow() {
    if (controlBar_ != nullptr && controlBar_->Side() != DockSide::kFloating) return GoToNextPart();
    if (GetActiveWindow() != Handle()) return TakeFocus();
    if (controlBar_ != nullptr) controlBar_->TakeFocus(BarFocus::kFormer);
}

void frmMain::GoToNextPart() {
    const bool back = (CurrentShiftState() & kShiftMask) != 0;
    if (back) {
        const bool isAtPicture = !controlBar_->Holds(GetFocus()) && !info_.HasFocus();
        if (isAtPicture && info_.TakeFocus()) return;
        if (controlBar_->FocusNextPart(true)) return;
    } else if (!info_.HasFocus()) {
        if (controlBar_->FocusNextPart(false) || info_.TakeFocus()) return;
    }
    TakeFocus();
}

// The window has come to the front again: the keyboard goes where it was.
void frmMain::TakeFocusBack() {
    if (!std::exchange(backToBar_, false) || controlBar_ == nullptr || !controlBar_->IsVisible())
        return TakeFocus();
    controlBar_->TakeFocus(BarFocus::kFormer);
}

}  // namespace tessary
