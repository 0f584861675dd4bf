#include "ui/main/command_table.h"

#include "ui/main/menu_keys.h"

#include <utility>

#include "ui/form/activity.h"
#include "ui/form/menu.h"

namespace tessary {

void CommandTable::Register(int id, Command command) {
    commands_[id] = std::move(command);
}

bool CommandTable::IsEnabled(int id) const {
    const auto found = commands_.find(id);
    if (found == commands_.end()) return false;
    const Command& command = found->second;
    if (IsReadUnderWay() && !command.whileLoading) return false;
    return !command.enabled || command.enabled();
}

bool CommandTable::IsPutOff(int id) const {
    const auto found = commands_.find(id);
    if (found == commands_.end() || found->second.whileLoading || !IsReadUnderWay()) return false;
    return (!found->second.enabled || found->second.enabled()) && takesEarly_ && takesEarly_();
}

bool CommandTable::Run(int id) const {
    if (!IsEnabled(id)) {
        if (IsPutOff(id)) tooEarly_(id);
        return false;
    }
    // A copy: the command may register others.
    const std::function<void()> run = commands_.at(id).run;
    run();
    return true;
}

void CommandTable::ShowState(HMENU menu) const {
    if (shown_) shown_(menu);
    for (const auto& [id, command] : commands_) {
        if (command.caption && !MenuCaption(menu, id).empty())
            SetMenuCaption(menu, id, command.caption());
    }
    ShowKeysIn(menu);
    ForEachMenuCommand(menu, [&](int id) {
        const auto found = commands_.find(id);
        const bool checked =
            found != commands_.end() && found->second.checked && found->second.checked();
        SetMenuItemState(menu, id, IsEnabled(id) || IsPutOff(id), checked);
    });
}

}  // namespace tessary
