#include "helpers/dcpng/png_writer.h"

#include <png.h>

#include <algorithm>
#include <string_view>

#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, PngSaveOptions options = {}) {
    KeptBytes sink;
    EXPECT_EQ(dcpng::WritePng(picture.View(), options, sink, {}), SaveResult::kSaved);
    return sink.bytes;
}

// The content of the first chunk of a kind.
Bytes Chunk(const Bytes& file, std::string_view kind) {
    const auto at = std::search(file.begin(), file.end(), kind.begin(), kind.end());
    if (at == file.end()) return {};
    return {at + 4, at + 4 + static_cast<int>(png_get_uint_32(&*at - 4))};
}

// Bit depth, colour type and entries of the colour table.
std::vector<size_t> FormOf(const Bytes& file) {
    const Bytes header = Chunk(file, "IHDR");
    return {header[8], header[9], Chunk(file, "PLTE").size() / 3};
}

void SetFourthBytes(Bytes& pixels, uint8_t value) {
    for (size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = value;
}

TEST(PngWriter, KeepsTheFormOfThePixels) {
    using Form = std::vector<size_t>;
    const auto form = [](PixelFormat format, const Palette& palette) {
        return FormOf(Saved({format, 400, 200, palette}));
    };
    Palette oddGreys = Greys(PixelFormat::kIndexed4);
    oddGreys[3] = 0x646464;
    for (const PixelFormat format : kAllFormats) {
        const size_t bits = dib::BitsPerPixel(format);
        const bool hasTable = bits <= 8;
        const Form colored = hasTable ? Form{bits, 3, size_t{1} << bits}
                                      : Form{8, format == PixelFormat::kBgrx32 ? 6u : 2u, 0};
        EXPECT_EQ(form(format, Colors(format)), colored);
        EXPECT_EQ(form(format, Greys(format)), hasTable ? Form({bits, 0, 0}) : colored);
    }
    EXPECT_EQ(form(PixelFormat::kIndexed1, Colors(PixelFormat::kIndexed1, 1)), Form({1, 3, 2}));
    EXPECT_EQ(form(PixelFormat::kIndexed4, oddGreys), Form({4, 3, 16}));
    EXPECT_EQ(form(PixelFormat::kIndexed8, oddGreys), Form({8, 0, 0}));
    SamplePicture few(PixelFormat::kIndexed8, 8, 1, Colors(PixelFormat::kIndexed8));
    few.bits = {4, 0, 1, 4, 3, 2, 1, 0};
    EXPECT_EQ(FormOf(Saved(few)), Form({8, 3, 5}));

    SamplePicture opaque(PixelFormat::kBgrx32, 40, 20, {});
    for (const uint8_t value : {0, 255, 0xCD}) {
        SetFourthBytes(opaque.bits, value);
        EXPECT_EQ(FormOf(Saved(opaque)), Form({8, 2, 0}));
    }
    opaque.bits.back() = 0;
    EXPECT_EQ(FormOf(Saved(opaque)), Form({8, 6, 0}));
}

TEST(PngWriter, TakesLevelAndResolution) {
    SamplePicture picture(PixelFormat::kBgr24, 300, 100, {}, 3);
    const auto size = [&](int16_t level) { return Saved(picture, {level, 0}).size(); };
    EXPECT_GT(size(0), picture.bits.size());
    EXPECT_LT(size(9), size(1));
    EXPECT_EQ(size(-3), size(0));
    EXPECT_EQ(size(99), size(9));
    EXPECT_EQ(Chunk(Saved(picture), "pHYs"), Bytes({0, 0, 0x2E, 0x23, 0, 0, 0x17, 0x12, 1}));
    picture.info[27] = 0x80;  // a negative resolution
    EXPECT_EQ(Chunk(Saved(picture), "pHYs"), Bytes());
}

}  // namespace
}  // namespace tessary::saving::test
