// A window of our own class: registration, the window procedure and the boundary around it.
#pragma once

#include <windows.h>

namespace tessary {

class Window {
  public:
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // Null before the window is made and after it is destroyed.
    HWND Handle() const { return handle_; }

  protected:
    struct Creation {
        const wchar_t* className;
        const wchar_t* text = L"";
        DWORD style = 0;
        DWORD extendedStyle = 0;
        UINT classStyle = 0;
        HWND parent = nullptr;  // of a child, or the owner of a top-level window
        HMENU menu = nullptr;   // a bar, which the window then owns
    };

    Window() = default;
    // Destroys the window when it still exists; the handlers of derived classes no longer run then.
    ~Window();

    // Makes the window, hidden unless the style says otherwise. False when the system refuses. The
    // class is registered with the first window of its name, without a background: our windows
    // erase and paint all of themselves.
    bool Create(const Creation& creation);

    // Handles one message; what is not handled goes to Default(). What an override throws ends
    // there: the message then counts as handled.
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // Runs after the window's last message; Handle() is null by then.
    virtual void OnDestroyed() {}

    LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) const {
        return DefWindowProcW(handle_, message, wParam, lParam);
    }

  private:
    static LRESULT CALLBACK Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam);

    HWND handle_ = nullptr;
};

// Puts on the screen what the window and its children have to paint, and takes no other message
// from the queue: what follows may keep them from painting for long.
void PaintNow(HWND window);

// Passes on to a window's controls that the colours have changed: the system tells top-level
// windows only.
void TellColorChange(HWND window);

// The module that holds the program's resources.
inline HINSTANCE ProgramInstance() {
    return GetModuleHandleW(nullptr);
}

}  // namespace tessary
