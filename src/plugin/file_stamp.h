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

    bool operator==(const FileStamp&) const = default;
};

// Nothing when there is no plain file of that name.
std::optional<FileStamp> StampOf(const std::wstring& path);

}  // namespace tessary
