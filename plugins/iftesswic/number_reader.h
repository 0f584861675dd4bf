// Numbers of a file's headers, at any place and in either byte order.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "helpers/dib/byte_source.h"

namespace tessary::wic {

class NumberReader {
  public:
    explicit NumberReader(dib::ByteSource& source, bool isBigEndian = false)
        : source_(source), isBigEndian_(isBigEndian) {}

    bool IsBigEndian() const { return isBigEndian_; }

    // Nothing where the file ends before the number does, or cannot be read.
    std::optional<uint32_t> Short(uint64_t at) { return Number(at, 2); }
    std::optional<uint32_t> Long(uint64_t at) { return Number(at, 4); }

    // The number in the first `count` of these bytes.
    uint32_t Of(std::span<const uint8_t> bytes, size_t count) const {
        uint32_t value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value << 8 | bytes[isBigEndian_ ? i : count - 1 - i];
        return value;
    }

  private:
    std::optional<uint32_t> Number(uint64_t at, size_t count) {
        std::array<uint8_t, 4> bytes{};
        if (source_.ReadAt(at, std::span(bytes).first(count)) != count) return std::nullopt;
        return Of(bytes, count);
    }

    dib::ByteSource& source_;
    bool isBigEndian_;
};

}  // namespace tessary::wic
