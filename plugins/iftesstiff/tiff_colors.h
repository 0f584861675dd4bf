// From the samples of a directory to the pixels that are handed out.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "plugins/common/color_picture.h"
#include "plugins/iftesstiff/tiff_form.h"
#include "plugins/iftesstiff/tiff_rows.h"

namespace tessary::tiff {

class TiffColors {
  public:
    // `form` must outlive this.
    explicit TiffColors(const TiffForm& form);

    // A picture with a table: greys without alpha, and indexes. Its rows have TableBits a pixel.
    bool HasTable() const { return form_.HasTable(); }
    uint16_t TableBits() const { return tableBits_; }
    const std::vector<dib::PaletteEntry>& Table() const { return table_; }
    // Any other.
    codec::ColorPicture Picture() const;

    // Writes the row that was read last, of TableBits or as Picture() has it.
    void PutRow(const TiffRows& rows, uint8_t* out);

  private:
    bool AreBytes() const {
        return form_.sampleBits == 8 && form_.sampleFormat == SAMPLEFORMAT_UINT;
    }
    void Unpack(const TiffRows& rows);
    void PutTableRow(const TiffRows& rows, uint8_t* out);
    void PutRgb(uint8_t* out) const;
    void PutPlainBytes(const uint8_t* pixel, uint8_t* out) const;
    void PutBytes(uint8_t* out) const;
    void PutGreyWithAlpha(uint8_t* out) const;
    void PutInks(uint8_t* out) const;
    void PutLab(uint8_t* out) const;
    uint16_t AlphaOf(const uint16_t* pixel) const;
    uint16_t ColorOf(const uint16_t* pixel, unsigned sample, uint16_t alpha) const;

    const TiffForm& form_;
    uint16_t tableBits_ = 0;
    std::vector<dib::PaletteEntry> table_;
    std::vector<uint8_t> levels_;    // of greys of 65536 steps
    std::vector<uint16_t> samples_;  // of the row, all of a pixel beside each other
    std::vector<uint16_t> plane_;    // of one plane of it
};

}  // namespace tessary::tiff
