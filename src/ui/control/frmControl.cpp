// The control bar's window: its parts and layout.
#include "ui/control/frmControl_busy.h"

#include <windowsx.h>

#include <algorithm>

#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "res/resource.h"
#include "ui/control/toolbar_items.h"
#include "ui/form/activity.h"
#include "ui/form/appearance.h"
#include "ui/form/reparent.h"
#include "ui/keys/key_map.h"

namespace tessary {
namespace {

constexpr FormDesign kDesign{.className = L"TessaryControlBar",
                             .caption = L"コントロールバー",
                             .style = WS_POPUP | WS_CLIPCHILDREN,
                             .extendedStyle = WS_EX_TOOLWINDOW | WS_EX_CONTROLPARENT};

// Pixels at 96 dpi.
constexpr int kLeastWidth = 420;
constexpr int kFrame = 1;
constexpr int kMargin = 4;
constexpr int kThumbHeight = 18;

// What stands there already is not painted anew.
void PutInto(Control& control, const RECT& place) {
    if (IsRectEmpty(&place)) return;
    RECT former{};
    GetWindowRect(control.Handle(), &former);
    MapWindowPoints(nullptr, GetParent(control.Handle()), reinterpret_cast<POINT*>(&former), 2);
    if (EqualRect(&former, &place)) return;
    control.SetBounds(place.left, place.top, place.right - place.left, place.bottom - place.top);
}

}  // namespace

frmControl::frmControl(frmMain& window)
    : Form(kDesign),
      window_(window),
      deletePanel_({.deleteAll = [this] { cmdOK_Click(); },
                    .dropAll = [this] { deleteList_.DropAll(); },
                    .putAllBack = [this] { deleteList_.PutAllBack(); },
                    .putBack = [this](const std::wstring& path) { deleteList_.PutBack(path); },
                    .keyRepeats = [this] { return keyRepeats_; }}),
      place_(*this, window,
             {.folded =
                  [this] {
                      SetImage(BarButton::kFold,
                               IsRollUp() ? ToolbarImage::kUnfold : ToolbarImage::kFold);
                      Layout();
                      ShowFoldedOrNot();
                  },
              .layout = [this] { Layout(); }}),
      texts_(*this, textFileInfo_, window,
             [this] {
                 if (burst_ != nullptr) burst_->ShowLists();
             }),
      player_({.back = [this] { return ListIndexBackOne(); },
               .forward = [this] { return ListIndexForwardOne(); },
               .atEnd = [this] { EndMotion(); },
               .mayStep = [this] { return !wishes_.Any() && MayStep() && !StepsWait(); },
               .isSeen =
                   [this] {
                       // Behind a dialog the show stands still.
                       const HWND main = window_.Handle();
                       return IsWindowVisible(main) && IsWindowEnabled(main) && !IsIconic(main);
                   },
               .inBurst =
                   [this](const std::function<void()>& steps) {
                       const Burst burst(*this);
                       steps();
                   }}),
      accelerators_(
          ChosenAccelerators, [&window] { return window.Handle(); },
          [this](const MSG& key) { return IsKeyOfProgram(key); }),
      dialogKeys_([this](MSG& message) { return TakesMessage(message); }) {
    sequence_.Files().SetMirror(shownFiles_);
    sequence_.Files().OnSelect([this] { listFileName_Click(); });
    sequence_.Members().SetMirror(shownMembers_);
    sequence_.Members().OnSelect([this] { listArchiveFile_Click(); });
    sequence_.Marks().SetMirror(deletePanel_);
    sequence_.Files().OnChange([this] { PlaceChanged(); });
    sequence_.Members().OnChange([this] { PlaceChanged(); });
    RegisterCommands();
    RegisterListCommands();
    RegisterBookCommands();
    RegisterDockCommands();
    RegisterFileCommands();
    RegisterChoosing();
    RegisterLooks();
    window_.OnPictureShownChanged([this] {
        if (formLoaded_) UpdateToolbar();
    });
}

void frmControl::RegisterCommands() {
    window_.Commands().Register(commandDisplaySize,
                                {.run = [this] { CoolBar_ButtonClick(BarButton::kDisplaySize); },
                                 .enabled = [this] { return formLoaded_; },
                                 .whileLoading = true});
    window_.Commands().Register(
        commandAddToDeleteList,
        {.run =
             [this] {
                 player_.IsPlaying() ? MarkDuringShow()
                                     : CoolBar_ButtonClick(BarButton::kDeleteList);
             },
         .enabled =
             [this] {
                 return formLoaded_ && (player_.IsPlaying() || IsUsable(BarButton::kDeleteList));
             },
         .whileLoading = true});
    window_.Commands().Register(
        commandCancelDelete,
        {.run = [this] { deleteList_.AskToPutAllBack(); },
         .enabled = [this] { return formLoaded_ && IsUsable(BarButton::kCancelDelete); },
         .whileLoading = true});
    for (int mode = kSizeModeOriginal; mode <= kLastSizeMode; ++mode) {
        window_.Commands().Register(commandDisplaySize_0 + mode,
                                    {.run = [this, mode] { SetDisplaySize(mode); },
                                     .checked = [mode] { return Values().fixSizeValue == mode; },
                                     .whileLoading = true});
    }
}

void frmControl::Form_Load() {
    CreateControls();
    Form_MetricsChanged();
    dock_.Read();
    if (dock_.IsDocked()) MakePart(Handle(), window_.Handle());
    place_.Read(dock_.IsDocked());
    ShowDisplaySizeImage();
    ShowNoArchive();
    UpdateToolbar();
    formLoaded_ = true;
    if (dock_.IsDocked() && !dock_.IsHidden()) ShowDocked(true);
}

void frmControl::CreateControls() {
    const auto name = [this](Label& label, const wchar_t* text) {
        label.Create(Handle(), text);
        label.SetVisible(false);
    };
    const auto makeList = [&](VirtualList& list, Label& label, const wchar_t* text,
                              ListContent& content) {
        name(label, text);
        list.Create(Handle(), content, &list == &listFileName_);
        list.SetText(text);  // some systems know a list's name from there
        list.OnKeyDown([this, &list](int keyCode, int shift) {
            return list.PictureSide() == 0 && PassKeyOn(keyCode, shift);
        });
    };
    coolBar_.Create(Handle(), ControlBarItems(), ControlBarImages());
    coolBar_.SetText(L"操作ボタン");
    coolBar_.OnButton([this](int button) { CoolBar_ButtonClick(static_cast<BarButton>(button)); });
    coolBar_.OnDropDown([this](int button, const RECT& place) {
        CoolBar_ButtonDropDown(static_cast<BarButton>(button), place);
    });
    coolBar_.OnBackgroundPress([this] { DragByBody(); });
    name(infoName_, L"表示中のファイル");
    textFileInfo_.CreateReadOnly(Handle());
    name(placeName_, L"位置");
    placeSlider_.Create(Handle(), L"位置");

    makeList(listFileName_, filesName_, L"ファイルの一覧", shownFiles_);
    listFileName_.OnMenu([this](POINT place) { ShowListMenu(place, false); });
    listArchiveFile_.OnMenu([this](POINT place) { ShowListMenu(place, true); });
    listFileName_.OnSelect([this](int index) { SelectFileByHand(index); });
    listFileName_.OnChoose([this](std::vector<int> all) { ChooseFiles(std::move(all)); });
    makeList(listArchiveFile_, membersName_, L"圧縮ファイルの中身", shownMembers_);
    listArchiveFile_.OnSelect([this](int index) { SelectMemberByHand(index); });

    deletePanel_.Create(Handle());
    edge_.Create(Handle(), Splitter::Moves::kSideways, [this](int place) { EdgeDragged(place); });
    border_.Create(Handle(), Splitter::Moves::kUpAndDown,
                   [this](int place) { BorderDragged(place); });
}

void frmControl::Form_MetricsChanged() {
    font_ = Metrics(Handle()).MessageFont();
    textFileInfo_.SetFont(font_.Get());
    for (VirtualList* const list : {&listFileName_, &listArchiveFile_})
        list->SetFont(font_.Get());
    TakeLooks();
    deletePanel_.SetFont(font_.Get());
    coolBar_.ChangeMetrics();
    placeSlider_.SetThumb(Metrics(Handle()).Scale(kThumbHeight));
}

void frmControl::Unload() {
    unloading_ = true;
    Form::Unload();
    unloading_ = false;
}

// The user who closes the bar only wants it out of sight.
void frmControl::Form_QueryUnload(bool& cancel) {
    if (unloading_) return;
    cancel = true;
    SetVisible(false);
}

void frmControl::Form_Unload() {
    player_.Stop();
    wishesDue_.Stop();
    placeDue_.Stop();
    follower_.End();
    Ahead().Thumbs().OnNews({});
    wishes_ = {};
    SavePlace();
    sequence_.Clear();
    formLoaded_ = false;
}

// --- Layout ---

void frmControl::Form_Resize(int /*width*/, int /*height*/) {
    Arrange();
}

void frmControl::Arrange() {
    if (coolBar_.Handle() == nullptr) return;
    parts_ = LayOutBar(State());
    coolBar_.Wrap(parts_.rowWidth);
    PutInto(coolBar_, parts_.toolbar);
    PutInto(textFileInfo_, parts_.info);
    PutInto(placeSlider_.Window(), parts_.slider);
    PutInto(listFileName_, parts_.files);
    PutInto(listArchiveFile_, parts_.members);
    if (!IsRectEmpty(&parts_.panel)) deletePanel_.Layout(parts_.panel, Metrics(Handle()));
    const bool isUpright = IsVertical(dock_.Side());
    edge_.SetMoves(isUpright ? Splitter::Moves::kSideways : Splitter::Moves::kUpAndDown);
    edge_.SetBounds(parts_.edge);
    border_.SetBounds(parts_.border);
    ShowFoldedOrNot();
    InvalidateRect(Handle(), nullptr, TRUE);
}

// The main window divides its room anew for a docked bar.
void frmControl::Layout() {
    dock_.IsDocked() ? window_.ArrangeParts() : Arrange();
}

// What lies outside the window must not take the focus either.
void frmControl::ShowFoldedOrNot() {
    if (IsChild(Handle(), GetFocus())) lastFocus_ = GetFocus();
    const auto show = [](Control& control, const RECT& place) {
        control.SetVisible(!IsRectEmpty(&place));
    };
    show(textFileInfo_, parts_.info);
    show(placeSlider_.Window(), parts_.slider);
    show(listFileName_, parts_.files);
    show(listArchiveFile_, parts_.members);
    deletePanel_.SetVisible(!IsRectEmpty(&parts_.panel));
    if (GetFocus() == Handle()) FocusPart(lastFocus_);
}

// The face, the frame around it and the grip, which invites to drag.
void frmControl::PaintBackground(HDC context) const {
    Form::PaintBackground(context);
    RECT area{};
    GetClientRect(Handle(), &area);
    const Metrics metrics(Handle());
    for (int i = 0; i < metrics.Scale(kFrame) && !dock_.IsDocked(); ++i) {
        FrameRect(context, &area, BrushOf(COLOR_BTNSHADOW));
        InflateRect(&area, -1, -1);
    }
    const bool isRow = IsVertical(dock_.Side());
    const int dot = metrics.Scale(2);
    const int aside = metrics.Scale(3);
    const int inset = metrics.Scale(6);
    const RECT& grip = parts_.grip;
    const LONG end = (isRow ? grip.right : grip.bottom) - inset;
    for (LONG at = (isRow ? grip.left : grip.top) + inset; at < end; at += 2 * dot) {
        const LONG left = isRow ? at : grip.left + aside;
        const LONG top = isRow ? grip.top + aside : at;
        const RECT spot{left, top, left + dot, top + dot};
        FillRect(context, &spot, BrushOf(COLOR_BTNSHADOW));
    }
}

// The left and right edges resize; nothing else of the window does.
LRESULT frmControl::HitTest(LPARAM onScreen) const {
    if (dock_.IsDocked()) return HTCLIENT;
    RECT bar{};
    GetWindowRect(Handle(), &bar);
    const int edge = Metrics(Handle()).Scale(kMargin);
    if (GET_X_LPARAM(onScreen) < bar.left + edge) return HTLEFT;
    if (GET_X_LPARAM(onScreen) >= bar.right - edge) return HTRIGHT;
    return HTCLIENT;
}

LRESULT frmControl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case kThumbsMessage:
            ShowThumbs();
            return 0;
        case WM_NCHITTEST:
            return HitTest(lParam);
        case WM_GETMINMAXINFO: {
            MINMAXINFO& limits = *reinterpret_cast<MINMAXINFO*>(lParam);
            const Metrics metrics(Handle());
            limits.ptMinTrackSize = {metrics.Scale(kLeastWidth), 1};
            return 0;
        }
        case WM_LBUTTONDOWN:
            dock_.IsDocked() ? DragByGrip({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)})
                             : DragByBody();
            return 0;
        case WM_MOVING:
            ShowWhereItDocks(*reinterpret_cast<const RECT*>(lParam));
            break;
        case WM_CONTEXTMENU:
            // The lists and the text have their own.
            if (const auto below = reinterpret_cast<HWND>(wParam);
                below != Handle() && below != coolBar_.Handle()) {
                break;
            }
            ShowBarMenu({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            return 0;
        case WM_KEYDOWN:
            window_.pictureView_KeyDown(static_cast<int>(wParam), CurrentShiftState());
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE && IsChild(Handle(), GetFocus())) {
                lastFocus_ = GetFocus();
            }
            break;
        case WM_SETFOCUS:
            FocusPart(lastFocus_);
            return 0;
        case WM_SYSCOMMAND:
            if ((wParam & 0xFFF0) != SC_SCREENSAVE || !player_.IsPlaying()) break;
            return 0;
        case WM_SETCURSOR:
            if (dock_.IsDocked() && reinterpret_cast<HWND>(wParam) == Handle() && IsAtGrip()) {
                SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
                return TRUE;
            }
            if (LOWORD(lParam) != HTCLIENT || !IsReadUnderWay() || player_.IsPlaying()) break;
            SetCursor(LoadCursorW(nullptr, IDC_WAIT));
            return TRUE;
        default:
            break;
    }
    return Form::OnMessage(message, wParam, lParam);
}

// --- In sight ---

// Docked it may be a part of a window that is not shown yet.
bool frmControl::IsVisible() const {
    if (Handle() == nullptr) return false;
    if (dock_.IsDocked()) return (GetWindowLongW(Handle(), GWL_STYLE) & WS_VISIBLE) != 0;
    return IsWindowVisible(Handle());
}

void frmControl::SetVisible(bool visible) {
    if (visible && !Load(window_.Handle())) return;
    if (visible) place_.ComeIntoReach();
    // The main window keeps the focus when the bar appears, and gets it back when it goes.
    if (Handle() == nullptr) return;
    if (dock_.IsDocked()) return ShowDocked(visible);
    ShowWindow(Handle(), visible ? SW_SHOWNOACTIVATE : SW_HIDE);
    // With a minimised main window it waits, as what was shown before does.
    if (visible && IsIconic(window_.Handle())) ShowOwnedPopups(window_.Handle(), FALSE);
}

void frmControl::SavePlace() {
    if (Handle() == nullptr) return;
    place_.Save();
    dock_.Save();
}

}  // namespace tessary
