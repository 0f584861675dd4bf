// Ends that plug-ins are to blame for: of a call that crashed and was caught, and of the process
// that a plug-in was called in. The settings store keeps them, per plug-in, as long as the failures
// (plugin_log.h).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "plugin/call_log.h"

namespace tessary {

// How a plug-in has ended its call, or its process.
enum class EndKind {
    kCaught,   // it crashed, and its process goes on
    kCrash,    // it crashed, and its process with it
    kExit,     // its process was ended in the middle, as by ExitProcess
    kSilence,  // it gave no sign of life, and its process was ended
    kLie,      // what came back cannot be, and its process was ended
    kMemory,   // it took too much memory, and its process was ended
};
constexpr size_t kEndKindCount = 6;

struct PluginEnd {
    PluginCall call;  // the function by the key of the error log
    EndKind kind = EndKind::kCaught;
};

// What is known of a plug-in's ends.
struct PluginEnds {
    std::array<int32_t, kEndKindCount> counts{};  // by EndKind
    std::wstring lastFile;                        // that was bound at the last one; may be empty

    int32_t Total() const;
    // Those that have cost a process.
    int32_t Processes() const { return Total() - counts[static_cast<size_t>(EndKind::kCaught)]; }

    // It is not to share its process with others any more.
    bool IsAlone() const { return Total() >= 2; }
    // It is not to be called any more, until its failures are forgotten.
    bool IsGivenUp() const { return Processes() >= 3; }
};

// Counts one: in the plug-in's error log too and, when its process has ended while the plug-in was
// being loaded, as a fatal load. All routines here raise RaisedError when the store cannot be
// accessed.
void CountEnd(const PluginEnd& end);

PluginEnds ReadEnds(std::wstring_view plugin);

// In words, kinds and last file; empty when there was none.
std::wstring TextOf(const PluginEnds& ends);

}  // namespace tessary
