// What a directory says of its picture. Format: TIFF 6.0 (Adobe) with its technical notes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/color/color_profile.h"
#include "helpers/dib/bitmap_header.h"
#include "plugins/common/result.h"
#include "plugins/iftesstiff/tiff_file.h"

namespace tessary::tiff {

// What the samples of a pixel are.
enum class Model : uint8_t {
    kGrey,   // one sample, 0 is black; or white, where it is inverted
    kTable,  // an index into a table of colours
    kRgb,
    kInks,       // cyan, magenta, yellow, black
    kLab,        // CIE L*a*b* with signed a and b
    kIccLab,     // the same with a and b counted from their middle
    kAsLibrary,  // what libtiff's own conversion to 8-bit colours is for
};

enum class Alpha : uint8_t { kNone, kPlain, kMultiplied };

struct TiffForm {
    uint32_t width = 0;   // as stored
    uint32_t height = 0;  // the same
    Model model = Model::kGrey;
    bool isInverted = false;   // greys
    uint16_t sampleBits = 1;   // 1 to 64
    uint16_t sampleCount = 1;  // of a pixel, those that are not shown included
    uint16_t sampleFormat = SAMPLEFORMAT_UINT;
    bool isSeparate = false;  // each sample in a plane of its own
    Alpha alpha = Alpha::kNone;
    uint16_t alphaSample = 0;  // its place among the samples
    uint16_t orientation = 1;
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    std::vector<dib::PaletteEntry> table{};
    std::optional<color::Profile> profile{};

    // How many of the samples are shown, without alpha.
    uint16_t ShownSamples() const;
    // Greys and indexes that are shown by a table.
    bool HasTable() const;
};

// Of the directory that the file is at, which is prepared for reading. kUnknownFormat where nobody
// knows what the samples are; the reason, for the user, in `reason`.
codec::Result ReadForm(const TiffFile& file, TiffForm& form, const wchar_t*& reason);

}  // namespace tessary::tiff
