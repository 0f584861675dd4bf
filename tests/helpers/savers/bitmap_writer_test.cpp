#include "helpers/convertdib/bitmap_writer.h"

#include "helpers/convertdib/run_length_encoder.h"
#include "helpers/dib/bitmap_file.h"
#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

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

// Offset of the pixels, size of the header, compression, size of the pixels, colours used.
std::vector<uint32_t> FieldsOf(const Bytes& bytes) {
    dib::BitmapFileHeader file;
    dib::BitmapInfoHeader info;
    std::memcpy(&file, bytes.data(), sizeof(file));
    std::memcpy(&info, bytes.data() + sizeof(file), sizeof(info));
    EXPECT_EQ(uint32_t{file.fileSize}, bytes.size());
    if (info.size == 12) return {file.pixelOffset, 12};
    EXPECT_EQ(int32_t{info.xPelsPerMeter}, 11811);
    EXPECT_EQ(int32_t{info.yPelsPerMeter}, 5906);
    return {file.pixelOffset, info.size, info.compression, info.sizeImage, info.colorsUsed};
}

TEST(BitmapWriter, ChoosesHeaderEncodingAndTable) {
    const Palette colors = Colors(PixelFormat::kIndexed8);
    SamplePicture few(PixelFormat::kIndexed8, 5, 2, colors);
    few.bits = {9, 9, 9, 9, 9, 200, 200, 200, 9, 9, 9, 9, 9, 200, 200, 200};
    SamplePicture beyond(PixelFormat::kIndexed4, 5, 1, Colors(PixelFormat::kIndexed4, 3));
    beyond.bits = {0x11, 0x1F, 0x1F, 0xFF};
    const SamplePicture one(PixelFormat::kIndexed1, 9, 1, Colors(PixelFormat::kIndexed1, 1));
    const SamplePicture full(PixelFormat::kBgr24, 5, 2, {});
    const SamplePicture words(PixelFormat::kRgb565, 5, 2, {});
    const SamplePicture wide(PixelFormat::kIndexed1, 32767, 1, Colors(PixelFormat::kIndexed1));
    const SamplePicture wider(PixelFormat::kIndexed1, 32768, 1, Colors(PixelFormat::kIndexed1));
    const SamplePicture taller(PixelFormat::kIndexed1, 1, 32768, Colors(PixelFormat::kIndexed1));
    using Fields = std::vector<uint32_t>;
    EXPECT_EQ(FieldsOf(Saved(few, {0, 0})), Fields({54 + 40, 40, 0, 16, 10}));
    EXPECT_EQ(FieldsOf(Saved(few, {0, 1})), Fields({54 + 40, 40, 1, 8, 10}));
    EXPECT_EQ(FieldsOf(Saved(few, {1, 1})), Fields({26 + 768, 12}));
    EXPECT_EQ(Saved(few, {0, 0})[57], 0) << "the table's reserved byte";
    EXPECT_EQ(FieldsOf(Saved(beyond, {0, 0})), Fields({54 + 64, 40, 0, 4, 16}));
    EXPECT_EQ(FieldsOf(Saved(one, {0, 1})), Fields({54 + 8, 40, 0, 4, 2}));
    EXPECT_EQ(FieldsOf(Saved(full, {0, 1})), Fields({54, 40, 0, 32, 0}));
    EXPECT_EQ(FieldsOf(Saved(full, {1, 1})), Fields({26, 12}));
    EXPECT_EQ(FieldsOf(Saved(words, {1, 0})), Fields({66, 40, 3, 24, 0}));
    EXPECT_EQ(FieldsOf(Saved(wide, {1, 0})), Fields({26 + 6, 12}));
    EXPECT_EQ(FieldsOf(Saved(wider, {1, 0})), Fields({54 + 8, 40, 0, 4096, 2}));
    EXPECT_EQ(FieldsOf(Saved(taller, {1, 0})), Fields({54 + 8, 40, 0, 131072, 2}));
}

TEST(RunLengthEncoder, ChoosesTheShorterCode) {
    const auto encoded = [](auto* encode, const Bytes& row) {
        Bytes codes;
        encode(row, codes);
        return codes;
    };
    const auto rle4 = convertdib::EncodeRle4;
    const auto rle8 = convertdib::EncodeRle8;
    EXPECT_EQ(encoded(rle8, Bytes(256, 7)), Bytes({255, 7, 1, 7}));
    EXPECT_EQ(encoded(rle8, {1, 2}), Bytes({1, 1, 1, 2}));
    EXPECT_EQ(encoded(rle8, {1, 2, 2, 3, 9, 9, 9, 9, 9}), Bytes({0, 4, 1, 2, 2, 3, 5, 9}));
    EXPECT_EQ(encoded(rle4, {1, 2, 1, 2, 1}), Bytes({5, 0x12}));
    EXPECT_EQ(encoded(rle4, {1, 2, 3}), Bytes({0, 3, 0x12, 0x30}));
    EXPECT_EQ(encoded(rle4, {1, 2, 3, 4, 5, 5, 5, 5, 5, 5, 5, 5, 5}),
              Bytes({0, 4, 0x12, 0x34, 9, 0x55}));
}

}  // namespace
}  // namespace tessary::saving::test
