// Several files of a run that are read at the same time, before their turn.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "convert/convert_options.h"
#include "convert/source_at_hand.h"
#include "picture/ahead/ahead_threads.h"

namespace tessary {

// Reads pictures in processes of their own, and makes the files that they are saved as. What it
// gives is what the run itself would have read at
// the file's turn: everything else it leaves to the run.
class FilesAhead {
  public:
    // The options are those of the run, which ends after this.
    FilesAhead(int threads, const ConvertOptions& options);

    // The file whose turn it is, and those whose turn comes next, in their order.
    void Plan(const std::wstring& atHand, const std::vector<std::wstring>& next);
    // What was read of the file, if it has not changed since; one that is being read is waited for.
    // It is not kept any more.
    std::optional<SourceAtHand> Take(const std::wstring& path);

  private:
    const ConvertOptions options_;
    AheadThreads threads_;
    std::shared_ptr<const KnownPlugins> plugins_;
    std::vector<std::wstring> planned_;
};

// How many files to read at the same time: `jobs` if it is not 0, else as many as the machine has
// processors, up to kMostJobs. 1: one after the other.
int ThreadsFor(int32_t jobs);

}  // namespace tessary
