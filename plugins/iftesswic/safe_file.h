// A picture file as the system's decoder may see it: its headers are looked at before, and what the
// decoder needs not is hidden from it. The decoders believe what they read; forged counts keep them
// busy for ever, or end the process.
#pragma once

#include <cstdint>
#include <optional>

#include "helpers/dib/byte_source.h"
#include "plugins/iftesswic/container.h"
#include "plugins/iftesswic/icon_directory.h"
#include "plugins/iftesswic/inspection.h"
#include "plugins/iftesswic/patched_source.h"

namespace tessary::wic {

class SafeFile {
  public:
    // Which of its pictures, of files that have several: of icons the one that comes behind so many
    // better ones, of TIFF files the one whose directory stands there.
    struct Page {
        uint32_t icon = 0;
        std::optional<uint32_t> directory = std::nullopt;
    };
    // `file` outlives it.
    SafeFile(dib::ByteSource& file, Container container, const Page& page);
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;

    // Without a success the rest is not to be used.
    const Inspection& Found() const { return inspection_; }

    // What to decode: that picture alone, whatever the file has.
    dib::ByteSource& Source() { return *source_; }

    // Pixel rows of a TIFF file that are stored together; 0: not known.
    uint32_t RowsPerStrip() const { return rowsPerStrip_; }
    // Whether it has samples of 16 bits whose high byte comes first.
    bool HasBigEndianSamples() const { return hasBigEndianSamples_; }

  private:
    Inspection inspection_;
    PatchedSource patched_;
    std::optional<SingleIcon> icon_;
    dib::ByteSource* source_;
    uint32_t rowsPerStrip_ = 0;
    bool hasBigEndianSamples_ = false;
};

}  // namespace tessary::wic
