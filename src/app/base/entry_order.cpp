#include "app/base/entry_order.h"

#include <algorithm>
#include <numeric>
#include <string>

#include "app/base/natural_key.h"
#include "app/base/paths.h"

namespace tessary {
namespace {

// What one entry is compared by.
struct Keyed {
    uint64_t number = 0;
    std::string folder{};
    std::string name{};
};

// FNV-1a over the seed and the name, and a last mixing: the names differ at their ends.
uint64_t RandomNumber(std::wstring_view path, uint32_t seed) {
    uint64_t hash = 14695981039346656037ULL ^ seed;
    for (const wchar_t letter : path)
        hash = (hash ^ static_cast<uint16_t>(letter)) * 1099511628211ULL;
    hash = (hash ^ (hash >> 33)) * 0xff51afd7ed558ccdULL;
    return hash ^ (hash >> 33);
}

uint64_t NumberOf(const OrderedEntry& entry, const EntryOrder& order) {
    switch (order.by) {
        case OrderBy::kListed:
            return entry.place;
        case OrderBy::kDate:
            return entry.time;
        case OrderBy::kSize:
            return entry.size;
        case OrderBy::kRandom:
            return RandomNumber(entry.path, order.seed);
        case OrderBy::kName:
        case OrderBy::kType:
            break;
    }
    return 0;
}

std::vector<Keyed> KeysOf(std::span<const OrderedEntry> entries, const EntryOrder& order) {
    NaturalKeys keys;
    std::vector<Keyed> keyed;
    keyed.reserve(entries.size());
    std::wstring_view folder;  // of the entry before
    std::string folderKey;
    for (const OrderedEntry& entry : entries) {
        Keyed& key = keyed.emplace_back(Keyed{.number = NumberOf(entry, order)});
        if (order.by == OrderBy::kListed) continue;
        const size_t nameStart = entry.path.rfind(L'\\') + 1;
        const std::wstring_view own = entry.path.substr(0, nameStart);
        if (own != folder) folderKey = keys.OfFolder(own);
        folder = own;
        key.name = keys.OfName(entry.path.substr(nameStart));
        key.folder = folderKey;
        if (order.by == OrderBy::kType) {
            key.folder.insert(0, keys.OfName(UpperExtensionOf(entry.path)) + '\1');
        }
    }
    return keyed;
}

}  // namespace

std::vector<size_t> InOrder(std::span<const OrderedEntry> entries, const EntryOrder& order) {
    const std::vector<Keyed> keys = KeysOf(entries, order);
    std::vector<size_t> places(entries.size());
    std::iota(places.begin(), places.end(), size_t{0});
    const auto isBefore = [&](size_t left, size_t right) {
        const Keyed& one = keys[left];
        const Keyed& other = keys[right];
        if (one.number != other.number) return one.number < other.number;
        if (const int folders = one.folder.compare(other.folder); folders != 0) return folders < 0;
        if (const int names = one.name.compare(other.name); names != 0) return names < 0;
        // Names that differ only in what is ignored.
        return order.by != OrderBy::kListed && entries[left].path < entries[right].path;
    };
    std::ranges::stable_sort(places, isBefore);
    if (order.isDescending) std::ranges::reverse(places);
    return places;
}

}  // namespace tessary
