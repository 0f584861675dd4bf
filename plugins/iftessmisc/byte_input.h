// A place in a file that bytes are read from one after the other.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"

namespace tessary::misc {

// Reads ahead in blocks. A medium that fails counts as the file's end; FilePage remembers it.
class ByteInput {
  public:
    // `source` must outlive this.
    explicit ByteInput(dib::ByteSource& source, uint64_t position = 0,
                       size_t blockSize = kBlockSize)
        : source_(&source), start_(position), blockSize_(blockSize) {}

    // The next byte; -1 at the end.
    int Byte() {
        if (next_ == filled_ && !Fill()) return -1;
        return block_[next_++];
    }
    // The same without taking it.
    int Peek() {
        if (next_ == filled_ && !Fill()) return -1;
        return block_[next_];
    }
    // Fills `out` as far as there are bytes; how many there were.
    size_t Read(std::span<uint8_t> out);

    uint64_t Position() const { return start_ + next_; }
    void Seek(uint64_t position);
    void Skip(uint64_t bytes) { Seek(Position() + bytes); }

  private:
    static constexpr size_t kBlockSize = 1u << 14;

    bool Fill();

    dib::ByteSource* source_;
    uint64_t start_;  // of the block
    size_t blockSize_;
    size_t next_ = 0;  // in it
    size_t filled_ = 0;
    std::vector<uint8_t> block_;
};

}  // namespace tessary::misc
