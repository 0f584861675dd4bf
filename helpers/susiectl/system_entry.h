// Entries of ntdll.dll that no import library has everywhere.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Null when the system does not have it.
template <typename Function>
Function SystemEntry(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

}  // namespace tessary::susiectl
