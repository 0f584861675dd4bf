// The frames of an animated WebP file, each laid on what stays of those before it.
#pragma once

#include <utility>
#include <vector>

#include "plugins/common/animation.h"
#include "plugins/iftesswebp/webp_file.h"

namespace tessary::webp {

// For the user, of a picture of which pixels are missing.
inline constexpr wchar_t kDamagedText[] = L"WebPデータが壊れているか、途中で切れています";

class WebpAnimation final : public codec::Animation {
  public:
    // `file`: with at least one frame, and a canvas of a plausible size.
    explicit WebpAnimation(WebpFile file)
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
    WebpFile file_;
    std::vector<uint8_t> data_;    // of the frame that was drawn last
    std::vector<uint8_t> pixels_;  // the same
};

}  // namespace tessary::webp
