// Saving: which writer a name calls, and what it is given.
#include "picture/save/save_picture.h"

#include "app/base/paths.h"
#include "helpers/color/color_profile.h"
#include "helpers/dib/byte_source.h"
#include "helpers/metadata/file_metadata.h"
#include "picture/bitmap_file.h"
#include "picture/save/clipboard_png.h"
#include "picture/save/encoded_picture.h"
#include "picture/save/save_progress.h"
#include "tests/helpers/dib/sample_bitmaps.h"
#include "tests/helpers/dib/sample_picture.h"
#include "tests/support/content_of.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using dib::test::Bytes;
using dib::test::TestBitmap;

OwnedBlock BlockOf(const Bytes& bytes) {
    return FilledBlock(bytes.size(), [&](std::span<uint8_t> target) {
        std::memcpy(target.data(), bytes.data(), bytes.size());
    });
}

class SavePictureTest : public testing::Test {
  protected:
    SavePictureTest() { test::LoadHelperLibraries(); }
    bool Save(const wchar_t* name, HLOCAL info, HLOCAL bits, const dib::Progress& tell = {}) {
        std::optional<SaveProgress> progress;
        if (tell) progress.emplace(tell);
        return SavePictureFile(PicturePair{info, bits}, folder_.Path() + name, {},
                               SaveProgress::PassThrough());
    }

    const TestBitmap bitmap_{2, 2, 24, dib::test::k24Bits};
    const OwnedBlock info_ = BlockOf(bitmap_.Info());
    const OwnedBlock bits_ = BlockOf(bitmap_.pixels);
    test::TemporaryFolder folder_;
};

TEST_F(SavePictureTest, ExtensionChoosesTheWriter) {
    const struct {
        const wchar_t* name;
        const char* start;  // of the file; none: it is not saved
        bool tellsProgress;
    } table[] = {
        {L"a.bmp", "BM", false},
        {L"b.PnG", "\x89PNG", true},
        {L"c.jpg", "\xFF\xD8", true},
        {L"한글.JPG", "\xFF\xD8", true},
        {L"d.jpeg", "", false},
        {L"e", "", false},
        {L"f.bmp.gif", "", false},
        {LR"(no folder\g.png)", "", false},
        {LR"(no folder\g.bmp)", "", false},
        {LR"(no folder\g.jpg)", "", false},
    };
    for (const auto& [name, start, tellsProgress] : table) {
        int calls = 0;
        const bool isSaved = *start != '\0';
        const std::wstring path = folder_.Path() + name;
        EXPECT_EQ(Save(name, info_.Get(), bits_.Get(), [&](int) { return ++calls > 0; }), isSaved)
            << name;
        EXPECT_EQ(PathExists(path), isSaved) << name;
        EXPECT_EQ(calls > 0, tellsProgress) << name;
        EXPECT_TRUE(test::ContentOf(path).starts_with(start)) << name;
    }
    const OwnedBlock tooFew = BlockOf(Bytes(11));
    EXPECT_FALSE(Save(L"h.bmp", nullptr, bits_.Get()));
    EXPECT_FALSE(Save(L"h.bmp", info_.Get(), tooFew.Get()));
    EXPECT_EQ(LocalFlags(info_.Get()) & LMEM_LOCKCOUNT, 0u);
}

TEST_F(SavePictureTest, StoppedWriterLeavesTheOldFile) {
    for (const wchar_t* const name : {L"a.png", L"b.jpg"}) {
        const std::wstring path = folder_.Write(name, "mine");
        const auto save = [&](const dib::Progress& tell) {
            return Save(name, info_.Get(), bits_.Get(), tell);
        };
        EXPECT_FALSE(save([](int) { return false; })) << name;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CANCELLED)) << name;
        EXPECT_FALSE(save([](int) -> bool { throw std::bad_alloc(); })) << name;
        EXPECT_EQ(test::ContentOf(path), "mine") << name;
        DeleteFileW(path.c_str());
        EXPECT_FALSE(save([](int percent) { return percent < 30; })) << name;
        EXPECT_TRUE(std::filesystem::is_empty(folder_.Path())) << name;
        int last = 0;
        EXPECT_TRUE(save([&](int percent) { return (last = percent) <= 100; })) << name;
        EXPECT_EQ(last, 100) << name;
        EXPECT_TRUE(save({})) << "nobody watches";
        DeleteFileW(path.c_str());
    }
}

TEST_F(SavePictureTest, TransparencyGetsTheChosenBackdropWhereItIsLost) {
    dib::test::SamplePicture sample(dib::PixelFormat::kBgra32, 2, 1, {});
    sample.bits = {1, 2, 3, 255, 9, 9, 9, 0};
    const Picture picture = Picture::Make(sample.info, [&](std::span<uint8_t> rows) {
        std::ranges::copy(sample.bits, rows.begin());
        return true;
    });
    ASSERT_TRUE(picture.HasAlpha());
    saving::SaveOptions options;
    options.backdrop = dib::Backdrop::kGrey;
    const Picture flat = AsItIsSaved(picture, *SaverFormatAt(kJpegFormat), options);
    EXPECT_EQ(Bytes(flat.Bits().begin(), flat.Bits().begin() + 6), Bytes({1, 2, 3, 128, 128, 128}));
    EXPECT_TRUE(AsItIsSaved(picture, *SaverFormatAt(kPngFormat), options).HasAlpha());
    const auto encoded = [&](const saving::SaveOptions& chosen) {
        return EncodePicture(picture, *SaverFormatAt(kJpegFormat), chosen, 0)->bytes.Pieces();
    };
    EXPECT_NE(encoded(options), encoded({}));
}

// Longer than one marker of a JPEG file, with a sound header.
Bytes LongProfile() {
    Bytes profile = color::Profile::AdobeRgb().Icc();
    profile.resize(150'000, 7);
    for (size_t i = 0; i < 4; ++i)
        profile[i] = static_cast<uint8_t>(profile.size() >> (24 - 8 * i));
    return profile;
}

TEST_F(SavePictureTest, ColorsOfItsOwnStayWithTheProfileWhereThatIsWanted) {
    const auto picture = [&](const Bytes& profile) {
        Picture made = Picture::Make(bitmap_.Info(), [&](std::span<uint8_t> rows) {
            std::ranges::transform(bitmap_.pixels, rows.begin(),
                                   [](uint8_t sample) { return static_cast<uint8_t>(sample / 2); });
            return true;
        });
        made.SetProfile(profile);
        return made;
    };
    const auto saved = [&](const Picture& of, int32_t format, const saving::SaveOptions& options) {
        const SaverFormat& as = *SaverFormatAt(format);
        const std::wstring path = folder_.Path() + L"a" + as.Extension();
        EXPECT_TRUE(SavePictureAs(as, of, path, options, 0));
        const auto file = test::ContentOf<Bytes>(path);
        Bytes made;
        const auto encoded = EncodePicture(of, as, options, 0);
        for (const Bytes& piece : encoded->bytes.Pieces())
            made.insert(made.end(), piece.begin(), piece.end());
        EXPECT_EQ(made, file);
        return file;
    };
    const auto profileIn = [](int32_t format, const Bytes& file) {
        dib::MemorySource source(file);
        return (format == kPngFormat ? metadata::ReadPngMetadata(source)
                                     : metadata::ReadJpegMetadata(source))
            .profile;
    };
    const Bytes sound = LongProfile();
    Bytes lying = sound;  // of its size: strict readers would show these colours as sRGB
    lying[3] ^= 4;
    Bytes outside = sound;  // a tag beyond the end
    outside[132 + 8] = 0xFF;
    saving::SaveOptions srgb;
    srgb.pngProfile = srgb.jpegProfile = 0;
    for (const int32_t format : {kPngFormat, kJpegFormat}) {
        const Bytes plain = saved(picture({}), format, {});
        const Bytes own = saved(picture(sound), format, {});
        EXPECT_EQ(profileIn(format, own), sound);
        // All else is the file of the same numbers.
        EXPECT_TRUE(std::equal(plain.rbegin(), plain.rbegin() + 40, own.rbegin()));
        const Bytes converted = saved(picture(sound), format, srgb);
        EXPECT_TRUE(profileIn(format, converted).empty());
        EXPECT_NE(converted, plain);
        EXPECT_EQ(saved(picture(sound), format, srgb), saved(picture(lying), format, {}));
        EXPECT_EQ(converted, saved(picture(outside), format, {}));
    }
    EXPECT_NE(saved(picture(sound), kBmpFormat, {}), saved(picture({}), kBmpFormat, {}));
    const UniqueGlobal copied = MakeClipboardPNG(picture(sound));
    const auto* const bytes = static_cast<const char*>(GlobalLock(copied.Get()));
    const std::string_view png(bytes, GlobalSize(copied.Get()));
    EXPECT_EQ(png.find("iCCP"), png.npos) << "others know sRGB alone";
    GlobalUnlock(copied.Get());
}

TEST_F(SavePictureTest, InfoBlockMayHoldAWholeFile) {
    using namespace dib::test;
    const auto save = [&](const wchar_t* name, Bytes image, size_t cut = 0) {
        image.resize(image.size() - cut);
        return Save(name, BlockOf(image).Get(), nullptr);
    };
    std::vector<uint32_t> full = kRgbw;
    full.resize(256);
    // A table for one bit always takes the room of two colours.
    for (const TestBitmap& bitmap : {TestBitmap{2, 2, 1, k1Bit, {0, 0xFF0000}},
                                     {2, 2, 1, k1Bit, {0, 0xFF0000}, 40, 0, {}, 1},
                                     {2, 2, 4, k4Bits, kRgbw},
                                     {2, 2, 8, k8Bits, kRgbw},
                                     {2, 2, 8, k8Bits, full, 40, 0, {}, 0},
                                     {2, 2, 24, k24Bits},
                                     {2, 2, 32, k32Bits},
                                     {2, 2, 16, k565, {}, 40, 3, k565Masks}}) {
        SCOPED_TRACE(bitmap.bitCount);
        EXPECT_TRUE(save(L"a.bmp", bitmap.File()));
        Picture read;
        ASSERT_TRUE(ReadBitmapFile(folder_.Path() + L"a.bmp", read));
        const bool isCut = bitmap.colorsUsed == 1u;
        EXPECT_EQ(Show(read.View()), isCut ? "../.." : bitmap.bitCount == 1 ? ".R/R." : "RG/BW");
        EXPECT_FALSE(save(L"b.bmp", bitmap.File(), 4)) << "a pixel is missing";
        EXPECT_FALSE(save(L"b.png", bitmap.File(), bitmap.File().size() - 20));
    }
    const TestBitmap lying{2, 2, 8, k8Bits, kRgbw, 40, 0, {}, 0xFFFFFFFF};
    EXPECT_FALSE(save(L"b.bmp", lying.File()));
    EXPECT_FALSE(PathExists(folder_.Path() + L"b.bmp"));
}

}  // namespace
}  // namespace tessary
