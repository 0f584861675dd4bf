// The first frame of a GIF file as a file of its own: decoders that unpack a whole animation before
// they hand out a frame, or give up at a file cut short, then serve the one frame that is shown.
// Format: GRAPHICS INTERCHANGE FORMAT, Version 89a (CompuServe).
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/byte_source.h"

namespace tessary::wic {

// Pixels of the logical screen, and where the first frame stands on it.
struct GifScreen {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t frameLeft = 0;
    uint32_t frameTop = 0;
    uint32_t frameWidth = 0;
    uint32_t frameHeight = 0;
};

// Ends behind the first frame; when that frame's data ends too early, by the file's end or by codes
// that make no sense, the missing pixels have colour 0. Without a frame it is the file as it
// stands. The file outlives it.
class GifFirstFrame final : public dib::ByteSource {
  public:
    explicit GifFirstFrame(dib::ByteSource& file);

    // A frame that reaches over the edge of its screen widens it, as browsers do.
    const GifScreen& Screen() const { return screen_; }

    // Whether the file has data for all pixels of the frame, or for any. One without a frame has.
    bool IsWhole() const { return isWhole_; }
    bool HasPixels() const { return hasPixels_; }

    uint64_t Size() const override { return fileBytes_ + TailSize(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> out) override;

  private:
    struct Walk;  // a position in the file
    void FindFrame();
    void ReadFrame(Walk& walk);
    void Complete(const Walk& walk);
    uint64_t TailSize() const;
    uint8_t TailByte(uint64_t index) const;

    dib::ByteSource& file_;
    GifScreen screen_;
    bool isWhole_ = true;
    bool hasPixels_ = true;
    uint64_t fileBytes_;           // how much of the file is used
    uint8_t lastByteMask_ = 0xFF;  // and how much of the last byte of it
    bool hasTail_ = false;         // whether what follows ends the file
    uint64_t missingBytes_ = 0;    // of the data block whose rest is left out
    uint64_t missingBlocks_ = 0;   // more blocks, enough for all pixels that may be missing
};

}  // namespace tessary::wic
