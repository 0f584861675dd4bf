#include "plugins/iftesswic/tiff_directory.h"

#include <algorithm>

namespace tessary::wic {
namespace {

constexpr uint64_t kLinkPlace = 4;  // of the first directory, in the file's header
constexpr uint64_t kHeaderSize = 8;
constexpr uint64_t kEntrySize = 12;
constexpr uint64_t kInPlace = 4;  // bytes of values that an entry holds itself

constexpr uint32_t kByte = 1;
constexpr uint32_t kShort = 3;
constexpr uint32_t kLong = 4;

// Entries that lead to more directories: sub-directories, EXIF, GPS, interoperability.
constexpr std::array<uint32_t, 4> kLinks{0x014A, 0x8769, 0x8825, 0xA005};

// Bytes of a value, by type; 0 for types that nobody knows.
uint64_t SizeOfType(uint32_t type) {
    constexpr std::array<uint8_t, 14> kSizes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    return type < kSizes.size() ? kSizes[type] : 0;
}

}  // namespace

TiffDirectory::TiffDirectory(dib::ByteSource& file, NumberReader order,
                             std::optional<uint32_t> start)
    : file_(file), order_(order), start_(start ? *start : order_.Long(kLinkPlace).value_or(0)) {
    if (start_ < kHeaderSize) return;
    const auto count = order_.Short(start_);
    if (!count || *count == 0) return;
    end_ = uint64_t{start_} + 2 + *count * kEntrySize;
    if (end_ > file_.Size()) return;
    std::vector<uint8_t> bytes(*count * kEntrySize);
    if (file_.ReadAt(uint64_t{start_} + 2, bytes) != bytes.size()) return;
    for (uint32_t i = 0; i < *count; ++i) {
        const auto entry = std::span(bytes).subspan(i * kEntrySize, kEntrySize);
        Entry read{start_ + 2 + i * kEntrySize, order_.Of(entry, 2), order_.Of(entry.subspan(2), 2),
                   order_.Of(entry.subspan(4), 4), 0};
        const bool isInPlace = read.count * SizeOfType(read.type) <= kInPlace;
        read.valuesAt = isInPlace ? read.place + 8 : order_.Of(entry.subspan(8), 4);
        entries_.push_back(read);
    }
}

const TiffDirectory::Entry* TiffDirectory::Find(uint32_t tag) const {
    const auto found = std::ranges::find(entries_, tag, &Entry::tag);
    return found == entries_.end() ? nullptr : &*found;
}

bool TiffDirectory::IsInside(const Entry& entry) const {
    const uint64_t size = entry.count * SizeOfType(entry.type);
    return size != 0 && entry.valuesAt + size <= file_.Size();
}

uint64_t TiffDirectory::Count(uint32_t tag) const {
    const Entry* entry = Find(tag);
    return entry != nullptr && IsInside(*entry) ? entry->count : 0;
}

bool TiffDirectory::LeadsOut(uint32_t tag) const {
    const Entry* entry = Find(tag);
    return entry != nullptr && !IsInside(*entry);
}

std::optional<uint32_t> TiffDirectory::Value(uint32_t tag) {
    std::optional<uint32_t> first;
    ForEach(tag, 1, [&](uint32_t value) {
        first = value;
        return true;
    });
    return first;
}

void TiffDirectory::ForEach(uint32_t tag, uint64_t count,
                            const std::function<bool(uint32_t value)>& use) {
    const Entry* entry = Find(tag);
    if (entry == nullptr || !IsInside(*entry)) return;
    if (entry->type != kShort && entry->type != kLong && entry->type != kByte) return;
    const auto size = static_cast<size_t>(SizeOfType(entry->type));
    std::array<uint8_t, 4096> block;
    count = std::min(count, entry->count);
    for (uint64_t done = 0; done < count;) {
        const auto values = static_cast<size_t>(std::min<uint64_t>(count - done, 4096 / size));
        const auto bytes = std::span(block).first(values * size);
        if (file_.ReadAt(entry->valuesAt + done * size, bytes) != bytes.size()) return;
        for (size_t i = 0; i < values; ++i) {
            if (!use(order_.Of(bytes.subspan(i * size), size))) return;
        }
        done += values;
    }
}

void TiffDirectory::Isolate(PatchedSource& patched) const {
    for (const Entry& entry : entries_) {
        if (std::ranges::find(kLinks, entry.tag) == kLinks.end() && IsInside(entry)) continue;
        // One byte, in its place.
        patched.Patch(entry.place + 2, IsBigEndian() ? std::vector<uint8_t>{0, 1, 0, 0, 0, 1}
                                                     : std::vector<uint8_t>{1, 0, 1, 0, 0, 0});
    }
    std::vector<uint8_t> link(4);
    for (size_t i = 0; i < link.size(); ++i)
        link[i] = static_cast<uint8_t>(start_ >> 8 * (IsBigEndian() ? 3 - i : i));
    patched.Patch(kLinkPlace, link);
    patched.ExtendTo(end_ + 4);
    patched.Patch(end_, {0, 0, 0, 0});
}

}  // namespace tessary::wic
