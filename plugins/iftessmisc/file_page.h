// One of the pictures in a file, as a file of its own.
#pragma once

#include "helpers/dib/byte_source.h"

namespace tessary::misc {

// Where a picture stands in its file, in bytes; it may end beyond the file.
struct Page {
    uint64_t offset = 0;
    uint64_t size = UINT64_MAX;
};

class FilePage final : public dib::ByteSource {
  public:
    // `file` must outlive this.
    FilePage(dib::ByteSource& file, const Page& page)
        : file_(file),
          offset_(std::min(page.offset, file.Size())),
          size_(std::min(page.size, file.Size() - offset_)) {}

    uint64_t Size() const override { return size_; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override {
        if (offset >= size_) return 0;
        const auto there = std::min<uint64_t>(into.size(), size_ - offset);
        const auto got = file_.ReadAt(offset_ + offset, into.first(static_cast<size_t>(there)));
        hasFailed_ = hasFailed_ || !got;
        return got;
    }

    // Whether the medium has reported an error.
    bool HasFailed() const { return hasFailed_; }

  private:
    dib::ByteSource& file_;
    uint64_t offset_;
    uint64_t size_;
    bool hasFailed_ = false;
};

}  // namespace tessary::misc
