// What the codes of exceptions tell.
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

// One of the processor's or system's errors. Others are thrown to be caught.
constexpr bool IsSystemError(DWORD code) {
    return code >> 28 == 0xC;
}

}  // namespace tessary::susiectl
