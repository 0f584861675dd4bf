#include "picture/ahead/shrunk_picture.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "helpers/dib/unpack_row.h"

namespace tessary {
namespace {

constexpr int kSquare = 8;  // of the chequerboard, in pixels
constexpr uint32_t kGreys[] = {0xFF, 0xCC};

// The sums of the pixels that one stands for; colours are multiplied by alpha.
struct Sum {
    uint32_t blue = 0, green = 0, red = 0, alpha = 0, count = 0;
};

void Add(std::span<const uint32_t> row, int width, std::vector<Sum>& sums) {
    const auto source = static_cast<int64_t>(row.size());
    int64_t x = 0;
    for (int out = 0; out < width; ++out) {
        const int64_t end = source * (out + 1) / width;
        Sum& sum = sums[static_cast<size_t>(out)];
        sum.count += static_cast<uint32_t>(end - x);
        for (; x < end; ++x) {
            const uint32_t pixel = row[static_cast<size_t>(x)];
            sum.blue += pixel & 0xFF;
            sum.green += pixel >> 8 & 0xFF;
            sum.red += pixel >> 16 & 0xFF;
            sum.alpha += pixel >> 24;
        }
    }
}

void Write(const std::vector<Sum>& sums, int y, const ThumbGround& ground, uint8_t* out) {
    int x = 0;
    for (const Sum& sum : sums) {
        const uint32_t count = std::max(sum.count, 1U);
        const uint32_t level = ground.isSquares ? kGreys[(x / kSquare + y / kSquare) % 2]
                                                : static_cast<uint32_t>(ground.level);
        const uint32_t through = (count * 255 - std::min(sum.alpha, count * 255)) / count;
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
        std::vector<uint32_t> row(static_cast<size_t>(view.Width()));
        int64_t y = 0;
        for (int out = 0; out < size.cy; ++out) {
            std::vector<Sum> sums(static_cast<size_t>(size.cx));
            for (const int64_t end = int64_t{view.Height()} * (out + 1) / size.cy; y < end; ++y) {
                reader.PickRun(view.Row(static_cast<int32_t>(y)), 0, row.size(), row.data());
                Add(row, size.cx, sums);
            }
            const size_t stored = static_cast<size_t>(size.cy - 1 - out) * stride;
            Write(sums, out, ground, rows.data() + stored);
        }
        return true;
    });
}

}  // namespace tessary
