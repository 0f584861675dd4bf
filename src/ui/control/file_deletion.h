// Deleting files of the user's: into the recycle bin or for good, and what he is asked on the way.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "files/recycle_bin.h"

namespace tessary {

enum class DeleteOutcome { kDeleted = 0, kAbort = 1, kIgnore = 2 };

// One deletion of as many files as it may be.
class FileDeletion {
  public:
    // `forGood`: past the bin.
    explicit FileDeletion(bool forGood) : forGood_(forGood) {}

    // Asks whether files are to be deleted for good, in words that say so; the user has to go out
    // of his way to say yes.
    static bool AskForGood(const std::vector<std::wstring>& paths);

    // Asks, once for all, about those of the files that no bin takes. Answers the files that are to
    // be deleted.
    std::vector<std::wstring> Begin(const std::vector<std::wstring>& paths);

    // Deletes a file whatever its attributes; one that is gone already counts as deleted. When the
    // system refuses, the user decides: abort, retry (asked again if it fails again) or ignore; the
    // file is then as it was.
    DeleteOutcome Delete(const std::wstring& path);

    // Those that came into the bin.
    const std::vector<BinnedFile>& Binned() const { return binned_; }

  private:
    DWORD TryToDelete(const std::wstring& path, DeleteOutcome& outcome);

    bool forGood_;
    std::vector<std::wstring> binless_;  // that the user has said yes about
    std::vector<BinnedFile> binned_;
    bool isOneOfMany_ = false;
};

}  // namespace tessary
