// What the program does with every picture: looks at all of its pixels.
#pragma once

#include <cstdlib>
#include <vector>

#include "helpers/dib/unpack_row.h"

namespace tessary::dib::fuzz {

// Pictures beyond this many bytes only cost time.
constexpr size_t kMostBits = 256u << 10;

inline void UnpackAll(std::span<const uint8_t> info, std::span<const uint8_t> bits) {
    const auto view = DibView::Of(info, bits);
    if (!view) std::abort();  // what was accepted has to be plain
    const RowReader reader(*view);
    std::vector<uint8_t> bgra(static_cast<size_t>(view->Width()) * 4);
    for (int32_t y = 0; y < view->Height(); ++y) {
        reader.Row(view->Row(y), bgra);
        reader.RowBgra(view->Row(y), bgra);
    }
}

}  // namespace tessary::dib::fuzz
