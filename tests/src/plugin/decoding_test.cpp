// Decoding the bound picture: tries, preview, crashes, drawing.
#include "helpers/color/color_profile.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

using DecodingTest = test::PluginTest;

TEST_F(DecodingTest, FilesAreTriedTwiceAndMemoryOnce) {
    using Tried = std::pair<uint32_t, int>;  // the failure, and how often the plug-in was asked
    const auto tried = [&](uint32_t flags = 0, const SusieProgress& progress = {}) {
        const int before = Calls(plugin_.DllName(), "GetPicture");
        const uint32_t failure = DecodeFailure(flags, progress);
        return Tried(failure, Calls(plugin_.DllName(), "GetPicture") - before);
    };
    BindPicture("answer-after:GetPicture:6");
    EXPECT_EQ(tried(), Tried(6, 2));
    EXPECT_EQ(tried(kDecodeTryPreview), Tried(6, 4));
    BindPicture("no-bits");
    EXPECT_EQ(tried(), Tried(susie::kBrokenData, 1));
    EXPECT_EQ(plugin_.ErrorString(), L"画像の展開に失敗しました");
    BindPicture("");
    EXPECT_EQ(tried(0, [](int, int) { return false; }), Tried(1, 1)) << "the user's will";
    EXPECT_EQ(Decode(kDecodeTryPreview), kPreviewResult);
    const OwnedBlock block = Block("TST 5x3x24\nanswer:GetPicture:6\n");
    plugin_.SetMemoryHandle(block.Get(), L"a.tst");
    EXPECT_EQ(tried(), Tried(6, 1));
}

TEST_F(DecodingTest, WhatIsHandedOutIsSrgb) {
    color::Primaries primaries = color::kSrgbPrimaries;
    std::swap(primaries.red, primaries.blue);
    const auto exchanged = color::Profile::FromPrimaries(primaries, {1, true})->Icc();
    BindPicture("");
    Decode();
    const std::vector<uint8_t> stored(picture_.Bits().begin(), picture_.Bits().end());
    BindPicture("header:124\nprofile:" + test::HexOf(exchanged));
    Decode();
    EXPECT_TRUE(picture_.Profile().empty());
    for (size_t i = 0; i < 9; ++i)
        EXPECT_EQ(picture_.Bits()[i], stored[i / 3 * 3 + 2 - i % 3]) << i;
}

TEST_F(DecodingTest, WhatHasCrashedIsNotDoneAgain) {
    const auto crashes = [&] { return plugin_.ErrorCount({}); };
    BindPicture("crash:stack-overflow:GetPicture\ncrash:av:GetPictureInfo");
    const std::wstring file = plugin_.GetFile();
    for (const uint32_t flags : {0U, 0U, kDecodeTryPreview}) {
        EXPECT_EQ(DecodeFailure(flags), 255U);
        EXPECT_EQ(plugin_.ErrorString() + plugin_.ErrorFunction(),
                  std::wstring(kPluginCrashedText) + L"GetPicture");
    }
    EXPECT_EQ(plugin_.ErrorCount(L"GetPicture"), 1);
    EXPECT_EQ(plugin_.Width(), -1);
    EXPECT_EQ(crashes(), 2);
    BindPicture("");  // another file
    EXPECT_EQ(Decode(), 0U);
    Touch(file);
    plugin_.SetFile(file);
    EXPECT_EQ(DecodeFailure(), 255U);
    EXPECT_EQ(crashes(), 3) << "another content under the same name";

    // What is read from memory, too.
    for (const char* size : {"5x3", "5x3", "5x4"}) {
        const OwnedBlock block = Block(std::string("TST ") + size + "x24\ncrash:av:GetPicture\n");
        plugin_.SetMemoryHandle(block.Get(), L"a.tst");
        EXPECT_EQ(DecodeFailure(), 255U);
        EXPECT_EQ(DecodeFailure(), 255U);
    }
    EXPECT_EQ(crashes(), 5);
    BindPicture("crash:av:GetPicture");
    EXPECT_EQ(DecodeFailure(), 255U);
    plugin_.ForgetErrors();
    EXPECT_EQ(DecodeFailure(), 255U);
    EXPECT_EQ(crashes(), 1);

    plugin_.SetDllName(Plugin(L"axtsa.spi", "crash:av:GetFile\n"));
    plugin_.SetFile(ArchiveFile());
    for (const int32_t member : {2, 2, 1, 1})
        EXPECT_EQ(Failure([&] { Extracted(member); }), 255U);
    EXPECT_EQ(crashes(), 2) << "one for each member";
}

TEST_F(DecodingTest, WritesBmpFilesAndRefusesWrongUse) {
    const auto decode = [&](DecodeTarget target, const std::wstring& file, Picture* picture) {
        return Raised([&] {
            EXPECT_GT(plugin_.DecodePicture(target, kDecodeTryPreview, {}, file, picture),
                      target == DecodeTarget::kBmpFile ? kPreviewResult : 0);
        });
    };
    const std::wstring file = folder_.Path() + L"사.bmp";
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorNothingBound);
    BindPicture("");
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, file, nullptr), 0U);
    EXPECT_EQ(std::filesystem::file_size(file), 54U + 2 * 12);
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, folder_.Path() + L"gone\\a.bmp", nullptr),
              kErrorSavingFailed);
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, L"", &picture_), kErrorInvalidArgument);
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", nullptr), kErrorInvalidArgument);
    plugin_.SetMemoryHandle(Block("TST 5x3x24\n").Get(), L"a.tst");  // is gone at once
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorInvalidMemory);
    EXPECT_EQ(plugin_.Width(), -1);
    plugin_.SetDllName(test::TestPluginPath(L"axtsa.spi"));
    BindArchive({});
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorWrongPluginKind);
}

TEST_F(DecodingTest, DrawsFittedAndCentred) {
    plugin_.SetDllName(Plugin(L"iftst.spi"));
    plugin_.SetFile(folder_.Write(L"wide.tst", "TST 400x100x24\n"));
    Decode();
    PicturePair pair = picture_.ReleasePair();
    const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
    const UniqueBitmap canvas(CreateBitmap(200, 200, 1, 32, nullptr));
    SelectObject(context.Get(), canvas.Get());
    // Where something was drawn: left, top, right, bottom.
    const auto drawn = [&](int32_t showType, int width, int height) {
        SetBoundsRect(context.Get(), nullptr, DCB_ENABLE | DCB_RESET);
        plugin_.SetShowType(showType);
        plugin_.ShowPicture(context.Get(), width, height, pair);
        RECT box{};
        GetBoundsRect(context.Get(), &box, DCB_RESET);
        return std::vector{box.left, box.top, box.right, box.bottom};
    };
    EXPECT_EQ(drawn(1, 200, 200), (std::vector{0L, 75L, 200L, 125L}));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowFixControl"));
    EXPECT_EQ(drawn(2, 200, 20), (std::vector{60L, 0L, 140L, 20L}));
    EXPECT_EQ(drawn(0, 50, 50), (std::vector{0L, 0L, 200L, 100L}));
    EXPECT_TRUE(plugin_.ErrorString().starts_with(L"ShowPicture Return:"));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowDefault"));
    EXPECT_NE(GetPixel(context.Get(), 100, 50), 0U);
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(context.Get(), 9, 9, {}); }), kErrorInvalidMemory);
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(nullptr, 9, 9, pair); }), kErrorDrawingFailed);
    FreePicture(pair);
}

}  // namespace
}  // namespace tessary
