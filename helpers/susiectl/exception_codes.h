// Exceptions that are no errors.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Raised to tell a listening debugger something (OutputDebugString, the name of a thread); without
// one the code goes on as if nothing had happened.
constexpr bool IsMessageToDebugger(DWORD code) {
    constexpr DWORD kPrintAnsi = 0x40010006;
    constexpr DWORD kPrintWide = 0x4001000A;
    constexpr DWORD kThreadName = 0x406D1388;
    return code == kPrintAnsi || code == kPrintWide || code == kThreadName;
}

}  // namespace tessary::susiectl
