// Files that are listed in a folder while their content lies elsewhere: in a cloud, or on a storage
// that is slow to reach. Whoever reads one makes the system fetch it, which may take long or fail;
// nobody is to do that only to find out what it is.
#pragma once

#include <functional>
#include <string>

namespace tessary {

// Whether a file of these attributes has to be fetched before it can be read. That it is to be kept
// on this disk, or need not be, does not tell whether it is there.
constexpr bool LiesElsewhere(unsigned long attributes) {
    constexpr unsigned long kOffline = 0x1000;
    constexpr unsigned long kRecallOnOpen = 0x40000;
    constexpr unsigned long kRecallOnDataAccess = 0x400000;
    return attributes != 0xFFFFFFFF &&
           (attributes & (kOffline | kRecallOnOpen | kRecallOnDataAccess)) != 0;
}

// The same of a file by its path; false when there is none. Nothing is fetched for the answer. Some
// storages leave the mark on what has been fetched: to be asked before that and not behind it.
bool IsNotOnThisDisk(const std::wstring& path);

// What the system does about such files, for tests to do in its place.
struct DistantFiles {
    std::function<bool(const std::wstring& path)> isElsewhere = {};
    // Called before each piece is fetched, on the thread that fetches; answers the system's error,
    // 0 for success.
    std::function<unsigned long(const std::wstring& path)> fetchPiece = {};
};

// Empty functions give their part back to the system.
void SetDistantFiles(DistantFiles files);
const DistantFiles& CurrentDistantFiles();

}  // namespace tessary
