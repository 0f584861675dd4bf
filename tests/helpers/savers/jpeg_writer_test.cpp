#include "helpers/dcjpeg/jpeg_writer.h"

#include "plugins/iftjpeg/jpeg_decoder.h"
#include "tests/helpers/savers/sample_pictures.h"
#include "tests/plugins_bundled/decoded_picture.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, JpegSaveOptions options) {
    KeptBytes sink;
    EXPECT_EQ(dcjpeg::WriteJpeg(picture.View(), options, sink, {}), SaveResult::kSaved);
    return sink.bytes;
}

TEST(JpegWriter, TakesQualityTablesAndResolution) {
    SamplePicture picture(PixelFormat::kBgr24, 200, 100, {});
    const auto size = [&](int16_t quality) { return Saved(picture, {quality, 0, 0}).size(); };
    EXPECT_LT(size(0), size(10));
    EXPECT_LT(size(60), size(100));
    EXPECT_EQ(size(-1), size(0));
    EXPECT_EQ(size(1000), size(100));
    EXPECT_LT(Saved(picture, {60, 0, 1}).size(), size(60));

    // What JFIF holds: dots per inch, or per centimetre where that is exact, or nothing.
    const int32_t densities[][4] = {{11811, 5906, 11811, 5906},
                                    {4000, 3900, 4000, 3900},
                                    {-2835, 2835, 0, 0},
                                    {INT32_MAX, 1, 0, 0}};
    for (const auto& density : densities) {
        std::memcpy(&picture.info[24], density, 8);
        const codec::PictureForm form =
            codec::test::Decoded(jpeg::JpegDecoder(), Saved(picture, {60, 0, 0})).form;
        EXPECT_EQ(form.xPelsPerMeter, density[2]);
        EXPECT_EQ(form.yPelsPerMeter, density[3]);
    }
}

TEST(JpegWriter, SavesGreyAsGrey) {
    for (const bool isGrey : {false, true}) {
        const PixelFormat format = PixelFormat::kIndexed4;
        const SamplePicture picture(format, 20, 10, isGrey ? Greys(format) : Colors(format));
        const codec::test::Decoded decoded(jpeg::JpegDecoder(), Saved(picture, {60, 0, 0}));
        EXPECT_EQ(decoded.form.bitCount, isGrey ? 8 : 24);
    }
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
