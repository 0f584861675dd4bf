#include "app/base/modGetFolder.h"

#include <windows.h>
// The shell needs the types of windows.h.
#include <shlobj.h>

#include "app/base/paths.h"

namespace tessary {
namespace {

std::wstring ExecutablePath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

}  // namespace

const std::wstring& AppFolder() {
    static const std::wstring folder = FolderOf(ExecutablePath());
    return folder;
}

std::wstring WindowsFolder() {
    wchar_t buffer[256];
    const UINT length = GetWindowsDirectoryW(buffer, 256);
    return AddBackslash(std::wstring_view(buffer, length < 256 ? length : 0));
}

std::wstring LocalDataFolder() {
    wchar_t folder[MAX_PATH]{};
    const HRESULT result =
        SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder);
    return SUCCEEDED(result) ? AddBackslash(folder) + LR"(Tessary_Viewer\)" : std::wstring();
}

std::wstring TemporaryFolder() {
    wchar_t buffer[MAX_PATH + 1];
    const DWORD length = GetTempPathW(MAX_PATH + 1, buffer);
    return AddBackslash(std::wstring_view(buffer, length <= MAX_PATH ? length : 0));
}

}  // namespace tessary
