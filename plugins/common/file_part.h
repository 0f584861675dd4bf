// The bytes of a file from some position on: pictures inside other files, behind a MacBinary
// header for one.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "helpers/files/file_source.h"

namespace tessary::spi {

// Keeps the file open, shared with everybody, while it lives. Small reads are served from a block
// that is read ahead.
class FilePart final : public dib::ByteSource {
  public:
    // The file from byte `start` on; null when it cannot be opened.
    static std::unique_ptr<FilePart> Open(const std::wstring& path, uint64_t start);

    FilePart(files::FileSource file, uint64_t start) : file_(std::move(file)), start_(start) {}

    uint64_t Size() const override { return file_.Size() > start_ ? file_.Size() - start_ : 0; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> out) override;

  private:
    files::FileSource file_;
    uint64_t start_;
    std::vector<uint8_t> ahead_;  // bytes from aheadOffset_ on
    uint64_t aheadOffset_ = 0;
};

}  // namespace tessary::spi
