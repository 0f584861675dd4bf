#include "picture/show/spread_picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "helpers/dib/unpack_row.h"
#include "picture/srgb_picture.h"
#include "picture/view/picture_kernel.h"

namespace tessary {
namespace {

constexpr size_t kPixelBytes = 3;
constexpr int64_t kLargestBits = 1 << 30;

// Scans of one book differ by some pixels; resizing them for that would cost sharpness and time.
bool IsAboutAsHigh(const Picture& page, int32_t height) {
    return height - page.Height() <= height / 50;
}

Picture AsHigh(const Picture& page, int32_t height) {
    if (IsAboutAsHigh(page, height)) return page.Another();
    const auto width = int64_t{page.Width()} * height / page.Height();
    if (width * height * int64_t{kPixelBytes} > kLargestBits) return {};
    Picture resized = ResizePicture(page, static_cast<int>(std::max<int64_t>(width, 1)), height,
                                    Handover::kNoFile, ChosenLight());
    if (resized && resized.Profile().empty()) resized.SetProfile(page.Profile());
    return resized;
}

// Beside each other in the rows of both, from the column on.
void Draw(const Picture& page, size_t column, size_t stride, int32_t height,
          std::span<uint8_t> rows) {
    const dib::DibView& view = page.View();
    const dib::RowReader reader(view);
    const auto width = static_cast<size_t>(view.Width());
    const int32_t above = (height - view.Height()) / 2;
    for (int32_t y = 0; y < view.Height(); ++y) {
        const auto row = static_cast<size_t>(height - 1 - (above + y));
        reader.Row(view.Row(y),
                   rows.subspan(row * stride + column * kPixelBytes, width * kPixelBytes));
    }
}

}  // namespace

Picture SpreadPicture(const Picture& left, const Picture& right) {
    // The profile of a colour table says nothing about pixels of three bytes.
    const bool isAlike =
        std::ranges::equal(left.Profile(), right.Profile()) &&
        (left.Profile().empty() || (IsSavableInOwnColors(left) && IsSavableInOwnColors(right)));
    const auto plain = [isAlike](const Picture& page) {
        return isAlike ? page.Another() : SrgbPicture(page.Another());
    };
    const int32_t height = std::max(left.Height(), right.Height());
    const Picture one = AsHigh(plain(left), height);
    const Picture other = AsHigh(plain(right), height);
    if (!one || !other) return {};
    const int64_t width = int64_t{one.Width()} + other.Width();
    const int64_t stride = (width * int64_t{kPixelBytes} + 3) & ~int64_t{3};
    if (stride * height > kLargestBits) return {};
    dib::BitmapInfoHeader header{};
    header.size = dib::kInfoHeaderSize;
    header.width = static_cast<int32_t>(width);
    header.height = height;
    header.planes = 1;
    header.bitCount = kPixelBytes * 8;
    header.sizeImage = static_cast<uint32_t>(stride * height);
    Picture both = Picture::Make(dib::BytesOf(header), [&](std::span<uint8_t> rows) {
        const bool isCovered = one.Height() == height && other.Height() == height;
        if (isCovered) {
            const auto padding = static_cast<size_t>(stride - width * int64_t{kPixelBytes});
            for (int32_t y = 0; y < height && padding > 0; ++y)
                std::memset(rows.data() + static_cast<size_t>((y + 1) * stride) - padding, 0,
                            padding);
        } else {
            std::memset(rows.data(), 0xFF, rows.size());
        }
        const auto all = static_cast<size_t>(stride);
        Draw(one, 0, all, height, rows);
        Draw(other, static_cast<size_t>(one.Width()), all, height, rows);
        return true;
    });
    if (both && isAlike) both.SetProfile(left.Profile());
    return both;
}

}  // namespace tessary
