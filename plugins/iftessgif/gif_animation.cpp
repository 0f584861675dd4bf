#include "plugins/iftessgif/gif_animation.h"

#include <array>
#include <cstring>

#include "plugins/iftessgif/gif_pixels.h"

namespace tessary::gif {
namespace {

using codec::Canvas;
using codec::Disposal;
using codec::Result;

constexpr uint32_t kMillisecondsPerDelay = 10;

// As browsers do: the background of old times is nothing, and 4 is what some programs meant by 3.
Disposal DisposalOf(uint8_t stored) {
    if (stored == 2) return Disposal::kClear;
    return stored == 3 || stored == 4 ? Disposal::kPutBack : Disposal::kNone;
}

}  // namespace

Result DrawFrame(dib::ByteSource& source, const GifFile& file, const GifFrame& frame,
                 Canvas& canvas, codec::Progress& progress) {
    const codec::FramePlace visible = canvas.Visible(frame.Place());
    if (visible.width == 0 || visible.height == 0) return Result::kSuccess;
    GifPixels pixels(source, file, frame);
    Result result = pixels.Open();
    bool hasPixels = false;
    if (result == Result::kSuccess) {
        std::array<std::array<uint8_t, Canvas::kPixelBytes>, 256> table{};
        const GifPixels::Colors colors = pixels.Table();
        for (size_t i = 0; i < table.size(); ++i)
            table[i] = {colors[i].blue, colors[i].green, colors[i].red, 0xFF};
        codec::Progress nobody;  // of an animation's frames the host hears each
        result =
            pixels.Read(visible.height, nobody, [&](uint32_t y, std::span<const uint8_t> indexes) {
                hasPixels = hasPixels || !indexes.empty();
                uint8_t* out = canvas.Pixel(visible.left, visible.top + y);
                for (const uint8_t index :
                     indexes.first(std::min<size_t>(indexes.size(), visible.width))) {
                    if (index != frame.clearIndex) std::memcpy(out, &table[index], sizeof table[0]);
                    out += Canvas::kPixelBytes;
                }
            });
    }
    if (result != Result::kBrokenData) return result;
    progress.Tell(codec::Condition::kDamaged, kDamagedText);
    return hasPixels ? Result::kSuccess : result;
}

// Frames behind one without a pixel are as good as any.
Result GifAnimation::Draw(dib::ByteSource& source, uint32_t index, Canvas& canvas,
                          codec::Progress& progress) {
    const Result result = DrawFrame(source, file_, file_.frames[index], canvas, progress);
    return result == Result::kBrokenData ? Result::kSuccess : result;
}

codec::Animation::Frame GifAnimation::FrameAt(uint32_t index) const {
    const GifFrame& frame = file_.frames[index];
    return {.place = frame.Place(),
            .disposal = DisposalOf(frame.disposal),
            .isSolid = frame.clearIndex < 0,
            .duration = frame.delay * kMillisecondsPerDelay};
}

}  // namespace tessary::gif
