// The control that shows one picture, at its own size and at any place of its area.
#pragma once

#include <ocidl.h>

#include <functional>
#include <string>

#include "app/base/handles.h"
#include "ui/form/message_loop.h"
#include "ui/form/timer.h"
#include "ui/form/wheel_notches.h"
#include "ui/form/window.h"

namespace tessary {

namespace handle_traits {
struct Picture : NullIsNone<IPicture*> {
    static void Close(IPicture* picture) { picture->Release(); }
};
}  // namespace handle_traits
using PictureReference = UniqueHandle<handle_traits::Picture>;

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
        std::function<void()> doubleClick;  // in place of the second press of the left button
        std::function<void(POINT at, bool leftButton)> mouseMove;
        std::function<void(int button)> mouseUp;
        std::function<void()> captureLost;
        std::function<void(int notches, int shift)> wheel;  // positive: away from the user
        std::function<void(POINT onScreen)> contextMenu;    // right click, or the menu key
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

    // Shows a bitmap picture of this size in pixels with its top left corner at `position`; takes a
    // reference of its own and releases the former picture's. A null picture empties the control.
    // Takes a reason away.
    void SetPicture(IPicture* picture, SIZE size, POINT position);

    // Tells in the middle of the empty control why it has no picture; readers of the screen find
    // that as the window's text.
    void SetReason(const std::wstring& reason);

    // Puts a short text upon whatever is shown, for two seconds or until the next one.
    void ShowNote(const std::wstring& note);
    const std::wstring& Note() const { return note_; }
    IPicture* Picture() const { return picture_.Get(); }
    // The picture's own bitmap, which lives as long as the picture; null without one.
    HBITMAP Bitmap() const;
    SIZE PictureSize() const { return size_; }

    // Moves the picture inside the area. What stays visible is moved on the screen, only what comes
    // into sight is painted.
    void MovePicture(POINT position);
    POINT PicturePosition() const { return position_; }

    // Paints what is out of date now, not when the message loop comes to it.
    void Refresh() const { UpdateWindow(Handle()); }

  private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    RECT PictureRectangle() const;
    COLORREF BackgroundColour() const;
    void Invalidate() const { InvalidateRect(Handle(), nullptr, FALSE); }
    void Paint() const;
    void PaintArea(HDC screen, const RECT& area) const;
    void PaintPicture(HDC screen, const RECT& visible) const;
    void ShowPointer() const;
    void RaiseContextMenu(POINT onScreen) const;
    void RaiseWheel(WPARAM wParam);
    void SendWheelBelowPointer(MSG& message) const;

    Events events_;
    PictureReference picture_;
    SIZE size_{};
    POINT position_{};
    HBRUSH background_ = nullptr;
    std::wstring reason_;
    std::wstring note_;
    Timer noteEnds_{[this] { ShowNote({}); }};
    WheelNotches notches_;
    MessageFilter wheel_{[this](MSG& message) {
        SendWheelBelowPointer(message);
        return false;
    }};
};

}  // namespace tessary
