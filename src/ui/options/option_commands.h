// The commands of the option and help menus.
#pragma once

#include "ui/main/frmMain.h"
#include "ui/options/option_values.h"

namespace tessary {

class OptionCommands {
  public:
    // Registers the menu items with the window, which must outlive this, and this the window's last
    // message.
    explicit OptionCommands(frmMain& window);
    OptionCommands(const OptionCommands&) = delete;
    OptionCommands& operator=(const OptionCommands&) = delete;

    // Shows the options dialog over `owner`, beginning with that page (k…Page of frmOption.h). What
    // the user confirms is written to the store at once; the plug-ins are loaded anew when it
    // concerns them. Does nothing while a file is being read or a plug-in called.
    void ShowOptions(HWND owner, int page);

    void menuOptionSetup_Click();
    // Asks for one of the three plug-in folders and loads the plug-ins in it.
    void menuOptionSPIFolder_Click(int folder);
    void menuHelpAbout_Click();
    void menuHelpSPIAbout_Click();

  private:
    void Apply(const OptionValues& options, HWND owner);
    void ReloadPlugins(HWND owner);

    frmMain& window_;
};

}  // namespace tessary
