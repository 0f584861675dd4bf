#include "helpers/kernel/row_pass.h"

#include <emmintrin.h>

#include <cassert>
#include <cstring>

namespace tessary::kernel {
namespace {

constexpr size_t kGroup = 4;  // weights of one SSE register

// One pixel of four samples times the weight in lane kLane.
template <int kLane>
__m128 Weighted(const float* pixel, __m128 weights) {
    const __m128 weight = _mm_shuffle_ps(weights, weights, _MM_SHUFFLE(kLane, kLane, kLane, kLane));
    return _mm_mul_ps(_mm_loadu_ps(pixel), weight);
}

}  // namespace

RowFilter::RowFilter(const FilterAxis& axis, int32_t targetWidth, size_t pixelSamples)
    : pixelSamples_(pixelSamples) {
    // The padding covers what the last group's zero weights and the fourth lane read.
    static_assert(kPadding >= (kGroup - 1) * 4 + 1);
    targets_.reserve(static_cast<size_t>(targetWidth));
    std::vector<double> exact;
    for (int32_t target = 0; target < targetWidth; ++target) {
        const int32_t first = axis.WeightsOf(target, exact);
        const size_t groups = (exact.size() + kGroup - 1) / kGroup;
        targets_.push_back({first, static_cast<int32_t>(groups)});
        const size_t begin = weights_.size();
        weights_.insert(weights_.end(), exact.begin(), exact.end());
        weights_.resize(begin + groups * kGroup);
    }
}

template <size_t kPixelSamples>
void RowFilter::ApplyTo(const float* row, std::span<uint8_t> bgr) const {
    const float* weights = weights_.data();
    uint8_t* out = bgr.data();
    for (const Target& target : targets_) {
        const float* pixel = row + static_cast<size_t>(target.first) * kPixelSamples;
        __m128 even = _mm_setzero_ps();
        __m128 odd = _mm_setzero_ps();
        for (int32_t group = 0; group < target.groups; ++group) {
            const __m128 four = _mm_loadu_ps(weights);
            even = _mm_add_ps(even, Weighted<0>(pixel, four));
            odd = _mm_add_ps(odd, Weighted<1>(pixel + kPixelSamples, four));
            even = _mm_add_ps(even, Weighted<2>(pixel + 2 * kPixelSamples, four));
            odd = _mm_add_ps(odd, Weighted<3>(pixel + 3 * kPixelSamples, four));
            weights += kGroup;
            pixel += kGroup * kPixelSamples;
        }
        const __m128i rounded = _mm_cvtps_epi32(_mm_add_ps(even, odd));
        const __m128i words = _mm_packs_epi32(rounded, rounded);
        const int32_t bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(out, &bytes, 3);
        out += 3;
    }
}

void RowFilter::Apply(std::span<const float> row, std::span<uint8_t> bgr) const {
    assert(bgr.size() >= targets_.size() * 3);
    if (pixelSamples_ == 4) {
        ApplyTo<4>(row.data(), bgr);
    } else {
        ApplyTo<3>(row.data(), bgr);
    }
}

}  // namespace tessary::kernel
