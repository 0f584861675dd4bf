#include "helpers/dcjpeg/jpeg_writer.h"

#include <cstdio>

#include <jpeglib.h>

#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, JpegSaveOptions options) {
    KeptBytes sink;
    EXPECT_EQ(dcjpeg::WriteJpeg(picture.View(), options, sink, {}), SaveResult::kSaved);
    return sink.bytes;
}

struct ReadJpeg {
    Bytes bgr;
    int components;
    bool progressive;
    int lumaSampling;  // horizontal factor of the brightness
    std::vector<int> density;
};

// What the library's own reader sees; it ends the test program at a file that it cannot read.
ReadJpeg Read(const Bytes& file) {
    jpeg_decompress_struct reader{};
    jpeg_error_mgr errors{};
    reader.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&reader);
    jpeg_mem_src(&reader, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&reader, TRUE);
    ReadJpeg read{{},
                  reader.num_components,
                  reader.progressive_mode != 0,
                  reader.comp_info[0].h_samp_factor,
                  {reader.density_unit, reader.X_density, reader.Y_density}};
    reader.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&reader);
    const size_t rowBytes = size_t{reader.output_width} * 3;
    read.bgr.resize(rowBytes * reader.output_height);
    while (reader.output_scanline < reader.output_height) {
        JSAMPROW row = &read.bgr[rowBytes * reader.output_scanline];
        jpeg_read_scanlines(&reader, &row, 1);
    }
    jpeg_finish_decompress(&reader);
    EXPECT_EQ(errors.num_warnings, 0);
    jpeg_destroy_decompress(&reader);
    return read;
}

// The largest difference of any channel from what is seen of the picture.
int Difference(const dib::DibView& view, const Bytes& bgr) {
    const dib::RowReader reader(view);
    Bytes row(static_cast<size_t>(view.Width()) * 3);
    EXPECT_EQ(bgr.size(), row.size() * static_cast<size_t>(view.Height()));
    int largest = 0;
    for (size_t i = 0; i < bgr.size(); ++i) {
        if (i % row.size() == 0) reader.Row(view.Row(static_cast<int32_t>(i / row.size())), row);
        largest = std::max(largest, std::abs(bgr[i] - row[i % row.size()]));
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
            const ReadJpeg read = Read(Saved(picture, {100, progressive, optimized}));
            EXPECT_LE(Difference(view, read.bgr), 4);
            EXPECT_EQ(read.components, isGrey ? 1 : 3);
            EXPECT_EQ(read.progressive, progressive != 0);
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
    EXPECT_EQ(Read(Saved(picture, {89, 0, 0})).lumaSampling, 2);
    EXPECT_EQ(Read(Saved(picture, {90, 0, 0})).lumaSampling, 1);

    const auto density = [&](int32_t x, int32_t y) {
        std::memcpy(&picture.info[24], &x, 4);
        std::memcpy(&picture.info[28], &y, 4);
        return Read(Saved(picture, {60, 0, 0})).density;
    };
    using Density = std::vector<int>;
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
