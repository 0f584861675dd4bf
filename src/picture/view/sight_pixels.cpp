#include "picture/view/sight_pixels.h"

#include <immintrin.h>

#include <algorithm>
#include <atomic>
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

// Of all four bytes at once, rounded down.
uint32_t Mean(uint32_t a, uint32_t b) {
    return (a & b) + (((a ^ b) & 0xFEFEFEFE) >> 1);
}

// Of each byte, rounded up.
void MeanOfRows(const uint8_t* a, const uint8_t* b, size_t count, uint8_t* out) {
    size_t at = 0;
    for (; at + sizeof(__m128i) <= count; at += sizeof(__m128i)) {
        const auto load = [at](const uint8_t* from) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
        };
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + at), _mm_avg_epu8(load(a), load(b)));
    }
    for (; at < count; ++at)
        out[at] = static_cast<uint8_t>((a[at] + b[at] + 1) / 2);
}

}  // namespace

bool AreMadeAlike(const SightPart& one, const SightPart& other) {
    return one.shown.cx == other.shown.cx && one.shown.cy == other.shown.cy &&
           one.light == other.light;
}

bool IsExactAsItIs(SIZE picture, SIZE shown) {
    return (shown.cx == picture.cx && shown.cy == picture.cy) ||
           shown.cx >= 2 * int64_t{picture.cx};
}

SightPixels::SightPixels(Picture picture)
    : picture_(std::move(picture)), reader_(picture_.View()) {}

void SightPixels::DrawNearest(const SightPart& sight, const PixelRows& rows) const {
    const dib::DibView& view = picture_.View();
    if (sight.shown.cx == view.Width() && sight.shown.cy == view.Height()) {
        return CopyRows(sight.part, rows);
    }
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

void SightPixels::CopyRows(const RECT& part, const PixelRows& rows) const {
    const auto width = static_cast<size_t>(part.right - part.left);
    const int height = part.bottom - part.top;
    // What is as good as copied takes a fifth of the time of what is picked.
    const int64_t pixels = static_cast<int64_t>(width) * height;
    InBands(height, reader_.PlainBytes() != 0 ? pixels / 5 : pixels, [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            reader_.PickRun(picture_.View().Row(part.top + y), static_cast<size_t>(part.left),
                            width, rows.Row(y));
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
    const size_t bytes = reader_.PlainBytes();
    if (bytes == 0) {
        std::vector<uint32_t> above(2 * width);
        std::vector<uint32_t> below(2 * width);
        for (int y = 0; y < sight.Height(); ++y) {
            reader_.Pick(row(y, 0), columns, above.data());
            reader_.Pick(row(y, 1), columns, below.data());
            MeanOfRows(reinterpret_cast<const uint8_t*>(above.data()),
                       reinterpret_cast<const uint8_t*>(below.data()), above.size() * 4,
                       reinterpret_cast<uint8_t*>(above.data()));
            for (size_t x = 0; x < width; ++x)
                rows.Row(y)[x] = Mean(above[2 * x], above[2 * x + 1]);
        }
        return;
    }
    // Of the two rows all pixels between the first and the last one: that takes less than to pick.
    const size_t from = static_cast<size_t>(columns.front()) * bytes;
    const size_t count = (static_cast<size_t>(columns.back()) + 1) * bytes - from;
    std::vector<uint32_t> places(columns.size());
    for (size_t x = 0; x < places.size(); ++x)
        places[x] = static_cast<uint32_t>(static_cast<size_t>(columns[x]) * bytes - from);
    std::vector<uint8_t> mean(count + sizeof(uint32_t));
    for (int y = 0; y < sight.Height(); ++y) {
        MeanOfRows(&row(y, 0)[from], &row(y, 1)[from], count, mean.data());
        const auto at = [&](size_t column) {
            uint32_t pixel;
            std::memcpy(&pixel, &mean[places[column]], sizeof pixel);
            return pixel;
        };
        uint32_t* const out = rows.Row(y);
        for (size_t x = 0; x < width; ++x)
            out[x] = Mean(at(2 * x), at(2 * x + 1)) | 0xFF000000;
    }
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

std::shared_ptr<const SharpPart> SharpPart::Of(const SightPart& sight, const Picture& made) {
    auto sharp = std::make_shared<SharpPart>(sight);
    const RECT all{0, 0, sight.Width(), sight.Height()};
    const auto pixels = std::make_unique<const SightPixels>(made.Another());
    pixels->DrawNearest({{made.Width(), made.Height()}, all}, sharp->Rows());
    return sharp;
}

std::shared_ptr<const SharpPart> Drafts::Of(const SightPart& sight, const SightPixels& pixels) {
    std::erase_if(parts_, [&](const std::shared_ptr<SharpPart>& part) {
        return part->Sight().Width() != sight.Width() || part->Sight().Height() != sight.Height();
    });
    // Nobody else has a way to those that only this one knows.
    auto part = std::ranges::find(parts_, 1, &std::shared_ptr<SharpPart>::use_count);
    std::atomic_thread_fence(std::memory_order_acquire);  // whoever has read it is done with that
    if (part == parts_.end()) {
        part = parts_.insert(part, std::make_shared<SharpPart>(sight));
        (*part)->isDraft_ = true;
    }
    (*part)->sight_ = sight;
    pixels.DrawAveraged(sight, (*part)->Rows());
    return *part;
}

}  // namespace tessary
