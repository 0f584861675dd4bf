// Runs a decoder on bytes in memory and looks at the picture it makes.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "helpers/dib/unpack_row.h"
#include "plugins/common/picture_codec.h"

namespace tessary::codec::test {

using Bytes = std::vector<uint8_t>;

// Blocks without any room behind them, so that the sanitizer sees each byte too far. Pictures of
// more than `mostBits` bytes find no memory.
class MemoryTarget final : public PictureTarget {
  public:
    explicit MemoryTarget(size_t mostBits = SIZE_MAX, bool takesAlpha = false,
                          bool takesProfile = false)
        : mostBits_(mostBits), takesAlpha_(takesAlpha), takesProfile_(takesProfile) {}
    bool TakesAlpha() const override { return takesAlpha_; }
    uint32_t Enough() const override { return enough; }
    uint32_t enough = 0;
    bool TakesProfile() const override { return takesProfile_; }

    bool Allocate(size_t infoSize, size_t bitsSize) override {
        if (bitsSize > mostBits_) return false;
        info_ = std::make_unique<uint8_t[]>(infoSize_ = infoSize);
        bits_ = std::make_unique<uint8_t[]>(bitsSize_ = bitsSize);
        return true;
    }
    uint8_t* Info() override { return info_.get(); }
    uint8_t* Bits() override { return bits_.get(); }

    std::span<const uint8_t> InfoBytes() const { return {info_.get(), infoSize_}; }
    std::span<const uint8_t> BitsBytes() const { return {bits_.get(), bitsSize_}; }

    // Null unless the blocks are a plain picture, as hosts want it.
    std::optional<dib::DibView> View() const {
        return dib::DibView::Of({info_.get(), infoSize_}, {bits_.get(), bitsSize_});
    }

  private:
    std::unique_ptr<uint8_t[]> info_, bits_;
    size_t infoSize_ = 0, bitsSize_ = 0;
    size_t mostBits_;
    bool takesAlpha_;
    bool takesProfile_;
};

// The colours of a picture, rows from the top.
class Colors {
  public:
    explicit Colors(const dib::DibView& view)
        : width(static_cast<uint32_t>(view.Width())),
          height(static_cast<uint32_t>(view.Height())),
          bgra(size_t{width} * height * 4) {
        const dib::RowReader reader(view);
        for (uint32_t y = 0; y < height; ++y) {
            reader.RowBgra(view.Row(static_cast<int32_t>(y)),
                           std::span(bgra).subspan(size_t{y} * width * 4, size_t{width} * 4));
        }
    }
    // `channel`: 0 blue, 1 green, 2 red, 3 alpha where the picture has one.
    int Channel(uint32_t x, uint32_t y, unsigned channel) const {
        return bgra[(size_t{y} * width + x) * 4 + channel];
    }
    // 0xRRGGBB
    uint32_t At(uint32_t x, uint32_t y) const {
        return static_cast<uint32_t>(Channel(x, y, 2) << 16 | Channel(x, y, 1) << 8 |
                                     Channel(x, y, 0));
    }

    const uint32_t width, height;
    Bytes bgra;
};

// Decodes `file`; without success the target is of no use.
struct Decoded {
    Decoded(const PictureCodec& codec, const Bytes& file, Progress progress = {},
            bool takesAlpha = false)
        : target(SIZE_MAX, takesAlpha) {
        dib::MemorySource source(file);
        codec.ReadForm(source, form);
        result = codec.Decode(source, target, progress);
        condition = progress.Told().condition;
    }
    Colors Pixels() const { return Colors(target.View().value()); }

    MemoryTarget target;
    PictureForm form;
    Result result;
    Condition condition;
};

// Decodes `file` from a device that breaks down behind its first `good` bytes.
inline Result ResultFromFailing(const PictureCodec& codec, const Bytes& file, uint64_t good) {
    struct FailingSource final : dib::ByteSource {
        FailingSource(const Bytes& bytes, uint64_t count) : file(bytes), good(count) {}
        uint64_t Size() const override { return file.Size(); }
        std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
            if (offset + into.size() > good) return std::nullopt;
            return file.ReadAt(offset, into);
        }
        dib::MemorySource file;
        uint64_t good;
    } source(file, good);
    MemoryTarget target;
    Progress nobody;
    return codec.Decode(source, target, nobody);
}

}  // namespace tessary::codec::test
