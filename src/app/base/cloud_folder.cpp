#include "app/base/cloud_folder.h"

#include <windows.h>

#include "app/base/text.h"
#include "helpers/system/system_library.h"

namespace tessary {
namespace {

std::wstring WithoutBackslash(std::wstring folder) {
    if (folder.ends_with(L'\\')) folder.pop_back();
    return folder;
}

// The folders of the accounts that are signed in; older systems know no more.
bool IsBelowVariable(const std::wstring& folder, const wchar_t* name) {
    wchar_t root[MAX_PATH]{};
    const DWORD length = GetEnvironmentVariableW(name, root, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) return false;
    const std::wstring start = WithoutBackslash(root) + L'\\';
    return EqualsIgnoreCase((folder + L'\\').substr(0, start.size()), start);
}

// Whether a provider has registered a folder around it; from Windows 10 on.
bool HasSyncRoot(const std::wstring& folder) {
    using GetSyncRoot =
        HRESULT(WINAPI*)(const wchar_t* path, int what, void* info, DWORD size, DWORD* filled);
    constexpr int kBasicInfo = 0;
    const auto getSyncRoot = SystemFunction<GetSyncRoot>(L"cldapi.dll", "CfGetSyncRootInfoByPath");
    LARGE_INTEGER fileId{};
    DWORD filled = 0;
    return getSyncRoot != nullptr &&
           SUCCEEDED(getSyncRoot(folder.c_str(), kBasicInfo, &fileId, sizeof(fileId), &filled));
}

}  // namespace

bool IsInCloud(const std::wstring& folder) {
    const std::wstring path = WithoutBackslash(folder);
    for (const wchar_t* const name : {L"OneDrive", L"OneDriveConsumer", L"OneDriveCommercial"}) {
        if (IsBelowVariable(path, name)) return true;
    }
    return HasSyncRoot(path);
}

}  // namespace tessary
