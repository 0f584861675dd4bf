// Reads a stretch of a byte source from front to back, buffered, with progress reports.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>

#include "helpers/dib/byte_source.h"
#include "helpers/dib/dib_error.h"

namespace tessary::dib {

// Told how much is done, 0 to 100, at most once for each value; false asks to stop.
using Progress = std::function<bool(int percent)>;

// A medium's error and a stop request end the stream like its real end does; Error() tells which.
// Holds its buffer in itself and allocates nothing.
class ByteStream {
  public:
    // Reads [begin, end) of `source`; both references must outlive the stream. `progress` may be
    // empty.
    ByteStream(ByteSource& source, uint64_t begin, uint64_t end, const Progress& progress);

    // The next byte, -1 behind the end.
    int Next() { return at_ != filled_ || Refill() ? buffer_[at_++] : -1; }
    // Fills `into` and returns its size, or less at the end. Long reads go past the buffer.
    size_t Read(std::span<uint8_t> into);
    void Skip(uint64_t count);
    // kNone, kReadFailed or kAborted.
    DibError Error() const { return error_; }

  private:
    static constexpr size_t kBufferSize = 64u << 10;
    static constexpr size_t kDirectReadSize = 256u << 10;

    bool Refill();
    // Reads from the source at position_, at most to the stream's end.
    size_t ReadSource(std::span<uint8_t> into);

    ByteSource& source_;
    const Progress& progress_;
    uint64_t begin_;
    uint64_t end_;
    uint64_t position_;  // in the source, behind what the buffer holds
    int percent_ = -1;   // last one reported
    DibError error_ = DibError::kNone;
    size_t at_ = 0;
    size_t filled_ = 0;
    std::array<uint8_t, kBufferSize> buffer_;
};

}  // namespace tessary::dib
