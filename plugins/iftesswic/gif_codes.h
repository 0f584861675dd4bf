// Counts the pixels that the compressed data of a GIF frame gives (LZW, appendix F of the GIF89a
// document), without making them.
#pragma once

#include <array>
#include <cstdint>

namespace tessary::wic {

class GifCodes {
  public:
    // `firstBits` stands in front of the data: bits of a pixel, at least 2.
    explicit GifCodes(uint8_t firstBits);

    void Add(uint8_t byte);

    // Up to the end mark or the first code that makes no sense.
    uint64_t Pixels() const { return pixels_; }
    // Whether that has come; what is added later counts for nothing.
    bool HasEnded() const { return ended_; }
    // How many of the bits added come behind the last code that made sense.
    unsigned BitsBehind() const { return bitCount_; }

  private:
    static constexpr uint32_t kMostCodes = 4096;

    void Clear();
    // False, and nothing taken, where no more pixels come.
    bool Take(uint32_t code);

    uint32_t clearCode_;
    std::array<uint16_t, kMostCodes> lengths_{};  // pixels of each code
    uint32_t codes_ = 0;                          // in the table so far
    unsigned codeBits_ = 0;
    uint32_t before_ = kMostCodes;  // the code before; none behind a clear code
    uint32_t bits_ = 0;
    unsigned bitCount_ = 0;
    bool ended_ = false;
    uint64_t pixels_ = 0;
};

}  // namespace tessary::wic
