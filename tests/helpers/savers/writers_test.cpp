// What holds for every writer.

#include <functional>

#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/dcpng/png_writer.h"
#include "plugins/iftjpeg/jpeg_decoder.h"
#include "tests/helpers/savers/sample_pictures.h"
#include "tests/plugins_bundled/reference_pictures.h"

namespace tessary::saving::test {
namespace {

using Pixels = Bytes;  // blue, green, red, alpha, from the top row on

Pixels ReadBitmap(const Bytes& file) {
    return codec::test::ReadBitmap(file).bgra;
}

Pixels ReadJpeg(const Bytes& file) {
    return codec::test::Decoded(jpeg::JpegDecoder(), file).Pixels().bgra;
}

struct Writer {
    std::function<SaveResult(const dib::DibView&, files::ByteSink&, const dib::Progress&)> write;
    Pixels (*read)(const Bytes&);
    int tolerance = 0;
    bool reports = true;
};

std::vector<Writer> Writers() {
    std::vector<Writer> writers;
    for (const BmpSaveOptions options : {BmpSaveOptions{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
        const auto write = [=](auto& picture, auto& sink, auto&) {
            return convertdib::WriteBitmap(picture, options, sink);
        };
        writers.push_back({write, ReadBitmap, 0, false});
    }
    for (const PngSaveOptions options : {PngSaveOptions{0, 0}, {6, 0}, {6, 1}}) {
        const auto write = [=](auto& picture, auto& sink, auto& progress) {
            return dcpng::WritePng(picture, options, sink, progress);
        };
        writers.push_back({write, codec::test::ReadPng});
    }
    for (const JpegSaveOptions options : {JpegSaveOptions{100, 0, 0}, {100, 0, 1}, {100, 1, 0}}) {
        const auto write = [=](auto& picture, auto& sink, auto& progress) {
            return dcjpeg::WriteJpeg(picture, options, sink, progress);
        };
        writers.push_back({write, ReadJpeg, 4});
    }
    return writers;
}

// The largest difference of any channel; alpha counts where the file has it.
int Difference(const Pixels& wanted, const Pixels& actual) {
    if (wanted.size() != actual.size()) return 256;
    int largest[4] = {};
    bool hasAlpha = false;
    for (size_t i = 0; i < wanted.size(); ++i) {
        largest[i % 4] = std::max(largest[i % 4], std::abs(wanted[i] - actual[i]));
        hasAlpha = hasAlpha || (i % 4 == 3 && actual[i] != 255);
    }
    return std::max({largest[0], largest[1], largest[2], hasAlpha ? largest[3] : 0});
}

TEST(Writers, FilesComeBackPixelForPixel) {
    const std::vector<Writer> writers = Writers();
    for (const PixelFormat format : kAllFormats) {
        for (int32_t width = 1; width <= 950; width += width < 67 ? 1 : 883) {
            const Palette palettes[] = {Colors(format), Greys(format), Colors(format, 2)};
            const int32_t height = (width % 11 == 0 ? 33 : 1 + width % 9) * (width % 2 * 2 - 1);
            const SamplePicture picture(format, width, height, palettes[width % 3]);
            const Pixels wanted = codec::test::Colors(picture.View()).bgra;
            for (const Writer& writer : writers) {
                KeptBytes file;
                ASSERT_EQ(writer.write(picture.View(), file, {}), SaveResult::kSaved);
                EXPECT_LE(Difference(wanted, writer.read(file.bytes)), writer.tolerance)
                    << &writer - writers.data() << ' ' << static_cast<int>(format) << ' ' << width;
            }
        }
    }
}

// Each writer hands out the file in several pieces.
TEST(Writers, StopWhereTheSinkRefuses) {
    const SamplePicture picture(PixelFormat::kBgr24, 501, 400, {});
    for (const Writer& writer : Writers()) {
        KeptBytes all;
        ASSERT_EQ(writer.write(picture.View(), all, {}), SaveResult::kSaved);
        EXPECT_GE(all.calls, 2);
        for (int call = 0; call < all.calls; ++call) {
            KeptBytes some(call);
            EXPECT_EQ(writer.write(picture.View(), some, {}), SaveResult::kNotWritten);
        }
    }
}

TEST(Writers, TellProgressAndStopOnRequest) {
    const SamplePicture picture(PixelFormat::kBgr24, 501, 400, {});
    for (const Writer& writer : Writers()) {
        if (!writer.reports) continue;
        std::vector<int> percents;
        const auto result = [&](size_t mostCalls) {
            KeptBytes sink;
            percents.clear();
            return writer.write(picture.View(), sink, [&](int percent) {
                percents.push_back(percent);
                return percents.size() < mostCalls;
            });
        };
        ASSERT_EQ(result(1000), SaveResult::kSaved);
        EXPECT_TRUE(std::ranges::is_sorted(percents, std::ranges::less_equal()));
        EXPECT_EQ(percents.back(), 100);
        const size_t all = percents.size();
        EXPECT_GT(all, 10u);
        for (const size_t calls : {size_t{1}, all / 2, all * 3 / 4, all}) {
            EXPECT_EQ(result(calls), SaveResult::kCancelled);
            EXPECT_EQ(percents.size(), calls);
        }
    }
}

// Padding comes out of somebody's memory and must not reach the file.
TEST(Writers, LeaveThePaddingOut) {
    for (const PixelFormat format : kAllFormats) {
        const SamplePicture one(format, 13, 2, Colors(format));
        SamplePicture other = one;
        const size_t rowBits = one.View().Stride() * 8;
        for (size_t bit = 0; bit < rowBits * 2; ++bit) {
            if (bit % rowBits >= 13u * dib::BitsPerPixel(format))
                other.bits[bit / 8] ^= static_cast<uint8_t>(0x80 >> bit % 8);
        }
        for (const Writer& writer : Writers()) {
            KeptBytes first, second;
            writer.write(one.View(), first, {});
            writer.write(other.View(), second, {});
            EXPECT_EQ(first.bytes, second.bytes) << static_cast<int>(format);
        }
    }
}

}  // namespace
}  // namespace tessary::saving::test
