// What an animated PNG file holds beside its picture (APNG, in the third edition of the PNG
// specification): where its frames are, and each of them as a PNG file of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/dib/byte_source.h"
#include "plugins/common/canvas.h"
#include "plugins/common/result.h"

namespace tessary::png {

struct ApngFrame {
    codec::FramePlace place = {};
    uint32_t duration = 0;   // milliseconds
    uint8_t disposal = 0;    // as stored
    bool isBlended = false;  // laid over what is there, not put in its place
    uint64_t data = 0;       // where its first chunk of data begins
};

struct ApngFile {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t rounds = 0;          // 0: endlessly
    std::vector<uint8_t> header;  // what stands in the file before the picture data, for all frames
    std::vector<ApngFrame> frames;
    uint32_t promised = 0;  // how many frames the file says it has
    bool hasEnd = false;    // it is not cut short
};

// Nothing for a file of one picture, which its first chunks tell, and for one whose frames are not
// as they should be: wrong check sums or sequence numbers, places outside of the picture. Frames
// that a file cut short has no data of are left out.
std::optional<ApngFile> ReadApng(dib::ByteSource& source);

// The frame as a PNG file, with the data that are there. `isDamaged`: some have a wrong check sum.
codec::Result ReadFrameFile(dib::ByteSource& source, const ApngFile& file, const ApngFrame& frame,
                            std::vector<uint8_t>& png, bool& isDamaged);

}  // namespace tessary::png
