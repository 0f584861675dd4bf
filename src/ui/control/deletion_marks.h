// What is known of the files that are marked for deletion.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "plugin/file_stamp.h"

namespace tessary {

// The same for all paths to one name in one folder, also of a file that does not exist: in upper
// and lower case, with "..", and through linked folders. Hard links of one file differ.
std::wstring EntryOf(const std::wstring& path);

// Each by the path that it was marked under. Whoever marks a file sees what it is then: what has
// become of it since must not be deleted for it.
class DeletionMarks {
  public:
    // False when the file is there already, under whatever path.
    bool Add(const std::wstring& path);
    void Remove(const std::wstring& path) { marks_.erase(path); }
    void Clear() { marks_.clear(); }

    // Whether there is another content, or another file, than the one that was marked. A file that
    // is gone has not changed.
    bool HasChanged(const std::wstring& path) const;

    // The path that the file was marked under which `path` leads to now; empty when there is none.
    std::wstring MarkOf(const std::wstring& path) const;

  private:
    struct Mark {
        std::wstring entry;
        std::wstring file;  // its identity
        std::optional<FileStamp> stamp;
    };
    std::map<std::wstring, Mark> marks_;
};

}  // namespace tessary
