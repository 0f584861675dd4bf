// The directory at the start of icon and cursor files (ICONDIR of the Windows documents): which of
// the pictures to show, and cursors presented as icons.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/byte_source.h"

namespace tessary::wic {

// Whether the first directory entry is one that an icon or cursor can have. The four signature
// bytes alone also start other formats, uncompressed TGA among them.
bool IsIconDirectory(std::span<const uint8_t> header);

// Index of the largest picture, of equal ones the deepest; 0 when the directory is damaged.
uint32_t LargestIcon(dib::ByteSource& file);

// A cursor file that reads like an icon file: they differ in the type and in the entries' hot spots
// only, and the system decodes no cursors. The file outlives it.
class CursorAsIcon final : public dib::ByteSource {
  public:
    explicit CursorAsIcon(dib::ByteSource& file) : file_(file) {}

    uint64_t Size() const override { return file_.Size(); }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> out) override;

  private:
    dib::ByteSource& file_;
};

}  // namespace tessary::wic
