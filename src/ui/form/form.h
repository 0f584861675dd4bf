// A top-level window whose messages arrive as events.
#pragma once

#include "ui/form/metrics.h"
#include "ui/form/window.h"

namespace tessary {

// What a form is made with.
struct FormDesign {
    const wchar_t* className;
    const wchar_t* caption;
    int menu = 0;  // resource numbers; 0: none
    int icon = 0;
    DWORD style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
    DWORD extendedStyle = 0;
};

// Life of a form: Load makes the hidden window and raises Form_Load; Show shows it; a close request
// raises Form_QueryUnload and, unless that refuses, Form_Unload while the window still stands and
// Form_Terminate after its end. The form may then be loaded again.
//
// Keys are commands in a form and its controls: input methods get them in text fields only.
class Form : public Window {
  public:
    // Makes the window, hidden, owned by `owner` if that is given. True also when it already
    // exists.
    bool Load(HWND owner = nullptr);

    // Asks the form to close, exactly as its close button does.
    void Unload();

    // Of a form that is a part of another window, which the system tells nothing: takes other
    // resolution, fonts or colours if there are any.
    void FollowMetrics();

  protected:
    explicit Form(const FormDesign& design) : design_(design) {}
    ~Form() = default;

    virtual void Form_Load() {}
    virtual void Form_QueryUnload(bool& /*cancel*/) {}
    virtual void Form_Unload() {}
    virtual void Form_Terminate() {}

    // The client area has a new size, in pixels. Not raised while the window is minimised.
    virtual void Form_Resize(int /*width*/, int /*height*/) {}

    // The smallest size that the user can give the window with the mouse, in pixels at 96 dpi.
    virtual SIZE MinimumSize() const { return {0, 0}; }

    // Resolution, fonts or colours have changed: time to make fonts and sizes anew. Form_Resize
    // follows.
    virtual void Form_MetricsChanged() {}

    // The user opens the menu bar: time to grey and check its items.
    virtual void Form_MenuOpen() {}

    // A menu item or an accelerator was chosen.
    virtual void Form_Command(int /*id*/) {}

    // Paints what shows between and behind the controls, in pixels of the client area. `context`
    // may be a control's or a picture's in memory, with other places around it.
    virtual void PaintBackground(HDC context) const;

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    // Size of the client area in pixels.
    SIZE ClientSize() const;

  private:
    void OnDestroyed() override { Form_Terminate(); }
    void SetIcons();
    bool IsMadeForSettings() const;
    void ChangeMetrics();

    FormDesign design_;
    NONCLIENTMETRICSW madeFor_{};  // what was in force when all was made
    UniqueIcon largeIcon_;
    UniqueIcon smallIcon_;
};

}  // namespace tessary
