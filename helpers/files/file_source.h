// A file as a source of bytes.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

#include "helpers/dib/byte_source.h"

namespace tessary::files {

// A file on a disk, open for reading; others may go on reading, writing and deleting it.
class FileSource final : public dib::ByteSource {
  public:
    // Empty when there is no such file, or it cannot be read, or it is a device. Names may be
    // longer than MAX_PATH.
    static std::optional<FileSource> Open(const std::wstring& fileName);

    uint64_t Size() const override { return size_; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> into) override;

  private:
    struct CloseFile {
        void operator()(HANDLE file) const { CloseHandle(file); }
    };
    using UniqueFile = std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseFile>;

    FileSource(UniqueFile file, uint64_t size) : file_(std::move(file)), size_(size) {}

    UniqueFile file_;
    static constexpr uint64_t kUnknown = ~uint64_t{0};

    uint64_t size_;  // bytes, when it was opened
    uint64_t position_ = 0;
};

}  // namespace tessary::files
