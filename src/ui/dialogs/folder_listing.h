// The folders in a folder, for a tree that shows them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tessary {

struct ListedFolder {
    std::wstring name;
    bool mayHaveFolders = true;  // false: it has none
};

struct FolderListing {
    DWORD error = ERROR_SUCCESS;  // the system's; the list is then incomplete
    std::vector<ListedFolder> folders;
};

// The folders directly in `folder` but hidden and system ones, sorted as the shell does. May block
// as long as a network does.
FolderListing ListFolders(const std::wstring& folder);

// What the user is told when a folder cannot be shown.
std::wstring FolderErrorText(const std::wstring& folder, DWORD error);

}  // namespace tessary
