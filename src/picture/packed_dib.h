// A picture in one block, as the clipboard holds it: info block and pixel rows right behind it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace tessary {

// The two parts of such a block, which they look into.
struct PackedDib {
    std::span<const uint8_t> info;  // header, masks and colour table
    std::span<const uint8_t> bits;  // pixel rows; of a run-length encoded picture its codes
};

// Finds both parts. `block` is the block in its real size; nothing is believed of its header that
// the size does not allow. Nothing when the header is none that is understood, the depth is not 1,
// 4, 8, 16, 24 or 32, or the block is too short for what the header promises.
std::optional<PackedDib> SplitPackedDib(std::span<const uint8_t> block);

}  // namespace tessary
