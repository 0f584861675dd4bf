// The folders that the user moves and copies files to, from one run of the program to the next.
//
// They are his own choice, as bookmarks are: kept also while nothing is remembered, and when what
// is remembered is forgotten. The section `TargetFolders` of the settings store has a value for
// each, by its number. Nothing is kept between two calls, and nothing here throws but for want of
// memory.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tessary {

constexpr int kMostTargetFolders = 10;

// A folder keeps its number, by whose key it is chosen, whatever becomes of others.
struct TargetFolder {
    int number = 0;        // from 0
    std::wstring path;     // full
    uint64_t lastUse = 0;  // a later one is larger
};

// In the order of their numbers.
std::vector<TargetFolder> TargetFolders();

// Takes in a folder that was chosen, or used once more: a new one under the first free number, else
// in place of the one that was not used for longest.
void KeepTargetFolder(const std::wstring& path);
void DropTargetFolder(const std::wstring& path);

}  // namespace tessary
