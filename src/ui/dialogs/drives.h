// The drives of this computer, those of the network among them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tessary {

struct Drive {
    std::wstring root;  // with a trailing backslash
    std::wstring text;  // for the user: letter, and label or kind
};

// In the order of their letters. Only drives that are always there are asked for their label: a
// drive without a medium would keep the caller waiting.
std::vector<Drive> ListDrives();

// The system's window for giving a folder of the network a letter. NO_ERROR, -1 when the user has
// cancelled it, or the system's error.
DWORD ConnectNetworkDrive(HWND owner);

// What stands at the beginning of a full path: a drive's root, or a network's server and share,
// with a trailing backslash. Empty when the text is no full path.
std::wstring RootOf(const std::wstring& path);

}  // namespace tessary
