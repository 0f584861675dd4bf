#include "helpers/color/ink_table.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <random>
#include <utility>

namespace tessary::color {
namespace {

constexpr uint32_t kGrid = 17;  // points along each ink
constexpr std::array<uint32_t, 4> kStrides{kGrid * kGrid * kGrid, kGrid* kGrid, kGrid, 1};
constexpr uint32_t kAcross = kStrides[1] + kStrides[2] + kStrides[3];
constexpr uint32_t kWhole = 1u << 14;  // from one point to the next; a weight of 16 bits
constexpr float kLevel = 64;           // steps of a point for a level of a colour
constexpr size_t kPixelBytes = 4;
constexpr size_t kProbes = 2048;

// Two weights as they are multiplied with two neighbouring words.
__m128i Weights(uint32_t one, uint32_t other) {
    return _mm_set1_epi32(static_cast<int>(one | other << 16));
}

__m128i Load(const std::array<int16_t, 4>& point) {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(point.data()));
}

// Within a cube the inks' order divides it into six tetrahedrons, as Little CMS has it: from the
// lowest point to the highest one, the ink with the longest way first.
struct Tetrahedron {
    uint32_t second, third;  // points, from the first one on
    __m128i low, high;       // weights of the first two points, and of the last two

    Tetrahedron(uint32_t a, uint32_t b, uint32_t c) {
        const uint32_t longest = std::max(std::max(a, b), c);
        const uint32_t shortest = std::min(std::min(a, b), c);
        const uint32_t middle = a + b + c - longest - shortest;
        second = longest & 0xFFFF;
        third = second + (middle & 0xFFFF);
        const uint32_t x = longest >> 16, y = middle >> 16, z = shortest >> 16;
        low = Weights(kWhole - x, x - y);
        high = Weights(y - z, z);
    }

    // Times kWhole.
    __m128 ColorAt(const std::array<int16_t, 4>* first) const {
        const __m128i lower = _mm_unpacklo_epi16(Load(first[0]), Load(first[second]));
        const __m128i upper = _mm_unpacklo_epi16(Load(first[third]), Load(first[kAcross]));
        return _mm_cvtepi32_ps(
            _mm_add_epi32(_mm_madd_epi16(lower, low), _mm_madd_epi16(upper, high)));
    }
};

// What is out of reach goes by so much light as a color of the other sign has. Little CMS goes on
// in a straight line below black, as steep as it is there: what is mixed of that is wide of the
// mark.
float Mirrored(float color) {
    if (color >= 0) return color;
    const float light = color / -12.92f;
    return light <= 0.0031308f ? color : 0.055f - 1.055f * std::pow(light, 1 / 2.4f);
}

// Or it is cut off, as Little CMS has it in its own tables: better where an ink does not lead out
// of reach step by step but has an edge there, as in profiles that are mere arithmetic.
float CutOff(float color) {
    return color < 0 ? 0 : color;
}

// The same ones each time, so that a picture looks the same each time.
std::vector<uint8_t> ProbeInks() {
    std::minstd_rand random;
    std::vector<uint8_t> inks(kProbes * kPixelBytes);
    for (uint8_t& ink : inks)
        ink = static_cast<uint8_t>(random() >> 8);
    return inks;
}

}  // namespace

InkTable::InkTable(const Meaning& meaning, bool isInverted)
    : points_(size_t{kGrid} * kStrides.front()) {
    for (uint32_t level = 0; level < 256; ++level) {
        const uint32_t ink = isInverted ? 255 - level : level;
        const uint32_t below = std::min(ink * (kGrid - 1) / 255, kGrid - 2);
        const uint32_t part = ink * (kGrid - 1) - below * 255;
        for (size_t i = 0; i < 4; ++i) {
            places_[i][level] = {below * kStrides[i],
                                 (part * kWhole + 127) / 255 << 16 | (i == 0 ? 0 : kStrides[i])};
        }
    }
    std::vector<float> inks(size_t{kStrides.front()} * 4), colors(points_.size() * 3);
    for (uint32_t slice = 0; slice < kGrid; ++slice) {
        const auto inkOf = [](uint32_t point) {
            return static_cast<float>(point % kGrid) / (kGrid - 1);
        };
        for (uint32_t point = 0; point < kStrides.front(); ++point) {
            float* const four = &inks[size_t{point} * 4];
            four[0] = inkOf(slice);
            for (size_t i = 1; i < 4; ++i)
                four[i] = inkOf(point / kStrides[i]);
        }
        meaning(inks.data(), &colors[size_t{slice} * kStrides.front() * 3], kStrides.front());
    }

    const std::vector<uint8_t> probes = ProbeInks();
    inks.resize(probes.size());
    std::transform(probes.begin(), probes.end(), inks.begin(), [isInverted](uint8_t level) {
        return static_cast<float>(isInverted ? 255 - level : level) / 255;
    });
    std::vector<float> exact(kProbes * 3);
    meaning(inks.data(), exact.data(), kProbes);
    TakePoints(colors, CutOff);
    const uint64_t error = ErrorOver(probes, exact);
    std::vector<Point> cut = points_;
    TakePoints(colors, Mirrored);
    if (ErrorOver(probes, exact) > error) points_ = std::move(cut);
}

void InkTable::TakePoints(const std::vector<float>& colors, Rule rule) {
    for (size_t i = 0; i < colors.size(); ++i) {
        // Also what is no number becomes one.
        const float steps = std::fmin(std::fmax(rule(colors[i]) * 255 * kLevel, -32767.f), 32767.f);
        points_[i / 3][i % 3] = static_cast<int16_t>(std::lround(steps));
    }
}

uint64_t InkTable::ErrorOver(const std::vector<uint8_t>& inks,
                             const std::vector<float>& exact) const {
    std::vector<uint8_t> colors(exact.size());
    Convert(inks.data(), colors.data(), exact.size() / 3);
    uint64_t error = 0;
    for (size_t i = 0; i < exact.size(); ++i) {
        const auto level = std::lround(std::fmin(std::fmax(exact[i], 0.f), 1.f) * 255);
        error += static_cast<uint64_t>(std::labs(level - colors[i]));
    }
    return error;
}

void InkTable::Convert(const uint8_t* in, uint8_t* out, size_t pixels) const {
    const __m128 toLevels = _mm_set1_ps(1 / (kWhole * kLevel));
    const __m128 toPart = _mm_set1_ps(1.0f / kWhole);
    uint32_t former = 0;
    int32_t color = 0;
    for (size_t i = 0; i < pixels; ++i, in += kPixelBytes, out += 3) {
        uint32_t inks = 0;
        std::memcpy(&inks, in, sizeof(inks));
        if (i == 0 || inks != former) {
            former = inks;
            const Place &c = places_[0][in[0]], &m = places_[1][in[1]], &y = places_[2][in[2]],
                        &k = places_[3][in[3]];
            const Point* const first = &points_[c.point + m.point + y.point + k.point];
            const Tetrahedron within(m.above, y.above, k.above);
            const __m128 without = within.ColorAt(first);
            const __m128 with = within.ColorAt(first + kStrides[0]);
            const __m128 part = _mm_mul_ps(_mm_set1_ps(static_cast<float>(c.above >> 16)), toPart);
            const __m128 mixed = _mm_add_ps(without, _mm_mul_ps(_mm_sub_ps(with, without), part));
            const __m128i levels = _mm_cvtps_epi32(_mm_mul_ps(mixed, toLevels));
            const __m128i words = _mm_packs_epi32(levels, levels);
            color = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
        }
        std::memcpy(out, &color, 3);
    }
}

}  // namespace tessary::color
