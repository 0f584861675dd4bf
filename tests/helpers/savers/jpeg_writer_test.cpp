#include "helpers/dcjpeg/jpeg_writer.h"

#include "plugins/iftessjpeg/jpeg_decoder.h"
#include "tests/helpers/savers/sample_pictures.h"
#include "tests/plugins_bundled/decoded_picture.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, JpegSaveOptions options) {
    KeptBytes sink;
    EXPECT_EQ(dcjpeg::WriteJpeg(picture.View(), options, sink, {}), SaveResult::kSaved);
    return sink.bytes;
}

// Where the frame's header stands: behind the segments before it.
size_t FrameOf(const Bytes& file) {
    size_t at = 2;
    while (file.at(at + 1) != 0xC0 && file.at(at + 1) != 0xC2)
        at += 2 + file.at(at + 2) * size_t{256} + file.at(at + 3);
    return at;
}

// The largest difference of any channel from what is seen of the picture.
int Difference(const dib::DibView& view, const Bytes& file) {
    const codec::test::Decoded decoded(jpeg::JpegDecoder(), file);
    EXPECT_EQ(decoded.condition, codec::Condition::kNone);
    const codec::test::Colors colors = decoded.Pixels();
    const dib::RowReader reader(view);
    Bytes row(colors.width * 3);
    int largest = std::abs(view.Height() - static_cast<int>(colors.height));
    for (uint32_t y = 0; y < colors.height; ++y) {
        reader.Row(view.Row(static_cast<int32_t>(y)), row);
        for (uint32_t i = 0; i < row.size(); ++i)
            largest = std::max(largest, std::abs(row[i] - colors.Channel(i / 3, y, i % 3)));
    }
    return largest;
}

TEST(JpegWriter, ComesBackWithinItsQuality) {
    const auto palette = [](PixelFormat format, int32_t width) {
        return width % 2 == 0 ? Greys(format) : Colors(format);
    };
    ForEachPicture(palette, [](const SamplePicture& picture) {
        const dib::DibView view = picture.View();
        const bool isGrey = !view.Palette().empty() && view.Width() % 2 == 0;
        for (const int16_t progressive : {int16_t{0}, int16_t{1}}) {
            const auto optimized = static_cast<int16_t>(view.Width() / 2 % 2);
            const Bytes file = Saved(picture, {100, progressive, optimized});
            EXPECT_LE(Difference(view, file), 4);
            EXPECT_EQ(file.at(FrameOf(file) + 9), isGrey ? 1 : 3);
            EXPECT_EQ(file.at(FrameOf(file) + 1), progressive != 0 ? 0xC2 : 0xC0);
        }
    });
}

TEST(JpegWriter, TakesQualityTablesAndResolution) {
    SamplePicture picture(PixelFormat::kBgr24, 200, 100, {});
    const auto size = [&](int16_t quality) { return Saved(picture, {quality, 0, 0}).size(); };
    EXPECT_LT(size(0), size(10));
    EXPECT_LT(size(10), size(60));
    EXPECT_LT(size(60), size(100));
    EXPECT_EQ(size(-1), size(0));
    EXPECT_EQ(size(1000), size(100));
    EXPECT_LT(Saved(picture, {60, 0, 1}).size(), size(60));
    for (const int16_t quality : {int16_t{89}, int16_t{90}}) {
        const Bytes file = Saved(picture, {quality, 0, 0});
        EXPECT_EQ(file.at(FrameOf(file) + 11), quality < 90 ? 0x22 : 0x11)
            << "samples of brightness";
    }

    using Density = std::vector<int>;
    const auto density = [&](int32_t x, int32_t y) {
        std::memcpy(&picture.info[24], &x, 4);
        std::memcpy(&picture.info[28], &y, 4);
        const Bytes file = Saved(picture, {60, 0, 0});
        return Density{file[13], file[14] * 256 + file[15], file[16] * 256 + file[17]};
    };
    EXPECT_EQ(density(11811, 5906), Density({1, 300, 150}));
    EXPECT_EQ(density(4000, 3900), Density({2, 40, 39}));
    EXPECT_EQ(density(4001, 4001), Density({1, 102, 102}));
    EXPECT_EQ(density(-2835, 2835), Density({0, 1, 1}));
    EXPECT_EQ(density(INT32_MAX, 1), Density({0, 1, 1}));
}

TEST(JpegWriter, RefusesWhatTheFormatCannotHold) {
    KeptBytes sink;
    const SamplePicture wide(PixelFormat::kIndexed1, 65501, 1, Greys(PixelFormat::kIndexed1));
    const SamplePicture high(PixelFormat::kIndexed1, 1, -65501, Greys(PixelFormat::kIndexed1));
    EXPECT_EQ(dcjpeg::WriteJpeg(wide.View(), {}, sink, {}), SaveResult::kTooLarge);
    EXPECT_EQ(dcjpeg::WriteJpeg(high.View(), {}, sink, {}), SaveResult::kTooLarge);
}

}  // namespace
}  // namespace tessary::saving::test
