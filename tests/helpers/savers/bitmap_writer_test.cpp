#include "helpers/convertdib/bitmap_writer.h"

#include "tests/helpers/savers/sample_pictures.h"

namespace tessary::saving::test {
namespace {

Bytes Saved(const SamplePicture& picture, BmpSaveOptions options) {
    KeptBytes sink;
    EXPECT_EQ(convertdib::WriteBitmap(picture.View(), options, sink), SaveResult::kSaved);
    return sink.bytes;
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
    const SamplePicture wide(PixelFormat::kIndexed1, 65536, 1, Colors(PixelFormat::kIndexed1));
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
    EXPECT_EQ(FieldsOf(Saved(wide, {1, 0})), Fields({54 + 8, 40, 0, 8192, 2}));
}

}  // namespace
}  // namespace tessary::saving::test
