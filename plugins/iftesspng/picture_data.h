// The compressed picture data of a PNG file: what its IDAT chunks hold, one behind the other.
#pragma once

#include <zlib.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/byte_source.h"
#include "plugins/common/result.h"

namespace tessary::png {

// Where the first IDAT chunk of a file begins whose pixels take at least `leastBytes` unpacked;
// empty for smaller pictures, and where there is no such chunk.
std::optional<uint64_t> FindPictureData(dib::ByteSource& source, uint64_t leastBytes);

// Unpacks the data and compares the chunks' check sums; the one of the whole stream (Adler-32) is
// not looked at, as libpng does not.
class PictureData {
  public:
    // `start` is where the first IDAT chunk begins. Throws std::bad_alloc.
    PictureData(dib::ByteSource& source, uint64_t start);
    PictureData(const PictureData&) = delete;
    PictureData& operator=(const PictureData&) = delete;
    ~PictureData();

    // Fills `into` from its beginning and answers with how many bytes. It is less than there is
    // room for when the data ends here.
    size_t Unpack(std::span<uint8_t> into);

    // Once it has ended: why, and where the next chunk begins after a regular end.
    enum class End { kRegular, kCutShort, kFailed };
    End HowItEnded() const { return end_; }
    codec::Result Failure() const { return failure_; }
    // Whether the check sum of a chunk was not that of its bytes, which count all the same.
    bool HasWrongSum() const { return hasWrongSum_; }
    uint64_t Behind() const { return position_; }

  private:
    static constexpr size_t kReadSize = 64u << 10;

    // Each is false where the data ends, and notes how.
    bool ReadWhole(std::span<uint8_t> into);
    bool Refill();
    bool BeginChunk();
    bool EndChunk();
    // Reads what follows the end of the stream, up to the last IDAT chunk.
    void SkipRest();
    bool Fail(codec::Result result);

    dib::ByteSource& source_;
    uint64_t position_;      // in the file
    uint32_t left_ = 0;      // bytes of the chunk that have not been read
    uint32_t checkSum_ = 0;  // of the chunk so far
    bool inChunk_ = false;
    bool hasWrongSum_ = false;
    bool streamEnded_ = false;
    bool ended_ = false;
    End end_ = End::kRegular;
    codec::Result failure_ = codec::Result::kBrokenData;
    z_stream stream_{};
    std::array<uint8_t, kReadSize> input_;
};

}  // namespace tessary::png
