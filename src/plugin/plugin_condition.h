// What a plug-in tells of its last call beside the result (docs/plugin-extension.md).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "helpers/susiectl/susie_interface.h"

namespace tessary {

struct PluginCondition {
    susie::Condition kind = susie::kConditionNone;
    std::wstring text = {};  // one line for the user; empty exactly for kConditionNone
};

// Makes one of what a plug-in has answered, whatever that is: values that nobody knows tell
// nothing, and a text that is missing is replaced by one of our own.
PluginCondition ConditionOf(int32_t answer, std::wstring_view text);

}  // namespace tessary
