#include "helpers/color/matrix_path.h"

#include <emmintrin.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>

namespace tessary::color {
namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

// A profile's curves and colours, red, green, blue; the curves belong to the profile.
struct MatrixProfile {
    std::array<const cmsToneCurve*, 3> curves;
    Matrix toXyz;  // columns are the colours
};

// Little CMS prefers tables to a matrix where a profile has both.
bool HasTables(cmsHPROFILE profile) {
    return std::ranges::any_of(
        std::array{cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigBToA0Tag, cmsSigBToA1Tag, cmsSigDToB0Tag,
                   cmsSigDToB1Tag, cmsSigBToD0Tag, cmsSigBToD1Tag},
        [&](cmsTagSignature tag) { return cmsIsTag(profile, tag); });
}

std::optional<MatrixProfile> Read(const Profile& profile) {
    const cmsHPROFILE handle = profile.Handle();
    if (profile.ModelOf() != Model::kRgb || cmsGetPCS(handle) != cmsSigXYZData ||
        HasTables(handle)) {
        return std::nullopt;
    }
    constexpr std::array kCurves{cmsSigRedTRCTag, cmsSigGreenTRCTag, cmsSigBlueTRCTag};
    constexpr std::array kColors{cmsSigRedColorantTag, cmsSigGreenColorantTag,
                                 cmsSigBlueColorantTag};
    MatrixProfile read{};
    for (size_t i = 0; i < 3; ++i) {
        read.curves[i] = static_cast<const cmsToneCurve*>(cmsReadTag(handle, kCurves[i]));
        const auto* color = static_cast<const cmsCIEXYZ*>(cmsReadTag(handle, kColors[i]));
        if (read.curves[i] == nullptr || color == nullptr) return std::nullopt;
        read.toXyz[0][i] = color->X;
        read.toXyz[1][i] = color->Y;
        read.toXyz[2][i] = color->Z;
    }
    return read;
}

std::optional<Matrix> Inverse(const Matrix& m) {
    const auto minor = [&](size_t row, size_t column) {
        const size_t r1 = (row + 1) % 3, r2 = (row + 2) % 3;
        const size_t c1 = (column + 1) % 3, c2 = (column + 2) % 3;
        return m[r1][c1] * m[r2][c2] - m[r1][c2] * m[r2][c1];
    };
    const double whole = m[0][0] * minor(0, 0) + m[0][1] * minor(0, 1) + m[0][2] * minor(0, 2);
    if (!(std::abs(whole) > 1e-9)) return std::nullopt;
    Matrix inverse;
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            inverse[row][column] = minor(column, row) / whole;
        }
    }
    return inverse;
}

Matrix Product(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (size_t row = 0; row < 3; ++row) {
        for (size_t column = 0; column < 3; ++column) {
            for (size_t i = 0; i < 3; ++i) {
                product[row][column] += a[row][i] * b[i][column];
            }
        }
    }
    return product;
}

double LightOf(const cmsToneCurve* curve, double sample) {
    return cmsEvalToneCurveFloat(curve, static_cast<cmsFloat32Number>(sample));
}

// The level whose light is next to each of `count` steps of light. Null for curves that fall
// somewhere, or do not go from no light to full light: those are left to Little CMS.
std::shared_ptr<const std::vector<uint8_t>> LevelsOf(const cmsToneCurve* curve, int count) {
    auto levels = std::make_shared<std::vector<uint8_t>>(static_cast<size_t>(count));
    if (LightOf(curve, 0) > 0.5 / 255 / 12.92 || LightOf(curve, 1) < 0.999) return nullptr;
    double before = -1;
    int next = 0;
    for (int level = 0; level < 256; ++level) {
        // Up to half way to the next level.
        const double light = level == 255 ? 1 : LightOf(curve, (level + 0.5) / 255);
        if (light < before) return nullptr;
        before = light;
        const int end = level == 255 ? count : static_cast<int>(std::ceil(light * (count - 1)));
        for (; next < std::min(end, count); ++next) {
            (*levels)[static_cast<size_t>(next)] = static_cast<uint8_t>(level);
        }
    }
    return levels;
}

bool AreEqual(const cmsToneCurve* a, const cmsToneCurve* b) {
    for (int i = 0; i <= 16; ++i) {
        if (LightOf(a, i / 16.0) != LightOf(b, i / 16.0)) return false;
    }
    return true;
}

}  // namespace

std::unique_ptr<const MatrixPath> MatrixPath::Make(const Profile& from, const Profile& to,
                                                   Depth depth) {
    const auto source = Read(from), target = Read(to);
    if (!source || !target) return nullptr;
    const auto fromXyz = Inverse(target->toXyz);
    if (!fromXyz) return nullptr;
    const Matrix matrix = Product(*fromXyz, source->toXyz);
    auto path = std::make_unique<MatrixPath>();
    // Bytes lie the other way round: blue first.
    for (size_t channel = 0; channel < 3; ++channel) {
        const cmsToneCurve* curve = source->curves[2 - channel];
        if (LightOf(curve, 0) > 0.5 / 255 / 12.92) return nullptr;
        const auto most = static_cast<double>(depth) - 1;
        path->light_[channel].resize(static_cast<size_t>(depth));
        for (size_t level = 0; level < path->light_[channel].size(); ++level) {
            const double light = LightOf(curve, static_cast<double>(level) / most) * (kLevels - 1);
            if (!std::isfinite(light)) return nullptr;
            const auto part = [&](size_t row) {
                return static_cast<float>(matrix[row][2 - channel] * light);
            };
            path->light_[channel][level] = {part(2), part(1), part(0), 0};
        }
        const cmsToneCurve* back = target->curves[2 - channel];
        const bool asBefore = channel > 0 && AreEqual(back, target->curves[3 - channel]);
        path->levels_[channel] = asBefore ? path->levels_[channel - 1] : LevelsOf(back, kLevels);
        if (!path->levels_[channel]) return nullptr;
    }
    return path;
}

inline void MatrixPath::Put(size_t blue, size_t green, size_t red, uint8_t* out) const {
    const auto part = [this](size_t channel, size_t level) {
        return _mm_loadu_ps(&light_[channel].data()[level].blue);
    };
    const __m128 sum = _mm_add_ps(_mm_add_ps(part(0, blue), part(1, green)), part(2, red));
    const __m128 full = _mm_set1_ps(kLevels - 1);
    const __m128i light = _mm_cvtps_epi32(_mm_min_ps(_mm_max_ps(sum, _mm_setzero_ps()), full));
    // Below 1 << 14: the upper halves are zero.
    out[0] = levels_[0]->data()[_mm_extract_epi16(light, 0)];
    out[1] = levels_[1]->data()[_mm_extract_epi16(light, 2)];
    out[2] = levels_[2]->data()[_mm_extract_epi16(light, 4)];
}

template <size_t kBytes>
void MatrixPath::Convert(const uint8_t* in, uint8_t* out, size_t pixels) const {
    for (size_t i = 0; i < pixels; ++i, in += kBytes, out += kBytes) {
        if constexpr (kBytes == 4) out[3] = in[3];
        Put(in[0], in[1], in[2], out);
    }
}

template <size_t kSamples, bool kBigEndian, bool kRedFirst>
void MatrixPath::ConvertDeep(const uint8_t* in, uint8_t* out, size_t pixels) const {
    const auto sample = [&in](size_t i) {
        const size_t first = in[i * 2], second = in[i * 2 + 1];
        return kBigEndian ? first << 8 | second : second << 8 | first;
    };
    for (size_t i = 0; i < pixels; ++i, in += kSamples * 2, out += kSamples) {
        if constexpr (kSamples == 4) {
            out[3] = static_cast<uint8_t>((sample(3) * 255 + 0x7FFF) / 0xFFFF);
        }
        Put(sample(kRedFirst ? 2 : 0), sample(1), sample(kRedFirst ? 0 : 2), out);
    }
}

template void MatrixPath::ConvertDeep<3, true, false>(const uint8_t*, uint8_t*, size_t) const;
template void MatrixPath::ConvertDeep<4, true, false>(const uint8_t*, uint8_t*, size_t) const;
template void MatrixPath::ConvertDeep<3, false, true>(const uint8_t*, uint8_t*, size_t) const;

template void MatrixPath::Convert<3>(const uint8_t*, uint8_t*, size_t) const;
template void MatrixPath::Convert<4>(const uint8_t*, uint8_t*, size_t) const;

}  // namespace tessary::color
