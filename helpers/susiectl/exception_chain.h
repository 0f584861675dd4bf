// The thread's exception chain on x86: records on the stack, from FS:[0] outwards, each further up
// than the one before.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

struct StackLimits {
    ULONG_PTR low;   // lowest usable address
    ULONG_PTR high;  // first address behind
};

StackLimits ThisThreadsStackLimits();

// True when the chain leads from its innermost record out to `record`. Its handlers may be
// anything.
bool ExceptionChainReaches(const void* record);

// True when the system, which has looked at the chain, will ask its handlers from the innermost
// record out to `record`: else it asks none, or not all, and ends the process. `lastHandler` is
// that of the thread's outermost record when the chain was sound.
bool ExceptionChainIsAsked(const void* record, const void* lastHandler);

// Whether the system will ask the chain's first handler at least.
bool ExceptionChainBegins();

// The handler of the outermost record; null when the chain does not lead there.
const void* LastExceptionHandler();

}  // namespace tessary::susiectl
