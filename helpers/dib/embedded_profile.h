// The colour profile that an info block brings along.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::dib {

// The bytes of the ICC profile that a header of version 5 (BITMAPV5HEADER) leads to when it says
// that one is embedded (PROFILE_EMBEDDED); they lie in `info`, which is all that is there. Empty
// where there is none, or not all of it. What they say is not looked at.
std::span<const uint8_t> EmbeddedProfile(std::span<const uint8_t> info);

}  // namespace tessary::dib
