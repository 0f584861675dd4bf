// What the items of the menus do. Each feature registers its own commands; an item that nobody has
// registered is grey.
#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <string>

namespace tessary {

struct Command {
    std::function<void()> run = {};
    std::function<bool()> enabled =
        {};  // asked when a menu opens and before running; empty: always
    std::function<bool()> checked = {};  // asked when a menu opens; empty: never
    // The same; empty: as the menu has it.
    std::function<std::wstring()> caption = {};
    // Whether it may run while a picture is being loaded. Such a command must neither start another
    // load nor replace the current picture, the plug-ins or the settings.
    bool whileLoading = false;
};

class CommandTable {
  public:
    // Gives an item (a number of resource.h) its command, or another one.
    void Register(int id, Command command);

    // Whether somebody has given the item a command.
    bool IsRegistered(int id) const { return commands_.contains(id); }

    // Whether the item would run now.
    bool IsEnabled(int id) const;

    // Runs the item's command; false when it has none or must not run now.
    bool Run(int id) const;

    // Takes the commands that must not run while something is being read, to run them later; where
    // `takes` answers true the menus offer them meanwhile, and with them their keys.
    void OnTooEarly(std::function<bool()> takes, std::function<void(int id)> handler) {
        takesEarly_ = std::move(takes);
        tooEarly_ = std::move(handler);
    }

    // Told of each menu whose items are about to be shown: it may put others into it.
    void OnShow(std::function<void(HMENU menu)> handler) { shown_ = std::move(handler); }

    // Greys, enables and checks all items of a menu and its submenus, with their keys behind them.
    void ShowState(HMENU menu) const;

  private:
    bool IsPutOff(int id) const;

    std::map<int, Command> commands_;
    std::function<bool()> takesEarly_;
    std::function<void(int id)> tooEarly_;
    std::function<void(HMENU menu)> shown_;
};

}  // namespace tessary
