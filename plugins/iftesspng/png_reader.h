// libpng behind a plain face: reads from a ByteSource, reports to a Progress, and answers errors as
// results. Everything that libpng can leave by a long jump happens in here.
#pragma once

#include <png.h>

#include <csetjmp>
#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/common/oriented_rows.h"
#include "plugins/common/picture_codec.h"
#include "plugins/iftesspng/png_colors.h"
#include "plugins/iftesspng/unpacked_png.h"

namespace tessary::png {

// One decoding of one file. The source and the progress outlive it.
class PngReader {
  public:
    // Pictures of at least `leastUnpackedAhead` bytes of pixels are unpacked by a thread of their
    // own.
    PngReader(dib::ByteSource& source, codec::Progress& progress, uint64_t leastUnpackedAhead);
    ~PngReader();
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    // Hands transparency out as alpha instead of laying it over a colour. To be called before
    // anything else.
    void KeepAlpha() { keepsAlpha_ = true; }

    // Reads up to the picture data. To be called first, once.
    codec::Result ReadHeader();

    // After ReadHeader: the stored size, the form of the picture as shown, its colour table when it
    // has one, its orientation, and how its rows are converted.
    uint32_t StoredWidth() const { return width_; }
    uint32_t StoredHeight() const { return height_; }
    codec::PictureForm Form() const;
    std::vector<dib::PaletteEntry> Palette() const;
    uint16_t Orientation() const { return orientation_; }
    // The profile to hand on with the picture (PngColors::HandOnProfile); to be called before the
    // conversion is asked for.
    std::vector<uint8_t> HandOnProfile(const codec::PictureTarget& target) {
        return HasTable() ? std::vector<uint8_t>() : colors_.HandOnProfile(target);
    }
    codec::RowConversion Conversion() const;

    // After ReadHeader: decodes all rows. Damage is told to the progress.
    codec::Result DecodeRows(codec::OrientedRows& rows);

  private:
    // libpng's callbacks; they find the reader through the pointers that libpng keeps for them.
    static void OnError(png_structp png, png_const_charp message);
    static void OnWarning(png_structp png, png_const_charp message);
    static void OnRead(png_structp png, png_bytep out, size_t count);
    static void OnRow(png_structp png, png_row_infop row, png_bytep data);
    static png_voidp Allocate(png_structp png, png_alloc_size_t size);
    static void Free(png_structp png, png_voidp block);

    [[noreturn]] void Leave(codec::Result result);
    // As of ByteSource.
    std::optional<size_t> Read(std::span<uint8_t> out);
    bool IsIndexed() const { return colorType_ == PNG_COLOR_TYPE_PALETTE; }
    bool HasTable() const;
    // Whether the decoded picture has an alpha channel.
    bool HandsOutAlpha() const;
    void ChooseDataSize();
    void ReadColors();
    void ReadBackground();
    void ReadOrientation();
    bool IsUpright() const { return orientation_ == codec::kUprightOrientation; }
    bool ConvertsRows() const { return colors_.AreForeign() && !HasTable(); }
    void SetTransformations();
    // False when it did not come to the end, for the reason in result_.
    bool ReadRows(codec::OrientedRows& rows);
    void PlaceRows(codec::OrientedRows& rows) const;
    bool HasAllData() const;
    void FillRest(codec::OrientedRows& rows) const;
    std::vector<uint8_t> BackgroundRow() const;

    dib::ByteSource& source_;
    codec::Progress& progress_;
    std::optional<UnpackedPng> unpacked_;  // read in the source's place, where it is there
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    std::jmp_buf escape_{};
    codec::Result result_ = codec::Result::kSuccess;
    uint64_t leastUnpackedAhead_;
    uint64_t position_ = 0;
    bool cutShort_ = false;  // the source ended before the file did
    bool noMemory_ = false;
    bool hasWrongSum_ = false;        // of picture data
    bool lacksTransparency_ = false;  // its chunk is there but damaged

    uint32_t width_ = 0;
    uint32_t height_ = 0;
    bool keepsAlpha_ = false;
    int bitDepth_ = 0;
    int colorType_ = 0;
    uint16_t orientation_ = codec::kUprightOrientation;
    PngColors colors_;
    dib::PaletteEntry fileBackground_;  // as stored
    dib::PaletteEntry background_;
    std::vector<uint8_t> whole_;  // all stored rows, where they are not decoded in their places
                                  // and each pass needs them again
    size_t wholeStride_ = 0;
    uint32_t rowsDone_ = 0;  // of the first pass
};

}  // namespace tessary::png
