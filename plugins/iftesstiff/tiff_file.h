// libtiff behind a plain face: reads from a ByteSource, and keeps its messages.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <memory>
#include <optional>

#include "helpers/dib/byte_source.h"

namespace tessary::tiff {

// An opened file at one of its directories.
class TiffFile {
  public:
    // The source must outlive it. Look at IsOpen.
    explicit TiffFile(dib::ByteSource& source);
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    bool IsOpen() const { return handle_ != nullptr; }
    TIFF* Handle() const { return handle_.get(); }
    // Whether the medium has failed, and not the file.
    bool HasFailed() const { return hasFailed_; }

    // The first value of a tag, or its default; `otherwise` where it has none.
    uint16_t Short(uint32_t tag, uint16_t otherwise = 0) const;
    uint32_t Long(uint32_t tag, uint32_t otherwise = 0) const;
    float Float(uint32_t tag, float otherwise = 0) const;

  private:
    struct Closer {
        void operator()(TIFF* tiff) const { TIFFClose(tiff); }
    };
    static tmsize_t OnRead(thandle_t self, void* into, tmsize_t size);
    static tmsize_t OnWrite(thandle_t, void*, tmsize_t) { return 0; }
    static toff_t OnSeek(thandle_t self, toff_t offset, int from);
    static int OnClose(thandle_t) { return 0; }
    static toff_t OnSize(thandle_t self);

    dib::ByteSource& source_;
    uint64_t position_ = 0;
    bool hasFailed_ = false;
    std::unique_ptr<TIFF, Closer> handle_;
};

}  // namespace tessary::tiff
