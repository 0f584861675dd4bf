// Ends that plug-ins are to blame for: of a call that crashed and was caught, and of the process
// that a plug-in was called in.
#pragma once

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

struct PluginEnd {
    PluginCall call;  // the function by the key of the error log
    EndKind kind = EndKind::kCaught;
};

// Counts it in the plug-in's error log and, when the process has ended while the plug-in was being
// loaded, as a fatal load. Raises RaisedError when the store cannot be accessed.
void CountEnd(const PluginEnd& end);

}  // namespace tessary
