// The command that saves the shown picture.
#pragma once

#include <functional>

#include "app/settings/saver_format.h"
#include "ui/dialogs/save_dialog.h"
#include "ui/main/frmMain.h"

namespace tessary {

class SaveCommands {
  public:
    // Asks the user for a file; as ShowSaveDialog does.
    using Chooser = std::function<bool(HWND owner, const SaveDialogRequest& request)>;

    // Registers the menu item with the window, which must outlive this, and this the window's last
    // message.
    explicit SaveCommands(frmMain& window, Chooser choose = ShowSaveDialog);
    SaveCommands(const SaveCommands&) = delete;
    SaveCommands& operator=(const SaveCommands&) = delete;

    // Saves the current picture in its own size under a name that the user chooses, whose extension
    // decides over the chosen type. When that takes long, a window tells how far it is and stops
    // it. The first time the dialog begins beside the picture and with its own type where that can
    // be written, later with what was chosen last. The folder is remembered with the settings.
    void menuFileSaveAs_Click();

  private:
    // What is saved under.
    struct Choice {
        std::wstring path;
        const SaverFormat* format;
    };
    std::wstring FolderToBegin() const;
    const SaverFormat& FormatToBegin() const;
    SaveDialogRequest RequestFor(Choice& chosen) const;
    bool MayReplace(const Choice& chosen) const;
    void Save(const Choice& chosen);

    frmMain& window_;
    Chooser choose_;
    const SaverFormat* format_ = nullptr;  // chosen last
};

}  // namespace tessary
