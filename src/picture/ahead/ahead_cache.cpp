#include "picture/ahead/ahead_cache.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tessary {
namespace {

constexpr ptrdiff_t kMostUnwanted = 2;

}  // namespace

void AheadCache::SetBudget(size_t bytes) {
    budget_ = bytes;
    MakeRoom();
}

void AheadCache::SetWanted(std::vector<AheadEntry> wanted) {
    wanted_ = std::move(wanted);
    MakeRoom();
}

void AheadCache::Put(AheadPicture picture) {
    Drop(picture.entry);
    kept_.push_back(std::move(picture));
    MakeRoom();
}

bool AheadCache::Has(const AheadEntry& entry) const {
    return std::ranges::find(kept_, entry, &AheadPicture::entry) != kept_.end();
}

std::optional<AheadPicture> AheadCache::Find(const AheadEntry& entry, const FileStamp& stamp) {
    const auto found = std::ranges::find(kept_, entry, &AheadPicture::entry);
    if (found == kept_.end()) return std::nullopt;
    // What somebody else has freed is no picture any more.
    if (found->stamp == stamp && found->read.picture.IsThere()) return found->Another();
    kept_.erase(found);
    return std::nullopt;
}

bool AheadCache::IsWanted(const AheadPicture& kept) const {
    return std::ranges::find(wanted_, kept.entry) != wanted_.end();
}

std::vector<AheadPicture>::iterator AheadCache::LeastWanted() {
    const auto unwanted =
        std::ranges::find_if(kept_, [&](const AheadPicture& kept) { return !IsWanted(kept); });
    if (unwanted != kept_.end()) return unwanted;
    return std::ranges::max_element(kept_, {}, [&](const AheadPicture& kept) {
        return std::ranges::find(wanted_, kept.entry) - wanted_.begin();
    });
}

void AheadCache::MakeRoom() {
    size_t bytes = std::transform_reduce(kept_.begin(), kept_.end(), size_t{0}, std::plus{},
                                         [](const AheadPicture& kept) { return kept.Size(); });
    ptrdiff_t unwanted =
        std::ranges::count_if(kept_, [&](const AheadPicture& kept) { return !IsWanted(kept); });
    for (; bytes > budget_ || unwanted > kMostUnwanted; --unwanted) {
        const auto least = LeastWanted();
        bytes -= least->Size();
        kept_.erase(least);
    }
}

}  // namespace tessary
