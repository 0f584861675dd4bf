// Where a picture was read: of what its metadata are asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "picture/picture.h"
#include "plugin/file_stamp.h"

namespace tessary {

struct PictureOrigin {
    std::wstring path{};          // full, of its file, or of the archive that it is in
    FileStamp stamp{};            // of that, as it was read (ExactStampOf)
    std::wstring member{};        // its name in the archive; empty: it is the file itself
    uint64_t memberSize = 0;      // in bytes
    uint64_t memberChanged = 0;   // as the archive tells, in units of 100 ns; 0: it does not
    std::vector<uint8_t> head{};  // the member's first bytes
    uint32_t page = 0;            // of the file or member, from 1; 0: it has none
    std::wstring plugin{};        // full path of what has read it; empty: the program itself
    uint32_t milliseconds = 0;    // that this took
    uint16_t depth = 0;           // bits of a pixel as it came; 0: nobody knows
};

// What is told of a picture's depth, in bits. The frames of an animation have the first one's,
// though they come with all colours.
inline uint16_t ToldDepth(const Picture& picture) {
    const PictureOrigin* const origin = picture.Origin().get();
    return origin != nullptr && origin->depth != 0 ? origin->depth : picture.Header().bitCount;
}

// As much of a member's beginning as is kept: EXIF data and a profile in front of the picture.
constexpr size_t kMemberHead = 256u << 10;

}  // namespace tessary
