// Makes the two blocks of a `.tst` picture.
#pragma once

#include <cstdint>
#include <string>

#include "helpers/susiectl/susie_interface.h"
#include "tests/plugins/script.h"

namespace tessary::test {

struct PictureSize {
    uint32_t width = 0, height = 0, depth = 0;
};

// From "4x3x24".
PictureSize ParseSize(const std::string& text);

// The bytes of the header with palette or masks, and of the pixels.
struct PictureBlocks {
    std::string info;
    std::string bits;
};

// False when there is no room.
bool PutInto(susie::PictureRoom& room, const PictureBlocks& blocks);

PictureBlocks MakePicture(const PictureSize& size, const Script& script);

}  // namespace tessary::test
