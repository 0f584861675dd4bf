// The way of colours to the screen.
#include <gtest/gtest.h>

#include <cmath>

#include "picture/bitmap_file.h"
#include "picture/color/convert_rows.h"
#include "picture/color/monitor_colors.h"
#include "picture/srgb_picture.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using color::Layout;
using color::Profile;

// A monitor's: the primaries of sRGB with green and red exchanged, gamma 1.8.
std::optional<Profile> StrangeProfile() {
    color::Primaries primaries = color::kSrgbPrimaries;
    std::swap(primaries.red, primaries.green);
    return Profile::FromPrimaries(primaries, {1.8});
}

double OnStrangeMonitor(int sample) {
    const double value = sample / 255.0;
    const double light = value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    return 255 * std::pow(light, 1 / 1.8);
}

int reads = 0;
std::optional<Profile> ReadStrange(HMONITOR) {
    ++reads;
    return StrangeProfile();
}

// Pixels of all colours.
std::vector<uint8_t> Pixels(size_t count, size_t bytes) {
    std::vector<uint8_t> pixels(count * bytes);
    uint32_t seed = 7;
    for (uint8_t& byte : pixels)
        byte = static_cast<uint8_t>((seed = seed * 1664525 + 1013904223) >> 24);
    return pixels;
}

TEST(ColorsOfMonitor, AreWhatTheProfileSaysOfThem) {
    MonitorColors colors(ReadStrange);
    reads = 0;
    for (const Layout layout : {Layout::kBgr8, Layout::kBgra8}) {
        const size_t bytes = BytesOf(layout);
        const auto way = colors.WayFor(nullptr, {}, layout);
        ASSERT_TRUE(way);
        // In place, from the last row upwards, with padding that stays as it is.
        constexpr uint32_t kWidth = 701, kHeight = 611;
        const size_t stride = kWidth * bytes + 3;
        const std::vector<uint8_t> before = Pixels(stride * kHeight, 1);
        std::vector<uint8_t> pixels = before;
        uint8_t* last = &pixels[stride * (kHeight - 1)];
        const auto step = -static_cast<ptrdiff_t>(stride);
        ConvertRows(*way, {last, step, last, step, kWidth, kHeight});
        double worst = 0;
        for (size_t i = 0; i < pixels.size(); ++i) {
            const size_t at = i % stride, channel = at % bytes, pixel = i - channel;
            if (at >= kWidth * bytes || channel == 3) {
                ASSERT_EQ(pixels[i], before[i]);
                continue;
            }
            const int sample = before[channel == 0 ? i : pixel + 3 - channel];
            worst = std::max(worst, std::abs(pixels[i] - OnStrangeMonitor(sample)));
        }
        EXPECT_LE(worst, 0.75);
        EXPECT_EQ(colors.WayFor(nullptr, {}, layout), way);
    }
    EXPECT_EQ(reads, 1);
    // A picture in the monitor's own colours is shown as it is; one in others goes its own way.
    EXPECT_EQ(colors.WayFor(nullptr, StrangeProfile()->Icc(), Layout::kBgr8), nullptr);
    EXPECT_TRUE(colors.WayFor(nullptr, Profile::AdobeRgb().Icc(), Layout::kBgr8));
    const std::vector<uint8_t> damaged(200, 1);
    EXPECT_TRUE(colors.WayFor(nullptr, damaged, Layout::kBgr8));
    colors.Forget();
    EXPECT_TRUE(colors.WayFor(nullptr, {}, Layout::kBgr8));
    EXPECT_EQ(reads, 2);
    MonitorColors plain([](HMONITOR) -> std::optional<Profile> { return std::nullopt; });
    EXPECT_EQ(plain.WayFor(nullptr, {}, Layout::kBgr8), nullptr);
}

Picture PictureOf(const dib::BitmapInfoHeader& header, std::span<const uint8_t> table,
                  std::span<const uint8_t> bits, std::span<const uint8_t> icc) {
    std::vector<uint8_t> info(dib::BytesOf(header).begin(), dib::BytesOf(header).end());
    info.insert(info.end(), table.begin(), table.end());
    Picture picture = Picture::Make(info, [&](std::span<uint8_t> rows) {
        std::ranges::copy(bits, rows.begin());
        return true;
    });
    picture.SetProfile(icc);
    return picture;
}

TEST(SrgbPicture, HasTheColorsThatTheProfileMeans) {
    color::Primaries primaries = color::kSrgbPrimaries;
    std::swap(primaries.red, primaries.blue);
    const std::vector<uint8_t> icc = Profile::FromPrimaries(primaries, {1, true})->Icc();
    const std::vector<uint8_t> linear = Profile::FromGreyCurve({1})->Icc();
    dib::BitmapInfoHeader header{40, 2, 1, 1, 24, 0, 0, 7, 8, 0, 0};
    const std::vector<uint8_t> colors{1, 2, 3, 200, 100, 50, 0, 0};
    const Picture color = SrgbPicture(PictureOf(header, {}, colors, icc));
    ASSERT_TRUE(color);
    EXPECT_TRUE(color.Profile().empty());
    EXPECT_EQ(color.Header().xPelsPerMeter, 7);
    EXPECT_TRUE(std::ranges::equal(color.Bits().first(6), std::array{3, 2, 1, 50, 100, 200}));

    header.bitCount = 32;
    header.compression = dib::kCompressionAlphaBitFields;
    const auto* masks = reinterpret_cast<const uint8_t*>(dib::kMasksAlpha);
    const Picture clear = SrgbPicture(PictureOf(header, {masks, 16}, colors, icc));
    ASSERT_TRUE(clear && clear.HasAlpha());
    EXPECT_TRUE(std::ranges::equal(clear.Bits().first(8), std::array{3, 2, 1, 200, 0, 50, 100, 0}));

    // Of a picture with a table the table alone changes.
    header.bitCount = 8;
    header.compression = dib::kCompressionRgb;
    header.colorsUsed = 2;
    const std::vector<uint8_t> table{9, 8, 7, 0, 55, 55, 55, 0}, indexes{1, 0, 0, 0};
    for (const auto& [profile, expected] :
         {std::pair(icc, std::array{7, 8, 9, 0, 55, 55, 55, 0}),
          std::pair(linear, std::array{50, 50, 50, 0, 128, 128, 128, 0})}) {
        const Picture indexed = SrgbPicture(PictureOf(header, table, indexes, profile));
        ASSERT_TRUE(indexed);
        const auto entries = indexed.Info().subspan(40);
        for (size_t i = 0; i < expected.size(); ++i)
            EXPECT_NEAR(entries[i], expected[i], 1) << i;
        EXPECT_TRUE(std::ranges::equal(indexed.Bits().first(4), indexes));
    }
    // One of no use leaves the picture as it is, in its memory.
    header.bitCount = 24;
    header.colorsUsed = 0;
    for (const auto& profile : {linear, std::vector<uint8_t>(300, 7), Profile::Srgb().Icc()}) {
        Picture picture = PictureOf(header, {}, colors, profile);
        const void* bits = picture.Bits().data();
        EXPECT_EQ(SrgbPicture(std::move(picture)).Bits().data(), bits);
    }
}

TEST(SrgbPicture, IsWhatABitmapFileWithAProfileGives) {
    color::Primaries primaries = color::kSrgbPrimaries;
    std::swap(primaries.red, primaries.blue);
    const std::vector<uint8_t> icc = Profile::FromPrimaries(primaries, {1, true})->Icc();
    const std::string plain = test::BitmapFileOf(3, 2, RGB(10, 20, 30), 124);
    const test::TemporaryFolder folder;
    // The profile stands behind the pixels, as most programs write it.
    const auto blueOf = [&](uint32_t space, size_t at, size_t size) {
        std::string file = plain + std::string(icc.begin(), icc.end());
        const auto put = [&](size_t where, size_t value) {
            for (size_t i = 0; i < 4; ++i)
                file[14 + where + i] = static_cast<char>(value >> (8 * i));
        };
        put(56, space);
        put(112, at - 14);
        put(116, size);
        Picture picture;
        EXPECT_TRUE(ReadBitmapFile(folder.Write(L"a.bmp", file), picture));
        const OwnedBlock block = FilledBlock(
            file.size(), [&](std::span<uint8_t> to) { std::ranges::copy(file, to.begin()); });
        std::wstring damage;
        const Picture other = ReadBitmapBlock(block.Get(), {}, damage);
        EXPECT_TRUE(other && other.Bits()[0] == picture.Bits()[0]);
        EXPECT_TRUE(picture.Profile().empty());
        return picture.Bits()[0];
    };
    constexpr uint32_t kEmbedded = 0x4D424544, kSrgb = 0x73524742;
    EXPECT_EQ(blueOf(kEmbedded, plain.size(), icc.size()), 10);
    EXPECT_EQ(blueOf(kSrgb, plain.size(), icc.size()), 30);
    EXPECT_EQ(blueOf(kEmbedded, plain.size() + 1, icc.size()), 30);
    EXPECT_EQ(blueOf(kEmbedded, plain.size(), 0xFFFFFFFF), 30);
    EXPECT_EQ(blueOf(kEmbedded, 20, icc.size()), 30);
}

TEST(ColorsOfMonitor, CountAsUnknownWithoutAUsableFile) {
    const test::TemporaryFolder folder;
    const auto write = [&](const std::vector<uint8_t>& bytes) {
        const std::string_view content(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return ReadProfileFile(folder.Write(L"monitor.icm", content)).has_value();
    };
    std::vector<uint8_t> icc = StrangeProfile()->Icc();
    EXPECT_TRUE(write(icc));
    EXPECT_FALSE(write(Profile::FromGreyCurve({1})->Icc()));
    EXPECT_FALSE(write({}));
    EXPECT_FALSE(ReadProfileFile(folder.Path()).has_value());
    icc.resize(color::kLargestProfile + 1);
    EXPECT_FALSE(write(icc));
    ReadMonitorProfile(MonitorFromWindow(nullptr, MONITOR_DEFAULTTOPRIMARY));
    EXPECT_FALSE(ReadMonitorProfile(nullptr).has_value());
}

}  // namespace
}  // namespace tessary
