// What a bundled picture plug-in is made of: a portable decoder behind this interface. The entry
// points in picture_exports.cpp turn it into a Susie plug-in; tests and fuzzers use it directly.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "helpers/dib/byte_source.h"
#include "plugins/common/frame_reader.h"
#include "plugins/common/picture_target.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"

namespace tessary::codec {

// A codec keeps nothing between calls, so one object serves every call and every thread.
class PictureCodec {
  public:
    virtual ~PictureCodec() = default;

    // Whether the first bytes of a file are of a format that Decode reads. Looks at no more than
    // the first 64 bytes and takes a shorter header for a shorter file.
    virtual bool IsSupported(std::span<const uint8_t> header) const = 0;

    // Reads just enough of the picture to tell its form; `form` is set only on success.
    virtual Result ReadForm(dib::ByteSource& source, PictureForm& form) const = 0;

    // Decodes the first picture of the source into `target`. On failure the target may hold blocks
    // already; they are not to be used.
    virtual Result Decode(dib::ByteSource& source, PictureTarget& target,
                          Progress& progress) const = 0;

    // Opens a source for its frames or pages; null where there is one at most, which the first
    // bytes should tell, or none can be had. The source may be closed behind the call.
    virtual std::unique_ptr<FrameReader> OpenFrames(dib::ByteSource&) const { return nullptr; }
};

}  // namespace tessary::codec
