// The user's comment of EXIF data, whose first eight bytes tell its character code.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace tessary::metadata {

// UTF-8, or Shift_JIS where it was that, or what has its characters only; other code pages as they
// are. `isBigEndian`: the byte order of the data around it.
std::string CommentText(std::span<const uint8_t> comment, bool isBigEndian);

// UTF-8 of units of 16 bits; ends at a zero.
std::string UnitsText(std::span<const uint8_t> bytes, bool isBigEndian);

}  // namespace tessary::metadata
