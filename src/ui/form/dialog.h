// A dialog made from a template of the program's resources.
#pragma once

#include <windows.h>

#include <optional>

#include "app/base/handles.h"
#include "ui/form/anchors.h"
#include "ui/form/message_loop.h"

namespace tessary {

// Texts and layout follow the system's message font and the resolution of the screen. The keyboard
// works as in every dialog: Tab and mnemonics move, Enter presses the default button, Esc is
// cancel.
//
// Life: Show or ShowModal makes the window and raises Dialog_Load, where a derived class attaches
// its controls (Control::Attach) and fills them; Close ends it after Dialog_Unload. It may be shown
// again. In this run of the program it comes back where it was last, a sizeable one in its size.
class Dialog {
  public:
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    // Null before and after its showing.
    HWND Handle() const { return handle_; }

    // Shows the dialog over `owner`, keeps the user out of the program's other windows, and returns
    // what Close was given; IDCANCEL also when the dialog cannot be made or its Dialog_Load throws.
    int ShowModal(HWND owner);

    // Shows the dialog beside the others, above `owner`. False when it cannot be made.
    bool Show(HWND owner);

    // Closes the dialog; not asked any more.
    void Close(int result);

  protected:
    // `resource` is the template's number. A template with a sizing border (WS_THICKFRAME) gives
    // the smallest size.
    explicit Dialog(int resource) : resource_(resource) {}
    ~Dialog();

    virtual void Dialog_Load() {}
    virtual void Dialog_Unload() {}

    // The button IDOK, or Enter.
    virtual void Dialog_OK() { Close(IDOK); }
    // The button IDCANCEL, Esc, or the close button.
    virtual void Dialog_Cancel() { Close(IDCANCEL); }

    // Sees every message after the controls' own; no answer leaves it to the system. What it throws
    // ends there.
    virtual std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

    // In Dialog_Load: which edges of the dialog a control keeps its distance to (AnchorEdges).
    void Anchor(int id, unsigned edges) { anchors_.Bind(id, edges); }

  private:
    static INT_PTR CALLBACK Procedure(HWND handle, UINT message, WPARAM wParam, LPARAM lParam);
    bool Load();
    void PlaceWindow();
    void RememberPlace() const;
    void ChangeResolution(int newDpi, const RECT& suggested);
    SIZE SmallestSize() const;

    int resource_;
    HWND handle_ = nullptr;
    bool modal_ = false;
    int dpi_ = USER_DEFAULT_SCREEN_DPI;
    Anchors anchors_;
    UniqueFont font_;                      // of another resolution than the first
    std::optional<MessageFilter> filter_;  // of a modeless one
};

}  // namespace tessary
