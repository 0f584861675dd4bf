// Where the bytes of a file go: to a disk, to a block in memory.
#pragma once

#include <cstdint>
#include <span>

namespace tessary::files {

// Bytes, from first to last.
class ByteSink {
  public:
    virtual ~ByteSink() = default;
    // Appends all of `bytes`. False when the medium refuses; the writer then gives up.
    virtual bool Write(std::span<const uint8_t> bytes) noexcept = 0;
};

}  // namespace tessary::files
