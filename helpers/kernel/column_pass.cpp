#include "helpers/kernel/column_pass.h"

#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tessary::kernel {
namespace {

constexpr size_t kBlock = 16;  // samples mixed at a time: one register of bytes
constexpr int kMostFractionBits = 22;

// Sums of 16 neighbouring samples, 4 to a register.
struct BlockSums {
    __m128i sum[4];
};

// kBlock samples of one row.
struct ByteBlock {
    __m128i all;
};
struct WordBlock {
    __m128i half[2];
};

inline __m128i LoadRegister(const void* from) {
    return _mm_loadu_si128(static_cast<const __m128i*>(from));
}

inline ByteBlock Load(const uint8_t* from) {
    return {LoadRegister(from)};
}

inline WordBlock Load(const int16_t* from) {
    return {{LoadRegister(from), LoadRegister(from + kBlock / 2)}};
}

// In place of a row where the number of them is odd.
inline ByteBlock Nothing(const uint8_t*) {
    return {_mm_setzero_si128()};
}

inline WordBlock Nothing(const int16_t*) {
    return {{_mm_setzero_si128(), _mm_setzero_si128()}};
}

inline void AddTo(__m128i& sum, __m128i samples, __m128i pairOfWeights) {
    sum = _mm_add_epi32(sum, _mm_madd_epi16(samples, pairOfWeights));
}

// Adds upper * weight + lower * weight for each of the 16 sample pairs; `pairOfWeights` repeats the
// two weights. Interleaving the rows makes each pair the two neighbours that pmaddwd multiplies and
// adds.
inline void AddRowPair(BlockSums& sums, ByteBlock upper, ByteBlock lower, __m128i pairOfWeights) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i left = _mm_unpacklo_epi8(upper.all, lower.all);
    const __m128i right = _mm_unpackhi_epi8(upper.all, lower.all);
    AddTo(sums.sum[0], _mm_unpacklo_epi8(left, zero), pairOfWeights);
    AddTo(sums.sum[1], _mm_unpackhi_epi8(left, zero), pairOfWeights);
    AddTo(sums.sum[2], _mm_unpacklo_epi8(right, zero), pairOfWeights);
    AddTo(sums.sum[3], _mm_unpackhi_epi8(right, zero), pairOfWeights);
}

inline void AddRowPair(BlockSums& sums, WordBlock upper, WordBlock lower, __m128i pairOfWeights) {
    for (size_t i = 0; i < 2; ++i) {
        const __m128i left = _mm_unpacklo_epi16(upper.half[i], lower.half[i]);
        const __m128i right = _mm_unpackhi_epi16(upper.half[i], lower.half[i]);
        AddTo(sums.sum[2 * i], left, pairOfWeights);
        AddTo(sums.sum[2 * i + 1], right, pairOfWeights);
    }
}

// Two neighbouring weights as they lie in memory: the upper row's is the lower half.
inline int32_t PairAt(const int16_t* weights) {
    int32_t pair;
    std::memcpy(&pair, weights, sizeof(pair));
    return pair;
}

// Mixes the kBlock samples at `at` into mixed[0 .. kBlock).
template <typename Sample>
inline void MixBlock(std::span<const Sample* const> rows, std::span<const int16_t> weights,
                     size_t at, float unit, bool add, float* mixed) {
    BlockSums sums = {_mm_setzero_si128(), _mm_setzero_si128(), _mm_setzero_si128(),
                      _mm_setzero_si128()};
    const size_t even = rows.size() / 2 * 2;
    for (size_t row = 0; row < even; row += 2) {
        AddRowPair(sums, Load(rows[row] + at), Load(rows[row + 1] + at),
                   _mm_set1_epi32(PairAt(&weights[row])));
    }
    if (even < rows.size()) {
        AddRowPair(sums, Load(rows[even] + at), Nothing(rows[even]),
                   _mm_set1_epi32(static_cast<uint16_t>(weights[even])));
    }
    const __m128 scale = _mm_set1_ps(unit);
    for (const __m128i& sum : sums.sum) {
        __m128 four = _mm_mul_ps(_mm_cvtepi32_ps(sum), scale);
        if (add) four = _mm_add_ps(four, _mm_loadu_ps(mixed));
        _mm_storeu_ps(mixed, four);
        mixed += 4;
    }
}

#if TESSARY_MAY_USE_AVX2

#define TESSARY_AVX2 __attribute__((target("avx2")))

// As AddRowPair, twice as wide: each half of a register goes its own way.
TESSARY_AVX2 inline void AddWideBytes(__m256i (&sums)[4], __m256i upper, __m256i lower,
                                      int32_t pair) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i weights = _mm256_set1_epi32(pair);
    const __m256i left = _mm256_unpacklo_epi8(upper, lower);
    const __m256i right = _mm256_unpackhi_epi8(upper, lower);
    const __m256i samples[4] = {_mm256_unpacklo_epi8(left, zero), _mm256_unpackhi_epi8(left, zero),
                                _mm256_unpacklo_epi8(right, zero),
                                _mm256_unpackhi_epi8(right, zero)};
    for (int i = 0; i < 4; ++i)
        sums[i] = _mm256_add_epi32(sums[i], _mm256_madd_epi16(samples[i], weights));
}

TESSARY_AVX2 inline __m256i LoadWide(const void* from) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(from));
}

// Two rows' samples at `at`, the lower row none when it is null.
TESSARY_AVX2 inline void AddWideRowPair(__m256i (&sums)[4], const uint8_t* upper,
                                        const uint8_t* lower, size_t at, int32_t pair) {
    AddWideBytes(sums, LoadWide(upper + at),
                 lower == nullptr ? _mm256_setzero_si256() : LoadWide(lower + at), pair);
}

TESSARY_AVX2 inline void AddWideRowPair(__m256i (&sums)[4], const int16_t* upper,
                                        const int16_t* lower, size_t at, int32_t pair) {
    const __m256i weights = _mm256_set1_epi32(pair);
    for (size_t i = 0; i < 2; ++i) {
        const __m256i above = LoadWide(upper + at + i * kBlock);
        const __m256i below =
            lower == nullptr ? _mm256_setzero_si256() : LoadWide(lower + at + i * kBlock);
        const __m256i samples[2] = {_mm256_unpacklo_epi16(above, below),
                                    _mm256_unpackhi_epi16(above, below)};
        for (size_t half = 0; half < 2; ++half) {
            __m256i& sum = sums[2 * i + half];
            sum = _mm256_add_epi32(sum, _mm256_madd_epi16(samples[half], weights));
        }
    }
}

// Where the sums of a wide block's register lie in it: its lower half, and how much further on the
// upper one.
constexpr size_t PlaceOf(const uint8_t*, size_t i) {
    return 4 * i;
}
constexpr size_t PlaceOf(const int16_t*, size_t i) {
    return i / 2 * kBlock + i % 2 * 4;
}
constexpr size_t UpperHalf(const uint8_t*) {
    return kBlock;
}
constexpr size_t UpperHalf(const int16_t*) {
    return kBlock / 2;
}

// Mixes 2 * kBlock samples as MixBlock does.
template <typename Sample>
TESSARY_AVX2 inline void MixWideBlock(const Sample* const* rows, const int16_t* weights,
                                      size_t count, size_t at, float unit, bool add, float* mixed) {
    __m256i sums[4] = {_mm256_setzero_si256(), _mm256_setzero_si256(), _mm256_setzero_si256(),
                       _mm256_setzero_si256()};
    const size_t even = count / 2 * 2;
    for (size_t row = 0; row < even; row += 2) {
        AddWideRowPair(sums, rows[row], rows[row + 1], at, PairAt(weights + row));
    }
    if (even < count) {
        const Sample* const none = nullptr;
        AddWideRowPair(sums, rows[even], none, at, static_cast<uint16_t>(weights[even]));
    }
    const __m256 scale = _mm256_set1_ps(unit);
    for (size_t i = 0; i < 4; ++i) {
        const __m256 eight = _mm256_mul_ps(_mm256_cvtepi32_ps(sums[i]), scale);
        float* const low = mixed + PlaceOf(rows[0], i);
        float* const high = low + UpperHalf(rows[0]);
        __m128 lows = _mm256_castps256_ps128(eight);
        __m128 highs = _mm256_extractf128_ps(eight, 1);
        if (add) lows = _mm_add_ps(lows, _mm_loadu_ps(low));
        if (add) highs = _mm_add_ps(highs, _mm_loadu_ps(high));
        _mm_storeu_ps(low, lows);
        _mm_storeu_ps(high, highs);
    }
}

// Mixes what whole wide blocks hold, and answers how many samples that were.
template <typename Sample>
TESSARY_AVX2 size_t MixWideBlocks(std::span<const Sample* const> rows,
                                  std::span<const int16_t> weights, float unit, bool add,
                                  std::span<float> out) {
    const size_t end = out.size() / (2 * kBlock) * (2 * kBlock);
    for (size_t at = 0; at < end; at += 2 * kBlock)
        MixWideBlock(rows.data(), weights.data(), rows.size(), at, unit, add, out.data() + at);
    return end;
}

#endif

}  // namespace

void FixedWeights::Assign(std::span<const double> weights, int mostSample) {
    double largest = 0;
    double sumOfSizes = 0;
    for (const double weight : weights) {
        largest = std::max(largest, std::fabs(weight));
        sumOfSizes += std::fabs(weight);
    }
    // Rounding moves a weight by at most one step, so each counts as one step larger.
    int bits = kMostFractionBits;
    const auto fits = [&](int fractionBits) {
        const double steps = std::ldexp(1.0, fractionBits);
        return largest * steps + 1 <= INT16_MAX &&
               (sumOfSizes * steps + static_cast<double>(weights.size())) * mostSample <= INT32_MAX;
    };
    while (!fits(bits))
        --bits;

    // Rounding the running sum instead of each weight makes the total exact.
    const double steps = std::ldexp(1.0, bits);
    unit_ = static_cast<float>(1 / steps);
    values_.clear();
    double exact = 0;
    double rounded = 0;
    for (const double weight : weights) {
        exact += weight * steps;
        const double next = std::round(exact);
        values_.push_back(static_cast<int16_t>(next - rounded));
        rounded = next;
    }
}

template <typename Sample>
void MixRows(std::span<const Sample* const> rows, std::span<const int16_t> weights, float unit,
             bool add, std::span<float> out, [[maybe_unused]] Instructions instructions) {
    const size_t wholeBlocks = out.size() / kBlock * kBlock;
    size_t at = 0;
#if TESSARY_MAY_USE_AVX2
    if (instructions == Instructions::kAvx2) at = MixWideBlocks(rows, weights, unit, add, out);
#endif
    for (; at < wholeBlocks; at += kBlock)
        MixBlock(rows, weights, at, unit, add, &out[at]);
    if (wholeBlocks == out.size()) return;

    // What is left is less than a block: mix the last whole block and take its end.
    const size_t lastBlock = out.size() - kBlock;
    float block[kBlock];
    std::copy(&out[lastBlock], &out[lastBlock] + kBlock, block);
    MixBlock(rows, weights, lastBlock, unit, add, block);
    std::copy(block + (wholeBlocks - lastBlock), block + kBlock, &out[wholeBlocks]);
}

template void MixRows(std::span<const uint8_t* const>, std::span<const int16_t>, float, bool,
                      std::span<float>, Instructions);
template void MixRows(std::span<const int16_t* const>, std::span<const int16_t>, float, bool,
                      std::span<float>, Instructions);

}  // namespace tessary::kernel
