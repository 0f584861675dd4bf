// A control of the system inside one of our windows: what its parent is told about it arrives as
// events at the control's own object.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>

namespace tessary {

// The window belongs to its parent, which destroys it; Handle() is null from then on. An object
// serves one window at a time and may end before or after it.
class Control {
  public:
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    HWND Handle() const { return handle_; }

    // Takes over a control of a dialog that was made from a template. False when the dialog has no
    // control of that number.
    bool Attach(HWND dialog, int id);

    void SetText(const std::wstring& text);
    std::wstring Text() const;

    // An enabled control that has the keyboard focus hands it to its parent when it is disabled:
    // keys must not vanish.
    void SetEnabled(bool enabled);
    bool IsEnabled() const { return handle_ != nullptr && IsWindowEnabled(handle_) != FALSE; }

    void SetVisible(bool visible);
    void SetFocus() const;
    bool HasFocus() const { return handle_ != nullptr && ::GetFocus() == handle_; }

    // Puts the control into this rectangle of its parent, in pixels.
    void SetBounds(int left, int top, int width, int height);

    // The font stays the caller's.
    void SetFont(HFONT font);

    // Sees the control's keys first: the key code (VK_…) and the shift state (k…Mask of
    // picture_box.h); true keeps the key from the control.
    void OnKeyDown(std::function<bool(int keyCode, int shift)> handler) {
        keyDown_ = std::move(handler);
    }

    // Passes a message that a window got about one of its controls (WM_COMMAND, WM_NOTIFY,
    // WM_DRAWITEM, the scroll messages of sliders) on to the control's object. No answer when it is
    // about nothing of ours. Form and Dialog call this first.
    static std::optional<LRESULT> Reflect(UINT message, WPARAM wParam, LPARAM lParam);

  protected:
    Control() = default;
    ~Control();

    // Makes the window: visible, of a system class. `style` is the control's own; `id` the number
    // its parent knows it by (0: none).
    bool CreateChild(HWND parent, const wchar_t* className, DWORD style, DWORD extendedStyle = 0,
                     int id = 0, const wchar_t* text = L"");

    // After CreateChild and Attach.
    virtual void OnAttached() {}

    // What the control tells its parent: notification code and number of WM_COMMAND, a WM_NOTIFY
    // record, an owner-drawn item, a moved slider and how it was moved (TB_…).
    virtual void OnCommand(WORD /*notification*/, WORD /*id*/) {}
    virtual std::optional<LRESULT> OnNotify(NMHDR& /*header*/) { return std::nullopt; }
    virtual void OnDrawItem(const DRAWITEMSTRUCT& /*item*/) {}
    virtual void OnScroll(int /*code*/) {}

    // The control's own messages, before the system's procedure sees them.
    virtual std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // The system's procedure.
    LRESULT OwnDefault(UINT message, WPARAM wParam, LPARAM lParam) const {
        return CallWindowProcW(former_, handle_, message, wParam, lParam);
    }

    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(handle_, message, wParam, lParam);
    }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static Control* Of(HWND window);
    bool Adopt(HWND window);
    void LetGo();

    HWND handle_ = nullptr;
    WNDPROC former_ = nullptr;
    std::function<bool(int, int)> keyDown_;
};

}  // namespace tessary
