// What stands in a GIF file, and where. Format: GRAPHICS INTERCHANGE FORMAT, Version 89a
// (CompuServe), and the application extension of NETSCAPE2.0 for the number of rounds.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/common/canvas.h"

namespace tessary::gif {

struct GifFrame {
    uint64_t position = 0;  // of its descriptor, the separator before it included
    uint16_t left = 0;
    uint16_t top = 0;
    uint16_t width = 0;
    uint16_t height = 0;
    uint16_t delay = 0;       // hundredths of a second
    int16_t clearIndex = -1;  // the colour that is none; -1: all are
    uint8_t disposal = 0;     // as stored
    uint8_t flags = 0;        // of the descriptor: local table, interlace

    codec::FramePlace Place() const { return {left, top, width, height}; }
    bool HasTable() const { return (flags & 0x80) != 0; }
    bool IsInterlaced() const { return (flags & 0x40) != 0; }
    unsigned TableBits() const { return (flags & 7) + 1u; }
};

struct GifFile {
    // Of the screen; a first frame that reaches over its edge widens it, as browsers do.
    uint32_t width = 0;
    uint32_t height = 0;
    uint8_t flags = 0;  // of the screen: global table
    uint32_t rounds = 1;
    std::vector<GifFrame> frames;
    std::optional<GifFrame> open;  // in which the file ends: it has no end, and perhaps no pixel
    bool hasFailed = false;        // the medium, before all was read

    bool HasTable() const { return (flags & 0x80) != 0; }
    unsigned TableBits() const { return (flags & 7) + 1u; }
};

// More than these are left out: nobody watches them, and each takes memory.
inline constexpr size_t kMostFrames = 1'000'000;

// Looks for the first `most` frames, up to the first thing that makes no sense. One frame costs a
// look at the head of the file, all of them a walk through it.
GifFile ReadGif(dib::ByteSource& source, size_t most = kMostFrames);

}  // namespace tessary::gif
