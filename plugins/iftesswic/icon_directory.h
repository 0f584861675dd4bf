// The directory at the start of icon and cursor files (ICONDIR of the Windows documents): which of
// the pictures to show, and whether its header can be believed.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "helpers/dib/byte_source.h"
#include "plugins/iftesswic/inspection.h"

namespace tessary::wic {

// Whether the first directory entry is one that an icon or cursor can have. The four signature
// bytes alone also start other formats, uncompressed TGA among them.
bool IsIconDirectory(std::span<const uint8_t> header);

// How many pictures there are whose headers are sound.
uint32_t CountIcons(dib::ByteSource& file);

// One picture of an icon or cursor file as an icon file of its own: cursors differ from icons in
// the type and the entries' hot spots only, and the system decodes no cursors. Nothing else of the
// file is seen by the system's decoder, which believes the headers of all pictures. The file
// outlives it.
class SingleIcon final : public dib::ByteSource {
  public:
    // The largest picture whose header is sound, of equal ones the deepest. Whole ones are taken
    // before those of which the file has only a part; what that lacks is zeros. `page`: how many of
    // them are left out.
    explicit SingleIcon(dib::ByteSource& file, uint32_t page = 0);

    // A picture that is damaged, or that had to stand in for a better one that is, is told.
    const Inspection& Found() const { return inspection_; }

    uint64_t Size() const override { return kStartSize + size_; }
    std::optional<size_t> ReadAt(uint64_t offset, std::span<uint8_t> out) override;

  private:
    static constexpr size_t kStartSize = 22;  // a directory of one entry

    dib::ByteSource& file_;
    Inspection inspection_;
    std::array<uint8_t, kStartSize> start_{};
    uint64_t offset_ = 0;  // of the picture in the file
    uint64_t size_ = 0;
};

}  // namespace tessary::wic
