// The TIFF 6.0 structure that EXIF has its entries in. Offsets count from its first byte.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace tessary::exif {

inline constexpr uint16_t kTypeAscii = 2;
inline constexpr uint16_t kTypeShort = 3;
inline constexpr uint16_t kTypeLong = 4;
inline constexpr uint16_t kTypeRational = 5;

inline constexpr uint16_t kTagOrientation = 0x0112;
inline constexpr uint16_t kTagXResolution = 0x011A;
inline constexpr uint16_t kTagYResolution = 0x011B;
inline constexpr uint16_t kTagExif = 0x8769;  // leads to another directory

inline constexpr uint64_t kFirstDirectory = 4;  // where its place stands
inline constexpr uint32_t kEntrySize = 12;

struct Entry {
    uint16_t tag;
    uint16_t type;
    uint64_t place;  // of its value, or of the number of the place where that stands
};

class TiffBlock {
  public:
    explicit TiffBlock(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    // Reads the byte order; false when the block does not start like one.
    bool Open() {
        if (bytes_.size() < 8 || bytes_[0] != bytes_[1]) return false;
        bigEndian_ = bytes_[0] == 'M';
        return (bigEndian_ || bytes_[0] == 'I') && Short(2) == 42;
    }
    bool IsBigEndian() const { return bigEndian_; }

    std::optional<uint16_t> Short(uint64_t at) const {
        if (at + 2 > bytes_.size()) return std::nullopt;
        const unsigned first = bytes_[at], second = bytes_[at + 1];
        return static_cast<uint16_t>(bigEndian_ ? first << 8 | second : second << 8 | first);
    }

    std::optional<uint32_t> Long(uint64_t at) const {
        const auto first = Short(at), second = Short(at + 2);
        if (!first || !second) return std::nullopt;
        return bigEndian_ ? uint32_t{*first} << 16 | *second : uint32_t{*second} << 16 | *first;
    }

    bool HasText(uint64_t at, std::string_view text) const {
        return at + text.size() <= bytes_.size() &&
               std::equal(text.begin(), text.end(), bytes_.begin() + static_cast<ptrdiff_t>(at));
    }

    // 0 when it is none.
    double RationalOf(const Entry& entry) const {
        if (entry.type != kTypeRational) return 0;
        const uint64_t at = Long(entry.place).value_or(0);
        const auto numerator = Long(at), denominator = Long(at + 4);
        if (!numerator || !denominator || *denominator == 0) return 0;
        return static_cast<double>(*numerator) / *denominator;
    }

    // Calls `use` with the entries of a directory as far as they are there.
    template <class Use>
    void ForEach(uint32_t directory, Use use) const {
        const uint32_t count = Short(directory).value_or(0);
        for (uint32_t i = 0; i < count; ++i) {
            const uint64_t entry = uint64_t{directory} + 2 + uint64_t{i} * kEntrySize;
            const auto tag = Short(entry), type = Short(entry + 2);
            if (!tag || !type) return;
            use(Entry{*tag, *type, entry + 8});
        }
    }

    // The last one, should there be several.
    std::optional<Entry> Find(uint32_t directory, uint16_t tag) const {
        std::optional<Entry> found;
        ForEach(directory, [&](const Entry& entry) {
            if (entry.tag == tag) found = entry;
        });
        return found;
    }

    // Of the directory that an entry of this one leads to; 0 when it does not.
    uint32_t DirectoryBehind(uint32_t directory, uint16_t tag) const {
        const std::optional<Entry> entry = Find(directory, tag);
        return entry ? Long(entry->place).value_or(0) : 0;
    }

    // Where the place of the directory behind this one stands.
    uint64_t NextDirectory(uint32_t directory) const {
        return uint64_t{directory} + 2 + uint64_t{Short(directory).value_or(0)} * kEntrySize;
    }

  private:
    std::span<const uint8_t> bytes_;
    bool bigEndian_ = false;
};

}  // namespace tessary::exif
