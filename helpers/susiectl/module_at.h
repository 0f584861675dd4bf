// Which module an address lies in.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Null when it lies in none. The module is not referenced.
inline HMODULE ModuleAt(const void* address) {
    HMODULE module = nullptr;
    GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
        static_cast<const wchar_t*>(address), &module);
    return module;
}

}  // namespace tessary::susiectl
