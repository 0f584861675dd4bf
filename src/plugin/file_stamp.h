// Whether a file is still the one that was looked at.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tessary {

// A file's size in bytes and the time of its last change, in the system's units of 100 ns.
struct FileStamp {
    uint64_t size = 0;
    uint64_t changed = 0;
    // Of ExactStampOf, where the file system knows them: when anything about the file was changed
    // last, its date too, and which file it is.
    uint64_t touched = 0;
    uint64_t identity = 0;

    bool operator==(const FileStamp&) const = default;
};

// Nothing when there is no plain file of that name.
std::optional<FileStamp> StampOf(const std::wstring& path);

// The same for those who keep what they have read for long: a file that was replaced by one of its
// size and date is not the same. It is opened for that.
std::optional<FileStamp> ExactStampOf(const std::wstring& path);

}  // namespace tessary
