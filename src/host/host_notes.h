// What a host process notes of its calls in the page that it shares with its program: who was being
// called when it ended.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "plugin/call_log.h"

namespace tessary {

// One plug-in and function, in memory that whoever ends the host may have ruined before.
struct HostNote {
    static constexpr size_t kFunctionRoom = 32;
    static constexpr size_t kPluginRoom = 1024;

    volatile uint32_t isThere;
    wchar_t function[kFunctionRoom];  // each ends with a zero
    wchar_t plugin[kPluginRoom];

    // Allocates nothing. What is too long is cut.
    void Write(std::wstring_view calledFunction, std::wstring_view calledPlugin);
    void Clear() { isThere = 0; }
};

struct HostNotes {
    HostNote call;    // the one under way
    HostNote thread;  // whose thread has crashed: stronger; of an empty path: nobody knows
};

// What a plug-in's windows and timers do between two requests, as a function.
inline constexpr wchar_t kWindowCall[] = L"Window";

// The functions that notes and failures may name; others were made up.
bool IsNotedFunction(std::wstring_view function);

// Whose call a host that has ended was in; nothing: nobody's. `asked`: what was asked of it then;
// of no plug-in while nothing was. `served`: the plug-ins that were asked for something there, in
// upper case. What cannot be blames the one that was asked.
std::optional<PluginCall> CulpritOf(const HostNotes& notes, const PluginCall& asked,
                                    const std::set<std::wstring>& served);

}  // namespace tessary
