// The system's dialog for choosing a folder.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tessary {

// Shows the dialog over `owner`: `prompt` stands above the tree, in which `start` is selected
// (empty or vanished: the desktop). The chosen folder, without a trailing backslash unless it is a
// drive; empty when the user cancels.
std::wstring BrowseForFolder(HWND owner, const std::wstring& title, const std::wstring& prompt,
                             const std::wstring& start);

// Answers the dialog instead of the user; an empty function gives it back to the user.
using FolderBrowserResponder = std::function<std::wstring(
    const std::wstring& title, const std::wstring& prompt, const std::wstring& start)>;
void SetFolderBrowserResponder(FolderBrowserResponder responder);

}  // namespace tessary
