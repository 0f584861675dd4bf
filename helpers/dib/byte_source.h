// Where the bytes of a bitmap come from: a file, a block in memory.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace tessary::dib {

// Bytes at any position, read on demand.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    virtual uint64_t Size() const = 0;
    // Fills `into` from position `offset` on. Returns the count of bytes read, less than asked only
    // where the source ends; null when the medium reports an error.
    virtual std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) = 0;
};

// A block in memory, not owned.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::span<const uint8_t> bytes) : bytes_(bytes) {}

    uint64_t Size() const override { return bytes_.size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        if (offset >= bytes_.size()) return 0;
        const auto from = bytes_.subspan(static_cast<size_t>(offset));
        const size_t count = std::min(from.size(), into.size());
        if (count != 0) std::memcpy(into.data(), from.data(), count);
        return count;
    }

  private:
    std::span<const uint8_t> bytes_;
};

}  // namespace tessary::dib
