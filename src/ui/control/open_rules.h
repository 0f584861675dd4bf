// The files that a file dialog has chosen.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessary {

struct ChosenFiles {
    std::wstring folder;  // of the files, with a trailing backslash
    std::vector<std::wstring> paths;
};

// Takes a file dialog's answer apart: one path, or a folder and the names in it, divided by NULs.
// Nothing for an empty text.
ChosenFiles FilesOfDialog(std::wstring_view fileName);

}  // namespace tessary
