// The frames of an animated PNG file, each laid on what stays of those before it.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "helpers/dib/dib_view.h"
#include "plugins/common/animation.h"
#include "plugins/iftesspng/apng_file.h"

namespace tessary::png {

// For the user, of a frame of which data are missing or wrong.
inline constexpr wchar_t kDamagedText[] = L"PNGのコマのデータが壊れています";

// Tells of frames that the file ends in, or lacks, and in files that are not large of wrong check
// sums.
codec::Result TellDamage(dib::ByteSource& source, const ApngFile& file, codec::Progress& progress);

// A frame by itself, in memory that the next one has as well.
class FramePicture final : public codec::PictureTarget {
  public:
    bool Allocate(size_t infoSize, size_t bitsSize) override;
    bool TakesAlpha() const override { return true; }
    uint8_t* Info() override { return info_.data(); }
    uint8_t* Bits() override { return bits_.data(); }
    std::optional<dib::DibView> View() const { return dib::DibView::Of(info_, bits_); }

  private:
    std::vector<uint8_t> info_;
    std::vector<uint8_t> bits_;
};

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
    bool HandOutAlone(dib::ByteSource& source, uint32_t index,
                      codec::PictureTarget& target) override;

  private:
    std::vector<uint8_t> png_;  // a frame as a file
    FramePicture picture_;
    bool areOpaque_ = true;  // as far as is known
    ApngFile file_;
};

}  // namespace tessary::png
