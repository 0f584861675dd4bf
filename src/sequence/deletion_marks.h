// The files that are marked for deletion, and what is known of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "plugin/file_stamp.h"
#include "sequence/entry_list.h"

namespace tessary {

// The same for all paths to one name in one folder, also of a file that does not exist: in upper
// and lower case, with "..", and through linked folders. Hard links of one file differ.
std::wstring EntryOf(const std::wstring& path);

struct DeletionMark {
    std::wstring path;   // that it was marked under
    std::wstring entry;  // EntryOf
    std::wstring file;   // its identity then
    std::optional<FileStamp> stamp;
};

// In the order in which they were marked. Whoever marks a file sees what it is then: what has
// become of it since must not be deleted for it.
class DeletionMarks : public EntryList<DeletionMark, &DeletionMark::path> {
  public:
    // False when the file is there already, under whatever path.
    bool Mark(const std::wstring& path);
    // Nothing when it is not marked under exactly that path.
    void Unmark(const std::wstring& path);

    // Whether there is another content, or another file, than the one that was marked. A file that
    // is gone has not changed.
    bool HasChanged(const std::wstring& path) const;

    // The path that the file was marked under which `path` leads to now; empty when there is none.
    std::wstring MarkOf(const std::wstring& path) const;
};

}  // namespace tessary
