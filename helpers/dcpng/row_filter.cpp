#include "helpers/dcpng/row_filter.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace tessary::dcpng {
namespace {

constexpr size_t kLanes = 16;  // bytes of one SSE register
static_assert(kRowMargin >= kLanes);

enum FilterType : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };
constexpr size_t kFilterTypes = 5;

// Sixteen bytes of a row, and those in their neighbour pixels.
struct Neighbourhood {
    Neighbourhood(const uint8_t* row, const uint8_t* above, size_t pixelBytes)
        : here(Load(row)),
          left(Load(row - pixelBytes)),
          up(Load(above)),
          upLeft(Load(above - pixelBytes)) {}
    static __m128i Load(const uint8_t* bytes) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    }

    __m128i here;
    __m128i left;
    __m128i up;
    __m128i upLeft;
};

__m128i Magnitude16(__m128i words) {
    return _mm_max_epi16(words, _mm_sub_epi16(_mm_setzero_si128(), words));
}

// Eight words of bytes: left, up or upLeft, whichever is nearest to left + up - upLeft; the
// earlier one of two that are equally near.
__m128i Nearest(__m128i left, __m128i up, __m128i upLeft) {
    const __m128i fromUp = _mm_sub_epi16(left, upLeft);
    const __m128i fromLeft = _mm_sub_epi16(up, upLeft);
    const __m128i distanceLeft = Magnitude16(fromLeft);
    const __m128i distanceUp = Magnitude16(fromUp);
    const __m128i distanceUpLeft = Magnitude16(_mm_add_epi16(fromLeft, fromUp));
    const __m128i isUpLeft = _mm_cmpgt_epi16(distanceUp, distanceUpLeft);
    const __m128i upOrUpLeft =
        _mm_or_si128(_mm_and_si128(isUpLeft, upLeft), _mm_andnot_si128(isUpLeft, up));
    const __m128i isNotLeft =
        _mm_cmpgt_epi16(distanceLeft, _mm_min_epi16(distanceUp, distanceUpLeft));
    return _mm_or_si128(_mm_and_si128(isNotLeft, upOrUpLeft), _mm_andnot_si128(isNotLeft, left));
}

__m128i PaethPredictor(const Neighbourhood& at) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i low = Nearest(_mm_unpacklo_epi8(at.left, zero), _mm_unpacklo_epi8(at.up, zero),
                                _mm_unpacklo_epi8(at.upLeft, zero));
    const __m128i high = Nearest(_mm_unpackhi_epi8(at.left, zero), _mm_unpackhi_epi8(at.up, zero),
                                 _mm_unpackhi_epi8(at.upLeft, zero));
    return _mm_packus_epi16(low, high);
}

template <FilterType kType>
__m128i Filtered(const Neighbourhood& at) {
    if constexpr (kType == kSub) return _mm_sub_epi8(at.here, at.left);
    if constexpr (kType == kUp) return _mm_sub_epi8(at.here, at.up);
    if constexpr (kType == kAverage) {
        // The instruction rounds up where the format rounds down.
        const __m128i odd = _mm_and_si128(_mm_xor_si128(at.left, at.up), _mm_set1_epi8(1));
        const __m128i average = _mm_sub_epi8(_mm_avg_epu8(at.left, at.up), odd);
        return _mm_sub_epi8(at.here, average);
    }
    if constexpr (kType == kPaeth) return _mm_sub_epi8(at.here, PaethPredictor(at));
    return at.here;
}

// All bits of the first `count` bytes; count is at most kLanes.
__m128i FirstBytes(size_t count) {
    alignas(kLanes) std::array<uint8_t, kLanes> bytes{};
    std::fill_n(bytes.begin(), count, uint8_t{0xFF});
    return _mm_load_si128(reinterpret_cast<const __m128i*>(bytes.data()));
}

// The sum of the magnitudes of signed bytes, in two halves.
__m128i Sum(__m128i bytes) {
    const __m128i zero = _mm_setzero_si128();
    return _mm_sad_epu8(_mm_min_epu8(bytes, _mm_sub_epi8(zero, bytes)), zero);
}

template <size_t... kTypes>
FilterType BestFilter(const uint8_t* row, const uint8_t* above, size_t size, size_t pixelBytes,
                      std::index_sequence<kTypes...>) {
    __m128i sums[kFilterTypes] = {};
    const auto add = [&](size_t x, auto part) {
        const Neighbourhood at(row + x, above + x, pixelBytes);
        ((sums[kTypes] = _mm_add_epi64(sums[kTypes],
                                       Sum(part(Filtered<static_cast<FilterType>(kTypes)>(at))))),
         ...);
    };
    size_t x = 0;
    for (; x + kLanes <= size; x += kLanes)
        add(x, [](__m128i bytes) { return bytes; });
    if (x != size) {
        const __m128i mask = FirstBytes(size - x);
        add(x, [mask](__m128i bytes) { return _mm_and_si128(bytes, mask); });
    }
    std::array<uint64_t, kFilterTypes> totals;
    for (size_t type = 0; type < kFilterTypes; ++type) {
        std::array<uint64_t, 2> halves;
        std::memcpy(halves.data(), &sums[type], sizeof(halves));
        totals[type] = halves[0] + halves[1];
    }
    return static_cast<FilterType>(std::ranges::min_element(totals) - totals.begin());
}

template <FilterType kType>
void Apply(const uint8_t* row, const uint8_t* above, size_t size, size_t pixelBytes, uint8_t* out) {
    *out++ = kType;
    for (size_t x = 0; x < size; x += kLanes) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + x),
                         Filtered<kType>(Neighbourhood(row + x, above + x, pixelBytes)));
    }
}

}  // namespace

void FilterRow(const uint8_t* row, const uint8_t* above, size_t size, size_t pixelBytes,
               uint8_t* out) {
    constexpr auto kAllTypes = std::make_index_sequence<kFilterTypes>();
    switch (BestFilter(row, above, size, pixelBytes, kAllTypes)) {
        case kNone:
            return CopyRow(row, size, out);
        case kSub:
            return Apply<kSub>(row, above, size, pixelBytes, out);
        case kUp:
            return Apply<kUp>(row, above, size, pixelBytes, out);
        case kAverage:
            return Apply<kAverage>(row, above, size, pixelBytes, out);
        case kPaeth:
            return Apply<kPaeth>(row, above, size, pixelBytes, out);
    }
}

void CopyRow(const uint8_t* row, size_t size, uint8_t* out) {
    *out = kNone;
    std::memcpy(out + 1, row, size);
}

}  // namespace tessary::dcpng
