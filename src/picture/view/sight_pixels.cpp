#include "picture/view/sight_pixels.h"

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tessary {
namespace {

constexpr int kMostThreads = 4;
// Below so many pixels a thread, starting one costs more than it saves.
constexpr int64_t kPixelsPerThread = 400'000;

// The source pixel whose area holds the middle of a pixel on the screen.
int32_t Nearest(int64_t at, int64_t source, int64_t shown) {
    return static_cast<int32_t>((2 * at + 1) * source / (2 * shown));
}

// Calls draw(first, end) for bands that make up the rows 0 to `count`, on several threads where
// that pays.
template <typename Draw>
void InBands(int count, int64_t pixels, const Draw& draw) {
    const auto processors = static_cast<int>(std::thread::hardware_concurrency());
    const int bands = static_cast<int>(
        std::clamp<int64_t>(pixels / kPixelsPerThread, 1, std::clamp(processors, 1, kMostThreads)));
    const auto boundary = [&](int band) { return static_cast<int>(int64_t{count} * band / bands); };
    std::vector<std::jthread> threads;
    int begun = 1;
    try {
        threads.reserve(static_cast<size_t>(bands));
        for (; begun < bands; ++begun)
            threads.emplace_back(draw, boundary(begun), boundary(begun + 1));
    } catch (const std::system_error&) {
        // No further thread to be had: what is left over is drawn here.
    }
    draw(0, boundary(1));
    if (begun < bands) draw(boundary(begun), count);
}

}  // namespace

bool IsExactAsItIs(SIZE picture, SIZE shown) {
    return (shown.cx == picture.cx && shown.cy == picture.cy) ||
           shown.cx >= 2 * int64_t{picture.cx};
}

SightPixels::SightPixels(Picture picture)
    : picture_(std::move(picture)), reader_(picture_.View()) {}

void SightPixels::DrawNearest(const SightPart& sight, const PixelRows& rows) const {
    const dib::DibView& view = picture_.View();
    std::vector<int32_t> columns(static_cast<size_t>(sight.Width()));
    for (size_t x = 0; x < columns.size(); ++x) {
        columns[x] =
            Nearest(sight.part.left + static_cast<int64_t>(x), view.Width(), sight.shown.cx);
    }
    InBands(sight.Height(), int64_t{sight.Width()} * sight.Height(), [&](int first, int end) {
        int32_t former = -1;
        for (int y = first; y < end; ++y) {
            const int32_t row = Nearest(int64_t{sight.part.top} + y, view.Height(), sight.shown.cy);
            if (row == former) {
                std::memcpy(rows.Row(y), rows.Row(y - 1), columns.size() * sizeof(uint32_t));
            } else {
                reader_.Pick(view.Row(row), columns, rows.Row(y));
            }
            former = row;
        }
    });
}

void SightPixels::DrawAveraged(const SightPart& sight, const PixelRows& rows) const {
    const dib::DibView& view = picture_.View();
    const auto width = static_cast<size_t>(sight.Width());
    std::vector<int32_t> columns(2 * width);
    for (size_t x = 0; x < columns.size(); ++x) {
        columns[x] = Nearest(2 * int64_t{sight.part.left} + static_cast<int64_t>(x), view.Width(),
                             2 * int64_t{sight.shown.cx});
    }
    const auto row = [&](int y, int half) {
        return view.Row(Nearest(2 * (int64_t{sight.part.top} + y) + half, view.Height(),
                                2 * int64_t{sight.shown.cy}));
    };
    // Of all four bytes at once: one rounds down, the other up.
    const auto lower = [](uint32_t a, uint32_t b) {
        return (a & b) + (((a ^ b) & 0xFEFEFEFE) >> 1);
    };
    const auto upper = [](uint32_t a, uint32_t b) {
        return (a | b) - (((a ^ b) & 0xFEFEFEFE) >> 1);
    };
    InBands(sight.Height(), int64_t{sight.Width()} * sight.Height(), [&](int first, int end) {
        std::vector<uint32_t> above(2 * width);
        std::vector<uint32_t> below(2 * width);
        for (int y = first; y < end; ++y) {
            reader_.Pick(row(y, 0), columns, above.data());
            reader_.Pick(row(y, 1), columns, below.data());
            uint32_t* const out = rows.Row(y);
            for (size_t x = 0; x < width; ++x) {
                out[x] = upper(lower(above[2 * x], above[2 * x + 1]),
                               lower(below[2 * x], below[2 * x + 1]));
            }
        }
    });
}

void LayOver(const PixelRows& rows, SIZE size, POINT origin, int side,
             const uint32_t (&colors)[2]) {
    // Squares are counted from far outside, so that no place is below 0.
    const auto square = [side](LONG at, LONG begin) {
        return (at - begin + (1L << 28) / side * side) / side;
    };
    const auto over = [](uint32_t pixel, uint32_t color, int shift) {
        const uint32_t through = 255 - (pixel >> 24);
        const uint32_t below = ((color >> shift & 255) * through + 127) / 255;
        return std::min((pixel >> shift & 255) + below, 255u) << shift;
    };
    for (LONG y = 0; y < size.cy; ++y) {
        uint32_t* const row = rows.Row(y);
        for (LONG x = 0; x < size.cx; ++x) {
            const uint32_t pixel = row[x];
            if (pixel >> 24 == 255) continue;
            const uint32_t color = colors[(square(x, origin.x) + square(y, origin.y)) % 2];
            row[x] =
                over(pixel, color, 0) | over(pixel, color, 8) | over(pixel, color, 16) | 0xFF000000;
        }
    }
}

SharpPart::SharpPart(const SightPart& sight)
    : sight_(sight),
      pixels_(std::make_unique_for_overwrite<uint32_t[]>(static_cast<size_t>(sight.Width()) *
                                                         static_cast<size_t>(sight.Height()))) {}

std::shared_ptr<const SharpPart> SharpPart::DraftOf(const SightPart& sight,
                                                    const SightPixels& pixels) {
    auto draft = std::make_shared<SharpPart>(sight);
    draft->isDraft_ = true;
    pixels.DrawAveraged(sight, draft->Rows());
    return draft;
}

std::shared_ptr<const SharpPart> SharpPart::Of(const SightPart& sight, const Picture& made) {
    auto sharp = std::make_shared<SharpPart>(sight);
    const RECT all{0, 0, sight.Width(), sight.Height()};
    const auto pixels = std::make_unique<const SightPixels>(made.Another());
    pixels->DrawNearest({{made.Width(), made.Height()}, all}, sharp->Rows());
    return sharp;
}

}  // namespace tessary
