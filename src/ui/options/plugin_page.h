// The page of the plug-ins: where they come from, and how each is doing.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "ui/form/list_view.h"
#include "ui/form/simple_controls.h"
#include "ui/options/option_page.h"
#include "ui/options/plugin_list.h"

namespace tessary {

// The settings windows of plug-ins and the clearing of errors act at once: they are no settings of
// the program's.
class PluginPage final : public OptionPage {
  public:
    // `pluginsChanged` is told, before `changed`, when loading the plug-ins may bring more now.
    PluginPage(OptionValues& options, std::function<void()> changed,
               std::function<void()> pluginsChanged)
        : OptionPage(options, std::move(changed)), pluginsChanged_(std::move(pluginsChanged)) {}

    // Whether the errors of a plug-in were cleared.
    bool HasForgiven() const { return hasForgiven_; }

    void ShowValues() override;
    void ShowState() override;

  private:
    void AttachControls() override;
    void cmdSPIFolder_Click(int folder);
    void cmdSPISetup_Click();
    void cmdSPIErrorClear_Click();
    // Once for each plug-in that may not be able to keep what is set.
    void TellUnwritableFolder(const std::wstring& plugin);
    void ShowPluginList(const std::wstring& selectedPath);
    void GiveFocusBack(HWND control);
    void ShowSelection();
    const PluginFacts* Selected() const;

    std::function<void()> pluginsChanged_;
    std::vector<PluginFacts> plugins_;
    bool hasForgiven_ = false;
    std::set<std::wstring> told_;  // of their folders; by path
    Button cmdSPIFolder_[kPluginFolderCount];
    ListView listSPI_;
    Label labelSPIEnds_;
    ListView listSPIError_;
    Button cmdSPISetup_;
    Button cmdSPIErrorClear_;
};

}  // namespace tessary
