// The control bar as a part of the main window, and its way there and back.
#include <windowsx.h>

#include <algorithm>
#include <utility>

#include "res/resource.h"
#include "ui/control/frmControl.h"
#include "ui/form/menu.h"
#include "ui/form/metrics.h"
#include "ui/form/reparent.h"
#include "ui/form/tab_stops.h"

namespace tessary {
namespace {

// Pixels at 96 dpi.
constexpr int kDockReach = 20;    // how near an edge the pointer docks the bar there
constexpr int kPointerInset = 6;  // of the pointer in a bar that was torn off

}  // namespace

void frmControl::RegisterDockCommands() {
    for (int number = 0; number <= static_cast<int>(DockSide::kBottom); ++number) {
        const auto side = static_cast<DockSide>(number);
        window_.Commands().Register(
            commandDock_0 + number,
            {.run = [this, side] { SetSide(side); },
             .enabled = [this] { return formLoaded_ && !window_.IsFullScreen(); },
             .checked = [this, side] { return formLoaded_ && dock_.Side() == side; },
             .whileLoading = true});
    }
}

BarState frmControl::State() const {
    const Metrics metrics(Handle());
    return {.side = dock_.Side(),
            .size = ClientSize(),
            .dpi = metrics.Dpi(),
            .folded = IsRollUp(),
            .panelOpen = place_.IsPanelOpen(),
            .panelAbove = place_.HeightAboveToolbar(),
            .hasMembers = hasMembers_,
            .filesPermille = dock_.FilesPermille(),
            .buttons = [this](int width) { return coolBar_.SizeIn(width); }};
}

// --- What the main window asks ---

int frmControl::DockedExtent(DockSide side, SIZE room) {
    BarState state = State();
    state.side = side;
    return DockedThickness(state, Metrics(Handle()).Scale(dock_.Thickness(side)), room);
}

void frmControl::PlaceDocked(const RECT& place) {
    const SIZE former = ClientSize();
    SetWindowPos(Handle(), nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    const SIZE size = ClientSize();
    if (size.cx == former.cx && size.cy == former.cy) Arrange();
}

void frmControl::MainMetricsChanged() {
    if (dock_.IsDocked()) FollowMetrics();
}

bool frmControl::Holds(HWND window) const {
    return dock_.IsDocked() && IsOwn(window);
}

bool frmControl::IsOwn(HWND window) const {
    return Handle() != nullptr && (window == Handle() || IsChild(Handle(), window));
}

bool frmControl::NoteFocus() {
    if (!Holds(GetFocus())) return false;
    lastFocus_ = GetFocus();
    return true;
}

bool frmControl::TakesEscape() const {
    return Holds(GetFocus()) && !deletePanel_.IsListFocused() && !deletePanel_.IsButtonFocused();
}

bool frmControl::FocusNextPart(bool back) {
    if (!IsVisible()) return false;
    const std::vector<HWND> stops = TabStops(Handle());
    std::vector<HWND> parts;
    for (const HWND part : {listFileName_.Handle(), listArchiveFile_.Handle(),
                            deletePanel_.List().Handle(), coolBar_.Handle()}) {
        if (std::ranges::find(stops, part) != stops.end()) parts.push_back(part);
    }
    if (back) std::ranges::reverse(parts);
    const auto at = std::ranges::find(parts, GetFocus());
    const auto next = at == parts.end() ? parts.begin() : at + 1;
    if (next == parts.end()) return false;
    ::SetFocus(*next);
    return true;
}

// --- In sight ---

void frmControl::ShowForUser(bool visible) {
    SetVisible(visible);
    if (!window_.IsFullScreen()) dock_.SetHidden(!visible);
}

// Before files are shown. Docked it is there, unless the user has put it out of sight.
void frmControl::ComeUp() {
    if (!Load(window_.Handle()) || dock_.IsDocked()) return;
    SetVisible(true);
}

void frmControl::ShowDocked(bool visible) {
    if (!visible && IsOwn(GetFocus())) {
        lastFocus_ = GetFocus();
        window_.TakeFocus();
    }
    ShowWindow(Handle(), visible ? SW_SHOWNA : SW_HIDE);
    window_.ArrangeParts();
}

// --- From side to side ---

void frmControl::SetSide(DockSide side, std::optional<POINT> at) {
    if (Handle() == nullptr || side == dock_.Side() || window_.IsFullScreen()) return;
    const bool hadFocus = IsOwn(GetFocus());
    if (hadFocus) {
        lastFocus_ = GetFocus();
        window_.TakeFocus();
    }
    const bool wasDocked = dock_.IsDocked();
    dock_.SetSide(side);
    dock_.SetHidden(false);
    if (!wasDocked) {
        place_.Dock();
        MakePart(Handle(), window_.Handle());
    } else if (!dock_.IsDocked()) {
        MakePopup(Handle(), window_.Handle());
        place_.Float(at);
    }
    FollowMetrics();
    SetVisible(true);
    Layout();
    window_.ArrangeParts();  // a bar that has left gives its room back
    if (hadFocus) TakeFocus(BarFocus::kFormer);
}

// --- Dragged ---

bool frmControl::IsAtGrip() const {
    POINT at{};
    GetCursorPos(&at);
    ScreenToClient(Handle(), &at);
    return PtInRect(&parts_.grip, at) != FALSE;
}

// A docked bar has a grip for that.
void frmControl::DragByBody() {
    if (dock_.IsDocked()) return;
    dockTarget_ = DockSide::kFloating;
    ReleaseCapture();
    SendMessageW(Handle(), WM_NCLBUTTONDOWN, HTCAPTION, 0);  // until it is let go
    DockWhereShown();
}

void frmControl::DragByGrip(POINT at) {
    if (!PtInRect(&parts_.grip, at) || window_.IsFullScreen()) return;
    POINT onScreen = at;
    ClientToScreen(Handle(), &onScreen);
    if (!DragDetect(Handle(), onScreen)) return;
    const int inset = Metrics(Handle()).Scale(kPointerInset);
    GetCursorPos(&onScreen);
    SetSide(DockSide::kFloating, POINT{onScreen.x - inset, onScreen.y - inset});
    DragByBody();
}

// With Ctrl it only moves.
void frmControl::ShowWhereItDocks(const RECT& dragged) {
    dragged_ = dragged;
    const HWND main = window_.Handle();
    const bool mayDock = !window_.IsFullScreen() && !IsIconic(main) && IsWindowVisible(main) &&
                         (CurrentShiftState() & kCtrlMask) == 0;
    dockTarget_ = DockSide::kFloating;
    POINT at{};
    if (mayDock && GetCursorPos(&at)) {
        RECT client{};
        GetClientRect(main, &client);
        MapWindowPoints(main, nullptr, reinterpret_cast<POINT*>(&client), 2);
        dockTarget_ = SideAt(client, at, Metrics(main).Scale(kDockReach));
    }
    if (dockTarget_ == DockSide::kFloating) return dockFrame_.Hide();
    dockFrame_.ShowAround(window_.BarPlaceAt(dockTarget_), main);
}

// A drag that was broken off has put the bar back.
void frmControl::DockWhereShown() {
    dockFrame_.Hide();
    RECT frame{};
    if (Handle() == nullptr || !GetWindowRect(Handle(), &frame)) return;
    const DockSide side = std::exchange(dockTarget_, DockSide::kFloating);
    if (side != DockSide::kFloating && EqualRect(&frame, &dragged_)) SetSide(side);
}

void frmControl::ShowBarMenu(POINT onScreen) const {
    if (onScreen.x == -1 && onScreen.y == -1) {  // from the keyboard
        onScreen = {parts_.toolbar.left, parts_.toolbar.bottom};
        ClientToScreen(Handle(), &onScreen);
    }
    const UniqueMenu window = LoadMenuResource(menuBarWindow);
    const HMENU popup = GetSubMenu(window.Get(), 0);
    window_.Commands().ShowState(popup);
    const int chosen = TrackPopupMenuEx(popup, TPM_RETURNCMD | TPM_RIGHTBUTTON, onScreen.x,
                                        onScreen.y, Handle(), nullptr);
    if (chosen != 0) window_.Commands().Run(chosen);
}

// The edge towards the picture is dragged.
void frmControl::EdgeDragged(int place) {
    const SIZE size = ClientSize();
    RECT edge{};
    GetClientRect(edge_.Handle(), &edge);
    int thickness = 0;
    switch (dock_.Side()) {
        case DockSide::kFloating:
            return;
        case DockSide::kTop:
            thickness = place + static_cast<int>(edge.bottom);
            break;
        case DockSide::kLeft:
            thickness = place + static_cast<int>(edge.right);
            break;
        case DockSide::kRight:
            thickness = static_cast<int>(size.cx) - place;
            break;
        case DockSide::kBottom:
            thickness = static_cast<int>(size.cy) - place;
            break;
    }
    // An open panel stands besides.
    const int without = DockedThickness(State(), 0, size);
    const BarState closed = [this] {
        BarState state = State();
        state.panelOpen = false;
        state.folded = false;
        return state;
    }();
    const int panel = without - DockedThickness(closed, 0, size);
    const auto keep = [&](int pixels) {
        const int at96 = MulDiv(pixels - panel, 96, Metrics(Handle()).Dpi());
        dock_.SetThickness(dock_.Side(), std::max(at96, 1));
    };
    keep(thickness);
    window_.ArrangeParts();
    // As far as it goes.
    const SIZE now = ClientSize();
    keep(static_cast<int>(IsVertical(dock_.Side()) ? now.cx : now.cy));
}

// So is the border between files and members.
void frmControl::BorderDragged(int place) {
    constexpr int kWhole = 1000;
    const int room = static_cast<int>(parts_.members.bottom - parts_.files.top);
    if (room <= 0) return;
    const int files = std::clamp(place - static_cast<int>(parts_.files.top), 0, room);
    dock_.SetFilesPermille(MulDiv(files, kWhole, room));
    Arrange();
}

// What is listed has come to rest: the list of members is in a narrow bar only while there are any.
void frmControl::FollowMembers() {
    const bool has = sequence_.IsInArchive();
    if (std::exchange(hasMembers_, has) == has || !IsVertical(dock_.Side())) return;
    Arrange();
}

}  // namespace tessary
