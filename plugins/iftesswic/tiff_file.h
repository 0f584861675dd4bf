// The first directory of TIFF files (TIFF 6.0, Adobe) and of JPEG XR files, which are built alike
// (ITU-T T.832, annex A). Decoders believe what stands there: counts become loops and memory.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/iftesswic/inspection.h"
#include "plugins/iftesswic/patched_source.h"

namespace tessary::wic {

struct TiffFile {
    Inspection inspection;
    uint32_t rowsPerStrip = 0;         // pixel rows that are stored together; 0 when not known
    bool hasBigEndianSamples = false;  // of 16 bits
};

// Looks at the directory and leaves decoders nothing else to follow: in `patched`, which is the
// same file, it is the only one, and entries that lead elsewhere or out of the file lead nowhere.
// `directory`: where it stands; nothing: it is the first.
TiffFile InspectTiff(dib::ByteSource& file, PatchedSource& patched,
                     std::optional<uint32_t> directory = std::nullopt);
// Where the directories of the pages stand, the first one first; without those of smaller copies,
// and no more than anybody looks at.
std::vector<uint32_t> TiffPages(dib::ByteSource& file);
Inspection InspectJpegXr(dib::ByteSource& file, PatchedSource& patched);

}  // namespace tessary::wic
