// The control bar's window: its parts and layout.
#include "ui/control/frmControl_busy.h"

#include <windowsx.h>

#include <algorithm>

#include "app/settings/modValue.h"
#include "res/resource.h"
#include "ui/control/toolbar_items.h"
#include "ui/form/activity.h"
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
constexpr int kGripWidth = 8;
constexpr int kInfoHeight = 20;
constexpr int kThumbHeight = 18;
constexpr int kFoldedHeight = BarPlace::kFoldedHeight;
constexpr int kUnfoldedHeight = BarPlace::kUnfoldedHeight;

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
               .mayStep = [this] { return !wishes_.Any() && MayStep() && !follower_.AreComing(); },
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
    sequence_.Files().SetMirror(filesMirror_);
    sequence_.Files().OnSelect([this] { listFileName_Click(); });
    sequence_.Members().SetMirror(membersMirror_);
    sequence_.Members().OnSelect([this] { listArchiveFile_Click(); });
    sequence_.Marks().SetMirror(deletePanel_);
    sequence_.Files().OnChange([this] { PlaceChanged(); });
    sequence_.Members().OnChange([this] { PlaceChanged(); });
    RegisterCommands();
    RegisterListCommands();
    RegisterBookCommands();
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
    place_.Read();
    ShowDisplaySizeImage();
    ShowNoArchive();
    UpdateToolbar();
    formLoaded_ = true;
}

void frmControl::CreateControls() {
    const auto name = [this](Label& label, const wchar_t* text) {
        label.Create(Handle(), text);
        label.SetVisible(false);
    };
    const auto makeList = [&](ListBox& list, Label& label, const wchar_t* text) {
        name(label, text);
        list.CreateForPaths(Handle());
        list.SetText(text);  // some systems know a list's name from there
    };
    coolBar_.Create(Handle(), ControlBarItems(), ControlBarImages());
    coolBar_.SetText(L"操作ボタン");
    coolBar_.OnButton([this](int button) { CoolBar_ButtonClick(static_cast<BarButton>(button)); });
    coolBar_.OnDropDown([this](int button, const RECT& place) {
        CoolBar_ButtonDropDown(static_cast<BarButton>(button), place);
    });
    coolBar_.OnBackgroundPress([this] { SendMessageW(Handle(), WM_LBUTTONDOWN, 0, 0); });
    name(infoName_, L"表示中のファイル");
    textFileInfo_.CreateReadOnly(Handle());
    name(placeName_, L"位置");
    placeSlider_.Create(Handle(), L"位置");

    const auto keys = [this](int keyCode, int shift) { return PassKeyOn(keyCode, shift); };
    makeList(listFileName_, filesName_, L"ファイルの一覧");
    listFileName_.OnClick([this] { sequence_.Files().Select(listFileName_.Selected()); });
    listFileName_.OnKeyDown(keys);
    makeList(listArchiveFile_, membersName_, L"圧縮ファイルの中身");
    listArchiveFile_.OnClick([this] { sequence_.Members().Select(listArchiveFile_.Selected()); });
    listArchiveFile_.OnKeyDown(keys);

    deletePanel_.Create(Handle());
}

void frmControl::Form_MetricsChanged() {
    font_ = Metrics(Handle()).MessageFont();
    textFileInfo_.SetFont(font_.Get());
    for (ListBox* const list : {&listFileName_, &listArchiveFile_}) {
        list->SetFont(font_.Get());
        list->FontChanged();
    }
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
    wishes_ = {};
    SavePlace();
    sequence_.Clear();
    formLoaded_ = false;
}

// --- Layout ---

void frmControl::Form_Resize(int width, int /*height*/) {
    if (coolBar_.Handle() == nullptr) return;
    const Metrics metrics(Handle());
    const auto scale = [&](int pixels) { return metrics.Scale(pixels); };
    const int frame = scale(kFrame);
    const int margin = scale(kMargin);
    const int inner = width - 2 * margin;
    const int buttons =
        std::min<int>(coolBar_.PreferredSize().cy, scale(kFoldedHeight) - 2 * frame);
    const int above = place_.HeightAboveToolbar();
    coolBar_.SetBounds(scale(kGripWidth), above + (scale(kFoldedHeight) - buttons) / 2,
                       width - scale(kGripWidth) - frame, buttons);

    const int info = above + scale(kFoldedHeight + 1);
    const int fileWidth = (inner - margin) * 3 / 5;
    textFileInfo_.SetBounds(margin, info, fileWidth, scale(kInfoHeight));
    placeSlider_.Window().SetBounds(2 * margin + fileWidth, info, inner - margin - fileWidth,
                                    scale(kInfoHeight));
    const int lists = info + scale(kInfoHeight) + margin / 2;
    const int listHeight = above + scale(kUnfoldedHeight) - margin - lists;
    listFileName_.SetBounds(margin, lists, fileWidth, listHeight);
    listArchiveFile_.SetBounds(2 * margin + fileWidth, lists, inner - margin - fileWidth,
                               listHeight);

    deletePanel_.Layout(width, above > 0 ? margin : scale(kUnfoldedHeight), metrics);
    InvalidateRect(Handle(), nullptr, TRUE);
}

void frmControl::Layout() {
    const SIZE size = ClientSize();
    Form_Resize(size.cx, size.cy);
}

// What lies outside the window must not take the focus either.
void frmControl::ShowFoldedOrNot() {
    const bool unfolded = place_.IsPanelOpen() || !IsRollUp();
    if (IsChild(Handle(), GetFocus())) lastFocus_ = GetFocus();
    for (Control* const control : std::initializer_list<Control*>{
             &textFileInfo_, &placeSlider_.Window(), &listFileName_, &listArchiveFile_}) {
        control->SetVisible(unfolded);
    }
    deletePanel_.SetVisible(place_.IsPanelOpen());
    if (GetFocus() == Handle()) FocusPart(lastFocus_);
}

// The face, the frame around it and the grip at the left, which invites to drag.
void frmControl::PaintBackground(HDC context) const {
    Form::PaintBackground(context);
    RECT area{};
    GetClientRect(Handle(), &area);
    const Metrics metrics(Handle());
    for (int i = 0; i < metrics.Scale(kFrame); ++i) {
        FrameRect(context, &area, GetSysColorBrush(COLOR_BTNSHADOW));
        InflateRect(&area, -1, -1);
    }
    const int dot = metrics.Scale(2);
    const int above = place_.HeightAboveToolbar();
    for (int y = metrics.Scale(6); y < metrics.Scale(kFoldedHeight - 6); y += 2 * dot) {
        const RECT spot{metrics.Scale(3), above + y, metrics.Scale(3) + dot, above + y + dot};
        FillRect(context, &spot, GetSysColorBrush(COLOR_BTNSHADOW));
    }
}

// The left and right edges resize; nothing else of the window does.
LRESULT frmControl::HitTest(LPARAM onScreen) const {
    RECT bar{};
    GetWindowRect(Handle(), &bar);
    const int edge = Metrics(Handle()).Scale(kMargin);
    if (GET_X_LPARAM(onScreen) < bar.left + edge) return HTLEFT;
    if (GET_X_LPARAM(onScreen) >= bar.right - edge) return HTRIGHT;
    return HTCLIENT;
}

LRESULT frmControl::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_NCHITTEST:
            return HitTest(lParam);
        case WM_GETMINMAXINFO: {
            MINMAXINFO& limits = *reinterpret_cast<MINMAXINFO*>(lParam);
            const Metrics metrics(Handle());
            limits.ptMinTrackSize = {metrics.Scale(kLeastWidth), 1};
            return 0;
        }
        case WM_LBUTTONDOWN:
            ReleaseCapture();
            SendMessageW(Handle(), WM_NCLBUTTONDOWN, HTCAPTION, 0);
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
            if (LOWORD(lParam) != HTCLIENT || !IsReadUnderWay() || player_.IsPlaying()) break;
            SetCursor(LoadCursorW(nullptr, IDC_WAIT));
            return TRUE;
        default:
            break;
    }
    return Form::OnMessage(message, wParam, lParam);
}

// --- In sight ---

bool frmControl::IsVisible() const {
    return Handle() != nullptr && IsWindowVisible(Handle());
}

void frmControl::SetVisible(bool visible) {
    if (visible && !Load(window_.Handle())) return;
    if (visible) place_.ComeIntoReach();
    // The main window keeps the focus when the bar appears, and gets it back when it goes.
    if (Handle() == nullptr) return;
    ShowWindow(Handle(), visible ? SW_SHOWNOACTIVATE : SW_HIDE);
    // With a minimised main window it waits, as what was shown before does.
    if (visible && IsIconic(window_.Handle())) ShowOwnedPopups(window_.Handle(), FALSE);
}

void frmControl::SavePlace() {
    if (Handle() != nullptr) place_.Save();
}

}  // namespace tessary
