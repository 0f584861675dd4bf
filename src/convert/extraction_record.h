// Which files in an expansion folder are copies of ours.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/base/handles.h"

namespace tessary {

// The extracted copies of one archive's members, noted in a hidden file in their folder before they
// are written: when the process is killed, the next run knows what is not the user's. Nobody else
// can hold the same record meanwhile. Where it cannot be written, nothing is noted.
class ExtractionRecord {
  public:
    // `folder` with its trailing backslash; it exists.
    explicit ExtractionRecord(const std::wstring& folder);
    ExtractionRecord(const ExtractionRecord&) = delete;
    ExtractionRecord& operator=(const ExtractionRecord&) = delete;
    // The file stays only with copies in it that were not removed.
    ~ExtractionRecord();

    // Whether a file's name is that of records.
    static bool IsNameOf(const std::wstring& path);

    // Deletes what a run that was killed has left, but for files that are `spared`, and begins
    // anew.
    void DeleteLeftovers(const std::function<bool(const std::wstring& path)>& isSpared);

    // A copy in the folder, or below it, is about to be written. Its name is free.
    void Add(const std::wstring& path);
    // It is gone, or no longer ours.
    void Remove(const std::wstring& path);

  private:
    void ReadLeftovers();
    void Begin();
    void Close();
    void Write(const std::wstring& text);

    std::wstring folder_;
    std::wstring path_;
    UniqueFile file_;
    bool isForeign_ = false;  // the file is somebody else's
    std::vector<std::wstring> leftovers_;
    std::set<std::wstring> copies_;  // below the folder
};

}  // namespace tessary
