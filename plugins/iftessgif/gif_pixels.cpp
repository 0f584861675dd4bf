#include "plugins/iftessgif/gif_pixels.h"

#include <algorithm>
#include <vector>

#include "plugins/common/palette.h"

namespace tessary::gif {
namespace {

using codec::Result;

constexpr uint64_t kHeadSize = 13;  // signature and screen

}  // namespace

// giflib is shown a file of that frame alone: the head of the file, then the frame.
int GifPixels::OnRead(GifFileType* gif, GifByteType* out, int count) {
    return static_cast<GifPixels*>(gif->UserData)->Take({out, static_cast<size_t>(count)});
}

int GifPixels::Take(std::span<uint8_t> out) {
    const uint64_t headEnd = kHeadSize + (file_.HasTable() ? uint64_t{3} << file_.TableBits() : 0);
    if (position_ == headEnd) position_ = frame_.position;
    const auto got = source_.ReadAt(position_, out);
    hasFailed_ = hasFailed_ || !got;
    const size_t count = got.value_or(0);
    position_ += count;
    // A block that is cut short, or missing, is made one that ends with the file: giflib drops all
    // of a block of which it does not get each byte, and wants to see an end behind the last pixel.
    if (isInData_ && leftOfBlock_ == 0 && !hasFailed_) {
        const uint64_t left = source_.Size() - std::min(position_, source_.Size());
        out[0] = count == 0 ? uint8_t{0} : static_cast<uint8_t>(std::min<uint64_t>(out[0], left));
        leftOfBlock_ = out[0];
        return 1;
    }
    leftOfBlock_ -= std::min(leftOfBlock_, count);
    return static_cast<int>(count);
}

Result GifPixels::Failure(int error) const {
    if (hasFailed_) return Result::kReadError;
    return error == D_GIF_ERR_NOT_ENOUGH_MEM ? Result::kOutOfMemory : Result::kBrokenData;
}

Result GifPixels::Open() {
    int error = 0;
    gif_.reset(DGifOpen(this, OnRead, &error));
    if (gif_ == nullptr) return Failure(error);
    GifRecordType kind = UNDEFINED_RECORD_TYPE;
    if (DGifGetRecordType(gif_.get(), &kind) == GIF_ERROR || kind != IMAGE_DESC_RECORD_TYPE ||
        DGifGetImageDesc(gif_.get()) == GIF_ERROR || gif_->Image.Width != frame_.width ||
        gif_->Image.Height != frame_.height) {
        return Failure(gif_->Error);
    }
    isInData_ = true;
    return Result::kSuccess;
}

GifPixels::Colors GifPixels::Table() const {
    Colors colors{};
    const ColorMapObject* const map =
        gif_->Image.ColorMap != nullptr ? gif_->Image.ColorMap : gif_->SColorMap;
    if (map == nullptr) {
        std::ranges::copy(codec::GreyPalette(8), colors.begin());
        return colors;
    }
    for (int i = 0; i < std::min(map->ColorCount, 256); ++i) {
        const GifColorType& color = map->Colors[i];
        colors[static_cast<size_t>(i)] = {color.Blue, color.Green, color.Red, 0};
    }
    return colors;
}

Result GifPixels::Read(uint32_t rows, codec::Progress& progress, const PutRow& put) {
    if (frame_.width == 0) return Result::kSuccess;
    rows = std::min<uint32_t>(rows, frame_.height);
    if (frame_.IsInterlaced()) return ReadInterlaced(rows, progress, put);
    std::vector<uint8_t> row(frame_.width);
    for (uint32_t y = 0; y < rows; ++y) {
        if (!progress.Report(y, rows)) return Result::kAborted;
        if (DGifGetLine(gif_.get(), row.data(), frame_.width) == GIF_ERROR) {
            const Result result = Failure(gif_->Error);
            if (result == Result::kBrokenData) put(y, std::span(row).first(PixelsOf(y, row)));
            return result;
        }
        put(y, row);
    }
    return Result::kSuccess;
}

// How much of a row there is that giflib has failed in: it does not tell, so it is asked for one
// pixel after the other.
size_t GifPixels::PixelsOf(uint32_t row, std::span<uint8_t> out) const {
    GifPixels again(source_, file_, frame_);
    if (again.Open() != Result::kSuccess) return 0;
    for (uint32_t y = 0; y < row; ++y)
        if (DGifGetLine(again.gif_.get(), out.data(), frame_.width) == GIF_ERROR) return 0;
    size_t count = 0;
    while (count < out.size() && DGifGetLine(again.gif_.get(), &out[count], 1) != GIF_ERROR)
        ++count;
    return count;
}

Result GifPixels::ReadInterlaced(uint32_t rows, codec::Progress& progress, const PutRow& put) {
    constexpr std::array<std::array<uint32_t, 2>, 4> kPasses{{{0, 8}, {4, 8}, {2, 4}, {1, 2}}};
    const uint32_t height = frame_.height;
    if (!codec::IsPlausibleSize(uint64_t{frame_.width} * height, source_.Size())) {
        return Result::kBrokenData;
    }
    std::vector<uint8_t> all(size_t{frame_.width} * height);
    std::vector<bool> isThere(height);
    const auto rowAt = [&](uint32_t y) {
        return std::span(all).subspan(size_t{frame_.width} * y, frame_.width);
    };
    Result result = Result::kSuccess;
    uint32_t done = 0;
    for (const auto& [first, step] : kPasses) {
        for (uint32_t y = first; y < height && result == Result::kSuccess; y += step) {
            if (!progress.Report(done++, height)) return Result::kAborted;
            if (DGifGetLine(gif_.get(), rowAt(y).data(), frame_.width) == GIF_ERROR) {
                result = Failure(gif_->Error);
            } else {
                isThere[y] = true;
            }
        }
    }
    if ((result != Result::kSuccess && result != Result::kBrokenData) || !isThere[0]) {
        return result;
    }
    uint32_t above = 0;
    for (uint32_t y = 0; y < rows; ++y) {
        if (isThere[y]) above = y;
        put(y, rowAt(above));
    }
    return result;
}

}  // namespace tessary::gif
