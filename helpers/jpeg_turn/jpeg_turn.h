// Turns and mirrors JPEG files without decoding their pixels, so that nothing is lost.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "helpers/exif/orientation.h"

namespace tessary::jpeg {

// What is wanted of a file, and what is known of the picture that was decoded from it.
struct TurnWish {
    uint16_t orientation = exif::kUpright;  // how the decoded picture is turned now
    uint32_t width = 0;                     // of the decoded picture, before that
    uint32_t height = 0;
    bool followsFile = false;  // its decoder is known to turn it as the file's EXIF says
    bool trims = false;        // edges that cannot be turned may be cut off
};

enum class TurnResult : uint32_t {
    kTurned,
    // Only what the file says of its orientation was changed: it has further pictures that go with
    // the first and lie as it does.
    kMarked,
    kWouldTrim,        // edges, and that was not wanted
    kTooSmall,         // nothing would be left behind the trimming
    kDamaged,          // or of a kind that cannot be turned so
    kNotThis,          // the decoded picture is another one, or it cannot be told how it lies
    kFurtherPictures,  // there are such, and nothing says the file's orientation
    kNoMemory,
    kLast = kNoMemory,
};

struct TurnedJpeg {
    TurnResult result = TurnResult::kDamaged;
    // Pixels that are trimmed, or would be, at the edges of the turned picture.
    uint32_t left = 0;
    uint32_t top = 0;
    std::vector<uint8_t> file{};  // for kTurned and kMarked
};

// Makes the file whose picture lies as the decoded one does: exactly, but for edges that are no
// whole blocks. What says the orientation becomes "upright", sizes and resolutions follow, and a
// small picture in EXIF is turned as well, or unlinked where that cannot be done in its place. All
// other metadata, and what stands behind the picture, keep their bytes. Damaged files are refused.
// May throw std::bad_alloc.
TurnedJpeg Turn(std::span<const uint8_t> file, const TurnWish& wish);

}  // namespace tessary::jpeg
