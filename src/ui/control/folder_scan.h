// Collecting files of folders without keeping the window waiting.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "app/base/scan_folders.h"
#include "ui/form/worker.h"

namespace tessary {

// ScanFolders on a thread of its own. It runs until it is done or this object ends.
class FolderScan {
  public:
    explicit FolderScan(const ScanRequest& request);
    FolderScan(const FolderScan&) = delete;
    FolderScan& operator=(const FolderScan&) = delete;
    // Leaves behind a scan that is stuck in the system.
    ~FolderScan();

    // Waits until there is news, the scan has ended or the time is over, and handles messages
    // meanwhile. False when the program is about to end.
    bool Wait(DWORD milliseconds);

    // Adds what was found since the last call to `files`; answers how far the scan is.
    ScanNews Take(std::vector<FoundFile>& files);

    bool HasEnded() const { return worker_.HasEnded(); }

    // Ends the scan; what it has found stays to be taken. Does not wait for long.
    void Stop();

    // After the end: the result of ScanFolders. Raises what went wrong beside that.
    unsigned long Error() const;

  private:
    struct Shared;

    std::shared_ptr<Shared> shared_;
    Worker worker_;
};

}  // namespace tessary
