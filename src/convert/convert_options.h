// What a run of the converter is to do.
#pragma once

#include "app/settings/modValue.h"
#include "helpers/saving/save_options.h"

namespace tessary {

// Taken from the user's settings once, at the run's beginning: what is changed meanwhile counts for
// the next one.
struct ConvertOptions {
    ConvertSettings convert;
    saving::SaveOptions save;
};

}  // namespace tessary
