// What a plug-in has failed with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "plugin/clsSusie.h"

namespace tessary {

struct PluginFailure {
    uint32_t result = 0;     // its answer; kResultUnexpected for an error that is not the plug-in's
    std::wstring what;       // what could not be done, for the user
    std::wstring why;        // the reason in words; empty: unknown, or it is `what`
    std::wstring function;   // where it happened
    std::wstring lastError;  // the plug-in object's last error
    susie::Condition condition = susie::kConditionNone;  // what the plug-in itself tells of it
};

// Of the error that a member of the plug-in object has just raised.
PluginFailure FailureOf(const clsSusie& plugin, const PluginError& error);

// Runs a member of the plug-in object; nothing for a success.
template <typename Member>
std::optional<PluginFailure> FailureIn(const clsSusie& plugin, Member&& member) {
    try {
        member();
        return std::nullopt;
    } catch (const PluginError& error) {
        return FailureOf(plugin, error);
    }
}

}  // namespace tessary
