// The folder that the list is of: its files come behind one that was opened alone, and whenever
// something changes in it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/base/worker_thread.h"
#include "picture/read/arrangement.h"
#include "ui/form/timer.h"

namespace tessary {

// Looks on a thread, behind the picture's back.
class FolderFollower {
  public:
    // `take` gets the files of the folder as they are to be listed, and the place of the one that
    // was opened, which is among them under the path that it was opened by; -1 when there was none,
    // and later. Answering false it is asked again.
    using Take = std::function<bool(std::vector<ListedFile>& files, int opened)>;
    // No look begins while `waits` answers true: the plug-ins have not told yet what they read.
    FolderFollower(Take take, std::function<bool()> waits);
    FolderFollower(const FolderFollower&) = delete;
    FolderFollower& operator=(const FolderFollower&) = delete;
    // Leaves behind what is stuck in the system.
    ~FolderFollower() { End(); }

    // Brings the neighbours of the file with that full path, and follows their folder.
    void Bring(const std::wstring& path);
    // Only follows a folder, with a trailing backslash, whose files are listed already.
    void Follow(const std::wstring& folder);
    // Of no folder any more.
    void End();

    // In which order the files are to come, from the next look on.
    void SetOrder(const EntryOrder& order) { order_ = order; }

    // The program itself has changed something in there: what was seen before does not count.
    void LookAnew();

    // Whether it is worth waiting for neighbours: they are on their way, and not for too long.
    bool AreComing() const;

  private:
    struct Look;

    void Begin(const std::wstring& folder);
    void Tick();
    void TakeLook();
    bool IsDue();

    Take take_;
    std::function<bool()> waits_;
    std::wstring folder_;  // empty: none
    EntryOrder order_;
    std::wstring opened_;     // whose neighbours are to come; empty: they are there
    ULONGLONG begin_ = 0;     // of looking for these; tick counts, milliseconds
    ULONGLONG changed_ = 0;   // the first change that was not looked at; 0: none
    ULONGLONG lastLook_ = 0;  // when it ended
    ULONGLONG lookTook_ = 0;
    std::shared_ptr<Look> look_;
    std::shared_ptr<void> watch_;  // of the system, signalled by changes; null: it tells none
    std::optional<Worker> worker_;
    Timer timer_;
};

}  // namespace tessary
