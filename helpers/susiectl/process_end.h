// The end of the process, where a plug-in has left nothing else.
#pragma once

namespace tessary::susiectl {

// What the process's exit status is then: the system's number for a damaged heap.
constexpr unsigned long kEndedByPlugin = 0xC0000374;

// At once: no code of any library runs any more, and no message of the system's appears. What the
// host has noted about the call stays.
[[noreturn]] void EndProcess();

}  // namespace tessary::susiectl
