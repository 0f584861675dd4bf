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

std::wstring RootOf(const std::wstring& name) {
    constexpr size_t kDriveRoot = 7;  // characters of `\\?\C:\`
    constexpr std::wstring_view kNetwork = LR"(\\?\UNC\)";
    if (!name.starts_with(kNetwork)) {
        return name.size() >= kDriveRoot && name[5] == L':' ? name.substr(0, kDriveRoot)
                                                            : std::wstring();
    }
    const size_t share = name.find(L'\\', kNetwork.size());
    const size_t end = share == name.npos ? name.npos : name.find(L'\\', share + 1);
    return end == name.npos ? std::wstring() : name.substr(0, end + 1);
}

std::wstring FolderOf(const std::wstring& name) {
    return name.substr(0, name.rfind(L'\\') + 1);
}

}  // namespace tessary::files
