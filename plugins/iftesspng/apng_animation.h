// The frames of an animated PNG file, each laid on what stays of those before it.
#pragma once

#include <utility>

#include "plugins/common/animation.h"
#include "plugins/iftesspng/apng_file.h"

namespace tessary::png {

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
