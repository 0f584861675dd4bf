#include "plugins/iftesspng/apng_animation.h"

#include <cstring>

#include "helpers/dib/unpack_row.h"
#include "plugins/iftesspng/png_decoder.h"

namespace tessary::png {
namespace {

using codec::Canvas;
using codec::Disposal;
using codec::Result;

// Of larger files the sums of all frames are not compared before the first one is seen.
constexpr uint64_t kMostCompared = 16u << 20;

// A frame by itself.
class FramePicture final : public codec::PictureTarget {
  public:
    bool Allocate(size_t infoSize, size_t bitsSize) override {
        info_.assign(infoSize, 0);
        bits_.assign(bitsSize, 0);
        return true;
    }
    bool TakesAlpha() const override { return true; }
    uint8_t* Info() override { return info_.data(); }
    uint8_t* Bits() override { return bits_.data(); }

    std::optional<dib::DibView> View() const { return dib::DibView::Of(info_, bits_); }

  private:
    std::vector<uint8_t> info_;
    std::vector<uint8_t> bits_;
};

// `hasPicture`: whether there is one of the frame's size. Damage is told.
Result ReadFrame(dib::ByteSource& source, const ApngFile& file, const ApngFrame& frame,
                 FramePicture& picture, bool& hasPicture, codec::Progress& progress) {
    std::vector<uint8_t> png;
    bool isDamaged = false;
    Result result = ReadFrameFile(source, file, frame, png, isDamaged);
    if (result != Result::kSuccess) return result;
    dib::MemorySource bytes(png);
    codec::Progress own;  // of an animation's frames the host hears each
    result = PngDecoder().Decode(bytes, picture, own);
    const auto view = picture.View();
    hasPicture = result == Result::kSuccess && view &&
                 view->Width() == static_cast<int32_t>(frame.place.width) &&
                 view->Height() == static_cast<int32_t>(frame.place.height);
    if (isDamaged || !hasPicture || own.Told().condition != codec::Condition::kNone) {
        progress.Tell(codec::Condition::kDamaged, kDamagedText);
    }
    // Those behind a frame that cannot be read are as good as any.
    return hasPicture || result == Result::kOutOfMemory ? result : Result::kSuccess;
}

// Whether the file ends before the last pixel of its frames.
bool IsCutShort(dib::ByteSource& source, const ApngFile& file) {
    if (file.hasEnd) return false;
    if (file.frames.size() < file.promised) return true;
    FramePicture picture;
    bool hasPicture = false;
    codec::Progress told;
    ReadFrame(source, file, file.frames.back(), picture, hasPicture, told);
    return told.Told().condition != codec::Condition::kNone;
}

}  // namespace

Result TellDamage(dib::ByteSource& source, const ApngFile& file, codec::Progress& progress) {
    bool isDamaged = IsCutShort(source, file);
    std::vector<uint8_t> png;
    for (const ApngFrame& frame : file.frames) {
        if (isDamaged || source.Size() > kMostCompared) break;
        if (!progress.Report(0, 1)) return Result::kAborted;
        const Result result = ReadFrameFile(source, file, frame, png, isDamaged);
        if (result != Result::kSuccess) return result;
    }
    if (isDamaged) progress.Tell(codec::Condition::kDamaged, kDamagedText);
    return Result::kSuccess;
}

codec::Animation::Frame ApngAnimation::FrameAt(uint32_t index) const {
    const ApngFrame& frame = file_.frames[index];
    const Disposal disposal = frame.disposal == 1   ? Disposal::kClear
                              : frame.disposal == 2 ? Disposal::kPutBack
                                                    : Disposal::kNone;
    return {.place = frame.place,
            .disposal = disposal,
            .isSolid = !frame.isBlended,
            .duration = frame.duration};
}

Result ApngAnimation::Draw(dib::ByteSource& source, uint32_t index, Canvas& canvas,
                           codec::Progress& progress) {
    const ApngFrame& frame = file_.frames[index];
    FramePicture picture;
    bool hasPicture = false;
    const Result result = ReadFrame(source, file_, frame, picture, hasPicture, progress);
    const auto view = picture.View();
    if (!hasPicture) return result;
    const dib::RowReader reader(*view);
    std::vector<uint8_t> row(size_t{frame.place.width} * Canvas::kPixelBytes);
    for (uint32_t y = 0; y < frame.place.height; ++y) {
        reader.RowBgra(view->Row(static_cast<int32_t>(y)), row);
        if (frame.isBlended) {
            canvas.Blend(frame.place.left, frame.place.top + y, row);
        } else {
            std::memcpy(canvas.Pixel(frame.place.left, frame.place.top + y), row.data(),
                        row.size());
        }
    }
    return Result::kSuccess;
}

}  // namespace tessary::png
