#include "plugins/iftesspng/png_colors.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

#include "plugins/common/flatten_rows.h"
#include "plugins/common/palette.h"

namespace tessary::png {
namespace {

using color::Layout;
using color::Profile;

constexpr double kOne = 100'000;  // numbers in gAMA and cHRM count in such parts

// The gamma that the document gives for sRGB, and what programs make of it. A file with it and the
// primaries of sRGB, or none, means sRGB itself: such are the files of many programs that knew no
// other way to say it.
constexpr png_fixed_point kSrgbGamma = 45455;
constexpr png_fixed_point kNearSrgbGamma = 100;

std::optional<Profile> EmbeddedProfile(png_structp png, png_infop info, bool isGrey) {
    png_charp name = nullptr;
    png_bytep icc = nullptr;
    png_uint_32 size = 0;
    int method = 0;
    if (png_get_iCCP(png, info, &name, &method, &icc, &size) == 0) return std::nullopt;
    auto profile = Profile::FromIcc({icc, size});
    const color::Model model = isGrey ? color::Model::kGrey : color::Model::kRgb;
    return profile && profile->ModelOf() == model ? profile : std::nullopt;
}

constexpr png_byte kCodePointsName[] = "cICP";

// The colour space in cICP, by the numbers of ITU-T H.273; nothing for those that are not known
// here.
std::optional<Profile> CodedProfile(png_structp png, png_infop info, bool isGrey) {
    png_unknown_chunkp chunks = nullptr;
    const int count = png_get_unknown_chunks(png, info, &chunks);
    const auto* end = chunks + count;
    const auto* chunk = std::find_if(chunks, chunks + count, [](const png_unknown_chunk& each) {
        return std::equal(kCodePointsName, kCodePointsName + 4, each.name);
    });
    constexpr png_byte kRgb = 0, kFullRange = 1;
    if (chunk == end || chunk->size != 4 || chunk->data[2] != kRgb ||
        chunk->data[3] != kFullRange) {
        return std::nullopt;
    }
    color::Primaries primaries = color::kSrgbPrimaries;
    switch (chunk->data[0]) {
        case 1:
            break;
        case 9:  // BT.2020
            primaries = {primaries.white, {0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}};
            break;
        case 12:  // P3 of screens
            primaries = {primaries.white, {0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}};
            break;
        default:
            return std::nullopt;
    }
    color::Curve curve;
    switch (chunk->data[1]) {
        case 4:
            curve.gamma = 2.2;
            break;
        case 5:
            curve.gamma = 2.8;
            break;
        case 8:
            break;
        case 13:
            curve.isSrgb = true;
            break;
        default:
            return std::nullopt;
    }
    return isGrey ? Profile::FromGreyCurve(curve) : Profile::FromPrimaries(primaries, curve);
}

color::Primaries PrimariesOf(png_structp png, png_infop info) {
    std::array<png_fixed_point, 8> parts{};
    if (png_get_cHRM_fixed(png, info, &parts[0], &parts[1], &parts[2], &parts[3], &parts[4],
                           &parts[5], &parts[6], &parts[7]) == 0) {
        return color::kSrgbPrimaries;
    }
    const auto point = [&](size_t i) {
        return color::Chromaticity{parts[i * 2] / kOne, parts[i * 2 + 1] / kOne};
    };
    return {point(0), point(1), point(2), point(3)};
}

bool AreNear(const color::Chromaticity& a, const color::Chromaticity& b) {
    return std::abs(a.x - b.x) < 0.005 && std::abs(a.y - b.y) < 0.005;
}

bool AreOfSrgb(const color::Primaries& primaries) {
    const color::Primaries& srgb = color::kSrgbPrimaries;
    return AreNear(primaries.white, srgb.white) && AreNear(primaries.red, srgb.red) &&
           AreNear(primaries.green, srgb.green) && AreNear(primaries.blue, srgb.blue);
}

// Nothing for sRGB.
std::optional<Profile> ProfileOf(png_structp png, png_infop info, bool isGrey) {
    if (auto profile = CodedProfile(png, info, isGrey)) return profile;
    if (auto profile = EmbeddedProfile(png, info, isGrey)) return profile;
    int intent = 0;
    png_fixed_point gamma = 0;
    if (png_get_sRGB(png, info, &intent) != 0 || png_get_gAMA_fixed(png, info, &gamma) == 0 ||
        gamma <= 0) {
        return std::nullopt;
    }
    const color::Primaries primaries = PrimariesOf(png, info);
    const bool isSrgb = std::abs(gamma - kSrgbGamma) <= kNearSrgbGamma && AreOfSrgb(primaries);
    if (isSrgb) return std::nullopt;
    const color::Curve curve{kOne / gamma};
    return isGrey ? Profile::FromGreyCurve(curve) : Profile::FromPrimaries(primaries, curve);
}

Layout LayoutOf(const Samples& samples) {
    if (samples.areDeep) {
        return samples.haveAlpha ? Layout::kBgra16BigEndian : Layout::kBgr16BigEndian;
    }
    return samples.haveAlpha ? Layout::kBgra8 : Layout::kBgr8;
}

bool AreTheSame(const std::vector<uint8_t>& levels) {
    for (size_t i = 0; i < levels.size(); ++i) {
        if (std::abs(levels[i] - static_cast<int>(i * 255 / (levels.size() - 1))) > 1) return false;
    }
    return true;
}

}  // namespace

std::vector<uint8_t> Samples::Pixel(dib::PaletteEntry color) const {
    std::vector<uint8_t> samples{color.green};
    if (areColors) samples = {color.blue, color.green, color.red};
    if (haveAlpha) samples.push_back(0xFF);
    if (!areDeep) return samples;
    std::vector<uint8_t> pixel;
    for (const uint8_t sample : samples)
        pixel.insert(pixel.end(), 2, sample);
    return pixel;
}

void PngColors::KeepChunks(png_structp png) {
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_ALWAYS, kCodePointsName, 1);
}

void PngColors::Read(png_structp png, png_infop info, bool isGrey, const Samples& stored) {
    stored_ = stored;
    profile_ = ProfileOf(png, info, isGrey);
    if (!profile_) return;
    if (!isGrey) {
        transform_ = codec::ToSrgb(profile_, LayoutOf(stored));
        tableTransform_ = transform_ ? codec::ToSrgb(profile_, Layout::kBgr8) : nullptr;
        return;
    }
    auto levels = codec::SrgbGreyLevels(*profile_, stored.areDeep);
    if (!levels.empty() && !AreTheSame(levels)) {
        levels_ = std::make_shared<const std::vector<uint8_t>>(std::move(levels));
    }
}

std::vector<uint8_t> PngColors::HandOnProfile(const codec::PictureTarget& target) {
    if (!transform_ || stored_.areDeep || stored_.haveAlpha) return {};
    std::vector<uint8_t> profile = codec::ProfileToHandOn(target, profile_);
    if (!profile.empty()) transform_ = tableTransform_ = nullptr;
    return profile;
}

void PngColors::Convert(std::span<dib::PaletteEntry> colors) const {
    if (tableTransform_) codec::ConvertColors(*tableTransform_, colors);
    if (!levels_) return;
    for (dib::PaletteEntry& entry : colors) {
        const std::array<uint8_t, 2> sample{entry.green, entry.green};
        const uint8_t level = LevelOf(sample.data());
        entry = {level, level, level, 0};
    }
}

uint8_t PngColors::LevelOf(const uint8_t* sample) const {
    const size_t value = stored_.areDeep ? sample[0] << 8 | sample[1] : sample[0];
    return (*levels_)[value];
}

codec::RowConversion PngColors::ForRows(uint32_t width, bool keepsAlpha,
                                        dib::PaletteEntry background) const {
    if (levels_) return ForGreys(width, keepsAlpha, background);
    codec::RowConversion conversion{stored_.PixelBytes()};
    if (!stored_.haveAlpha || keepsAlpha) {
        conversion.convert = [transform = transform_, width](const uint8_t* in, uint8_t* out) {
            transform->Convert(in, out, width);
        };
        return conversion;
    }
    conversion.convert = [transform = transform_, width, background,
                          pixelBytes = conversion.storedBytes](const uint8_t* in, uint8_t* out) {
        constexpr uint32_t kPart = 256;
        std::array<uint8_t, kPart * 4> part;
        for (uint32_t x = 0; x < width; x += kPart) {
            const uint32_t count = std::min(kPart, width - x);
            transform->Convert(in + size_t{x} * pixelBytes, part.data(), count);
            codec::FlattenColorRow(part.data(), out + size_t{x} * 3, count, background);
        }
    };
    return conversion;
}

// Greys become 32-bit pixels of three equal samples where alpha is kept, else a byte each.
codec::RowConversion PngColors::ForGreys(uint32_t width, bool keepsAlpha,
                                         dib::PaletteEntry background) const {
    const unsigned sampleBytes = stored_.areDeep ? 2 : 1;
    const unsigned pixelBytes = stored_.PixelBytes();
    const bool hasAlpha = stored_.haveAlpha;
    return {pixelBytes, [=, colors = *this](const uint8_t* in, uint8_t* out) {
                for (uint32_t x = 0; x < width; ++x, in += pixelBytes) {
                    const uint8_t level = colors.LevelOf(in);
                    if (!hasAlpha) {
                        *out++ = level;
                        continue;
                    }
                    const uint8_t alpha = in[pixelBytes - sampleBytes];
                    if (!keepsAlpha) {
                        *out++ = codec::BlendSample(level, alpha, background.green);
                        continue;
                    }
                    out[0] = out[1] = out[2] = level;
                    out[3] = alpha;
                    out += 4;
                }
            }};
}

}  // namespace tessary::png
