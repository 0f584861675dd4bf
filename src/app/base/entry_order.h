// The orders that lists of files and of archives' members can have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tessary {

// The numbers are those of the settings.
enum class OrderBy : int16_t {
    kName,    // folder by folder, a folder's own files before those below it (NaturalKeys)
    kListed,  // as the system, or a plug-in, has listed them
    kDate,    // of the last change
    kSize,
    kType,  // the extension
    kRandom,
};
constexpr int16_t kOrderCount = 6;

struct EntryOrder {
    OrderBy by = OrderBy::kName;
    bool isDescending = false;
    uint32_t seed = 0;  // of a random order, which is the same for the same seed

    bool operator==(const EntryOrder&) const = default;
};

// What an order goes by.
struct OrderedEntry {
    std::wstring_view path;  // with `\` between the parts
    uint64_t size = 0;       // in bytes
    uint64_t time = 0;       // of the last change, in whatever unit
    uint32_t place = 0;      // where it was listed
};

// The places of the entries, in their order. Those that are alike stand in the order of their
// names, then as they are.
std::vector<size_t> InOrder(std::span<const OrderedEntry> entries, const EntryOrder& order);

}  // namespace tessary
