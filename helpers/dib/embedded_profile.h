// The colour profile that an info block brings along.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"

namespace tessary::dib {

// The bytes of the ICC profile that a header of version 5 (BITMAPV5HEADER) leads to when it says
// that one is embedded (PROFILE_EMBEDDED); they lie in `info`, which is all that is there. Empty
// where there is none, or not all of it. What they say is not looked at.
std::span<const uint8_t> EmbeddedProfile(std::span<const uint8_t> info);

// The same of a bitmap file, where it may stand anywhere behind the header. Empty as well when it
// is larger than `most` bytes.
std::vector<uint8_t> EmbeddedProfile(ByteSource& file, size_t most);

// The plain info block of a picture without masks and colour table (helpers/dib/dib_view.h) as one
// with a header of version 5 and the profile behind it.
std::vector<uint8_t> InfoWithProfile(std::span<const uint8_t> plainInfo,
                                     std::span<const uint8_t> profile);

}  // namespace tessary::dib
