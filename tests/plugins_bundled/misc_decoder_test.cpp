// What iftessmisc.spi makes of files of the small formats.
#include "plugins/iftessmisc/misc_decoder.h"

#include <string_view>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/plugins_bundled/strange_profiles.h"
#include "tests/support/seeds.h"

namespace tessary::misc {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using namespace tessary::test;

const MiscDecoder kDecoder;

// Red, green, blue and alpha of all pixels in one number (FNV-1a); what is clear has no colour.
uint32_t SumOf(const MemoryTarget& target) {
    const Colors colors(target.View().value());
    dib::BitmapInfoHeader header{};
    std::memcpy(&header, target.InfoBytes().data(), sizeof header);
    uint32_t sum = 2166136261u;
    for (uint32_t y = 0; y < colors.height; ++y) {
        for (uint32_t x = 0; x < colors.width; ++x) {
            const int alpha = header.bitCount == 32 ? colors.Channel(x, y, 3) : 0xFF;
            for (const unsigned channel : {2u, 1u, 0u, 3u}) {
                const int value = channel == 3 ? alpha
                                  : alpha == 0 ? 0
                                               : colors.Channel(x, y, channel);
                sum = (sum ^ static_cast<uint32_t>(value)) * 16777619u;
            }
        }
    }
    return sum;
}

// The picture that most of them show, with alpha and without, and a bitmap.
constexpr uint32_t kColors = 0x1D0291AE, kWithAlpha = 0x8059EB4C, kBits = 0xFC1E7490;
constexpr uint32_t kAnySum = 0;

// The sums are of what the program that made the files meant.
constexpr struct {
    const char* name;
    uint16_t bitCount;
    uint32_t sum;
} kFiles[] = {
    {"farbfeld", 24, kWithAlpha},
    {"hdr-old", 24, kAnySum},
    {"hdr-turned", 24, kAnySum},
    {"hdr-xyz", 24, kAnySum},
    {"mag", 4, 0xD09A6519},
    {"mag-many-colors", 8, 0xFA99CD24},
    {"mag-tall", 4, 0x55145ACD},
    {"pam-alpha", 24, 0x7C712A13},
    {"pcx-color", 24, kColors},
    {"pcx-planes", 4, 0x7609C176},
    {"pcx-table", 8, 0xF9F6ED38},
    {"pcx-two-bits", 4, 0x14ED4569},
    {"pfm-color", 24, kAnySum},
    {"pfm-grey", 8, kAnySum},
    {"pnm-deep-color", 24, 0xD2DC7D3A},
    {"pnm-pages", 1, kBits},
    {"pnm-plain-bits", 1, kBits},
    {"pnm-plain-grey", 8, 0xEB8B093B},
    {"psb-light", 24, kAnySum},
    {"psd-alpha", 24, kAnySum},
    {"psd-bits", 1, kBits},
    {"psd-deep-alpha", 24, kAnySum},
    {"psd-ink", 24, kColors},
    {"psd-lab", 24, kAnySum},
    {"psd-table", 8, 0xF057AEBC},
    {"qoi", 24, kWithAlpha},
    {"sgi-five-channels", 24, kWithAlpha},
    {"sgi-runs", 24, kColors},
    {"tga-alpha", 24, kWithAlpha},
    {"tga-color", 24, kColors},
    {"tga-five-bits", 24, 0x2B2312D8},
    {"tga-grey-alpha", 8, 0x7E46380A},
    {"tga-map", 8, 0x999197F0},
    {"tga-wide-map", 24, 0x2FC479D3},
    {"xbm", 1, kBits},
    {"xpm", 4, 0x17E03D29},
    {"xpm-two", 4, 0x17E03D29},
};

Bytes FileOf(std::string_view name) {
    return Seed("fuzz_misc/" + std::string(name));
}

TEST(MiscDecoder, ShowsEachKindAsItWasMeant) {
    for (const auto& [name, bitCount, sum] : kFiles) {
        const Bytes file = FileOf(name);
        EXPECT_TRUE(kDecoder.IsSupported(std::span(file).first(std::min<size_t>(file.size(), 64))));
        const Decoded decoded(kDecoder, file, {}, true);
        ASSERT_EQ(decoded.result, Result::kSuccess) << name;
        EXPECT_EQ(decoded.condition, Condition::kNone) << name;
        EXPECT_EQ(decoded.form.bitCount, bitCount) << name;
        if (sum != kAnySum) {
            EXPECT_EQ(SumOf(decoded.target), sum) << name;
        }
        // Over white, where nobody takes alpha.
        const Colors clear = decoded.Pixels();
        const Decoded flat(kDecoder, file);
        dib::BitmapInfoHeader header{};
        std::memcpy(&header, flat.target.InfoBytes().data(), sizeof header);
        EXPECT_EQ(header.bitCount, bitCount) << name;
        std::memcpy(&header, decoded.target.InfoBytes().data(), sizeof header);
        const int alpha = header.bitCount == 32 ? clear.Channel(4, 3, 3) : 255;
        EXPECT_EQ(flat.Pixels().Channel(4, 3, 1),
                  (clear.Channel(4, 3, 1) * alpha + 255 * (255 - alpha) + 127) / 255)
            << name;
    }
}

TEST(MiscDecoder, ComputesColorsThatAreNotStoredAsSuch) {
    constexpr struct {
        const char* name;
        uint32_t corner, middle, end;  // at (0, 0), (4, 3) and (8, 6)
        int most;
    } kExpected[] = {
        {"hdr-old", 0x000000, 0xFB2779, 0xFFFF8F, 1},
        {"hdr-turned", 0x000000, 0xFB2779, 0xFFFF8F, 1},
        {"hdr-xyz", 0x000000, 0xCD1E63, 0xFEFF8F, 2},
        {"pfm-color", 0x000000, 0xFC297B, 0xFFFF8F, 1},
        {"pfm-grey", 0x000000, 0xFCFCFC, 0xFFFFFF, 1},
        {"psb-light", 0x000000, 0xFE297C, 0xFFFF8F, 1},
        {"psd-lab", 0x001730, 0x697891, 0xFFE9FD, 2},
        {"psd-alpha", 0xFFFFFF, 0xC81E5A, 0xFFFF86, 6},
        {"psd-deep-alpha", 0xFFFFFF, 0xC81E5A, 0xFFFF86, 6},
    };
    for (const auto& [name, corner, middle, end, most] : kExpected) {
        const Colors pixels = Decoded(kDecoder, FileOf(name), {}, true).Pixels();
        for (const unsigned channel : {0u, 1u, 2u}) {
            const auto level = [&](uint32_t rgb) {
                return static_cast<int>(rgb >> 8 * channel & 0xFF);
            };
            if (corner != 0xFFFFFF) {
                EXPECT_NEAR(pixels.Channel(0, 0, channel), level(corner), most) << name;
            }
            EXPECT_NEAR(pixels.Channel(4, 3, channel), level(middle), most) << name;
            EXPECT_NEAR(pixels.Channel(8, 6, channel), level(end), most) << name;
        }
    }
    // A transparent pixel that nobody has laid over white keeps its colour.
    Bytes one = Cut(FileOf("psd-alpha"), 48);
    one[17] = one[21] = 1;
    for (const uint8_t byte : {0, 0, 10, 20, 30, 128})
        one.push_back(byte);
    const Colors kept = Decoded(kDecoder, one, {}, true).Pixels();
    EXPECT_EQ(kept.At(0, 0), 0x0A141Eu);
    EXPECT_EQ(kept.Channel(0, 0, 3), 128);
    // A profile in the resources: red and blue exchanged.
    Bytes file = FileOf("psd-alpha");
    const Bytes icc = Swapped();
    Bytes resource{'8',
                   'B',
                   'I',
                   'M',
                   4,
                   15,
                   0,
                   0,
                   0,
                   0,
                   static_cast<uint8_t>(icc.size() >> 8),
                   static_cast<uint8_t>(icc.size())};
    resource.insert(resource.end(), icc.begin(), icc.end());
    file[32] = static_cast<uint8_t>(resource.size() >> 8);
    file[33] = static_cast<uint8_t>(resource.size());
    file.insert(file.begin() + 34, resource.begin(), resource.end());
    const Colors swapped = Decoded(kDecoder, file, {}, true).Pixels();
    EXPECT_NEAR(swapped.Channel(4, 3, 0), 200, 8);
    EXPECT_NEAR(swapped.Channel(4, 3, 2), 90, 8);
}

TEST(MiscDecoder, TellsWhatIsMissing) {
    for (const auto& [name, bitCount, sum] : kFiles) {
        const Bytes file = FileOf(name);
        const Decoded whole(kDecoder, file, {}, true);
        bool hasPart = false;
        for (size_t size = 0; size < file.size(); ++size) {
            const Decoded cut(kDecoder, Cut(file, size), {}, true);
            if (cut.result != Result::kSuccess) {
                EXPECT_TRUE(cut.result == Result::kBrokenData ||
                            cut.result == Result::kUnknownFormat);
                continue;
            }
            hasPart = hasPart || cut.condition == Condition::kDamaged;
            // The last number of a text may have lost a digit.
            const bool isWhole =
                std::ranges::equal(cut.target.BitsBytes(), whole.target.BitsBytes()) &&
                std::ranges::equal(cut.target.InfoBytes(), whole.target.InfoBytes());
            const bool mayBeQuiet = isWhole || (file[0] == 'P' && size + 1 == file.size());
            EXPECT_TRUE(cut.condition == Condition::kDamaged || mayBeQuiet) << name << ' ' << size;
        }
        EXPECT_TRUE(hasPart) << name;
        EXPECT_EQ(ResultFromFailing(kDecoder, file, file.size() / 2), Result::kReadError) << name;
        for (int reports = 0; reports < 2; ++reports) {
            int left = reports;
            EXPECT_EQ(Decoded(kDecoder, file, codec::Progress([&](int, int) { return left-- > 0; }))
                          .result,
                      Result::kAborted)
                << name;
        }
    }
}

TEST(MiscDecoder, SurvivesHeadersThatLie) {
    constexpr uint32_t kLies[] = {0, 1, 0x8000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
    for (const auto& [name, bitCount, sum] : kFiles) {
        const Bytes file = FileOf(name);
        for (size_t at = 0; at + 4 <= std::min<size_t>(file.size(), 72); ++at) {
            for (const uint32_t lie : kLies) {
                for (const bool isBigEndian : {false, true}) {
                    Bytes forged = file;
                    for (size_t i = 0; i < 4; ++i)
                        forged[at + (isBigEndian ? 3 - i : i)] = static_cast<uint8_t>(lie >> 8 * i);
                    dib::MemorySource source(forged);
                    MemoryTarget target(1u << 18);
                    codec::Progress nobody;
                    if (kDecoder.Decode(source, target, nobody) == Result::kSuccess) {
                        EXPECT_TRUE(target.View()) << name << ' ' << at;
                    }
                }
            }
        }
    }
}

TEST(MiscDecoder, KnowsPages) {
    constexpr struct {
        const char* name;
        uint32_t count;
        uint32_t first, last;  // sums
    } kPaged[] = {{"dcx", 2, 0x7609C176, 0xF9F6ED38}, {"pnm-pages", 3, kBits, 0x51E076D8}};
    for (const auto& [name, count, first, last] : kPaged) {
        const Bytes file = FileOf(name);
        dib::MemorySource source(file);
        const auto frames = kDecoder.OpenFrames(source);
        ASSERT_NE(frames, nullptr) << name;
        EXPECT_EQ(frames->Frames().kind, codec::FrameKind::kPages);
        ASSERT_EQ(frames->Frames().count, count);
        for (const uint32_t index : {count - 1, 0u}) {
            MemoryTarget target(SIZE_MAX, true);
            codec::Progress nobody;
            uint32_t duration = 1;
            ASSERT_EQ(frames->Decode(source, index, target, nobody, duration), Result::kSuccess);
            EXPECT_EQ(SumOf(target), index == 0 ? first : last) << name << ' ' << index;
        }
    }
    const Bytes single = FileOf("tga-color");
    dib::MemorySource source(single);
    EXPECT_EQ(kDecoder.OpenFrames(source), nullptr);
}

TEST(MiscDecoder, LeavesOthersTheirFiles) {
    using namespace std::string_view_literals;
    constexpr std::string_view kOthers[] = {
        "\0\0\1\0\1\0\x20\x20\0\0\1\0\x18\0\x20\0\x18\0\0\0\x16\0"sv,    // an icon
        "\0\0\2\0\1\0\x20\x20\0\0\1\0\x18\0\x20\0\x18\0\0\0\x16\0"sv,    // a pointer
        "\1\0\x09\0\0\3\x20\x20\0\0\1\0\x18\0\x20\0\x18\0\0\0\x16\0"sv,  // a metafile
        "\0\1\0\0\0\x0F\0\x80\0\3\0\x70\x44\x53\x49\x47\x18\x20\0\0"sv,  // a font
        "\0\0\2\0\6\4\6\0\x08\0\0\0\x18\0\x20\0\x18\0\0\0\x16\0\0\0"sv,  // a work sheet
        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"sv,
        "P7 332\n#IMGINFO"sv,
        "P6 is a name"sv,
        "#define EXIT_CODE 1\n"sv,
        "/* a comment */ int main()"sv,
    };
    for (const std::string_view other : kOthers) {
        Bytes header(other.begin(), other.end());
        header.resize(64);
        EXPECT_FALSE(kDecoder.IsSupported(header)) << other;
    }
    Bytes behindComment = FileOf("xbm");
    constexpr std::string_view kComment = "/* by a program */\n";
    behindComment.insert(behindComment.begin(), kComment.begin(), kComment.end());
    EXPECT_TRUE(kDecoder.IsSupported(std::span(behindComment).first(64)));
    EXPECT_EQ(SumOf(Decoded(kDecoder, behindComment).target), kBits);
    // Of a known format, but a kind that is not read.
    Bytes withMap = FileOf("sgi-runs");
    withMap[107] = 2;
    for (const Bytes& file : {FileOf("psd-layers-only"), withMap}) {
        const Decoded decoded(kDecoder, file);
        EXPECT_EQ(decoded.result, Result::kUnknownFormat);
        EXPECT_EQ(decoded.condition, Condition::kKindNotRead);
    }
}

// All alpha clear without a word of it at the end of the file: nobody meant it.
TEST(MiscDecoder, ShowsTgaFilesWhoseAlphaNobodyFilled) {
    Bytes file(18 + 4 * 4);
    file[2] = 2;
    file[12] = file[14] = 2;
    file[16] = 32;
    file[17] = 8 | 0x20;
    file[18] = 0x40;
    const Colors opaque = Decoded(kDecoder, file, {}, true).Pixels();
    EXPECT_EQ(opaque.At(0, 0), 0x40u);
    EXPECT_EQ(Decoded(kDecoder, file).Pixels().At(1, 1), 0u);
    file[33] = 1;  // of the last pixel
    EXPECT_EQ(Decoded(kDecoder, file).Pixels().At(0, 0), 0xFFFFFFu);
}

}  // namespace
}  // namespace tessary::misc
