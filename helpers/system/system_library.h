// Libraries of Windows in whose place the system would take a file of their name beside the
// program.
#pragma once

#include <windows.h>

namespace tessary {

// The library `name` of the system's own folder, and what it needs from there too; it stays in the
// process. Null when the system has none of that name. Any thread may ask.
HMODULE SystemLibrary(const wchar_t* name);

// An entry of such a library as a pointer of its own type; null when there is none.
template <typename Function>
Function SystemFunction(const wchar_t* library, const char* entry) {
    const HMODULE module = SystemLibrary(library);
    if (module == nullptr) return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, entry)));
}

}  // namespace tessary
