// Entry points of the helper libraries beside the program.
#pragma once

#include <windows.h>

namespace tessary {

// The address of an entry of a helper library, or null when the library or the entry is missing.
// Uses the copy that start-up made resident; a library that is not in the process yet is loaded
// from the application folder and stays.
FARPROC HelperFunctionAddress(const wchar_t* library, const char* entry);

// The same as a pointer of the entry's own type.
template <typename Function>
Function HelperFunction(const wchar_t* library, const char* entry) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(HelperFunctionAddress(library, entry)));
}

}  // namespace tessary
