// What the options dialog edits: a copy of the settings.
#pragma once

#include <cstdint>

#include "app/settings/modValue.h"
#include "ui/keys/key_map.h"

namespace tessary {

// The longest slide-show interval, in milliseconds.
constexpr int16_t kMostSlideShowTime = 30000;

struct OptionValues {
    GeneralSettings general;
    ConvertSettings convert;
    saving::SaveOptions saveOptions;
    int16_t fixSizeValue = kSizeModeOriginal;
    KeyMap keys;
    bool remembers = true;  // what was opened, and where the user stopped

    bool operator==(const OptionValues&) const = default;
};

// The program's present settings. What somebody has set to nonsense by hand is put right: beyond
// its range it is the nearest value that there is, and a switch that is not 1 is off.
OptionValues CurrentOptions();

// Makes them the program's settings. Blanks and quotes around plug-in folders are left out.
void SetOptions(const OptionValues& options);

// Whether other plug-ins, or the same ones in another way, are loaded with the one than with the
// other.
bool DifferInPlugins(const GeneralSettings& one, const GeneralSettings& other);

}  // namespace tessary
