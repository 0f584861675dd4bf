#include "plugins/iftesswebp/webp_animation.h"

#include <cstring>
#include <memory>

#include "plugins/common/srgb.h"
#include "plugins/common/whole_source.h"
#include "plugins/iftesswebp/webp_pixels.h"

namespace tessary::webp {
namespace {

using codec::Canvas;
using codec::Disposal;
using codec::Result;

}  // namespace

codec::Animation::Frame WebpAnimation::FrameAt(uint32_t index) const {
    const WebpFrame& frame = file_.frames[index];
    return {.place = frame.place,
            .disposal = frame.clears ? Disposal::kClear : Disposal::kNone,
            .isSolid = !frame.isBlended,
            .duration = frame.duration};
}

// Frames behind one that cannot be read are as good as any.
Result WebpAnimation::Draw(dib::ByteSource& source, uint32_t index, Canvas& canvas,
                           codec::Progress& progress) {
    const WebpFrame& frame = file_.frames[index];
    const codec::FramePlace& place = frame.place;
    const codec::FramePlace visible = canvas.Visible(place);
    const Result read = codec::ReadPart(source, frame.offset, frame.size, data_);
    if (read != Result::kSuccess) return read;
    const size_t rowBytes = size_t{place.width} * Canvas::kPixelBytes;
    pixels_.assign(rowBytes * place.height, 0);
    uint32_t rows = 0;
    codec::Progress nobody;  // of an animation's frames the host hears each
    const Result result = DecodePixels(data_,
                                       {.first = pixels_.data(),
                                        .stride = static_cast<ptrdiff_t>(rowBytes),
                                        .haveAlpha = true,
                                        .width = place.width,
                                        .height = place.height},
                                       nobody, rows);
    if (result != Result::kSuccess && result != Result::kBrokenData) return result;
    if (result == Result::kBrokenData) progress.Tell(codec::Condition::kDamaged, kDamagedText);
    const auto transform = codec::ToSrgb(file_.profile, color::Layout::kBgra8);
    const size_t visibleBytes = size_t{visible.width} * Canvas::kPixelBytes;
    for (uint32_t y = 0; y < std::min(rows, visible.height) && visible.width != 0; ++y) {
        uint8_t* const row = &pixels_[y * rowBytes];
        if (transform) transform->Convert(row, row, visible.width);
        if (frame.isBlended) {
            canvas.Blend(visible.left, visible.top + y, {row, visibleBytes});
        } else {
            std::memcpy(canvas.Pixel(visible.left, visible.top + y), row, visibleBytes);
        }
    }
    return Result::kSuccess;
}

}  // namespace tessary::webp
