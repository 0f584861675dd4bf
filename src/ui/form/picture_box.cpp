#include "ui/form/picture_box.h"

#include <windowsx.h>

#include <utility>

#include "ui/form/appearance.h"
#include "ui/form/view_text.h"

namespace tessary {
namespace {

constexpr int kRightButton = 2;

constexpr UINT kNoteMilliseconds = 2000;

POINT PointOf(LPARAM lParam) {
    return {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
}

template <typename Handler, typename... Arguments>
void Raise(const Handler& handler, Arguments... arguments) {
    if (handler) handler(arguments...);
}

}  // namespace

int CurrentShiftState() {
    const auto isDown = [](int key) { return GetKeyState(key) < 0; };
    return (isDown(VK_SHIFT) ? kShiftMask : 0) | (isDown(VK_CONTROL) ? kCtrlMask : 0) |
           (isDown(VK_MENU) ? kAltMask : 0);
}

bool PictureBox::Create(HWND parent, Events events) {
    events_ = std::move(events);
    return Window::Create({.className = L"TessaryPictureBox",
                           .style = WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS,
                           .classStyle = CS_DBLCLKS,
                           .parent = parent});
}

void PictureBox::SetBounds(int left, int top, int width, int height) {
    SetWindowPos(Handle(), nullptr, left, top, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

SIZE PictureBox::AreaSize() const {
    RECT area{};
    GetClientRect(Handle(), &area);
    return {area.right, area.bottom};
}

void PictureBox::SetBackground(HBRUSH background) {
    background_ = background;
    Invalidate();
}

COLORREF PictureBox::BackgroundColour() const {
    LOGBRUSH brush{};
    const bool isOwn =
        background_ != nullptr && GetObjectW(background_, sizeof(brush), &brush) != 0;
    return isOwn ? brush.lbColor : ColorOf(COLOR_APPWORKSPACE);
}

SIZE PictureBox::WholeSize() const {
    RECT whole{};
    GetWindowRect(Handle(), &whole);
    return {whole.right - whole.left, whole.bottom - whole.top};
}

void PictureBox::SetScrollBar(int bar, bool isThere, int whole, int place) {
    ShowScrollBar(Handle(), bar, isThere);
    if (!isThere) return;
    const SIZE area = AreaSize();
    SCROLLINFO info{};
    info.cbSize = sizeof(info);
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS | SIF_DISABLENOSCROLL;
    info.nMax = whole - 1;
    info.nPage = static_cast<UINT>(bar == SB_HORZ ? area.cx : area.cy);
    info.nPos = place;
    SetScrollInfo(Handle(), bar, &info, TRUE);
}

void PictureBox::SetReason(const std::wstring& reason) {
    if (reason_ == reason) return;
    reason_ = reason;
    SetWindowTextW(Handle(), reason_.c_str());
    Invalidate();
}

void PictureBox::ShowNote(const std::wstring& note) {
    note_ = note;
    note_.empty() ? noteEnds_.Stop() : static_cast<void>(noteEnds_.Start(kNoteMilliseconds));
    Invalidate();
}

void PictureBox::Paint() const {
    PAINTSTRUCT paint;
    const HDC screen = BeginPaint(Handle(), &paint);
    PaintArea(screen, paint.rcPaint);
    EndPaint(Handle(), &paint);
}

// Leaves the context clipped.
void PictureBox::PaintArea(HDC screen, const RECT& area) const {
    const auto exclude = [&](const RECT& painted) {
        ExcludeClipRect(screen, painted.left, painted.top, painted.right, painted.bottom);
    };
    if (!note_.empty()) exclude(PaintNote(screen, Handle(), note_));
    if (!reason_.empty()) {
        exclude(PaintReason(screen, Handle(), reason_, BackgroundColour()));
    }
    if (events_.paint) exclude(events_.paint(screen, area));
    FillRect(screen, &area, background_ != nullptr ? background_ : BrushOf(COLOR_APPWORKSPACE));
}

void PictureBox::ShowPointer() const {
    const wchar_t* const pointer = events_.pointer ? events_.pointer() : IDC_ARROW;
    SetCursor(pointer != nullptr ? LoadCursorW(nullptr, pointer) : nullptr);
}

void PictureBox::RaiseContextMenu(POINT onScreen) const {
    if (onScreen.x == -1 && onScreen.y == -1) {  // from the keyboard: the middle of the area
        const SIZE area = AreaSize();
        onScreen = {area.cx / 2, area.cy / 2};
        ClientToScreen(Handle(), &onScreen);
    }
    Raise(events_.contextMenu, onScreen);
}

void PictureBox::RaiseWheel(WPARAM wParam, LPARAM lParam) {
    const int notches = notches_.Add(GET_WHEEL_DELTA_WPARAM(wParam));
    const WORD keys = GET_KEYSTATE_WPARAM(wParam);
    if (notches == 0) return;
    POINT at = PointOf(lParam);
    ScreenToClient(Handle(), &at);
    Raise(events_.wheel, notches,
          ((keys & MK_SHIFT) != 0 ? kShiftMask : 0) | ((keys & MK_CONTROL) != 0 ? kCtrlMask : 0),
          at);
}

// The system tells how far two fingers are apart.
bool PictureBox::RaisePinch(LPARAM lParam) {
    GESTUREINFO info{};
    info.cbSize = sizeof(info);
    const auto gesture = reinterpret_cast<HGESTUREINFO>(lParam);
    if (!GetGestureInfo(gesture, &info) || info.dwID != GID_ZOOM) return false;
    POINT at{info.ptsLocation.x, info.ptsLocation.y};
    ScreenToClient(Handle(), &at);
    if ((info.dwFlags & GF_BEGIN) == 0 && pinch_ > 0 && info.ullArguments > 0) {
        Raise(events_.pinch, static_cast<double>(info.ullArguments) / static_cast<double>(pinch_),
              at);
    }
    pinch_ = info.ullArguments;
    CloseGestureInfoHandle(gesture);
    return true;
}

void PictureBox::RaiseScroll(int bar, WPARAM wParam) const {
    SCROLLINFO info{};
    info.cbSize = sizeof(info);
    info.fMask = SIF_TRACKPOS;  // the message has room for 16 bits of it
    GetScrollInfo(Handle(), bar, &info);
    Raise(events_.scroll, bar, int{LOWORD(wParam)}, info.nTrackPos);
}

// Older systems send the wheel to whoever has the keyboard.
void PictureBox::SendWheelBelowPointer(MSG& message) const {
    if (message.message != WM_MOUSEWHEEL || GetCapture() != nullptr) return;
    const HWND below = WindowFromPoint(PointOf(message.lParam));
    if (below != Handle() && message.hwnd != Handle()) return;
    const bool ours = GetWindowThreadProcessId(below, nullptr) == GetCurrentThreadId();
    if (ours && IsWindowEnabled(GetAncestor(below, GA_ROOT))) message.hwnd = below;
}

LRESULT PictureBox::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ERASEBKGND:
            return 1;  // painting covers everything
        case WM_PAINT:
            Paint();
            return 0;
        case WM_SETCURSOR:
            ShowPointer();
            return TRUE;
        case WM_PRINTCLIENT: {
            const SIZE size = AreaSize();
            const auto context = reinterpret_cast<HDC>(wParam);
            const int state = SaveDC(context);
            PaintArea(context, {0, 0, size.cx, size.cy});
            RestoreDC(context, state);
            return 0;
        }
        case WM_KEYDOWN:
            Raise(events_.keyDown, static_cast<int>(wParam), CurrentShiftState());
            return 0;
        case WM_LBUTTONDOWN:
        case WM_RBUTTONDOWN:
            SetFocus(Handle());
            Raise(events_.mouseDown, message == WM_LBUTTONDOWN ? kLeftButton : kRightButton,
                  PointOf(lParam));
            return 0;
        case WM_LBUTTONDBLCLK:
            Raise(events_.doubleClick, PointOf(lParam));
            return 0;
        case WM_MOUSEWHEEL:
            RaiseWheel(wParam, lParam);
            return 0;
        case kNudgeMessage:
            Raise(events_.nudged);
            return 0;
        case WM_GESTURE:
            if (RaisePinch(lParam)) return 0;
            break;
        case WM_HSCROLL:
        case WM_VSCROLL:
            RaiseScroll(message == WM_HSCROLL ? SB_HORZ : SB_VERT, wParam);
            return 0;
        case WM_MOUSEMOVE:
            Raise(events_.mouseMove, PointOf(lParam), (wParam & MK_LBUTTON) != 0);
            return 0;
        case WM_LBUTTONUP:
            Raise(events_.mouseUp, kLeftButton);
            return 0;
        case WM_CAPTURECHANGED:
            Raise(events_.captureLost);
            return 0;
        case WM_CONTEXTMENU:
            RaiseContextMenu(PointOf(lParam));
            return 0;
        case WM_SYSCOLORCHANGE:
            Invalidate();
            return 0;
        case WM_SIZE:
            // The texts have another place now.
            if (!reason_.empty() || !note_.empty()) Invalidate();
            Raise(events_.sized);
            break;
        default:
            break;
    }
    return Default(message, wParam, lParam);
}

}  // namespace tessary
