// The few colours of a picture with alpha, as a colour table with transparent entries.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/dib_view.h"

namespace tessary::dcpng {

class AlphaTable {
  public:
    // The table of a picture of kBgra32; nothing when it has more colours than a table holds. The
    // colours of pixels that nobody sees count too: nothing is lost.
    static std::optional<AlphaTable> Of(const dib::DibView& picture);

    // Blue, green, red, alpha from the lowest byte up; those with transparency first.
    std::span<const uint32_t> Colors() const { return std::span(colors_).first(count_); }
    // How many of them are not opaque.
    size_t Transparent() const { return transparent_; }
    // The index of a colour that is in the table.
    uint8_t IndexOf(uint32_t color) const { return indexes_[Slot(color)]; }

  private:
    static constexpr size_t kSlots = 1024;  // a power of two, well above the colours

    // Where a colour is, or would be put.
    size_t Slot(uint32_t color) const;
    // False when the table is full.
    bool Add(uint32_t color);
    void Arrange();

    std::array<uint32_t, dib::kMaxPaletteEntries> colors_{};
    size_t count_ = 0;
    size_t transparent_ = 0;
    // A hash table with open addressing.
    std::array<uint32_t, kSlots> keys_{};
    std::array<uint8_t, kSlots> indexes_{};
    std::array<bool, kSlots> used_{};
};

}  // namespace tessary::dcpng
