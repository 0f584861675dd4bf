// The colours of pictures whose files say what they mean.
#include <cstddef>
#include <cstdio>

#include <png.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include "helpers/color/color_transform.h"
#include "helpers/color/ink_table.h"
#include "helpers/dib/check_dib.h"
#include "helpers/dib/embedded_profile.h"
#include "plugins/iftessjpeg/jpeg_decoder.h"
#include "plugins/iftesspng/png_decoder.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/plugins_bundled/strange_profiles.h"
#include "tests/support/jpeg_file.h"

namespace tessary::codec::test {
namespace {

using namespace tessary::test;
using color::Profile;

const jpeg::JpegDecoder kJpeg;
const png::PngDecoder kPng;

// Enough pixels for threads, and no whole number of bands.
constexpr uint32_t kWidth = 700, kHeight = 450;

// Flat tiles of all kinds of colours; of grey pictures the green.
int Sample(uint32_t x, uint32_t y, unsigned channel) {
    const uint32_t tile = x / 100 + y / 90 * 7;
    return static_cast<int>(tile * (channel == 0 ? 53u : channel == 1 ? 7u : 101u) % 256);
}

using Rgb = std::array<double, 3>;

double SrgbOf(double light) {
    light = std::clamp(light, 0.0, 1.0);
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

// Samples in Adobe RGB, whose red and blue are those of sRGB nearly, in sRGB. The matrices are
// those that the two documents give.
Rgb FromAdobe(const Rgb& rgb) {
    Rgb light, xyz, result;
    for (size_t i = 0; i < 3; ++i)
        light[i] = std::pow(rgb[i], 563 / 256.0);
    xyz[0] = 0.57667 * light[0] + 0.18556 * light[1] + 0.18823 * light[2];
    xyz[1] = 0.29734 * light[0] + 0.62736 * light[1] + 0.07529 * light[2];
    xyz[2] = 0.02703 * light[0] + 0.07069 * light[1] + 0.99134 * light[2];
    result[0] = SrgbOf(3.2406 * xyz[0] - 1.5372 * xyz[1] - 0.4986 * xyz[2]);
    result[1] = SrgbOf(-0.9689 * xyz[0] + 1.8758 * xyz[1] + 0.0415 * xyz[2]);
    result[2] = SrgbOf(0.0557 * xyz[0] - 0.2040 * xyz[1] + 1.0570 * xyz[2]);
    return result;
}

using Meaning = std::function<Rgb(const Rgb&)>;

const Meaning Linear = [](auto& s) { return Rgb{SrgbOf(s[0]), SrgbOf(s[1]), SrgbOf(s[2])}; };
const Meaning Exchanged = [](auto& s) { return Rgb{s[2], s[1], s[0]}; };  // as `Swapped` means it
const Meaning AsTheyAre = [](auto& s) { return s; };

// With zeros behind it, which count as part of it.
Bytes Padded(Bytes icc, size_t size) {
    icc.resize(size);
    for (size_t i = 0; i < 4; ++i)
        icc[i] = static_cast<uint8_t>(size >> (24 - 8 * i));
    return icc;
}

// The tiles as JPEG of 1, 3 or 4 channels without loss worth mentioning. Inks: black is 0, the
// others are what lets the samples through.
Bytes Jpeg(int channels, const Bytes& icc, const Bytes& exif = {}, bool inverted = true) {
    const J_COLOR_SPACE space = channels == 1 ? JCS_GRAYSCALE : channels == 3 ? JCS_RGB : JCS_CMYK;
    const auto prepare = [&](jpeg_compress_struct& jpeg) {
        jpeg_set_colorspace(&jpeg, space);
        jpeg_set_quality(&jpeg, 100, TRUE);
        jpeg.write_Adobe_marker = channels == 3 || inverted;
    };
    const auto mark = [&](jpeg_compress_struct& jpeg) {
        if (!exif.empty()) jpeg_write_marker(&jpeg, JPEG_APP0 + 1, exif.data(), exif.size());
        if (!icc.empty()) jpeg_write_icc_profile(&jpeg, icc.data(), icc.size());
    };
    return JpegOf(kWidth, kHeight, space, channels, prepare, mark,
                  [&](uint32_t x, uint32_t y, uint32_t channel) {
                      const int sample =
                          channel == 3 ? 255 : Sample(x, y, channels == 1 ? 1 : channel);
                      return channels == 4 && !inverted ? 255 - sample : sample;
                  });
}

// Exif with one entry in each of the directories that lead to the colour space of a camera.
Bytes AdobeExif(char last) {
    Bytes exif{'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto directory = [&](std::initializer_list<Bytes> entries) {
        exif.insert(exif.end(), {static_cast<uint8_t>(entries.size()), 0});
        for (const Bytes& entry : entries)
            exif.insert(exif.end(), entry.begin(), entry.end());
        exif.insert(exif.end(), 4, 0);
    };
    directory({{0x69, 0x87, 4, 0, 1, 0, 0, 0, 26, 0, 0, 0}});
    directory({{0x01, 0xA0, 3, 0, 1, 0, 0, 0, 0xFF, 0xFF, 0, 0},
               {0x05, 0xA0, 4, 0, 1, 0, 0, 0, 56, 0, 0, 0}});
    directory({{1, 0, 2, 0, 4, 0, 0, 0, 'R', '0', static_cast<uint8_t>(last), 0}});
    return exif;
}

// Every pixel of the decoded picture is what the stored sample means, turned as `orientation`
// says (1 or 6).
void ExpectMeaning(const Decoded& decoded, const Meaning& meaning, double tolerance,
                   bool isGrey = false, int orientation = 1) {
    ASSERT_EQ(decoded.result, Result::kSuccess);
    EXPECT_EQ(decoded.condition, Condition::kNone);
    const Colors picture = decoded.Pixels();
    ASSERT_EQ(picture.width, orientation == 6 ? kHeight : kWidth);
    ASSERT_EQ(decoded.form.width, picture.width);
    double worst = 0;
    for (uint32_t y = 0; y < kHeight; y += 3) {
        for (uint32_t x = 1; x < kWidth; x += 49) {
            Rgb stored;
            for (unsigned i = 0; i < 3; ++i)
                stored[i] = Sample(x, y, isGrey ? 1 : i) / 255.0;
            const Rgb meant = meaning(stored);
            for (unsigned i = 0; i < 3; ++i) {
                const int shown = orientation == 6 ? picture.Channel(kHeight - 1 - y, x, 2 - i)
                                                   : picture.Channel(x, y, 2 - i);
                worst = std::max(worst, std::abs(shown - meant[i] * 255));
            }
        }
    }
    EXPECT_LE(worst, tolerance);
}

TEST(Colors, OfJpegAreThoseOfItsProfile) {
    ExpectMeaning({kJpeg, Jpeg(3, {})}, AsTheyAre, 1.5);
    ExpectMeaning({kJpeg, Jpeg(3, Profile::Srgb().Icc())}, AsTheyAre, 1.5);
    ExpectMeaning({kJpeg, Jpeg(3, Profile::AdobeRgb().Icc())}, FromAdobe, 2.5);
    // In more than one marker.
    ExpectMeaning({kJpeg, Jpeg(3, Padded(Swapped(), 200'000))}, Exchanged, 1.5);
    const Bytes linear = Profile::FromGreyCurve({1})->Icc();
    const Decoded grey(kJpeg, Jpeg(1, linear));
    EXPECT_EQ(grey.form.bitCount, 8);
    ExpectMeaning(grey, Linear, 1.5, true);

    ExpectMeaning({kJpeg, Jpeg(3, {}, AdobeExif('3'))}, FromAdobe, 2.5);
    ExpectMeaning({kJpeg, Jpeg(3, Swapped(), AdobeExif('3'))}, Exchanged, 1.5);
    ExpectMeaning({kJpeg, Jpeg(3, {}, AdobeExif('8'))}, AsTheyAre, 1.5);
    for (const bool inverted : {true, false}) {
        ExpectMeaning({kJpeg, Jpeg(4, {}, {}, inverted)}, AsTheyAre, 1.5);
        // Between the entries of its table the profile itself is no better.
        ExpectMeaning({kJpeg, Jpeg(4, InkProfile(), {}, inverted)}, Exchanged, 5);
    }
    Bytes turned{'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42, 0, 0, 0, 8,
                 0,   1,   1,   18,  0, 3, 0,   0,   0, 1,  0, 6, 0, 0};
    ExpectMeaning({kJpeg, Jpeg(3, Swapped(), turned)}, Exchanged, 1.5, false, 6);
}

// How far the colours of random inks are from what is meant, in levels; the largest of three, on
// average.
double InkError(const color::InkTable::Meaning& meaning) {
    constexpr size_t kPixels = 20'000;
    std::mt19937 random(3);
    std::vector<uint8_t> inks(kPixels * 4), colors(kPixels * 3);
    std::generate(inks.begin(), inks.end(), [&] { return static_cast<uint8_t>(random()); });
    std::vector<float> parts(inks.size()), exact(colors.size());
    std::transform(inks.begin(), inks.end(), parts.begin(),
                   [](uint8_t ink) { return ink / 255.f; });
    meaning(parts.data(), exact.data(), kPixels);
    color::InkTable(meaning, false).Convert(inks.data(), colors.data(), kPixels);
    double sum = 0;
    for (size_t i = 0; i < colors.size(); i += 3) {
        double largest = 0;
        for (size_t channel = i; channel < i + 3; ++channel) {
            largest = std::max(
                largest, std::abs(std::clamp(exact[channel], 0.f, 1.f) * 255.0 - colors[channel]));
        }
        sum += largest;
    }
    return sum / kPixels;
}

// As Little CMS tells sRGB: in a straight line below black.
float Encoded(float light) {
    return light <= 0.0031308f ? light * 12.92f : 1.055f * std::pow(light, 1 / 2.4f) - 0.055f;
}

// Inks lead out of sRGB, further for some profiles than for others: each way of mixing what lies
// beyond is half a level and more behind the other one for one of these.
TEST(Colors, OfInksAreCloseToTheirMeaningHoweverFarTheyLeadOutOfReach) {
    for (const float beyond : {0.1f, 0.5f}) {
        const auto tell = [beyond](const float* inks, float* colors, size_t points) {
            for (; points != 0; --points, inks += 4, colors += 3) {
                for (int i = 0; i < 3; ++i)
                    colors[i] = Encoded((1.2f - (1.2f + beyond) * inks[2 - i]) * (1 - inks[3]));
            }
        };
        EXPECT_LT(InkError(tell), 1.8) << beyond;
    }
}

TEST(Colors, OfDamagedOrUnfitProfilesAreThoseWithoutAny) {
    const Bytes good = Swapped();
    constexpr size_t kClass = 12, kSpace = 16;
    const size_t red = Find(good, "rXYZ") + 4;
    const std::pair<const char*, Bytes> profiles[] = {
        {"cut", Cut(good, good.size() / 2)},
        {"short", Cut(good, 60)},
        {"of a device link", With(good, kClass, 0x6B6E696C, 4)},
        {"of Lab", With(good, kSpace, 0x2062614C, 4)},
        {"of inks", InkProfile()},
        {"of greys", Profile::FromGreyCurve({1})->Icc()},
        {"with tags beyond its end", With(good, red, 0xFFFFFF7F, 4)},
        {"of many tags", With(good, 128, 0xFFFFFFFF, 4)},
        {"too large", Padded(good, color::kLargestProfile + 4)},
        {"of noise", Bytes(3000, 0xA5)},
    };
    for (const auto& [name, icc] : profiles) {
        SCOPED_TRACE(name);
        ExpectMeaning({kJpeg, Jpeg(3, icc)}, AsTheyAre, 1.5);
    }
    // Whatever is wrong with it, there is a picture.
    for (size_t at = 0; at < good.size(); at += 17) {
        const Decoded decoded(kJpeg, Jpeg(3, Damaged(good, at, 0xFF)));
        EXPECT_EQ(decoded.result, Result::kSuccess) << at;
        EXPECT_EQ(decoded.condition, Condition::kNone) << at;
    }
}

struct PngKind {
    int type, depth;
    bool interlaced;
};

const PngKind kPngKinds[] = {
    {PNG_COLOR_TYPE_GRAY, 8, false},       {PNG_COLOR_TYPE_GRAY, 8, true},
    {PNG_COLOR_TYPE_GRAY, 16, false},      {PNG_COLOR_TYPE_GRAY_ALPHA, 8, false},
    {PNG_COLOR_TYPE_GRAY_ALPHA, 16, true}, {PNG_COLOR_TYPE_RGB, 8, false},
    {PNG_COLOR_TYPE_RGB, 8, true},         {PNG_COLOR_TYPE_RGB, 16, false},
    {PNG_COLOR_TYPE_RGB_ALPHA, 8, true},   {PNG_COLOR_TYPE_RGB_ALPHA, 16, false},
    {PNG_COLOR_TYPE_PALETTE, 8, false},    {PNG_COLOR_TYPE_PALETTE, 8, true},
};

using Chunk = std::pair<std::string_view, Bytes>;  // any bytes: libpng writes only what it likes
using Chunks = std::vector<Chunk>;

// Each number four bytes, the highest first.
Bytes Numbers(std::initializer_list<uint64_t> numbers) {
    Bytes bytes;
    for (const uint64_t number : numbers)
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<uint8_t>(number >> shift));
    return bytes;
}

Bytes WithChunk(Bytes file, size_t at, const Chunk& chunk) {
    Bytes named(chunk.first.begin(), chunk.first.end());
    named.insert(named.end(), chunk.second.begin(), chunk.second.end());
    const Bytes sum = Numbers({crc32(0, named.data(), static_cast<uInt>(named.size()))});
    for (const Bytes& part : {sum, named, Numbers({chunk.second.size()})})
        file.insert(file.begin() + static_cast<ptrdiff_t>(at), part.begin(), part.end());
    return file;
}

// The tiles; with alpha all opaque. Of 16 bits the low byte is the same as the high one, or `low`.
Bytes Png(const PngKind& kind, const Chunks& chunks, int low = -1) {
    Bytes file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &file,
        [](png_structp p, png_bytep bytes, size_t count) {
            auto* to = static_cast<Bytes*>(png_get_io_ptr(p));
            to->insert(to->end(), bytes, bytes + count);
        },
        nullptr);
    png_set_compression_level(png, 1);
    png_set_IHDR(png, info, kWidth, kHeight, kind.depth, kind.type,
                 kind.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_BASE, PNG_FILTER_TYPE_BASE);
    const bool hasTable = kind.type == PNG_COLOR_TYPE_PALETTE;
    png_color table[35];
    for (uint32_t i = 0; i < 35 && hasTable; ++i) {
        const auto sample = [&](unsigned channel) {
            return static_cast<png_byte>(Sample(i % 7 * 100, i / 7 * 90, channel));
        };
        table[i] = {sample(0), sample(1), sample(2)};
    }
    if (hasTable) png_set_PLTE(png, info, table, 35);
    png_write_info(png, info);
    const bool hasAlpha = (kind.type & PNG_COLOR_MASK_ALPHA) != 0;
    const bool isColor = (kind.type & PNG_COLOR_MASK_COLOR) != 0;
    for (int pass = png_set_interlace_handling(png); pass > 0; --pass) {
        for (uint32_t y = 0; y < kHeight; ++y) {
            Bytes row;
            const auto put = [&](int sample) {
                row.push_back(static_cast<uint8_t>(sample));
                if (kind.depth == 16) row.push_back(static_cast<uint8_t>(low < 0 ? sample : low));
            };
            for (uint32_t x = 0; x < kWidth; ++x) {
                if (hasTable) {
                    put(static_cast<int>(x / 100 + y / 90 * 7));
                    continue;
                }
                for (unsigned channel = 0; channel < (isColor ? 3u : 1u); ++channel)
                    put(Sample(x, y, isColor ? channel : 1));
                if (hasAlpha) put(255);
            }
            png_write_row(png, row.data());
        }
    }
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    for (size_t i = chunks.size(); i-- > 0;)
        file = WithChunk(file, 33, chunks[i]);  // behind the header
    return file;
}

void ExpectPng(const PngKind& kind, const Chunks& chunks, const Meaning& meaning, double tolerance,
               int orientation = 1) {
    const bool isGrey = (kind.type & PNG_COLOR_MASK_COLOR) == 0;
    const Bytes file = Png(kind, chunks);
    const Decoded decoded(kPng, file);
    ExpectMeaning(decoded, meaning, tolerance, isGrey, orientation);
    EXPECT_EQ(decoded.form.bitCount, isGrey || kind.type == PNG_COLOR_TYPE_PALETTE ? 8 : 24);
    const Decoded kept(kPng, file, {}, true);
    ASSERT_EQ(kept.result, Result::kSuccess);
    EXPECT_EQ(kept.Pixels().bgra, decoded.Pixels().bgra);
}

Chunk ProfileOf(const Bytes& icc) {
    uLongf size = compressBound(static_cast<uLong>(icc.size()));
    Bytes data(3 + size);
    data[0] = 'x';  // a name, its end, and the only way to compress
    compress(&data[3], &size, icc.data(), static_cast<uLong>(icc.size()));
    return {"iCCP", Cut(data, 3 + size)};
}

Chunk Gamma(uint64_t hundredThousandths) {
    return {"gAMA", Numbers({hundredThousandths})};
}

TEST(Colors, OfPngAreThoseOfTheFirstOfItsChunksThatCount) {
    const Bytes swapped = Swapped(), grey = Profile::FromGreyCurve({1})->Icc();
    const Bytes turn{'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 6, 0, 0, 0};
    const Chunk srgb{"sRGB", {0}};
    for (const PngKind& kind : kPngKinds) {
        SCOPED_TRACE(testing::Message() << kind.type << ' ' << kind.depth << kind.interlaced);
        const bool isGrey = (kind.type & PNG_COLOR_MASK_COLOR) == 0;
        const Meaning profiled = isGrey ? Linear : Exchanged;
        const Chunk profile = ProfileOf(isGrey ? grey : swapped);
        ExpectPng(kind, {profile}, profiled, 1.1);
        ExpectPng(kind, {profile, {"eXIf", turn}}, profiled, 1.1, 6);
        ExpectPng(kind, {Gamma(100'000)}, Linear, 1.1);
        if (!isGrey) ExpectPng(kind, {ProfileOf(Profile::AdobeRgb().Icc())}, FromAdobe, 1.5);
    }
    const PngKind color = kPngKinds[5];
    ExpectPng(color, {srgb, Gamma(100'000)}, AsTheyAre, 0.5);
    // Behind the picture, as some programs write it; a chunk of that name whose sum is wrong is
    // none.
    const Bytes plain = Png(color, {});
    const Bytes late = WithChunk(plain, plain.size() - 12, {"eXIf", turn});
    ExpectMeaning({kPng, late}, AsTheyAre, 0.5, false, 6);
    ExpectMeaning({kPng, Damaged(late, late.size() - 13)}, AsTheyAre, 0.5);

    // As text, of older programs.
    std::string text("Raw profile type exif\0\nexif\n22\n", 31);
    for (const uint8_t byte : turn)
        text += {"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15]};
    ExpectPng(color, {{"tEXt", {text.begin(), text.end()}}}, AsTheyAre, 0.5, 6);

    const auto codes = [](uint8_t primaries, uint8_t curve) {
        return Chunks{Gamma(30'000), {"cICP", {primaries, curve, 0, 1}}};
    };
    ExpectPng(color, codes(1, 8), Linear, 1.1);
    ExpectPng(kPngKinds[0], codes(12, 8), Linear, 1.1);
    ExpectPng(color, codes(1, 13), AsTheyAre, 1.1);
    // Primaries without their gamma say nothing.
    const Chunk primaries{"cHRM", Numbers({31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000})};
    ExpectPng(color, {primaries}, AsTheyAre, 0.5);
    ExpectPng(color, {primaries, Gamma(45471)}, FromAdobe, 1.5);
    ExpectPng(color, {srgb, ProfileOf(Cut(swapped, 200))}, AsTheyAre, 0.5);
    // Dark samples of 16 bits, of which the high bytes are alike.
    for (const PngKind& kind :
         {PngKind{PNG_COLOR_TYPE_GRAY, 16, false}, PngKind{PNG_COLOR_TYPE_RGB, 16, false}}) {
        const Decoded deep(kPng, Png(kind, {Gamma(100'000)}, 0x40));
        ASSERT_EQ(deep.result, Result::kSuccess);
        for (const uint32_t x : {0u, 100u, 300u, 600u}) {
            const double light = (Sample(x, 0, 1) * 256 + 0x40) / 65535.0;
            EXPECT_NEAR(deep.Pixels().Channel(x, 0, 1), SrgbOf(light) * 255, 0.75);
        }
    }
    // One that fits only colours, in a grey picture, and the other way round.
    for (const auto& [kind, icc] : {std::pair(kPngKinds[0], swapped), std::pair(color, grey)})
        ExpectMeaning({kPng, Png(kind, {ProfileOf(icc)})}, AsTheyAre, 0.5,
                      kind.type == PNG_COLOR_TYPE_GRAY);
}

// `file` with its colours, against `plain`, the same without any word of them.
void ExpectAsStored(const PictureCodec& codec, const Bytes& file, const Bytes& plain,
                    const Bytes& profile) {
    MemoryTarget kept(SIZE_MAX, true, true), stored(SIZE_MAX, true);
    for (auto& [bytes, target] : {std::pair(&file, &kept), {&plain, &stored}}) {
        dib::MemorySource source(*bytes);
        Progress nobody;
        ASSERT_EQ(codec.Decode(source, *target, nobody), Result::kSuccess);
    }
    EXPECT_TRUE(std::ranges::equal(dib::EmbeddedProfile(kept.InfoBytes()), profile));
    const dib::CheckedDib checked = dib::CheckDib(kept.InfoBytes(), kept.BitsBytes());
    ASSERT_EQ(checked.Error(), dib::DibError::kNone);
    EXPECT_TRUE(checked.KeepsBits());
    const auto info = profile.empty() ? kept.InfoBytes() : checked.Info();
    EXPECT_TRUE(std::ranges::equal(info, stored.InfoBytes()));
    EXPECT_EQ(std::ranges::equal(kept.BitsBytes(), stored.BitsBytes()), !profile.empty());
}

TEST(Colors, StayAsTheyAreForHostsThatConvertThemInTime) {
    const Bytes adobe = Profile::AdobeRgb().Icc();
    ExpectAsStored(kJpeg, Jpeg(3, adobe), Jpeg(3, {}), adobe);
    ExpectAsStored(kJpeg, Jpeg(3, {}, AdobeExif('3')), Jpeg(3, {}), adobe);
    for (const PngKind& kind : kPngKinds) {
        if ((kind.type & PNG_COLOR_MASK_COLOR) == 0 || kind.type == PNG_COLOR_TYPE_PALETTE)
            continue;
        // Of 16 bits more than a byte counts, and alpha is for colours that are converted.
        ExpectAsStored(kPng, Png(kind, {ProfileOf(adobe)}), Png(kind, {}),
                       kind.depth == 8 && kind.type == PNG_COLOR_TYPE_RGB ? adobe : Bytes());
    }
    // Inks, and tables, are converted.
    ExpectAsStored(kJpeg, Jpeg(4, InkProfile()), Jpeg(4, {}), {});
}

}  // namespace
}  // namespace tessary::codec::test
