// What iftesstiff.spi makes of TIFF files, which libtiff writes here as others do.
#include "plugins/iftesstiff/tiff_decoder.h"

#include <tiffio.h>

#include <cmath>
#include <cstring>
#include <functional>

#include "plugins/common/lab.h"
#include "plugins/iftesstiff/tiff_samples.h"
#include "tests/plugins_bundled/decoded_picture.h"

#include <gtest/gtest.h>

namespace tessary::tiff {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;

const TiffDecoder kDecoder;

constexpr uint32_t kWidth = 37, kHeight = 21;
// Samples by place, as parts of their range.
double PartAt(uint32_t x, uint32_t y, unsigned sample) {
    switch (sample) {
        case 0:
            return x / 36.0;
        case 1:
            return y / 20.0;
        case 2:
            return 0.5;
        default:
            return 1;
    }
}

// A file in memory that libtiff writes to.
struct Written {
    Bytes bytes;
    size_t position = 0;

    static tmsize_t Read(thandle_t self, void* into, tmsize_t size) {
        auto& file = *static_cast<Written*>(self);
        const size_t count =
            std::min(static_cast<size_t>(size),
                     file.bytes.size() - std::min(file.position, file.bytes.size()));
        std::memcpy(into, file.bytes.data() + file.position, count);
        file.position += count;
        return static_cast<tmsize_t>(count);
    }
    static tmsize_t Write(thandle_t self, void* from, tmsize_t size) {
        auto& file = *static_cast<Written*>(self);
        const auto count = static_cast<size_t>(size);
        if (file.bytes.size() < file.position + count) file.bytes.resize(file.position + count);
        std::memcpy(&file.bytes[file.position], from, count);
        file.position += count;
        return size;
    }
    static toff_t Seek(thandle_t self, toff_t offset, int from) {
        auto& file = *static_cast<Written*>(self);
        const size_t base = from == SEEK_CUR   ? file.position
                            : from == SEEK_END ? file.bytes.size()
                                               : 0;
        return file.position = base + static_cast<size_t>(offset);
    }
    static int Close(thandle_t) { return 0; }
    static toff_t Size(thandle_t self) { return static_cast<Written*>(self)->bytes.size(); }
};

struct Kind {
    const char* mode = "w";  // "wb": high bytes first, "w8": BigTIFF
    uint16_t photometric = PHOTOMETRIC_RGB;
    uint16_t bits = 8;
    uint16_t samples = 3;
    uint16_t format = SAMPLEFORMAT_UINT;
    uint16_t compression = COMPRESSION_NONE;
    bool isSeparate = false;
    bool isTiled = false;
    uint16_t orientation = 1;
    uint16_t alpha = 0;  // EXTRASAMPLE_…, of the last sample; 0: none
};

// `count` samples from `first` of a row, every so many pixels' samples beside each other.
Bytes Packed(const Kind& kind, uint32_t y, uint32_t x, uint32_t width, unsigned first,
             unsigned count) {
    Bytes row;
    uint32_t kept = 0, have = 0;
    const auto put = [&](const void* number, size_t size) {
        const auto* bytes = static_cast<const uint8_t*>(number);
        row.insert(row.end(), bytes, bytes + size);
    };
    for (uint32_t i = x; i < x + width; ++i) {
        for (unsigned sample = first; sample < first + count; ++sample) {
            const double part = PartAt(std::min(i, kWidth - 1), std::min(y, kHeight - 1), sample);
            if (kind.format == SAMPLEFORMAT_IEEEFP) {
                const auto value = static_cast<float>(part);
                kind.bits == 64 ? put(&part, 8) : put(&value, 4);
                continue;
            }
            const double most = std::pow(2.0, kind.bits) - 1;
            auto value = static_cast<uint32_t>(std::llround(part * most));
            if (kind.format == SAMPLEFORMAT_INT) value ^= 1U << (kind.bits - 1);
            if (kind.bits == 16) {
                const auto number = static_cast<uint16_t>(value);
                put(&number, 2);
            } else if (kind.bits == 32) {
                put(&value, 4);
            } else {
                kept = kept << kind.bits | value;
                for (have += kind.bits; have >= 8; have -= 8)
                    row.push_back(static_cast<uint8_t>(kept >> (have - 8)));
            }
        }
    }
    if (have != 0) row.push_back(static_cast<uint8_t>(kept << (8 - have)));
    return row;
}

void WritePage(TIFF* tiff, const Kind& kind) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kWidth);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kHeight);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, kind.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, kind.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, kind.compression);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, kind.orientation);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG,
                 kind.isSeparate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    if (kind.alpha != 0) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind.alpha);
    if (kind.photometric == PHOTOMETRIC_PALETTE) {
        std::vector<uint16_t> table(size_t{1} << kind.bits);
        for (size_t i = 0; i < table.size(); ++i)
            table[i] = static_cast<uint16_t>(i * 65535 / (table.size() - 1));
        TIFFSetField(tiff, TIFFTAG_COLORMAP, table.data(), table.data(), table.data());
    }
    const unsigned planes = kind.isSeparate ? kind.samples : 1;
    const unsigned each = kind.isSeparate ? 1 : kind.samples;
    constexpr uint32_t kTile = 16;
    if (kind.isTiled) {
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kTile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, kTile);
    } else {
        TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 4);
    }
    for (unsigned plane = 0; plane < planes; ++plane) {
        for (uint32_t y = 0; y < kHeight && !kind.isTiled; ++y) {
            Bytes row = Packed(kind, y, 0, kWidth, plane, each);
            TIFFWriteScanline(tiff, row.data(), y, static_cast<uint16_t>(plane));
        }
        for (uint32_t y = 0; y < kHeight && kind.isTiled; y += kTile) {
            for (uint32_t x = 0; x < kWidth; x += kTile) {
                Bytes tile;
                for (uint32_t row = 0; row < kTile; ++row) {
                    const Bytes bytes = Packed(kind, y + row, x, kTile, plane, each);
                    tile.insert(tile.end(), bytes.begin(), bytes.end());
                }
                TIFFWriteTile(tiff, tile.data(), x, y, 0, static_cast<uint16_t>(plane));
            }
        }
    }
    TIFFWriteDirectory(tiff);
}

Bytes Tiff(const Kind& kind, const std::function<void(TIFF*)>& write = {}) {
    Written file;
    TIFF* const tiff =
        TIFFClientOpen("", kind.mode, &file, Written::Read, Written::Write, Written::Seek,
                       Written::Close, Written::Size, nullptr, nullptr);
    write ? write(tiff) : WritePage(tiff, kind);
    TIFFClose(tiff);
    return file.bytes;
}

constexpr Kind Grey(uint16_t bits, uint16_t format = SAMPLEFORMAT_UINT) {
    return {.photometric = PHOTOMETRIC_MINISBLACK, .bits = bits, .samples = 1, .format = format};
}

TEST(TiffDecoder, ReadsSamplesOfEveryDepthAndPlace) {
    const Kind kinds[] = {
        {},
        {.mode = "wb", .bits = 16},
        {.mode = "w8", .compression = COMPRESSION_LZW},
        {.mode = "wb8", .bits = 16, .compression = COMPRESSION_ZSTD},
        {.compression = COMPRESSION_PACKBITS, .isSeparate = true},
        {.bits = 4, .compression = COMPRESSION_ADOBE_DEFLATE},
        {.bits = 5},
        {.bits = 12, .isSeparate = true},
        {.bits = 2, .isTiled = true},
        {.bits = 32, .compression = COMPRESSION_LZMA},
        {.bits = 32, .format = SAMPLEFORMAT_IEEEFP, .isSeparate = true, .isTiled = true},
        {.bits = 64, .format = SAMPLEFORMAT_IEEEFP},
        {.bits = 16, .format = SAMPLEFORMAT_INT},
        {.bits = 8, .format = SAMPLEFORMAT_INT, .isTiled = true},
        {.samples = 5, .isTiled = true},
        {.bits = 16, .samples = 4, .alpha = EXTRASAMPLE_UNASSALPHA},
        {.samples = 4, .isSeparate = true, .alpha = EXTRASAMPLE_ASSOCALPHA},
        Grey(1),
        Grey(2),
        Grey(4),
        Grey(8),
        Grey(16),
        Grey(32, SAMPLEFORMAT_IEEEFP),
        {.photometric = PHOTOMETRIC_MINISBLACK, .samples = 2, .alpha = EXTRASAMPLE_UNASSALPHA},
        {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 4, .samples = 1},
        {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 16, .samples = 1},
        {.photometric = PHOTOMETRIC_PALETTE, .bits = 8, .samples = 1, .isTiled = true},
        {.photometric = PHOTOMETRIC_PALETTE, .bits = 4, .samples = 1},
        {.photometric = PHOTOMETRIC_PALETTE, .bits = 16, .samples = 1},
    };
    for (const Kind& kind : kinds) {
        const Decoded decoded(kDecoder, Tiff(kind));
        const int index = static_cast<int>(&kind - kinds);
        ASSERT_EQ(decoded.result, Result::kSuccess) << index;
        EXPECT_EQ(decoded.condition, Condition::kNone) << index;
        const bool isGrey = kind.photometric != PHOTOMETRIC_RGB;
        const bool isInverted = kind.photometric == PHOTOMETRIC_MINISWHITE;
        const double steps = kind.format == SAMPLEFORMAT_IEEEFP || kind.bits > 16
                                 ? 65535
                                 : std::pow(2.0, kind.bits) - 1;
        // Premultiplied by a full alpha they are the same.
        const Colors pixels = decoded.Pixels();
        ASSERT_EQ(pixels.width, kWidth);
        for (uint32_t y = 0; y < kHeight; ++y) {
            for (uint32_t x = 0; x < kWidth; ++x) {
                for (unsigned sample = 0; sample < 3; ++sample) {
                    const double stored = PartAt(x, y, isGrey ? 0 : sample);
                    double part = std::round(stored * steps) / steps;
                    if (isGrey && kind.samples == 2)
                        part = part * PartAt(x, y, 1) + 1 - PartAt(x, y, 1);
                    if (isInverted) part = 1 - part;
                    ASSERT_NEAR(pixels.Channel(x, y, 2 - sample), part * 255, 1.01)
                        << index << ' ' << x << ' ' << y << ' ' << sample;
                }
            }
        }
    }
}

TEST(TiffDecoder, KnowsInksLabAndWhatTheLibraryConverts) {
    const Kind inks{.photometric = PHOTOMETRIC_SEPARATED, .samples = 4};
    const Colors printed = Decoded(kDecoder, Tiff(inks)).Pixels();
    EXPECT_EQ(printed.At(20, 10), 0u) << "black over all";
    const auto lab = [](uint16_t bits, uint16_t photometric) {
        return Kind{.photometric = photometric, .bits = bits};
    };
    // L is x, a is y from 0 up, wrapping to negative; b half way: -128, or 0 where it is moved.
    const auto expect = [](const Bytes& file, float lightness, float a, float b) {
        const Colors pixels = Decoded(kDecoder, file).Pixels();
        const auto color = codec::LabToSrgb(lightness, a, b);
        for (unsigned i = 0; i < 3; ++i)
            EXPECT_NEAR(pixels.Channel(18, 0, i), color[i], 2) << i;
    };
    expect(Tiff(lab(8, PHOTOMETRIC_CIELAB)), 50, 0, -128);
    expect(Tiff(lab(16, PHOTOMETRIC_CIELAB)), 50, 0, -128);
    expect(Tiff(lab(8, PHOTOMETRIC_ICCLAB)), 50, -128, 0);
    // Neutral, and the white of D50.
    EXPECT_EQ(codec::LabToSrgb(100, 0, 0), (std::array<uint8_t, 3>{255, 255, 255}));
    const auto grey = codec::LabToSrgb(53.585F, 0, 0);
    for (const uint8_t level : grey)
        EXPECT_NEAR(level, 128, 1);

    const Bytes shared = Tiff({}, [](TIFF* tiff) {
        TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 2, 2);
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 4);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 2);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_YCBCR);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        uint8_t blocks[] = {0, 50, 100, 150, 128, 128, 76, 76, 76, 76, 85, 255};
        TIFFWriteEncodedStrip(tiff, 0, blocks, sizeof blocks);
    });
    const Colors pixels = Decoded(kDecoder, shared).Pixels();
    EXPECT_EQ(pixels.At(1, 0), 0x323232u);
    EXPECT_NEAR(pixels.Channel(3, 1, 2), 254, 2);
    EXPECT_NEAR(pixels.Channel(3, 1, 0), 0, 2);
}

TEST(TiffDecoder, TurnsAndHandsOnAlphaAndPages) {
    for (const uint16_t bits : {1, 8}) {
        Kind turned = Grey(bits);
        turned.orientation = 6;
        const Decoded decoded(kDecoder, Tiff(turned));
        ASSERT_EQ(decoded.result, Result::kSuccess);
        EXPECT_EQ(decoded.form.width, kHeight);
        const Colors pixels = decoded.Pixels();
        EXPECT_EQ(pixels.At(3, 0), 0u);
        EXPECT_EQ(pixels.At(3, kWidth - 1), 0xFFFFFFu);
    }
    const Bytes half = Tiff({}, [](TIFF* tiff) {
        constexpr uint16_t kMultiplied = EXTRASAMPLE_ASSOCALPHA;
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 1);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 1);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 4);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kMultiplied);
        uint8_t pixel[] = {128, 64, 0, 128};
        TIFFWriteEncodedStrip(tiff, 0, pixel, sizeof pixel);
    });
    const Colors clear = Decoded(kDecoder, half, {}, true).Pixels();
    EXPECT_EQ(clear.At(0, 0), 0xFF8000u);
    EXPECT_EQ(clear.Channel(0, 0, 3), 128);
    EXPECT_NEAR(Decoded(kDecoder, half).Pixels().Channel(0, 0, 0), 127, 1);

    // A smaller copy between two pages is none.
    const Bytes pages = Tiff({}, [](TIFF* tiff) {
        WritePage(tiff, Grey(8));
        TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
        WritePage(tiff, Grey(4));
        WritePage(tiff, Grey(1));
    });
    dib::MemorySource source(pages);
    const auto frames = kDecoder.OpenFrames(source);
    ASSERT_NE(frames, nullptr);
    EXPECT_EQ(frames->Frames().count, 2u);
    for (const uint32_t index : {1u, 0u}) {
        MemoryTarget target;
        codec::Progress nobody;
        uint32_t duration = 1;
        ASSERT_EQ(frames->Decode(source, index, target, nobody, duration), Result::kSuccess);
        EXPECT_EQ(target.View()->Header().bitCount, index == 1 ? 1 : 8);
    }
}

TEST(TiffDecoder, ShowsWhatADamagedFileHolds) {
    // The directory first, so that a cut takes rows.
    const Bytes plain = Tiff({.compression = COMPRESSION_ADOBE_DEFLATE});
    Bytes forged = plain;
    for (size_t i = 100; i < 140; ++i)
        forged[i] ^= 0x55;
    const Decoded damaged(kDecoder, forged);
    EXPECT_EQ(damaged.result, Result::kSuccess);
    EXPECT_EQ(damaged.condition, Condition::kDamaged);
    EXPECT_NEAR(damaged.Pixels().Channel(36, kHeight - 1, 2), 255, 1)
        << "strips behind it are sound";
    EXPECT_EQ(ResultFromFailing(kDecoder, plain, 300), Result::kReadError);
    EXPECT_EQ(Decoded(kDecoder, plain, codec::Progress([](int, int) { return false; })).result,
              Result::kAborted);
    const Bytes strange = Tiff({.photometric = PHOTOMETRIC_LOGLUV, .compression = COMPRESSION_LZW});
    EXPECT_NE(Decoded(kDecoder, strange).result, Result::kSuccess);
}

TEST(TiffSamples, FloatsOfTwoAndThreeBytes) {
    // 1, 0.5, the least there is, infinity, minus one.
    const uint16_t halves[] = {0x3C00, 0x3800, 0x0001, 0x7C00, 0xBC00};
    uint16_t out[5];
    UnpackSamples(reinterpret_cast<const uint8_t*>(halves), 5, 16, SAMPLEFORMAT_IEEEFP, out);
    EXPECT_EQ(std::vector<uint16_t>(out, out + 5),
              (std::vector<uint16_t>{65535, 32768, 0, 65535, 0}));
    const uint8_t three[] = {0, 0, 0x3F, 0, 0, 0x3E};
    UnpackSamples(three, 2, 24, SAMPLEFORMAT_IEEEFP, out);
    EXPECT_EQ(out[0], 65535);
    EXPECT_EQ(out[1], 32768);
}

}  // namespace
}  // namespace tessary::tiff
