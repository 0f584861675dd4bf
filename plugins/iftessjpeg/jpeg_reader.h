// libjpeg behind a plain face: reads from a ByteSource, reports to a Progress, and answers errors
// as results. Everything that libjpeg can leave by a long jump happens in here.
#pragma once

// jpeglib.h needs size_t and FILE.
#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>
#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/color/color_profile.h"
#include "plugins/common/exif.h"
#include "plugins/common/oriented_rows.h"
#include "plugins/common/picture_codec.h"

namespace tessary::jpeg {

// One decoding of one file. The source and the progress outlive it.
class JpegReader {
  public:
    JpegReader(dib::ByteSource& source, codec::Progress& progress);
    ~JpegReader();
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    // Reads up to the first scan. To be called first, once.
    codec::Result ReadHeader();

    // After ReadHeader: has the rows come by a half, a quarter or an eighth as large, which takes
    // less time, as long as the longer side keeps so many pixels. 0: as they are.
    codec::Result Reduce(uint32_t enough);

    // After that: the size of what is decoded, the form of the picture as shown, its orientation.
    uint32_t StoredWidth() const { return width_; }
    uint32_t StoredHeight() const { return height_; }
    uint16_t Orientation() const { return exif_.orientation; }
    codec::PictureForm Form() const;

    // How a stored pixel lies. Inks count from full ink (0) to no ink where Adobe's marker says so.
    enum class Pixels { kGrey, kBgr, kInks, kInvertedInks };
    Pixels StoredPixels() const;
    // What the file says of its colours; nothing where it says nothing usable.
    std::optional<color::Profile> Colors();

    // After ReadHeader: decodes all rows, top row first. Damage is told to the progress.
    codec::Result DecodeRows(codec::OrientedRows& rows);

  private:
    // libjpeg's callbacks; they find the reader through client_data.
    static void OnError(j_common_ptr jpeg);
    static void OnMessage(j_common_ptr jpeg, int level);
    static void OnProgress(j_common_ptr jpeg);
    static boolean FillBuffer(j_decompress_ptr jpeg);
    static void SkipBytes(j_decompress_ptr jpeg, long count);

    [[noreturn]] void Leave(codec::Result result);
    void ReadMarkers();
    // The profile in its markers, which the caller frees.
    bool ReadIcc(JOCTET** icc, unsigned* size);
    codec::Result EndEarly(codec::OrientedRows& rows);
    void FillGrey(uint8_t* row) const;
    bool HasAllScans();
    void TellDamage();

    dib::ByteSource& source_;
    codec::Progress& progress_;
    jpeg_decompress_struct jpeg_{};
    jpeg_error_mgr errors_{};
    jpeg_source_mgr input_{};
    jpeg_progress_mgr monitor_{};
    std::jmp_buf escape_{};
    codec::Result result_ = codec::Result::kSuccess;
    uint64_t position_ = 0;  // of the next byte to fetch from the source
    std::vector<uint8_t> buffer_;
    uint32_t width_ = 0;
    uint32_t height_ = 0;
    codec::ExifEntries exif_;
    bool decodes_ = false;    // the headers are through
    bool endsEarly_ = false;  // the file, before its end mark
    bool isCorrupt_ = false;  // its picture data
};

}  // namespace tessary::jpeg
