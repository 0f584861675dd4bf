// The files of a run, in the order in which they are converted.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "convert/convert_monitor.h"

namespace tessary {

class ExtractionRecord;

// A file that is to be converted: one of the user's, or a member of an archive.
struct WorkEntry {
    std::wstring path{};      // full path; empty: a member that was not extracted
    std::wstring source{};    // full path of the user's file: this one, or the archive around it
    std::wstring member{};    // its name in the archive; empty for a file of the user's
    std::wstring saveName{};  // the name, without folder, that it is saved by; empty: its own
    std::wstring damage{};    // what its archive has lost of it, for the user; empty: nothing
    std::wstring folder{};    // that it is converted into, with its trailing backslash
    int32_t depth = 0;        // in how many archives it is
    bool isNumbered = false;  // another member has the name that it would be saved by
    // Of an extracted member: the files of its name beside which it lies, and what knows it as a
    // copy of ours.
    std::vector<std::wstring> beside{};
    std::shared_ptr<ExtractionRecord> record{};

    bool IsExtracted() const { return depth > 0; }
};

// The files of the user: all into `targetFolder`, or with `keepFolders` into folders below it that
// are called as their own, from the deepest one on that they have in common.
std::vector<WorkEntry> EntriesOf(const std::vector<ConvertSource>& sources,
                                 const std::wstring& targetFolder, bool keepFolders);

// Indexes count from 1 to UpperBound. What is expanded from archives is added at the end.
class WorkList {
  public:
    // `last` come behind all that the others bring.
    WorkList(std::vector<WorkEntry> first, std::vector<WorkEntry> last);

    int32_t UpperBound() const { return static_cast<int32_t>(entries_.size() + last_.size()); }
    const WorkEntry& At(int32_t index) const;
    // For an entry that was added.
    void Set(int32_t index, WorkEntry entry);
    // The entry's file has moved.
    void SetPath(int32_t index, const std::wstring& path);
    // Adds so many empty entries; answers the upper bound that they begin behind.
    int32_t Grow(int32_t count);
    // To be called when an entry's turn has come.
    void Reach(int32_t index);

    // Whether a path is an entry's, or was.
    bool Holds(const std::wstring& path) const;

  private:
    std::vector<WorkEntry> entries_;
    std::vector<WorkEntry> last_;            // those that follow them
    std::unordered_set<std::wstring> held_;  // in upper case
};

}  // namespace tessary
