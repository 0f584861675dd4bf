#include "picture/ahead/shrunk_picture.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "helpers/dib/unpack_row.h"

namespace tessary {
namespace {

constexpr int kSquare = 8;  // of the chequerboard, in pixels
constexpr uint32_t kGreys[] = {0xFF, 0xCC};

// Where less than so many pixels make one, parts of them are counted: else lines would waver.
constexpr int kFewPixels = 8;
constexpr uint32_t kParts = 64;  // of a pixel's side

// The weighted sums of the pixels that one stands for; colours are multiplied by alpha. 8 pixels
// and two parts of them, squared, times 64 * 64 * 255 stay within 32 bits, and so do whole pixels
// as far as one picture goes.
struct Sum {
    uint32_t blue = 0, green = 0, red = 0, alpha = 0, count = 0;

    void Add(uint32_t pixel, uint32_t weight) {
        blue += (pixel & 0xFF) * weight;
        green += (pixel >> 8 & 0xFF) * weight;
        red += (pixel >> 16 & 0xFF) * weight;
        alpha += (pixel >> 24) * weight;
        count += weight;
    }
};

// The part of `count` pixels that the pixel `out` of `width` stands for, in parts of a pixel.
struct Stretch {
    Stretch(int64_t count, int64_t out, int64_t width, uint32_t parts)
        : begin(count * parts * out / width), end(count * parts * (out + 1) / width) {}

    int64_t begin;
    int64_t end;
};

// How much of the pixel at `x` lies there.
uint32_t Covered(const Stretch& stretch, int64_t x, uint32_t parts) {
    const int64_t begin = std::max(stretch.begin, x * parts);
    return static_cast<uint32_t>(std::min(stretch.end, (x + 1) * parts) - begin);
}

void Add(std::span<const uint32_t> row, uint32_t weight, uint32_t parts, std::vector<Sum>& sums) {
    const auto width = static_cast<int64_t>(sums.size());
    for (int64_t out = 0; out < width; ++out) {
        const Stretch stretch(static_cast<int64_t>(row.size()), out, width, parts);
        Sum& sum = sums[static_cast<size_t>(out)];
        if (parts == 1) {
            for (int64_t x = stretch.begin; x < stretch.end; ++x)
                sum.Add(row[static_cast<size_t>(x)], 1);
        } else {
            for (int64_t x = stretch.begin / parts; x * parts < stretch.end; ++x)
                sum.Add(row[static_cast<size_t>(x)], weight * Covered(stretch, x, parts));
        }
    }
}

void Write(const std::vector<Sum>& sums, int y, const ThumbGround& ground, uint8_t* out) {
    int x = 0;
    for (const Sum& sum : sums) {
        const uint32_t count = std::max(sum.count, 1U);
        const uint32_t level = ground.isSquares ? kGreys[(x / kSquare + y / kSquare) % 2]
                                                : static_cast<uint32_t>(ground.level);
        const uint32_t through = 255 - std::min(sum.alpha / count, 255U);
        for (const uint32_t channel : {sum.blue, sum.green, sum.red}) {
            const uint32_t mixed = channel / count + through * level / 255;
            *out++ = static_cast<uint8_t>(std::min(mixed, 255U));
        }
        ++x;
    }
}

}  // namespace

SIZE SizeInSquare(int width, int height, int side) {
    const int longer = std::max(width, height);
    if (longer <= side) return {width, height};
    return {std::max(MulDiv(width, side, longer), 1), std::max(MulDiv(height, side, longer), 1)};
}

Picture ShrunkPicture(const Picture& picture, int side, const ThumbGround& ground) {
    const SIZE size = SizeInSquare(picture.Width(), picture.Height(), side);
    dib::BitmapInfoHeader header{};
    header.size = sizeof(header);
    header.width = size.cx;
    header.height = size.cy;
    header.planes = 1;
    header.bitCount = 24;
    uint8_t info[sizeof(header)];
    std::memcpy(info, &header, sizeof(header));
    const dib::DibView& view = picture.View();
    const dib::RowReader reader(view);
    return Picture::Make(info, [&](std::span<uint8_t> rows) {
        const size_t stride = rows.size() / static_cast<size_t>(size.cy);
        const bool areFew =
            view.Width() < kFewPixels * size.cx && view.Height() < kFewPixels * size.cy;
        const uint32_t parts = areFew ? kParts : 1;
        std::vector<uint32_t> row(static_cast<size_t>(view.Width()));
        for (int out = 0; out < size.cy; ++out) {
            std::vector<Sum> sums(static_cast<size_t>(size.cx));
            const Stretch stretch(view.Height(), out, size.cy, parts);
            for (int64_t y = stretch.begin / parts; y * parts < stretch.end; ++y) {
                reader.PickRun(view.Row(static_cast<int32_t>(y)), 0, row.size(), row.data());
                Add(row, Covered(stretch, y, parts), parts, sums);
            }
            const size_t stored = static_cast<size_t>(size.cy - 1 - out) * stride;
            Write(sums, out, ground, rows.data() + stored);
        }
        return true;
    });
}

}  // namespace tessary
