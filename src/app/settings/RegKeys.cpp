#include "app/settings/RegKeys.h"

#include <cstring>

#include "app/base/handles.h"

namespace tessary {
namespace {

constexpr REGSAM kReadWriteAccess =
    0x2003F;  // STANDARD_RIGHTS_READ with every right on the key itself
constexpr DWORD kValueCharacters = 1024;

}  // namespace

std::wstring GetRegistryString(HKEY root, std::wstring_view subKey, std::wstring_view valueName) {
    UniqueKey key;
    if (RegOpenKeyExW(root, std::wstring(subKey).c_str(), 0, kReadWriteAccess, key.Receive()) !=
        ERROR_SUCCESS) {
        return {};
    }
    wchar_t buffer[kValueCharacters + 1] = {};
    DWORD size = kValueCharacters * sizeof(wchar_t);
    DWORD type = REG_NONE;
    if (RegQueryValueExW(key.Get(), std::wstring(valueName).c_str(), nullptr, &type,
                         reinterpret_cast<BYTE*>(buffer), &size) != ERROR_SUCCESS) {
        return {};
    }
    switch (type) {
        case REG_SZ:
        case REG_EXPAND_SZ:
            return buffer;  // up to the first NUL
        case REG_DWORD: {
            DWORD number = 0;
            std::memcpy(&number, buffer, sizeof(number));
            return std::to_wstring(number);
        }
        default:
            return {};
    }
}

bool SetRegistryString(HKEY root, std::wstring_view subKey, std::wstring_view valueName,
                       std::wstring_view text) {
    SECURITY_ATTRIBUTES security{};
    security.nLength = 50;
    security.bInheritHandle = TRUE;
    wchar_t keyClass[] = L"1";
    UniqueKey key;
    if (RegCreateKeyExW(root, std::wstring(subKey).c_str(), 0, keyClass, REG_OPTION_NON_VOLATILE,
                        kReadWriteAccess, &security, key.Receive(), nullptr) != ERROR_SUCCESS) {
        return false;
    }
    const std::wstring value(text.empty() ? L" " : text);
    // The length leaves the terminating NUL out: readers of this value have always found it so.
    return RegSetValueExW(key.Get(), std::wstring(valueName).c_str(), 0, REG_SZ,
                          reinterpret_cast<const BYTE*>(value.c_str()),
                          static_cast<DWORD>(value.size()) * sizeof(wchar_t)) == ERROR_SUCCESS;
}

}  // namespace tessary
