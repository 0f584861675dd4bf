#include "ui/main/appearance_commands.h"

#include "app/settings/modValue.h"
#include "res/resource.h"
#include "ui/form/appearance.h"
#include "ui/form/dress.h"

namespace tessary {

void RegisterAppearanceCommands(CommandTable& commands) {
    for (int16_t choice = 0; choice < kAppearances; ++choice) {
        commands.Register(commandAppearance_0 + choice,
                          {.run =
                               [choice] {
                                   Values().general.appearance = choice;
                                   SetAppearance(choice);
                               },
                           .checked = [choice] { return Values().general.appearance == choice; },
                           .whileLoading = true});
    }
}

}  // namespace tessary
