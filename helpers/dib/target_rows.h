// The rows of a plain bits block while it is written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tessary::dib {

// Plain rows, bottom row first, reached by the row numbers of a source that may count from the top.
struct TargetRows {
    std::span<uint8_t> bits;
    size_t stride;  // bytes from row to row
    int32_t width;  // pixels
    int32_t height;
    bool topDown;  // the source's first row is the top one

    std::span<uint8_t> Row(int32_t y) const {
        return bits.subspan(static_cast<size_t>(topDown ? height - 1 - y : y) * stride, stride);
    }
};

}  // namespace tessary::dib
