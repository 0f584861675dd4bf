#include "helpers/dcpng/png_writer.h"

#include <png.h>

#include <map>

#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, PngSaveOptions options = {}) {
    KeptBytes sink;
    EXPECT_EQ(dcpng::WritePng(picture.View(), options, sink, {}), SaveResult::kSaved);
    return sink.bytes;
}

// What the library's own reader sees.
Bytes PixelsOf(const Bytes& file) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    EXPECT_TRUE(png_image_begin_read_from_memory(&image, file.data(), file.size()));
    image.format = PNG_FORMAT_BGRA;
    Bytes pixels(PNG_IMAGE_SIZE(image));
    EXPECT_TRUE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr));
    EXPECT_EQ(image.warning_or_error, 0u) << image.message;
    return pixels;
}

std::map<std::string, Bytes> Chunks(const Bytes& file) {
    std::map<std::string, Bytes> chunks;
    for (size_t at = 8; at < file.size();) {
        const size_t size = png_get_uint_32(&file[at]);
        chunks[std::string(&file[at + 4], &file[at + 8])] = {&file[at + 8], &file[at + 8] + size};
        at += 12 + size;
    }
    return chunks;
}

void SetFourthBytes(Bytes& pixels, uint8_t value) {
    for (size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = value;
}

TEST(PngWriter, ComesBackPixelForPixel) {
    const auto palette = [](PixelFormat format, int32_t width) {
        return width % 3 == 0 ? Greys(format) : Colors(format, width % 3 == 1 ? 256 : 2);
    };
    ForEachPicture(palette, [](const SamplePicture& picture) {
        const dib::DibView view = picture.View();
        for (const int16_t interlace : {int16_t{0}, int16_t{1}}) {
            const Bytes file = Saved(picture, {static_cast<int16_t>(view.Width() % 10), interlace});
            Bytes expected = Bgra(view);
            if (view.Format() == PixelFormat::kBgrx32) SetFourthBytes(expected, 255);
            EXPECT_EQ(PixelsOf(file), expected);
            EXPECT_EQ(Chunks(file)["IHDR"][12], interlace);
        }
    });
}

// The upper half is a soft slope with grain, as photographs have; the lower one repeats itself.
SamplePicture MixedPicture(PixelFormat format, int32_t width, int32_t height) {
    SamplePicture picture(format, width, height, Colors(format), 3);
    std::minstd_rand random(4);
    for (size_t i = picture.bits.size() / 2; i < picture.bits.size(); ++i)
        picture.bits[i] = static_cast<uint8_t>(i / 97 + random() % 8);
    for (size_t i = 5000; i < picture.bits.size() / 2; ++i)
        picture.bits[i] = picture.bits[i - 4111 + i / 500 % 3];
    return picture;
}

TEST(PngWriter, JoinsStripsIntoOneStream) {
    for (const PixelFormat format : kAllFormats) {
        const auto width = static_cast<int32_t>(40000 / dib::BitsPerPixel(format));
        const SamplePicture picture = MixedPicture(format, width, 301);
        Bytes expected = Bgra(picture.View());
        if (format == PixelFormat::kBgrx32) SetFourthBytes(expected, 255);
        for (const PngSaveOptions options : {PngSaveOptions{0, 0}, {1, 1}, {6, 0}, {9, 1}})
            EXPECT_EQ(PixelsOf(Saved(picture, options)), expected) << options.quality;
    }
}

TEST(PngWriter, FewColorsWithAlphaBecomeATable) {
    for (const auto& [colors, depth] : {std::pair{2, 1}, {3, 4}, {17, 8}, {256, 8}, {257, 8}}) {
        SamplePicture picture(PixelFormat::kBgra32, 37, 19, {});
        for (size_t i = 0; i < picture.bits.size(); i += 4) {
            const size_t color = i / 4 % static_cast<size_t>(colors);
            for (const size_t channel : {0u, 1u, 2u, 3u})  // every third is opaque
                picture.bits[i + channel] = static_cast<uint8_t>(
                    channel == 3 ? (color % 3 == 0 ? 255 : color) : color * 5 + color / 256);
        }
        const Bytes file = Saved(picture, {6, static_cast<int16_t>(colors % 2)});
        EXPECT_EQ(PixelsOf(file), Bgra(picture.View())) << colors;
        auto chunks = Chunks(file);
        EXPECT_EQ(chunks["IHDR"][8], depth) << colors;
        EXPECT_EQ(chunks["tRNS"].size(), colors > 256 ? 0u : colors * 2u / 3) << colors;
    }
}

TEST(PngWriter, TakesLevelAndResolution) {
    SamplePicture picture = MixedPicture(PixelFormat::kBgr24, 300, 100);
    const auto size = [&](int16_t level) { return Saved(picture, {level, 0}).size(); };
    EXPECT_GT(size(0), picture.bits.size());
    EXPECT_LT(size(9), size(1));
    EXPECT_EQ(size(-3), size(0));
    EXPECT_EQ(size(99), size(9));
    EXPECT_EQ(Chunks(Saved(picture))["pHYs"], Bytes({0, 0, 0x2E, 0x23, 0, 0, 0x17, 0x12, 1}));
    picture.info[27] = 0x80;  // a negative resolution
    EXPECT_EQ(Chunks(Saved(picture)).count("pHYs"), 0u);
}

}  // namespace
}  // namespace tessary::saving::test
