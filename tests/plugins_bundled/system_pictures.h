// The seeds for the plug-in of the system's decoders, and where their numbers stand.
#pragma once

#include <initializer_list>
#include <utility>

#include "tests/support/seeds.h"

namespace tessary::codec::test {

inline tessary::test::Bytes SystemPicture(const std::string& name) {
    return tessary::test::Seed("fuzz_system_picture/" + name);
}

// "two-frames": 12 x 10 pixels in diagonal stripes of these colours, then the same shifted.
constexpr uint32_t kGifColors[4] = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
constexpr uint32_t kGifWidth = 12, kGifHeight = 10;
constexpr unsigned GifIndex(uint32_t x, uint32_t y) {
    return (x + y) % 4;
}
constexpr size_t kGifScreen = 6, kGifHasClear = 28, kGifClearIndex = 31, kGifFrame = 34;
constexpr size_t kGifFirstPixels = 43;

// "tiff": 16 x 2 pixels of a bit each, of which the first four are black, and the others white; one
// strip of 4 bytes, then the entries and the link behind the last.
constexpr size_t kTiffStrip = 8, kTiffLink = 134;
enum TiffEntry {
    kTiffWidth,
    kTiffHeight,
    kTiffBits,
    kTiffPhotometric = 4,
    kTiffOffsets,
    kTiffOrientation,
    kTiffRows = 8,
    kTiffSizes,
};
constexpr size_t TiffAt(TiffEntry entry) {
    return 14 + static_cast<size_t>(entry) * 12;
}
inline tessary::test::Bytes Tiff(std::initializer_list<std::pair<TiffEntry, uint32_t>> values) {
    tessary::test::Bytes file = SystemPicture("tiff");
    for (const auto& [entry, value] : values)
        file = tessary::test::With(file, TiffAt(entry) + 8, value, 2);
    return file;
}

}  // namespace tessary::codec::test
