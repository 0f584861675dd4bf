// The commands that open files and folders: they fill the control bar's file list.
#pragma once

#include "ui/dialogs/DOpenForm.h"
#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"

namespace tessary {

struct ScanRequest;

class OpenCommands {
  public:
    // Registers both with the window's menu items. The window and the bar must outlive this, and
    // this the window's last message.
    OpenCommands(frmMain& window, ControlBar& bar);
    OpenCommands(const OpenCommands&) = delete;
    OpenCommands& operator=(const OpenCommands&) = delete;

    // Shows the files that the user chooses in the system's dialog.
    void menuFileOpen_Click();

    // Shows the files of a folder that the user chooses, with those below it if he wants. The main
    // window is out of his reach meanwhile.
    void menuOpenFolder_Click();

  private:
    bool ChooseFolder(ScanRequest& request);
    void OpenFolder(const ScanRequest& request);

    frmMain& window_;
    ControlBar& bar_;
    DOpenForm folderDialog_{L"フォルダを開く"};
    bool isChoosing_ = false;  // a dialog of ours is open
};

}  // namespace tessary
