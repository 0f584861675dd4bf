#include "helpers/susiectl/library_search.h"

#include <windows.h>

namespace tessary::susiectl {
namespace {

std::wstring ProgramFolder() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()))) ==
           path.size())
        path.resize(path.size() * 2);
    path.resize(length);
    path.resize(path.find_last_of(L'\\') + 1);
    return path;
}

// Empty when no folder is set.
std::wstring ExtraFolder() {
    std::wstring folder(GetDllDirectoryW(0, nullptr), L'\0');
    folder.resize(GetDllDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    return folder;
}

}  // namespace

LibrarySearchScope::LibrarySearchScope() : before_(ExtraFolder()) {
    SetDllDirectoryW(ProgramFolder().c_str());
}

// The empty text keeps the current folder out of later searches too.
LibrarySearchScope::~LibrarySearchScope() {
    SetDllDirectoryW(before_.c_str());
}

}  // namespace tessary::susiectl
