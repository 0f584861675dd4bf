#include "helpers/files/file_name.h"

#include <windows.h>

#include <cstring>

namespace tessary::files {

std::wstring FileNameOf(const char* name) {
    const auto size = static_cast<int>(std::strlen(name));
    const int length = MultiByteToWideChar(CP_ACP, 0, name, size, nullptr, 0);
    std::wstring wide(static_cast<size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, name, size, wide.data(), length);
    return wide;
}

std::wstring FileNameOf(const wchar_t* name) {
    return name;
}

std::wstring ExtendedFullName(const std::wstring& name) {
    if (name.starts_with(LR"(\\?\)")) return name;
    const DWORD length = GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
    if (length == 0) return {};
    std::wstring full(length, L'\0');
    full.resize(GetFullPathNameW(name.c_str(), length, full.data(), nullptr));
    if (full.starts_with(LR"(\\.\)")) return {};
    return full.starts_with(LR"(\\)") ? LR"(\\?\UNC\)" + full.substr(2) : LR"(\\?\)" + full;
}

}  // namespace tessary::files
