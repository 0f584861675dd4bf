#include "helpers/system/system_library.h"

#include <string>

namespace tessary {
namespace {

// Windows 7 knows the flag for the system's folder only with an update of 2011, which has brought
// this function too. Without it, what the library needs is looked for beside the library first.
DWORD SearchFlags() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    return GetProcAddress(kernel, "AddDllDirectory") != nullptr ? LOAD_LIBRARY_SEARCH_SYSTEM32
                                                                : LOAD_WITH_ALTERED_SEARCH_PATH;
}

std::wstring SystemFolder() {
    std::wstring folder(GetSystemDirectoryW(nullptr, 0), L'\0');
    folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
    return folder;
}

}  // namespace

// By its full path: of a bare name the system would answer a library of that name that is in the
// process already, whoever has loaded it from wherever.
HMODULE SystemLibrary(const wchar_t* name) {
    return LoadLibraryExW((SystemFolder() + L'\\' + name).c_str(), nullptr, SearchFlags());
}

}  // namespace tessary
