#include "picture/ahead/ahead_board.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace tessary {
namespace {

bool Contains(const std::vector<AheadEntry>& entries, const AheadEntry& entry) {
    return std::ranges::find(entries, entry) != entries.end();
}

}  // namespace

void AheadBoard::SetPlan(AheadPlan plan) {
    const std::lock_guard lock(mutex_);
    for (const AheadTask& task : underWay_) {
        const bool isPlanned = Contains(plan.next, task.entry) || task.entry == plan.shown;
        if (!isPlanned) task.progress->isWanted = false;
    }
    std::erase_if(tried_, [&](const AheadEntry& tried) { return !Contains(plan.next, tried); });
    std::vector<AheadEntry> wanted{plan.shown};
    wanted.insert(wanted.end(), plan.next.begin(), plan.next.end());
    cache_.SetWanted(std::move(wanted));
    cache_.SetBudget(plan.budget);
    plan_ = std::move(plan);
    TellBusy();
    planned_.notify_all();
}

void AheadBoard::Put(AheadPicture picture) {
    const std::lock_guard lock(mutex_);
    cache_.Put(std::move(picture));
}

std::optional<AheadPicture> AheadBoard::Find(const AheadEntry& entry, const FileStamp& stamp) {
    const std::lock_guard lock(mutex_);
    return cache_.Find(entry, stamp);
}

bool AheadBoard::Knows(const AheadEntry& entry) const {
    const std::lock_guard lock(mutex_);
    return cache_.Has(entry) || IsUnderWay(entry);
}

std::shared_ptr<AheadProgress> AheadBoard::ProgressOf(const AheadEntry& entry) const {
    const std::lock_guard lock(mutex_);
    const auto task = std::ranges::find_if(underWay_, [&](const AheadTask& one) {
        return one.entry == entry && one.progress->isWanted;
    });
    return task != underWay_.end() ? task->progress : nullptr;
}

void AheadBoard::Drop(const AheadEntry& entry) {
    const std::lock_guard lock(mutex_);
    cache_.Drop(entry);
}

bool AheadBoard::IsBusy() const {
    const std::lock_guard lock(mutex_);
    return !underWay_.empty();
}

void AheadBoard::WaitForEnd(DWORD milliseconds) {
    std::unique_lock lock(mutex_);
    finished_.wait_for(lock, std::chrono::milliseconds(milliseconds));
}

void AheadBoard::GiveUpAll() {
    plan_ = {};
    cache_.Clear();
    tried_.clear();
    for (const AheadTask& task : underWay_)
        task.progress->isWanted = false;
    TellBusy();
}

// What was given up is at its end.
void AheadBoard::TellBusy() {
    const bool isBusy =
        std::ranges::any_of(plan_.next, [this](const auto& next) { return IsToDo(next); }) ||
        std::ranges::any_of(underWay_,
                            [](const AheadTask& task) { return task.progress->isWanted.load(); });
    if (std::exchange(isBusy_, isBusy) != isBusy && busy_) busy_(isBusy);
}

void AheadBoard::Forget() {
    const std::lock_guard lock(mutex_);
    GiveUpAll();
}

void AheadBoard::End() {
    const std::lock_guard lock(mutex_);
    GiveUpAll();
    hasEnded_ = true;
    planned_.notify_all();
}

bool AheadBoard::IsToDo(const AheadEntry& entry) const {
    return !IsUnderWay(entry) && !Contains(tried_, entry) && entry != plan_.shown &&
           !cache_.Has(entry);
}

std::optional<AheadTask> AheadBoard::TakeTask(DWORD milliseconds) {
    std::unique_lock lock(mutex_);
    std::vector<AheadEntry>::const_iterator entry;
    const auto isThere = [&] {
        if (hasEnded_) return true;
        entry = std::ranges::find_if(plan_.next, [&](const auto& next) { return IsToDo(next); });
        return entry != plan_.next.end();
    };
    if (!planned_.wait_for(lock, std::chrono::milliseconds(milliseconds), isThere) || hasEnded_) {
        return std::nullopt;
    }
    underWay_.push_back({.entry = *entry,
                         .plugins = plan_.plugins,
                         .listing = plan_.listing,
                         .prepare = plan_.prepare,
                         .progress = std::make_shared<AheadProgress>()});
    return underWay_.back();
}

void AheadBoard::Finish(const AheadTask& task, std::optional<AheadPicture> picture) {
    const std::lock_guard lock(mutex_);
    std::erase_if(underWay_,
                  [&](const AheadTask& other) { return other.progress == task.progress; });
    if (task.progress->isWanted) {
        if (picture) cache_.Put(*std::move(picture));
        // Also one that is too large to be kept: it would be read for ever.
        if (!cache_.Has(task.entry)) tried_.push_back(task.entry);
    }
    TellBusy();
    finished_.notify_all();
}

}  // namespace tessary
