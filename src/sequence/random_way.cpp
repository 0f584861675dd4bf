#include "sequence/random_way.h"

#include <algorithm>

namespace tessary {
namespace {

// How far back it leads.
constexpr size_t kLongestWay = 10000;

}  // namespace

void RandomWay::Forget() {
    way_.clear();
    come_.clear();
    coming_.clear();
    at_ = 0;
}

// The user may have chosen a file himself: the way goes on from there.
void RandomWay::Join(const Files& files) {
    const std::wstring current = files.Current();
    if (current.empty() || IsOnWay(files)) return;
    if (!way_.empty()) way_.resize(at_ + 1);
    way_.push_back(current);
    come_.insert(current);
    at_ = way_.size() - 1;
}

std::optional<int> RandomWay::Next(const Files& files, bool goesOn, KindSource& kinds) {
    Join(files);
    while (at_ + 1 < way_.size()) {
        const int index = files.IndexOf(way_[at_ + 1]);
        if (index >= 0) {
            ++at_;
            return index;
        }
        way_.erase(way_.begin() + static_cast<std::ptrdiff_t>(at_) + 1);
    }
    bool isOver = coming_.empty() && !Shuffle(files);
    if (isOver && goesOn) {
        come_.clear();
        come_.insert(files.Current());
        isOver = !Shuffle(files);
    }
    const std::optional<int> drawn = isOver ? std::nullopt : Draw(files, kinds);
    if (!drawn) return drawn;
    if (way_.size() >= kLongestWay) way_.erase(way_.begin());
    way_.push_back(files.Text(*drawn));
    at_ = way_.size() - 1;
    return drawn;
}

std::optional<int> RandomWay::Back(const Files& files) {
    Join(files);
    while (at_ > 0) {
        const int index = files.IndexOf(way_[--at_]);
        if (index >= 0) return index;
        way_.erase(way_.begin() + static_cast<std::ptrdiff_t>(at_));
    }
    return std::nullopt;
}

std::wstring RandomWay::Coming(const Files& files) const {
    if (at_ + 1 < way_.size()) return way_[at_ + 1];
    const bool isKnown = !coming_.empty() && MayCome(files, coming_.back());
    return isKnown ? files.Text(coming_.back()) : std::wstring();
}

bool RandomWay::MayCome(const Files& files, int index) const {
    return index < files.Count() && files.At(index).isWanted && !come_.contains(files.Text(index));
}

// False when all have come. Files that the list has got since the last time come now.
bool RandomWay::Shuffle(const Files& files) {
    coming_.clear();
    for (int index = 0; index < files.Count(); ++index) {
        if (MayCome(files, index)) coming_.push_back(index);
    }
    std::ranges::shuffle(coming_, random_);
    return !coming_.empty();
}

std::optional<int> RandomWay::Draw(const Files& files, KindSource& kinds) {
    const int total = static_cast<int>(coming_.size());
    for (int done = 0; !coming_.empty() || Shuffle(files); ++done) {
        const int index = coming_.back();
        coming_.pop_back();
        if (!MayCome(files, index)) continue;
        const std::wstring path = files.Text(index);
        const bool isKnown = kinds.IsKnown(path);
        come_.insert(path);
        if (isKnown) return index;
        if (!kinds.GoesOn(index, std::min(done, total), total)) return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace tessary
