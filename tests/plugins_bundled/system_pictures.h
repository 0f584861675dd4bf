// The seeds for the plug-in of the system's decoders, and where their numbers stand.
#pragma once

#include <initializer_list>
#include <utility>

#include "tests/support/seeds.h"

namespace tessary::codec::test {

inline tessary::test::Bytes SystemPicture(const std::string& name) {
    return tessary::test::Seed("fuzz_system_picture/" + name);
}

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
