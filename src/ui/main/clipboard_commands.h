// Copy and paste of the Edit menu.
#pragma once

#include "ui/form/accelerators.h"
#include "ui/main/frmMain.h"

namespace tessary {

class ClipboardCommands {
  public:
    // Registers both with the window's menu items, and their keys in the main window and in those
    // that it owns; in a text field the keys remain the field's. The window must outlive this, and
    // this the window's last message.
    explicit ClipboardCommands(frmMain& window);
    ClipboardCommands(const ClipboardCommands&) = delete;
    ClipboardCommands& operator=(const ClipboardCommands&) = delete;

    // Puts the current picture on the clipboard in its own size, not in that of the view: what is
    // pasted elsewhere should not depend on how large this window shows it. With alpha where it has
    // one, and as the file that it is, for file managers.
    void menuEditCopy_Click();

    // Makes the clipboard's picture the current one and shows it, a PNG file before a bitmap;
    // copied files are opened as dropped ones are. Whoever has put it there may make
    // it only now: the window stays alive meanwhile, as during any other read. What cannot be
    // pasted leaves everything as it is, and the user is told why.
    void menuEditPaste_Click();

  private:
    void ShowPasted(Picture picture);
    bool AreKeysOurs(HWND focused) const;
    bool TakesUselessPaste(const MSG& message);

    frmMain& window_;
    Accelerators accelerators_;
    // A grey menu item takes no key, but whoever presses it is to learn why nothing comes.
    MessageFilter uselessPaste_{[this](MSG& message) { return TakesUselessPaste(message); }};
};

}  // namespace tessary
