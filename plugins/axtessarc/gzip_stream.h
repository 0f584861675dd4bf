// What a gzip file (RFC 1952) holds, unpacked from front to back.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

namespace tessary::unpack {

// Compares lengths and check sums, which libarchive's own way leaves out.
class GzipStream {
  public:
    // Reads the next bytes of the file: how many, 0 at its end, nothing when they cannot be had.
    using Input = std::function<std::optional<size_t>(std::span<uint8_t> into)>;

    // Throws std::bad_alloc.
    explicit GzipStream(Input input);
    GzipStream(const GzipStream&) = delete;
    GzipStream& operator=(const GzipStream&) = delete;
    ~GzipStream() { inflateEnd(&stream_); }

    // The next bytes of the contents: as many as there is room for, less at their end. Nothing
    // where the file is damaged, cut short or cannot be read; what comes before that comes first.
    std::optional<size_t> Read(std::span<uint8_t> into);

    // Whether bytes have been met that make no sense, or a check sum or length that is wrong: then
    // what came before is doubtful, too.
    bool IsDamaged() const { return isDamaged_; }
    bool IsOutOfMemory() const { return isOutOfMemory_; }

  private:
    bool Refill();
    void GoOnBehindMember();

    Input input_;
    std::vector<uint8_t> packed_;
    z_stream stream_{};
    bool isInMember_ = true;
    bool hasEnded_ = false;
    bool hasFailed_ = false;
    bool isDamaged_ = false;
    bool isOutOfMemory_ = false;
};

}  // namespace tessary::unpack
