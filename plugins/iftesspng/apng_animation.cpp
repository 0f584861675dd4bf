#include "plugins/iftesspng/apng_animation.h"

#include "helpers/dib/unpack_row.h"
#include "plugins/iftesspng/png_decoder.h"

namespace tessary::png {
namespace {

using codec::Canvas;
using codec::Disposal;
using codec::Result;

// Of larger files the sums of all frames are not compared before the first one is seen.
constexpr uint64_t kMostCompared = 16u << 20;

// Takes a picture as a canvas hands out an opaque one, and nothing else.
class OpaqueTarget final : public codec::PictureTarget {
  public:
    OpaqueTarget(codec::PictureTarget& target, uint32_t width, uint32_t height)
        : target_(target), bitsSize_(dib::RowStride(width, 24) * height) {}

    bool Allocate(size_t infoSize, size_t bitsSize) override {
        return infoSize == dib::kInfoHeaderSize && bitsSize == bitsSize_ &&
               target_.Allocate(infoSize, bitsSize);
    }
    bool TakesAlpha() const override { return true; }
    uint8_t* Info() override { return target_.Info(); }
    uint8_t* Bits() override { return target_.Bits(); }

  private:
    codec::PictureTarget& target_;
    uint64_t bitsSize_;
};

// As the decoder answers. `isSound`: nothing of it is missing or wrong. `png` is room for the frame
// as a file.
Result ReadFrame(dib::ByteSource& source, const ApngFile& file, const ApngFrame& frame,
                 std::vector<uint8_t>& png, codec::PictureTarget& target, bool& isSound) {
    bool isDamaged = false;
    const Result read = ReadFrameFile(source, file, frame, png, isDamaged);
    if (read != Result::kSuccess) return read;
    dib::MemorySource bytes(png);
    codec::Progress own;  // of an animation's frames the host hears each
    const Result result = PngDecoder().Decode(bytes, target, own);
    isSound =
        result == Result::kSuccess && !isDamaged && own.Told().condition == codec::Condition::kNone;
    return result;
}

// Whether frames are missing that the file announces, or it ends before their last pixel.
bool IsCutShort(dib::ByteSource& source, const ApngFile& file) {
    if (file.frames.size() < file.promised) return true;
    if (file.hasEnd) return false;
    FramePicture picture;
    std::vector<uint8_t> png;
    bool isSound = false;
    return ReadFrame(source, file, file.frames.back(), png, picture, isSound) !=
               Result::kReadError &&
           !isSound;
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

bool FramePicture::Allocate(size_t infoSize, size_t bitsSize) {
    info_.assign(infoSize, 0);
    bits_.assign(bitsSize, 0);
    return true;
}

bool ApngAnimation::HandOutAlone(dib::ByteSource& source, uint32_t index,
                                 codec::PictureTarget& target) {
    if (!areOpaque_) return false;
    OpaqueTarget opaque(target, Width(), Height());
    bool isSound = false;
    areOpaque_ =
        ReadFrame(source, file_, file_.frames[index], png_, opaque, isSound) == Result::kSuccess;
    return isSound;
}

Result ApngAnimation::Draw(dib::ByteSource& source, uint32_t index, Canvas& canvas,
                           codec::Progress& progress) {
    const ApngFrame& frame = file_.frames[index];
    bool isSound = false;
    const Result result = ReadFrame(source, file_, frame, png_, picture_, isSound);
    if (result == Result::kReadError) return result;
    const auto view = picture_.View();
    const bool hasPicture = result == Result::kSuccess && view &&
                            view->Width() == static_cast<int32_t>(frame.place.width) &&
                            view->Height() == static_cast<int32_t>(frame.place.height);
    if (!isSound || !hasPicture) progress.Tell(codec::Condition::kDamaged, kDamagedText);
    // Those behind a frame that cannot be read are as good as any.
    if (!hasPicture) return result == Result::kOutOfMemory ? result : Result::kSuccess;
    const dib::RowReader reader(*view);
    const size_t rowSize = size_t{frame.place.width} * Canvas::kPixelBytes;
    std::vector<uint8_t> row(frame.isBlended ? rowSize : 0);
    for (uint32_t y = 0; y < frame.place.height; ++y) {
        const std::span<const uint8_t> pixels = view->Row(static_cast<int32_t>(y));
        if (frame.isBlended) {
            reader.RowBgra(pixels, row);
            canvas.Blend(frame.place.left, frame.place.top + y, row);
        } else {
            reader.RowBgra(pixels, {canvas.Pixel(frame.place.left, frame.place.top + y), rowSize});
        }
    }
    return Result::kSuccess;
}

}  // namespace tessary::png
