// The frames of a GIF file, each laid on what stays of those before it.
#pragma once

#include "plugins/common/animation.h"
#include "plugins/iftessgif/gif_file.h"

namespace tessary::gif {

// Draws one frame on the canvas: what is transparent or missing leaves it as it is. Damage is told;
// kBrokenData where no pixel could be read.
codec::Result DrawFrame(dib::ByteSource& source, const GifFile& file, const GifFrame& frame,
                        codec::Canvas& canvas, codec::Progress& progress);

// For the user, of a frame of which pixels are missing.
inline constexpr wchar_t kDamagedText[] = L"GIFデータが壊れているか、途中で切れています";

class GifAnimation final : public codec::Animation {
  public:
    // `file`: with all of its frames, and a screen of a plausible size.
    explicit GifAnimation(GifFile file)
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
    GifFile file_;
};

}  // namespace tessary::gif
