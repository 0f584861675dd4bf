#include "app/base/helper_function.h"

#include "app/base/modGetFolder.h"

namespace tessary {

FARPROC HelperFunctionAddress(const wchar_t* library, const char* entry) {
    HMODULE module = GetModuleHandleW(library);
    if (module == nullptr) module = LoadLibraryW((AppFolder() + library).c_str());
    return module == nullptr ? nullptr : GetProcAddress(module, entry);
}

}  // namespace tessary
