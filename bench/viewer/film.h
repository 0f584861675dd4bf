// An animation to measure with.
#pragma once

#include <string>

namespace tessary::bench {

// Writes an animated PNG file of 60 frames, 1920×1080, 30 of them a second. In parts each frame but
// the first replaces only some of the picture. False when it cannot be written.
bool WriteFilm(const std::wstring& path, bool inParts);

}  // namespace tessary::bench
