// Showing a file in the system's own window of its folder.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tessary {

// Opens the folder of a file with the file selected.
void ShowInFolder(HWND owner, const std::wstring& path);

// Shows files in their folders instead of the system; an empty function gives that back to it.
void SetFolderOpener(std::function<void(const std::wstring& path)> opener);

}  // namespace tessary
