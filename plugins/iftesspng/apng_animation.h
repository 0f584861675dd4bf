// The frames of an animated PNG file, each laid on what stays of those before it.
#pragma once

#include <utility>

#include "plugins/common/animation.h"
#include "plugins/iftesspng/apng_file.h"

namespace tessary::png {

// For the user, of a frame of which data are missing or wrong.
inline constexpr wchar_t kDamagedText[] = L"PNGのコマのデータが壊れています";

// Tells of frames that the file ends in, or lacks, and in files that are not large of wrong check
// sums.
codec::Result TellDamage(dib::ByteSource& source, const ApngFile& file, codec::Progress& progress);

class ApngAnimation final : public codec::Animation {
  public:
    // Of a picture of a plausible size.
    explicit ApngAnimation(ApngFile file)
        : Animation(file.width, file.height), file_(std::move(file)) {}

    codec::FrameSet Frames() const override {
        return {codec::FrameKind::kAnimation, static_cast<uint32_t>(file_.frames.size()),
                file_.rounds};
    }

  protected:
    Frame FrameAt(uint32_t index) const override;
    codec::Result Draw(dib::ByteSource& source, uint32_t index, codec::Canvas& canvas,
                       codec::Progress& progress) override;

  private:
    ApngFile file_;
};

}  // namespace tessary::png
