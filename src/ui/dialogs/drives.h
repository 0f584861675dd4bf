// The drives of this computer.
#pragma once

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

// What stands at the beginning of a full path: a drive's root, or a network's server and share,
// with a trailing backslash. Empty when the text is no full path.
std::wstring RootOf(const std::wstring& path);

}  // namespace tessary
