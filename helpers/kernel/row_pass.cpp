#include "helpers/kernel/row_pass.h"

#include <immintrin.h>

#include <algorithm>
#include <cassert>
#include <cstring>

#include "helpers/kernel/light_levels.h"

namespace tessary::kernel {
namespace {

constexpr size_t kGroup = 4;  // weights of one SSE register

// One pixel of four samples times the weight in lane kLane.
template <int kLane>
__m128 Weighted(const float* pixel, __m128 weights) {
    const __m128 weight = _mm_shuffle_ps(weights, weights, _MM_SHUFFLE(kLane, kLane, kLane, kLane));
    return _mm_mul_ps(_mm_loadu_ps(pixel), weight);
}

// Rounds the first three samples, limits them to 0...255 and writes them.
struct StoredWriter {
    static constexpr size_t kBytes = 3;
    void Put(__m128 samples, uint8_t* bgr) const {
        const __m128i rounded = _mm_cvtps_epi32(samples);
        const __m128i words = _mm_packs_epi32(rounded, rounded);
        const int32_t bytes = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        std::memcpy(bgr, &bytes, 3);
    }
};

// The levels of three samples of light.
struct LightWriter {
    static constexpr size_t kBytes = 3;
    const LightLevels& levels = LightLevels::OfSrgb();

    void Put(__m128 samples, uint8_t* bgr) const {
        const __m128 light = _mm_min_ps(_mm_max_ps(samples, _mm_setzero_ps()),
                                        _mm_set1_ps(static_cast<float>(kFullLight)));
        const __m128i halfSteps = _mm_cvtps_epi32(_mm_add_ps(light, light));
        // Below 1 << 16: the upper halves are zero.
        bgr[0] = levels.LevelOf(static_cast<size_t>(_mm_extract_epi16(halfSteps, 0)));
        bgr[1] = levels.LevelOf(static_cast<size_t>(_mm_extract_epi16(halfSteps, 2)));
        bgr[2] = levels.LevelOf(static_cast<size_t>(_mm_extract_epi16(halfSteps, 4)));
    }
};

// The same with alpha, which the light is multiplied by; what is clear is black.
struct AlphaWriter {
    static constexpr size_t kBytes = 4;
    LightWriter colors{};

    void Put(__m128 samples, uint8_t* bgra) const {
        // In registers of SSE2 alone: all instructions are to come to the same bytes.
        const __m128 full = _mm_set1_ps(static_cast<float>(kFullLight));
        const __m128 alpha = _mm_min_ps(_mm_shuffle_ps(samples, samples, 0xFF), full);
        const __m128 level = _mm_mul_ps(alpha, _mm_set1_ps(255.0f / kFullLight));
        bgra[3] = static_cast<uint8_t>(std::max(_mm_cvtsi128_si32(_mm_cvtps_epi32(level)), 0));
        if (bgra[3] == 0) {
            std::memset(bgra, 0, 3);
        } else {
            colors.Put(_mm_mul_ps(samples, _mm_div_ps(full, alpha)), bgra);
        }
    }
};

}  // namespace

RowFilter::RowFilter(const FilterAxis& axis, int32_t left, int32_t width, size_t pixelSamples,
                     Instructions instructions, RowOutput output)
    : pixelSamples_(pixelSamples), instructions_(instructions), output_(output) {
    // The padding covers what the last group's zero weights and the fourth lane read.
    static_assert(kPadding >= (kGroup - 1) * 4 + 1);
    targets_.reserve(static_cast<size_t>(width));
    std::vector<double> exact;
    for (int32_t target = left; target < left + width; ++target) {
        const int32_t first = axis.WeightsOf(target, exact);
        const int32_t end = first + static_cast<int32_t>(exact.size());
        firstPixel_ = target == left ? first : std::min(firstPixel_, first);
        endPixel_ = std::max(endPixel_, end);
        const size_t groups = (exact.size() + kGroup - 1) / kGroup;
        targets_.push_back({first, static_cast<int32_t>(groups)});
        const size_t begin = weights_.size();
        weights_.insert(weights_.end(), exact.begin(), exact.end());
        weights_.resize(begin + groups * kGroup);
    }
}

template <size_t kPixelSamples, typename Writer>
void RowFilter::ApplyTo(Writer writer, const float* row, int32_t from, uint8_t* out) const {
    const float* weights = weights_.data();
    for (const Target& target : targets_) {
        const float* pixel = row + static_cast<size_t>(target.first - from) * kPixelSamples;
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
        writer.Put(_mm_add_ps(even, odd), out);
        out += Writer::kBytes;
    }
}

#if TESSARY_MAY_USE_AVX2

// As ApplyTo, the even weights' pixels in the lower half of a register and the odd ones' in the
// upper: the same sums in the same order.
template <size_t kPixelSamples, typename Writer>
void RowFilter::ApplyWideTo(Writer writer, const float* row, int32_t from, uint8_t* out) const {
    const __m256i firstTwo = _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1);
    const __m256i lastTwo = _mm256_setr_epi32(2, 2, 2, 2, 3, 3, 3, 3);
    const float* weights = weights_.data();
    for (const Target& target : targets_) {
        const float* pixel = row + static_cast<size_t>(target.first - from) * kPixelSamples;
        __m256 sums = _mm256_setzero_ps();
        for (int32_t group = 0; group < target.groups; ++group) {
            const __m256 four = _mm256_broadcast_ps(reinterpret_cast<const __m128*>(weights));
            const __m256 first = _mm256_loadu2_m128(pixel + kPixelSamples, pixel);
            sums = _mm256_add_ps(sums, _mm256_mul_ps(first, _mm256_permutevar_ps(four, firstTwo)));
            const __m256 last =
                _mm256_loadu2_m128(pixel + 3 * kPixelSamples, pixel + 2 * kPixelSamples);
            sums = _mm256_add_ps(sums, _mm256_mul_ps(last, _mm256_permutevar_ps(four, lastTwo)));
            weights += kGroup;
            pixel += kGroup * kPixelSamples;
        }
        writer.Put(_mm_add_ps(_mm256_castps256_ps128(sums), _mm256_extractf128_ps(sums, 1)), out);
        out += Writer::kBytes;
    }
}

#endif

template <size_t kPixelSamples, typename Writer>
void RowFilter::ApplyWith(Writer writer, const float* row, int32_t from, uint8_t* out) const {
#if TESSARY_MAY_USE_AVX2
    if (instructions_ == Instructions::kAvx2) {
        return ApplyWideTo<kPixelSamples>(writer, row, from, out);
    }
#endif
    ApplyTo<kPixelSamples>(writer, row, from, out);
}

void RowFilter::Apply(std::span<const float> row, int32_t from, std::span<uint8_t> pixels) const {
    assert(pixels.size() >= targets_.size() * (output_ == RowOutput::kLightAlpha ? 4 : 3));
    if (output_ == RowOutput::kLightAlpha) {
        ApplyWith<4>(AlphaWriter(), row.data(), from, pixels.data());
    } else if (output_ == RowOutput::kLight) {
        ApplyWith<3>(LightWriter(), row.data(), from, pixels.data());
    } else if (pixelSamples_ == 4) {
        ApplyWith<4>(StoredWriter(), row.data(), from, pixels.data());
    } else {
        ApplyWith<3>(StoredWriter(), row.data(), from, pixels.data());
    }
}

}  // namespace tessary::kernel
