#include "picture/frames/frame_store.h"

#include <algorithm>
#include <utility>

namespace tessary {
namespace {

// What a small frame costs all the same.
constexpr size_t kLeastBytes = size_t{64} << 10;

size_t BytesOf(const Frame& frame) {
    return std::max(frame.picture.Info().size() + frame.picture.Bits().size(), kLeastBytes);
}

}  // namespace

void FrameStore::Begin(uint32_t count) {
    count_ = count;
    frames_.clear();
    bytes_ = 0;
    largest_ = 0;
}

const Frame* FrameStore::Find(uint32_t index) const {
    const auto found = frames_.find(index);
    return found == frames_.end() ? nullptr : &found->second;
}

std::map<uint32_t, Frame>::const_iterator FrameStore::Farthest(uint32_t shown) const {
    // The last one before `shown`, else the last of all.
    const auto behind = frames_.lower_bound(shown);
    return std::prev(behind == frames_.begin() ? frames_.end() : behind);
}

std::optional<uint32_t> FrameStore::Wanted(uint32_t shown) const {
    uint32_t wanted = shown;
    for (; frames_.contains(wanted); wanted = wanted + 1 == count_ ? 0 : wanted + 1) {
        if (Distance(wanted, shown) + 1 == count_) return std::nullopt;
    }
    if (HasRoomFor(largest_) || Distance(Farthest(shown)->first, shown) > Distance(wanted, shown)) {
        return wanted;
    }
    return std::nullopt;
}

void FrameStore::Put(uint32_t index, Frame frame, uint32_t shown) {
    const size_t bytes = BytesOf(frame);
    largest_ = std::max(largest_, bytes);
    while (!HasRoomFor(bytes)) {
        const auto last = Farthest(shown);
        bytes_ -= BytesOf(last->second);
        frames_.erase(last);
    }
    if (frames_.insert_or_assign(index, std::move(frame)).second) bytes_ += bytes;
}

}  // namespace tessary
