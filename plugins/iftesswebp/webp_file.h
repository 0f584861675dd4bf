// What stands in a WebP file, and where. Format: RFC 9649, WebP Image Format.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "helpers/color/color_profile.h"
#include "plugins/common/canvas.h"
#include "plugins/common/exif.h"

namespace tessary::webp {

struct WebpFrame {
    size_t offset = 0;  // of its data in the file: its chunks of alpha and colours
    size_t size = 0;
    codec::FramePlace place;
    uint32_t duration = 0;  // milliseconds
    bool clears = false;    // its place, before the next one is drawn
    bool isBlended = false;
    bool isWhole = false;  // else its data are cut short
};

struct WebpFile {
    uint32_t width = 0;  // of the picture, or of the canvas of an animation
    uint32_t height = 0;
    bool hasAlpha = false;
    bool isAnimation = false;
    bool isCutShort = false;
    uint32_t rounds = 0;  // 0: endlessly
    std::vector<WebpFrame> frames;
    std::optional<color::Profile> profile;
    codec::ExifEntries exif;
};

// Of all of a file, or of its head, which gives the size and what stands before the picture. Null
// where it is none, or damaged before the size.
std::optional<WebpFile> ReadWebp(std::span<const uint8_t> bytes);

}  // namespace tessary::webp
