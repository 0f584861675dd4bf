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
    uint32_t blue = 0, green = 0, red = 0, alpha = 0;

    void Add(uint32_t pixel, uint32_t weight) {
        blue += (pixel & 0xFF) * weight;
        green += (pixel >> 8 & 0xFF) * weight;
        red += (pixel >> 16 & 0xFF) * weight;
        alpha += (pixel >> 24) * weight;
    }
    void Add(const Sum& other, uint32_t weight) {
        blue += other.blue * weight;
        green += other.green * weight;
        red += other.red * weight;
        alpha += other.alpha * weight;
    }
};

// The pixels that one stands for: the first and the last one as far as they are covered, those in
// between as a whole.
struct Stretch {
    uint32_t first = 0;
    uint32_t last = 0;
    uint32_t firstWeight = 0;
    uint32_t lastWeight = 0;  // 0: it is the first
    uint32_t weight = 0;      // of all together
};

// For each of `width` pixels, out of `count`. A whole pixel weighs `parts`.
std::vector<Stretch> Stretches(int64_t count, int64_t width, uint32_t parts) {
    std::vector<Stretch> all;
    for (int64_t out = 0; out < width; ++out) {
        const int64_t begin = count * parts * out / width;
        const int64_t end = count * parts * (out + 1) / width;
        const int64_t first = begin / parts;
        const int64_t last = (end - 1) / parts;
        const int64_t inFirst = std::min(end, (first + 1) * parts) - begin;
        all.push_back({static_cast<uint32_t>(first), static_cast<uint32_t>(last),
                       static_cast<uint32_t>(inFirst),
                       static_cast<uint32_t>(last > first ? end - last * parts : 0),
                       static_cast<uint32_t>(end - begin)});
    }
    return all;
}

void Add(std::span<const uint32_t> row, const std::vector<Stretch>& stretches, uint32_t parts,
         uint32_t weight, std::vector<Sum>& sums) {
    for (size_t out = 0; out < sums.size(); ++out) {
        const Stretch& stretch = stretches[out];
        Sum between;
        for (uint32_t x = stretch.first + 1; x < stretch.last; ++x)
            between.Add(row[x], 1);
        Sum& sum = sums[out];
        sum.Add(between, parts * weight);
        sum.Add(row[stretch.first], stretch.firstWeight * weight);
        sum.Add(row[stretch.last], stretch.lastWeight * weight);
    }
}

void Write(const std::vector<Sum>& sums, const std::vector<Stretch>& stretches, uint32_t height,
           int y, const ThumbGround& ground, uint8_t* out) {
    int x = 0;
    for (const Sum& sum : sums) {
        const uint32_t count = stretches[static_cast<size_t>(x)].weight * height;
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
        const std::vector<Stretch> across = Stretches(view.Width(), size.cx, parts);
        const std::vector<Stretch> down = Stretches(view.Height(), size.cy, parts);
        for (int out = 0; out < size.cy; ++out) {
            std::vector<Sum> sums(static_cast<size_t>(size.cx));
            const Stretch& rowsOfOne = down[static_cast<size_t>(out)];
            for (uint32_t y = rowsOfOne.first; y <= rowsOfOne.last; ++y) {
                const bool isLast = y == rowsOfOne.last && y != rowsOfOne.first;
                const uint32_t weight = y == rowsOfOne.first ? rowsOfOne.firstWeight
                                        : isLast             ? rowsOfOne.lastWeight
                                                             : parts;
                reader.PickRun(view.Row(static_cast<int32_t>(y)), 0, row.size(), row.data());
                Add(row, across, parts, weight, sums);
            }
            const size_t stored = static_cast<size_t>(size.cy - 1 - out) * stride;
            Write(sums, across, rowsOfOne.weight, out, ground, rows.data() + stored);
        }
        return true;
    });
}

}  // namespace tessary
