// The pixels of one GIF frame, unpacked by giflib.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include <gif_lib.h>

#include "plugins/common/progress.h"
#include "plugins/common/result.h"
#include "plugins/iftessgif/gif_file.h"

namespace tessary::gif {

class GifPixels {
  public:
    // All of them must outlive this.
    GifPixels(dib::ByteSource& source, const GifFile& file, const GifFrame& frame)
        : source_(source), file_(file), frame_(frame) {}

    // To be called first, once.
    codec::Result Open();

    // The frame's colours, or the file's; black behind the last.
    using Colors = std::array<dib::PaletteEntry, 256>;
    Colors Table() const;

    // Unpacks the first `rows` rows, from the top: `put` gets each with its number, the indexes
    // from the left. Of a frame whose data end too early it gets what there is: the last row may be
    // shorter, and of an interlaced frame missing rows are like those above them. kBrokenData
    // where pixels are missing.
    using PutRow = std::function<void(uint32_t row, std::span<const uint8_t> indexes)>;
    codec::Result Read(uint32_t rows, codec::Progress& progress, const PutRow& put);

  private:
    struct Closer {
        void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
    };
    static int OnRead(GifFileType* gif, GifByteType* out, int count);
    int Take(std::span<uint8_t> out);
    codec::Result Failure(int error) const;
    codec::Result ReadInterlaced(uint32_t rows, codec::Progress& progress, const PutRow& put);
    size_t PixelsOf(uint32_t row, std::span<uint8_t> out) const;

    dib::ByteSource& source_;
    const GifFile& file_;
    const GifFrame& frame_;
    uint64_t position_ = 0;
    bool isInData_ = false;
    size_t leftOfBlock_ = 0;  // of the data; 0: the next byte tells how many the next one has
    bool hasFailed_ = false;  // the source
    std::unique_ptr<GifFileType, Closer> gif_;
};

}  // namespace tessary::gif
