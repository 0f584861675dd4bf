#include "picture/ahead/thumb_board.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "app/base/text.h"

namespace tessary {
namespace {

constexpr size_t kMostBytes = size_t{64} << 20;  // that are kept in memory

// How much larger than the small picture one has to be that it is made of.
constexpr uint32_t kFiner = 2;

std::wstring KeyOf(const AheadEntry& entry, const FileStamp& stamp, const ThumbMaking& making) {
    const auto part = [](auto value) { return L'|' + std::to_wstring(value); };
    return ToUpper(entry.path) + part(entry.member) + part(entry.page) + part(stamp.size) +
           part(stamp.changed) + part(making.side) +
           part(making.ground.isSquares ? -1 : static_cast<int>(making.ground.level));
}

}  // namespace

ThumbBoard::Name ThumbBoard::NameOf(const ThumbEntry& entry) {
    return {entry.entry.path,
            uint64_t{entry.entry.page} << 32 | static_cast<uint32_t>(entry.entry.member)};
}

ThumbBoard::KeptList::iterator ThumbBoard::FindKept(const ThumbEntry& entry) {
    const auto found = places_.find(NameOf(entry));
    return found == places_.end() || found->second->entry != entry ? kept_.end() : found->second;
}

void ThumbBoard::Want(std::vector<ThumbEntry> entries, const ThumbMaking& making) {
    const std::lock_guard lock(mutex_);
    const bool isOther = !making.IsLike(making_);
    if (isOther) {
        ++makings_;
        kept_.clear();
        places_.clear();
        keptBytes_ = 0;
    }
    for (const UnderWay& under : underWay_) {
        const bool isWanted = std::ranges::find(entries, under.entry) != entries.end();
        if (isOther || !isWanted) under.progress->isWanted = false;
    }
    making_ = making;
    entries_ = std::move(entries);
    wantedNames_.clear();
    for (const ThumbEntry& entry : entries_)
        wantedNames_.insert(NameOf(entry));
    wanted_.notify_all();
}

Thumb ThumbBoard::Find(const ThumbEntry& entry) {
    const std::lock_guard lock(mutex_);
    const auto found = FindKept(entry);
    if (found == kept_.end()) return {};
    kept_.splice(kept_.begin(), kept_, found);
    return found->thumb;
}

void ThumbBoard::Hold(Reason reason, bool holds) {
    const std::lock_guard lock(mutex_);
    held_ = holds ? held_ | reason : held_ & ~unsigned{reason};
    if (held_ == 0) wanted_.notify_all();
}

void ThumbBoard::GiveUp() {
    const std::lock_guard lock(mutex_);
    for (const UnderWay& under : underWay_)
        under.progress->isWanted = false;
}

void ThumbBoard::Forget() {
    GiveUp();
    const std::lock_guard lock(mutex_);
    ++makings_;
    entries_.clear();
    wantedNames_.clear();
    kept_.clear();
    places_.clear();
    keptBytes_ = 0;
}

bool ThumbBoard::IsBusy() const {
    const std::lock_guard lock(mutex_);
    return !underWay_.empty();
}

void ThumbBoard::End() {
    GiveUp();
    const std::lock_guard lock(mutex_);
    hasEnded_ = true;
    wanted_.notify_all();
}

// --- Those that read ---

std::optional<ThumbBoard::UnderWay> ThumbBoard::Begin() {
    if (held_ != 0) return std::nullopt;
    for (const ThumbEntry& entry : entries_) {
        const bool isBegun =
            std::ranges::find(underWay_, entry, &UnderWay::entry) != underWay_.end();
        if (isBegun || FindKept(entry) != kept_.end()) continue;
        underWay_.push_back({entry, std::make_shared<AheadProgress>(), makings_});
        return underWay_.back();
    }
    return std::nullopt;
}

std::optional<AheadTask> ThumbBoard::TakeTask(DWORD milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    std::unique_lock lock(mutex_);
    while (!hasEnded_) {
        std::optional<UnderWay> next = Begin();
        if (!next) {
            if (wanted_.wait_until(lock, end) == std::cv_status::timeout) return std::nullopt;
            continue;
        }
        const ThumbMaking making = making_;
        lock.unlock();
        const AheadEntry& entry = next->entry.entry;
        const std::optional<FileStamp> stamp =
            mayRead_(entry.path) ? StampOf(entry.path) : std::nullopt;
        std::optional<Picture> found;
        if (stamp) {
            next->key = KeyOf(entry, *stamp, making);
            found = packs_.Find(next->key);
        }
        if (stamp && !found) {
            AheadTask task{
                .entry = entry,
                .plugins = making.plugins,
                .listing = making.listing,
                .prepare = [side = making.side, ground = making.ground](
                               const Picture& whole) { return ShrunkPicture(whole, side, ground); },
                .enough = static_cast<uint32_t>(making.side) * kFiner,
                .progress = next->progress};
            lock.lock();
            for (UnderWay& under : underWay_)
                if (under.progress == next->progress) under.key = next->key;
            return task;
        }
        lock.lock();
        EndOf(*next);
        if (next->making == makings_) {
            Keep(next->entry, found ? Thumb{ThumbState::kThere,
                                            std::make_shared<const Picture>(std::move(*found))}
                                    : Thumb{ThumbState::kLeftAlone});
        }
        lock.unlock();
        news_();
        lock.lock();
    }
    return std::nullopt;
}

void ThumbBoard::EndOf(const UnderWay& under) {
    std::erase_if(underWay_, [&](const UnderWay& one) { return one.progress == under.progress; });
}

void ThumbBoard::Finish(const AheadTask& task, std::optional<AheadPicture> picture) {
    std::unique_lock lock(mutex_);
    const auto found = std::ranges::find(underWay_, task.progress, &UnderWay::progress);
    if (found == underWay_.end()) return;
    const UnderWay under = *found;
    EndOf(under);
    std::shared_ptr<const Picture> small;
    if (picture && picture->prepared) {
        small = std::make_shared<const Picture>(std::move(picture->prepared));
    }
    // What was given up tells nothing, and what was made otherwise serves nobody.
    if (under.making == makings_ && (small || under.progress->isWanted)) {
        Keep(under.entry, {small ? ThumbState::kThere : ThumbState::kFailed, small});
    }
    lock.unlock();
    picture.reset();
    if (small) packs_.Put(under.key, *small);
    news_();
}

void ThumbBoard::Keep(const ThumbEntry& entry, Thumb thumb) {
    const size_t size = sizeof(Kept) + (thumb.picture ? thumb.picture->Bits().size() : 0);
    const Name name = NameOf(entry);
    if (const auto former = places_.find(name); former != places_.end()) {
        keptBytes_ -= former->second->size;
        kept_.erase(former->second);
        places_.erase(former);
    }
    kept_.push_front({entry, std::move(thumb), size});
    places_[name] = kept_.begin();
    keptBytes_ += size;
    // What is wanted stays: nobody would ask for it once more.
    for (auto last = kept_.end(); keptBytes_ > kMostBytes && last != kept_.begin();) {
        --last;
        const Name other = NameOf(last->entry);
        if (wantedNames_.contains(other)) continue;
        keptBytes_ -= last->size;
        places_.erase(other);
        last = kept_.erase(last);
    }
}

}  // namespace tessary
