#include "sequence/spreads.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tessary {

void Spreads::Follow(uint64_t revision, int count, bool coverIsAlone) {
    count_ = count;
    const bool isSame = revision_ == revision;
    const bool hadCover = std::exchange(coverIsAlone_, coverIsAlone);
    if (isSame && hadCover == coverIsAlone) return;
    revision_ = revision;
    begins_.clear();
    if (!isSame) alone_.clear();
}

void Spreads::Tell(int index, bool isAlone) {
    if (isAlone) {
        alone_.insert(index);
    } else {
        alone_.erase(index);
    }
}

Spread Spreads::At(int index) const {
    if (alone_.contains(index) || (coverIsAlone_ && index == 0)) return {index, 1};
    // The entries around it that go by twos.
    int begin = coverIsAlone_ ? 1 : 0;
    int end = count_;
    const auto alone = alone_.upper_bound(index);
    if (alone != alone_.begin()) begin = std::max(begin, *std::prev(alone) + 1);
    if (alone != alone_.end()) end = std::min(end, *alone);
    const auto kept = begins_.upper_bound(index);
    if (kept != begins_.begin()) begin = std::max(begin, *std::prev(kept));
    if (kept != begins_.end()) end = std::min(end, *kept);
    const int first = index - (index - begin) % 2;
    return {first, first + 1 < end ? 2 : 1};
}

void Spreads::Keep(const Spread& spread) {
    begins_.insert(spread.first);
    begins_.insert(spread.first + spread.count);
}

bool Spreads::Shift(int index) {
    const Spread now = At(index);
    // One that is left over finds the entry before it.
    const int begin = now.count == 2 ? now.first + 1 : now.first - 1;
    if (alone_.contains(index) || begin < (coverIsAlone_ ? 1 : 0)) return false;
    begins_.clear();
    begins_.insert(begin);
    return At(index) != now;
}

}  // namespace tessary
