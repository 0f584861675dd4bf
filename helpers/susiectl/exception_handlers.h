// Which exception handlers the system calls, on x86. Any other on a thread's chain it takes for an
// attack: it asks nobody, and ends the process.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// What holds for the process: the program file's, the user's and the administrator's choice.
struct HandlerRules {
    bool inData = false;            // in pages that are not for code
    bool outsideImages = false;     // in memory that is no program file's
    bool checksWholeChain = false;  // before it asks the first handler
};

HandlerRules CurrentHandlerRules();

// Whether the system calls a handler at this address, which may be anything. Program files may say
// that they have none, or list theirs.
bool IsCalled(const void* handler, const HandlerRules& rules);

}  // namespace tessary::susiectl
