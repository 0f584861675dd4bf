// A source of several pictures, opened for them (docs/plugin-extension.md, OpenFrames).
#pragma once

#include <cstdint>

#include "helpers/dib/byte_source.h"
#include "plugins/common/picture_target.h"
#include "plugins/common/progress.h"
#include "plugins/common/result.h"

namespace tessary::codec {

// The values are those of FrameList.
enum class FrameKind : int32_t { kAnimation = 1, kPages = 2 };

struct FrameSet {
    FrameKind kind = FrameKind::kAnimation;
    uint32_t count = 0;   // at least 2
    uint32_t rounds = 0;  // 0: endlessly
};

// Remembers what helps with the next frame; of no more memory than a few frames need.
class FrameReader {
  public:
    FrameReader() = default;
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;
    virtual ~FrameReader() = default;

    virtual FrameSet Frames() const = 0;

    // Decodes frame `index`, below the count, into `target`. `source` is the one that it was opened
    // with, opened again perhaps; it may have changed, which must do no harm. `duration` receives
    // milliseconds; 0: the source does not say. After a failure the next call begins anew.
    virtual Result Decode(dib::ByteSource& source, uint32_t index, PictureTarget& target,
                          Progress& progress, uint32_t& duration) = 0;
};

}  // namespace tessary::codec
