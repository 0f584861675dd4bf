// The colour table as a file gets it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "helpers/dib/dib_view.h"

namespace tessary::saving {

// The colour table of a picture up to the highest index that one of its pixels has.
struct TrimmedPalette {
    // Behind `size` they are black; the reserved bytes are 0.
    std::array<dib::PaletteEntry, dib::kMaxPaletteEntries> entries{};
    // 0 for depths above 8; always 2 for a depth of 1, whose readers take both for granted.
    size_t size = 0;

    std::span<const dib::PaletteEntry> Entries() const { return std::span(entries).first(size); }
    // There is a table and all its colours are grey.
    bool IsGrey() const;
};

// Looks at the pixels of depths 4 and 8. Indexes beyond the picture's own table get black entries.
TrimmedPalette TrimPalette(const dib::DibView& picture);

}  // namespace tessary::saving
