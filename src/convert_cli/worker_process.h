// The process that does the work, and the one that sees to it: a plug-in can end its process at any
// time, with any status.
#pragma once

#include <optional>
#include <string>

namespace tessary {

// Whether this is the process that was started to do the work.
bool IsWorker();

// In the worker: what the run has come to. A plug-in that ends the process later changes nothing
// about it.
void TellVerdict(int status);

// In the worker: bytes for the process that has started it, in their order; from any thread.
void NoteForOverseer(const std::string& bytes);

// What became of a worker.
struct WorkerEnd {
    std::optional<int> verdict;  // what it has told; nothing: it was ended before
    unsigned long exitCode = 0;
    std::string notes;  // without a verdict: what it has noted, as far as it could
};

// Starts this program anew with the same command line and waits for its end. Ctrl+C is left to it
// meanwhile; when this process is ended it ends as well. Nothing when it cannot be started.
std::optional<WorkerEnd> RunWorker();

}  // namespace tessary
