// A file with some bytes replaced: what the system's decoder is not to see of it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "helpers/dib/byte_source.h"

namespace tessary::wic {

// The file outlives it.
class PatchedSource final : public dib::ByteSource {
  public:
    explicit PatchedSource(dib::ByteSource& file) : file_(file), size_(file.Size()) {}

    // Puts these bytes at a place within the file.
    void Patch(uint64_t offset, std::vector<uint8_t> bytes) {
        patches_.push_back({offset, std::move(bytes)});
    }
    // Puts zeros behind a file that is shorter.
    void ExtendTo(uint64_t size) { size_ = std::max(size_, size); }

    uint64_t Size() const override { return size_; }

    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        if (offset >= size_) return 0;
        into = into.first(static_cast<size_t>(std::min<uint64_t>(into.size(), size_ - offset)));
        const auto got = file_.ReadAt(offset, into);
        if (!got) return std::nullopt;
        std::ranges::fill(into.subspan(*got), uint8_t{0});
        for (const Replaced& patch : patches_) {
            const uint64_t from = std::max(offset, patch.offset);
            const uint64_t to = std::min(offset + into.size(), patch.offset + patch.bytes.size());
            for (uint64_t at = from; at < to; ++at) {
                into[static_cast<size_t>(at - offset)] =
                    patch.bytes[static_cast<size_t>(at - patch.offset)];
            }
        }
        return into.size();
    }

  private:
    struct Replaced {
        uint64_t offset;
        std::vector<uint8_t> bytes;
    };

    dib::ByteSource& file_;
    uint64_t size_;
    std::vector<Replaced> patches_;
};

}  // namespace tessary::wic
