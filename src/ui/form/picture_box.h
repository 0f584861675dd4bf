// The control that shows one picture: the keyboard, mouse and scroll bars of it, and the texts upon
// it. What the picture looks like is its owner's.
#pragma once

#include <functional>
#include <string>

#include "ui/form/message_loop.h"
#include "ui/form/timer.h"
#include "ui/form/wheel_notches.h"
#include "ui/form/window.h"

namespace tessary {

// Mouse buttons of PictureBox events, and the bits of their shift state.
constexpr int kLeftButton = 1;
constexpr int kShiftMask = 1;
constexpr int kCtrlMask = 2;
constexpr int kAltMask = 4;

// The shift state of the keyboard as it is now.
int CurrentShiftState();

// Paints straight onto the screen, each pixel once: the picture, then the background around it. The
// wheel is the picture's while the pointer is over it, whoever has the keyboard, and the window's
// below the pointer when that is another of the program's.
class PictureBox : public Window {
  public:
    // What the owner wants to know; positions are pixels of the control's area.
    struct Events {
        std::function<void(int keyCode, int shift)> keyDown;
        std::function<void(int button, POINT at)> mouseDown;
        std::function<void(POINT at)>
            doubleClick;  // in place of the second press of the left button
        std::function<void(POINT at, bool leftButton)> mouseMove;
        std::function<void(int button)> mouseUp;
        std::function<void()> captureLost;
        std::function<void(int notches, int shift, POINT at)>
            wheel;                                           // positive: away from the user
        std::function<void(double factor, POINT at)> pinch;  // two fingers, since the last time
        // A scroll bar was used: SB_HORZ or SB_VERT, SB_…, and for SB_THUMBTRACK the place.
        std::function<void(int bar, int code, int place)> scroll;
        // The control has another size, with its scroll bars.
        std::function<void()> sized;
        // Nudge was called.
        std::function<void()> nudged;
        // Paints what lies in `area` of the picture; the result is the picture's rectangle.
        std::function<RECT(HDC screen, const RECT& area)> paint;
        std::function<void(POINT onScreen)> contextMenu;  // right click, or the menu key
        std::function<const wchar_t*()> pointer;  // the mouse pointer to show (IDC_…); null: none
    };

    // False when the system refuses the control.
    bool Create(HWND parent, Events events);

    // Puts the control into this rectangle of its parent.
    void SetBounds(int left, int top, int width, int height);
    SIZE AreaSize() const;

    // The brush for what the picture leaves free, which must outlive the control; null for the
    // system's.
    void SetBackground(HBRUSH background);
    COLORREF BackgroundColour() const;

    // The control's size with its scroll bars.
    SIZE WholeSize() const;

    // Shows a scroll bar (SB_HORZ, SB_VERT) for `whole` pixels of which the area's are seen from
    // `place` on, or takes it away.
    void SetScrollBar(int bar, bool isThere, int whole, int place);

    // Tells in the middle of the empty control why it has no picture; readers of the screen find
    // that as the window's text.
    void SetReason(const std::wstring& reason);
    const std::wstring& Reason() const { return reason_; }

    // Puts a short text upon whatever is shown, for two seconds or until the next one.
    void ShowNote(const std::wstring& note);
    const std::wstring& Note() const { return note_; }

    // From any thread: has `nudged` raised on the control's own.
    void Nudge() const { PostMessageW(Handle(), kNudgeMessage, 0, 0); }

    // All of it is out of date, or a part.
    void Invalidate() const { InvalidateRect(Handle(), nullptr, FALSE); }
    void Invalidate(const RECT& part) const { InvalidateRect(Handle(), &part, FALSE); }
    // Paints what is out of date now, not when the message loop comes to it.
    void Refresh() const { UpdateWindow(Handle()); }

  private:
    static constexpr UINT kNudgeMessage = WM_APP + 1;

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void Paint() const;
    void PaintArea(HDC screen, const RECT& area) const;
    void ShowPointer() const;
    void RaiseContextMenu(POINT onScreen) const;
    void RaiseWheel(WPARAM wParam, LPARAM lParam);
    bool RaisePinch(LPARAM lParam);
    void RaiseScroll(int bar, WPARAM wParam) const;
    void SendWheelBelowPointer(MSG& message) const;

    Events events_;
    HBRUSH background_ = nullptr;
    std::wstring reason_;
    std::wstring note_;
    Timer noteEnds_{[this] { ShowNote({}); }};
    WheelNotches notches_;
    ULONGLONG pinch_ = 0;  // how far the fingers were apart
    MessageFilter wheel_{[this](MSG& message) {
        SendWheelBelowPointer(message);
        return false;
    }};
};

}  // namespace tessary
