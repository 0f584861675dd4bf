// The commands that open the batch converter.
#pragma once

#include <string>
#include <vector>

#include "ui/convert/frmConvertAll.h"
#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"

namespace tessary {

class ConvertCommands {
  public:
    // Registers the menu items with the window. The window and the bar must outlive this, and this
    // the window's last message. `showOptions`: as of frmConvertAll.
    ConvertCommands(frmMain& window, const ControlBar& bar,
                    frmConvertAll::OptionsOpener showOptions = {});
    ConvertCommands(const ConvertCommands&) = delete;
    ConvertCommands& operator=(const ConvertCommands&) = delete;

    // Hands all files being viewed to the converter.
    void menuFileSaveAll_Click();

    // Opens the converter without files.
    void menuFileConvertAll_Click();

  private:
    void Convert(const std::vector<std::wstring>& files);

    frmMain& window_;
    const ControlBar& bar_;
    frmConvertAll converter_;
};

}  // namespace tessary
