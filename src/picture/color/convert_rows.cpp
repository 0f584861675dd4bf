#include "picture/color/convert_rows.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace tessary {
namespace {

// Starting a thread takes as long as converting some ten thousand pixels.
constexpr uint64_t kPixelsPerThread = 1u << 17;
constexpr uint64_t kMostThreads = 16;

void ConvertBand(const color::Transform& transform, const RowsToConvert& rows, uint32_t first,
                 uint32_t end) {
    for (uint32_t y = first; y < end; ++y) {
        transform.Convert(rows.in + static_cast<ptrdiff_t>(y) * rows.inStride,
                          rows.out + static_cast<ptrdiff_t>(y) * rows.outStride, rows.width);
    }
}

uint32_t BandCount(const RowsToConvert& rows) {
    const uint64_t cores =
        std::clamp<uint64_t>(std::thread::hardware_concurrency(), 1, kMostThreads);
    const uint64_t pixels = uint64_t{rows.width} * rows.height;
    const uint64_t bands = std::clamp<uint64_t>(pixels / kPixelsPerThread, 1, cores);
    return static_cast<uint32_t>(std::min<uint64_t>(bands, rows.height));
}

}  // namespace

void ConvertRows(const color::Transform& transform, const RowsToConvert& rows) {
    const uint32_t count = BandCount(rows);
    const auto boundary = [&](uint32_t band) {
        return static_cast<uint32_t>(uint64_t{rows.height} * band / std::max(count, 1u));
    };
    std::vector<std::jthread> threads;
    uint32_t begun = 1;
    try {
        threads.reserve(count);
        for (; begun < count; ++begun) {
            threads.emplace_back([&, band = begun] {
                ConvertBand(transform, rows, boundary(band), boundary(band + 1));
            });
        }
    } catch (const std::system_error&) {
        // No further thread to be had: the bands left over are done here.
    }
    ConvertBand(transform, rows, 0, boundary(1));
    for (uint32_t band = begun; band < count; ++band)
        ConvertBand(transform, rows, boundary(band), boundary(band + 1));
}

}  // namespace tessary
