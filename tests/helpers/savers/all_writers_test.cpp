// What holds for every writer, and that of bitmaps.

#include <functional>

#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/dcpng/png_writer.h"
#include "helpers/dib/bitmap_file.h"
#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

using Writer =
    std::function<SaveResult(const dib::DibView&, files::ByteSink&, const dib::Progress&)>;

// Those that tell their progress, and with `all` the others too.
std::vector<Writer> Writers(bool all) {
    std::vector<Writer> writers;
    const auto add = [&](auto write, auto... options) {
        (writers.push_back([=](auto& picture, auto& sink, auto& progress) {
            return write(picture, options, sink, progress, FileExtras{});
        }),
         ...);
    };
    add(dcpng::WritePng, PngSaveOptions{0, 0}, PngSaveOptions{6, 0}, PngSaveOptions{6, 1});
    add(dcjpeg::WriteJpeg, JpegSaveOptions{100, 0, 0}, JpegSaveOptions{100, 0, 1},
        JpegSaveOptions{100, 1, 0});
    const auto writeBitmap = [](auto& picture, auto& options, auto& sink, auto&, auto) {
        return convertdib::WriteBitmap(picture, options, sink);
    };
    if (all) add(writeBitmap, BmpSaveOptions{0, 0}, BmpSaveOptions{0, 1}, BmpSaveOptions{1, 0});
    return writers;
}

// Large enough that each writer hands out its file in several pieces, with `times` 400 rows.
SamplePicture LargePicture(PixelFormat format, int32_t times = 1) {
    return {format, 501, 400 * times, Colors(format), 5};
}

TEST(AllWriters, StopWhereTheSinkRefuses) {
    for (const PixelFormat format : {PixelFormat::kIndexed4, PixelFormat::kBgr24}) {
        const SamplePicture picture = LargePicture(format);
        for (const Writer& write : Writers(true)) {
            KeptBytes all;
            ASSERT_EQ(write(picture.View(), all, {}), SaveResult::kSaved);
            EXPECT_GE(all.calls, 2);
            for (int call = 0; call < all.calls; ++call) {
                KeptBytes some(call);
                EXPECT_EQ(write(picture.View(), some, {}), SaveResult::kNotWritten);
            }
        }
    }
}

TEST(AllWriters, TellProgressAndStopOnRequest) {
    const SamplePicture picture = LargePicture(PixelFormat::kBgr24, 6);
    for (const Writer& write : Writers(false)) {
        std::vector<int> percents;
        const auto result = [&](size_t mostCalls) {
            KeptBytes sink;
            percents.clear();
            return write(picture.View(), sink, [&](int percent) {
                percents.push_back(percent);
                return percents.size() < mostCalls;
            });
        };
        ASSERT_EQ(result(1000), SaveResult::kSaved);
        EXPECT_TRUE(std::ranges::is_sorted(percents, std::ranges::less_equal()));
        EXPECT_EQ(percents.back(), 100);
        const size_t all = percents.size();
        EXPECT_GT(all, 10u);
        for (const size_t calls : {size_t{1}, all / 3, all / 2, all * 3 / 4, all - 1, all}) {
            EXPECT_EQ(result(calls), SaveResult::kCancelled);
            EXPECT_EQ(percents.size(), calls);
        }
    }
}

// Its threads must be over by then: they work on what goes away with the exception.
TEST(AllWriters, EndTheirThreadsWhenTheProgressThrows) {
    for (const int last : {0, 20, 90}) {
        const SamplePicture picture = LargePicture(PixelFormat::kBgr24, 6);
        KeptBytes sink;
        const auto progress = [&](int percent) { return percent < last ? true : throw percent; };
        EXPECT_THROW(dcpng::WritePng(picture.View(), {}, sink, progress), int);
    }
}

// Padding comes out of somebody's memory, and which row is stored first is nobody's business.
TEST(AllWriters, MakeTheFileOfThePixelsAlone) {
    for (const PixelFormat format : kAllFormats) {
        const SamplePicture one(format, 13, 4, Colors(format));
        SamplePicture other(format, 13, -4, Colors(format), 2);
        const size_t stride = one.View().Stride();
        for (size_t bit = 0; bit < stride * 8 * 4; ++bit) {
            if (bit % (stride * 8) >= 13u * dib::BitsPerPixel(format)) continue;  // padding
            const uint8_t from =
                one.View().Row(static_cast<int32_t>(bit / 8 / stride))[bit / 8 % stride];
            const int mask = 0x80 >> bit % 8;
            other.bits[bit / 8] =
                static_cast<uint8_t>((other.bits[bit / 8] & ~mask) | (from & mask));
        }
        for (const Writer& write : Writers(true)) {
            KeptBytes first;
            KeptBytes second;
            write(one.View(), first, {});
            write(other.View(), second, {});
            EXPECT_EQ(first.bytes, second.bytes) << static_cast<int>(format);
        }
    }
}

Bytes Saved(const SamplePicture& picture, BmpSaveOptions options) {
    KeptBytes sink;
    EXPECT_EQ(convertdib::WriteBitmap(picture.View(), options, sink), SaveResult::kSaved);
    return sink.bytes;
}

Bytes PixelsOf(const Bytes& bytes, PixelFormat format) {
    dib::MemorySource source(bytes);
    dib::BitmapFile file(source);
    EXPECT_EQ(file.Open(), dib::DibError::kNone);
    Bytes bits(file.BitsSize());
    EXPECT_EQ(file.ReadBits(bits, {}), dib::DibError::kNone);
    const auto view = dib::DibView::Of(file.Info(), bits).value();
    EXPECT_EQ(view.Format(), format);
    return Bgra(view);
}

TEST(BitmapWriter, ComesBackPixelForPixel) {
    const auto palette = [](PixelFormat format, int32_t width) {
        return Colors(format, width % 2 == 0 ? 2 : 256);
    };
    ForEachPicture(palette, [](const SamplePicture& picture) {
        const dib::DibView view = picture.View();
        for (const BmpSaveOptions options : {BmpSaveOptions{0, 0}, {0, 1}, {1, 0}, {1, 1}})
            EXPECT_EQ(PixelsOf(Saved(picture, options), view.Format()), Bgra(view));
    });
}

}  // namespace
}  // namespace tessary::saving::test
