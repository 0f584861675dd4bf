// A member's contents in a local-memory block, which is how the Susie interface hands them over.
#pragma once

#include <windows.h>

#include "helpers/files/byte_sink.h"

namespace tessary::unpack {

// A movable block that grows with what arrives: sizes that archives claim are not to be trusted.
class LocalBlock final : public files::ByteSink {
  public:
    // `expected` bytes are likely to come.
    explicit LocalBlock(uint64_t expected) : expected_(expected) {}
    LocalBlock(const LocalBlock&) = delete;
    LocalBlock& operator=(const LocalBlock&) = delete;
    ~LocalBlock() override;

    // False when there is no memory; then and afterwards IsFull is true.
    bool Write(std::span<const uint8_t> bytes) noexcept override;
    bool IsFull() const { return isFull_; }

    // Hands the block, cut to what was written, to the caller, who frees it with LocalFree. Without
    // any contents it is a fixed one of no bytes: a movable one could not be locked. Null when
    // there is no memory.
    HLOCAL Release();

  private:
    bool Resize(size_t size) noexcept;

    uint64_t expected_;
    HLOCAL block_ = nullptr;
    size_t size_ = 0;
    size_t capacity_ = 0;
    bool isFull_ = false;
};

}  // namespace tessary::unpack
