#include "helpers/convertdib/bitmap_writer.h"

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

}  // namespace
}  // namespace tessary::saving::test
