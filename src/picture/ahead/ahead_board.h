// What is to be read ahead, what is being read, and what was: between the window's thread and those
// that read.
#pragma once

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "app/settings/listing_rules.h"
#include "picture/ahead/ahead_cache.h"
#include "plugin/own_plugins.h"

namespace tessary {

// What is wanted at a moment.
struct AheadPlan {
    // What is likely to be asked for next, the likeliest first; they are read in that order.
    std::vector<AheadEntry> next{};
    // What is shown, or about to be: it is kept, and not begun here.
    AheadEntry shown{};
    std::shared_ptr<const KnownPlugins> plugins{};
    ListingRules listing{};
    PreparePicture prepare{};
    size_t budget = 0;  // bytes of pictures that are kept
};

// How it goes with one thing to read, for both sides.
struct AheadProgress {
    std::atomic<bool> isWanted = true;  // false: it is given up
    std::atomic<int> done = 0;          // of the total; a total of 0: nobody knows
    std::atomic<int> total = 0;
};

// One thing to read, for one of the threads.
struct AheadTask {
    AheadEntry entry{};
    std::shared_ptr<const KnownPlugins> plugins{};
    ListingRules listing{};  // of an archive
    PreparePicture prepare{};
    uint32_t enough = 0;  // of ReadWatch
    std::shared_ptr<AheadProgress> progress{};
};

// Where threads that read get their tasks from, and bring the pictures to.
class ReadingBoard {
  public:
    // Waits for one, at most so long. Nothing: there is none.
    virtual std::optional<AheadTask> TakeTask(DWORD milliseconds) = 0;
    // What has come of it; nothing: no picture that could be shown without another look.
    virtual void Finish(const AheadTask& task, std::optional<AheadPicture> picture) = 0;
    virtual bool HasEnded() const = 0;

  protected:
    ~ReadingBoard() = default;
};

class AheadBoard final : public ReadingBoard {
  public:
    // `busy` is told whenever there begins to be something to read, and when there is nothing any
    // more. On any thread; it must not ask the board.
    explicit AheadBoard(size_t budget, std::function<void(bool)> busy = {})
        : busy_(std::move(busy)) {
        cache_.SetBudget(budget);
    }

    // --- The window's thread ---

    // What is being read and is wanted no more is given up.
    void SetPlan(AheadPlan plan);
    // A picture that was read otherwise, to be kept.
    void Put(AheadPicture picture);
    // One on the same memory, as AheadCache.
    std::optional<AheadPicture> Find(const AheadEntry& entry, const FileStamp& stamp);
    // Whether it was read and is kept, or is being read.
    bool Knows(const AheadEntry& entry) const;
    // Of what is being read and was not given up; null: it is not.
    std::shared_ptr<AheadProgress> ProgressOf(const AheadEntry& entry) const;
    bool IsBusy() const;
    // Until a task has ended, at most so long.
    void WaitForEnd(DWORD milliseconds);
    // It is not kept any more.
    void Drop(const AheadEntry& entry);
    // Nothing is planned and kept any more, and what is being read is given up.
    void Forget();
    // The same for good: the threads are to end.
    void End();

    // --- Those that read ---

    std::optional<AheadTask> TakeTask(DWORD milliseconds) override;
    // What could not be read is not tried again while it is planned.
    void Finish(const AheadTask& task, std::optional<AheadPicture> picture) override;
    bool HasEnded() const override { return hasEnded_; }

  private:
    bool IsToDo(const AheadEntry& entry) const;
    bool IsUnderWay(const AheadEntry& entry) const {
        return std::ranges::find(underWay_, entry, &AheadTask::entry) != underWay_.end();
    }
    void GiveUpAll();
    void TellBusy();

    std::function<void(bool)> busy_;
    bool isBusy_ = false;  // as it was told last
    mutable std::mutex mutex_;
    std::condition_variable planned_;
    std::condition_variable finished_;
    AheadPlan plan_;
    AheadCache cache_;
    std::vector<AheadTask> underWay_;
    std::vector<AheadEntry> tried_;  // of the plan's
    std::atomic<bool> hasEnded_ = false;
};

}  // namespace tessary
