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

// True when the chain is sound from its innermost record out to `record`: the system will then ask
// the handlers in between, and `record`'s last.
bool ExceptionChainReaches(const void* record);

}  // namespace tessary::susiectl
