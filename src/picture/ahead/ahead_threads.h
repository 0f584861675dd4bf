// Threads that read ahead, and what they have read.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "app/base/worker_thread.h"
#include "picture/ahead/ahead_board.h"
#include "picture/ahead/ahead_reader.h"

namespace tessary {

class AheadThreads {
  public:
    // So many threads, which begin with the first plan.
    // `busy`: as AheadBoard tells.
    AheadThreads(int count, AheadSource source, std::function<void(bool)> busy = {});
    AheadThreads(const AheadThreads&) = delete;
    AheadThreads& operator=(const AheadThreads&) = delete;
    // What is under way is given up. The threads are not waited for long.
    ~AheadThreads();

    AheadBoard& Board() { return *board_; }
    void SetPlan(AheadPlan plan);

    // The picture, if it was read and its file has not changed since; it stays on the board. One
    // that is being read is waited for as long as there are signs of life and whoever waits for
    // plug-ins (call_watch.h) wants that.
    std::optional<AheadPicture> Await(const AheadEntry& entry);

    // Until nothing is under way, but not long.
    void WaitForRest();

  private:
    int count_;
    AheadSource source_;
    std::shared_ptr<AheadBoard> board_;
    std::vector<std::unique_ptr<Worker>> workers_;
};

}  // namespace tessary
