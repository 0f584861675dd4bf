#include "ui/dialogs/folder_listing.h"

#include <windows.h>
// The shell needs the types of windows.h.
#include <shlwapi.h>

#include <algorithm>

#include "app/base/handles.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

// How long a listing may look ahead into its folders, to know which of them have folders.
constexpr DWORD kLookAheadMilliseconds = 50;

constexpr DWORD kHiddenOrSystem = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// Calls `visit` with the name of each folder until it answers false.
template <typename Visit>
DWORD ForEachFolder(const std::wstring& folder, Visit visit) {
    const std::wstring prefix = folder.ends_with(L'\\') ? folder : folder + L'\\';
    WIN32_FIND_DATAW entry;
    const UniqueFind find(FindFirstFileExW(ExtendedPath(prefix + L'*').c_str(), FindExInfoBasic,
                                           &entry, FindExSearchLimitToDirectories, nullptr, 0));
    if (!find) {
        // An empty drive has not even the entries that a folder has for itself.
        const DWORD error = GetLastError();
        return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
    }
    do {
        const std::wstring name = entry.cFileName;
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) continue;
        if ((entry.dwFileAttributes & kHiddenOrSystem) != 0 || name == L"." || name == L"..") {
            continue;
        }
        if (!visit(name)) return ERROR_SUCCESS;
    } while (FindNextFileW(find.Get(), &entry));
    const DWORD error = GetLastError();
    return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

bool HasFolders(const std::wstring& folder) {
    bool found = false;
    const DWORD error = ForEachFolder(folder, [&](const std::wstring&) {
        found = true;
        return false;
    });
    return found || error != ERROR_SUCCESS;  // opening it tells the error
}

}  // namespace

FolderListing ListFolders(const std::wstring& folder) {
    FolderListing listing;
    listing.error = ForEachFolder(folder, [&](const std::wstring& name) {
        listing.folders.push_back({name});
        return true;
    });
    std::sort(listing.folders.begin(), listing.folders.end(),
              [](const ListedFolder& left, const ListedFolder& right) {
                  return StrCmpLogicalW(left.name.c_str(), right.name.c_str()) < 0;
              });
    const std::wstring prefix = folder.ends_with(L'\\') ? folder : folder + L'\\';
    const DWORD start = GetTickCount();
    for (ListedFolder& listed : listing.folders) {
        if (GetTickCount() - start > kLookAheadMilliseconds) break;
        listed.mayHaveFolders = HasFolders(prefix + listed.name);
    }
    return listing;
}

std::wstring FolderErrorText(const std::wstring& folder, DWORD error) {
    const auto reason = [error]() -> std::wstring {
        switch (error) {
            case ERROR_NOT_READY:
            case ERROR_NO_MEDIA_IN_DRIVE:
                return L"ドライブの準備ができていません。ディスクが入っているか確認してください。";
            case ERROR_ACCESS_DENIED:
                return L"フォルダを開く権限がありません。";
            case ERROR_FILE_NOT_FOUND:
            case ERROR_PATH_NOT_FOUND:
            case ERROR_DIRECTORY:
            case ERROR_INVALID_NAME:
            case ERROR_INVALID_DRIVE:
                return L"フォルダが見つかりません。";
            case ERROR_BAD_NETPATH:
            case ERROR_BAD_NET_NAME:
            case ERROR_NETNAME_DELETED:
            case ERROR_NETWORK_UNREACHABLE:
            case ERROR_UNEXP_NET_ERR:
            case ERROR_SEM_TIMEOUT:
                return L"ネットワークのフォルダに接続できません。";
            default:
                return L"フォルダを開けません。(エラー " + std::to_wstring(error) + L")";
        }
    };
    return reason() + L"\r\n" + folder;
}

}  // namespace tessary
