// Decoding the bound picture: sizes, tries, preview, blocks that lie, stopping, drawing.
#include "app/base/error.h"
#include "helpers/dib/dib_view.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

class DecodingTest : public test::PluginTest {
  protected:
    DecodingTest() : path_(Plugin(L"iftst_preview.spi")) { plugin_.SetDllName(path_); }

    void Bind(const std::string& directives) {
        plugin_.SetFile(folder_.Write(std::to_wstring(++number_) + L".tst",
                                      "TST 3x2x24\n" + directives + "\n"));
    }
    uint32_t Decode(uint32_t flags = 0, const SusieProgress& progress = {}) {
        return plugin_.DecodePicture(DecodeTarget::kMemory, flags, progress, {}, &picture_);
    }
    // What the plug-in answered to a decode that is expected to fail.
    uint32_t DecodeFailure(uint32_t flags = 0, const SusieProgress& progress = {}) {
        try {
            Decode(flags, progress);
            return 0;
        } catch (const DecodeError& error) {
            return error.Number() == kErrorDecodingFailed ? error.Result() : 0;
        }
    }

    clsSusie plugin_;
    tessary::Picture picture_;
    std::wstring path_;
    int number_ = 0;
};

TEST_F(DecodingTest, SizesAreAskedOnceAndNotBelieved) {
    Bind("flag128\ntext:comment");
    EXPECT_EQ(plugin_.Width(), 3);
    EXPECT_EQ(plugin_.Height(), 2);
    EXPECT_EQ(plugin_.ColorDepth(), 24);
    EXPECT_EQ(Calls(path_, "GetPictureInfo"), 2);
    for (const char* unknown : {"info-record:40x30x0", "info-record:0x30x24", "info-record:40x-1x8",
                                "answer:GetPictureInfo:3", "crash:av:GetPictureInfo"}) {
        Bind(unknown);
        EXPECT_EQ(plugin_.Width(), -1) << unknown;
        EXPECT_EQ(plugin_.Height(), -1) << unknown;
    }
    clsSusie unset;
    EXPECT_EQ(Raised([&] { unset.Height(); }), kErrorNoPluginSet);
    EXPECT_EQ(unset.ErrorFunction(), L"Property Get Height");
}

TEST_F(DecodingTest, OnlyPlainPicturesAreHandedOn) {
    for (const char* kind :
         {"fixed", "header:108", "unpadded", "top-down", "biClrUsed:9", "biSizeImage:7"}) {
        Bind(kind);
        EXPECT_EQ(Decode(), 0U);
        ASSERT_TRUE(picture_) << kind;
        const auto pixel = picture_.View().Row(1).subspan(2 * 3);
        const test::Colour expected = test::PatternPixel(2, 1);
        EXPECT_EQ((test::Colour{pixel[0], pixel[1], pixel[2]}), expected) << kind;
        // The address of a fixed block is its handle; only what is not plain is copied, to others.
        const uint8_t* const address = picture_.Bits().data();
        const PicturePair pair = picture_.ReleasePair();
        EXPECT_EQ(address == pair.bits, kind == std::string("fixed"));
        picture_ = tessary::Picture::FromPair(pair);
    }
}

TEST_F(DecodingTest, BlocksThatLieAreFailures) {
    for (const char* lie :
         {"bits-size:10", "info-size:20", "no-handles", "no-bits", "no-info", "same-handle",
          "wild-handles", "biWidth:100000", "biWidth:0", "biHeight:0", "biHeight:-2147483648",
          "biBitCount:7", "biSize:400", "biCompression:4", "biHeight:90000000", "foreign:malloc",
          "foreign:heap", "foreign:odd", "foreign:inside"}) {
        Bind(lie);
        EXPECT_EQ(DecodeFailure(), static_cast<uint32_t>(susie::kBrokenData)) << lie;
        EXPECT_EQ(plugin_.ErrorString(), L"画像の展開に失敗しました");
    }
}

TEST_F(DecodingTest, ABlockThatCannotBeReadIsACrashOfThePlugins) {
    Bind("foreign:closed\nbits-size:20000");
    EXPECT_EQ(DecodeFailure(), static_cast<uint32_t>(kResultCrashed));
    EXPECT_EQ(plugin_.ErrorCount(L"GetPicture"), 1);
    EXPECT_FALSE(PluginsAreStopped());
}

TEST_F(DecodingTest, PreviewIsTheFullCallUnderAnotherName) {
    Bind("");
    std::wstring logged;
    const auto readLog = [&](int, int) {
        logged = GetSetting(L"SPI_CALLLOG", L"Function") + L"|" +
                 GetSetting(L"SPI_CALLLOG", L"SPI") + L"|" + GetSetting(L"SPI_CALLLOG", L"File");
        return true;
    };
    EXPECT_EQ(Decode(kDecodeTryPreview, readLog), kPreviewResult);
    EXPECT_EQ(logged, L"GetPreview|iftst_preview.spi|" + plugin_.GetFile());
    EXPECT_EQ(Calls(path_, "GetPreview"), 0);
    EXPECT_EQ(Calls(path_, "GetPicture"), 1);
    EXPECT_FALSE(CallIsLogged());
}

TEST_F(DecodingTest, WritesBmpFiles) {
    test::LoadHelper(L"convertdib.dll");
    Bind("");
    const auto save = [&](const std::wstring& file, uint32_t flags) {
        return plugin_.DecodePicture(DecodeTarget::kBmpFile, flags, {}, folder_.Path() + file,
                                     nullptr);
    };
    EXPECT_GT(save(L"사.bmp", kDecodeTryPreview), kPreviewResult);
    EXPECT_EQ(std::filesystem::file_size(folder_.Path() + L"사.bmp"), 54U + 2 * 12);
    EXPECT_EQ(Raised([&] { save(L"gone\\a.bmp", 0); }), kErrorSavingFailed);
}

TEST_F(DecodingTest, FilesAreTriedTwiceAndMemoryOnce) {
    Bind("answer-after:GetPicture:6");
    EXPECT_EQ(DecodeFailure(), 6U);
    EXPECT_EQ(Calls(path_, "GetPicture"), 2);
    EXPECT_EQ(DecodeFailure(kDecodeTryPreview), 6U);
    EXPECT_EQ(Calls(path_, "GetPicture"), 6);
    const OwnedBlock block = Block("TST 5x3x24\nanswer:GetPicture:6\n");
    plugin_.SetMemoryHandle(block.Get(), L"a.tst");
    EXPECT_EQ(DecodeFailure(), 6U);
    EXPECT_EQ(Calls(path_, "GetPicture"), 7);
}

TEST_F(DecodingTest, ACallThatHasCrashedIsNotMadeAgain) {
    Bind("crash:stack-overflow:GetPicture\ncrash:av:GetPictureInfo");
    const std::wstring file = plugin_.GetFile();
    const auto crashes = [&] { return plugin_.ErrorCount({}); };
    for (const uint32_t flags : {0U, 0U, kDecodeTryPreview}) {
        EXPECT_EQ(DecodeFailure(flags), 255U);
        EXPECT_EQ(plugin_.ErrorString(), L"SPIファイル内の関数で致命的エラーが発生しました");
    }
    EXPECT_EQ(plugin_.ErrorCount(L"GetPicture"), 1);
    EXPECT_EQ(plugin_.Width(), -1);
    EXPECT_EQ(crashes(), 2);
    Bind("");  // another file
    EXPECT_EQ(Decode(), 0U);
    Touch(file);
    plugin_.SetFile(file);
    EXPECT_EQ(DecodeFailure(), 255U);
    EXPECT_EQ(crashes(), 3) << "another content under the same name";

    // What is read from memory, too.
    const OwnedBlock blocks[] = {Block("TST 5x3x24\ncrash:av:GetPicture\n"),
                                 Block("TST 5x3x24\ncrash:av:GetPicture\n"),
                                 Block("TST 5x4x24\ncrash:av:GetPicture\n")};
    for (const OwnedBlock& block : blocks) {
        plugin_.SetMemoryHandle(block.Get(), L"a.tst");
        EXPECT_EQ(DecodeFailure(), 255U);
    }
    EXPECT_EQ(crashes(), 5);
    plugin_.ForgetErrors();
    EXPECT_EQ(DecodeFailure(), 255U);
    EXPECT_EQ(crashes(), 1);
}

TEST_F(DecodingTest, NothingOfAPluginsBlocksStays) {
    const auto before = FreeHandles();
    for (const char* kind :
         {"", "bits-size:0", "info-size:0\nbits-size:0", "no-bits\ninfo-size:0", "no-info",
          "same-handle", "text:comment", "answer-after:GetPictureInfo:6\ntext:x",
          "answer-after:GetPicture:6", "answer-after:GetPicture:6\nbits-size:0",
          "answer-after:GetPicture:6\nsame-handle", "answer-after:GetPicture:6\nwild-handles",
          "answer-after:GetPicture:6\nfixed"}) {
        Bind(kind);
        plugin_.Width();
        Trapped([&] { Decode(kDecodeTryPreview); });
        picture_ = {};
        EXPECT_EQ(FreeHandles(), before) << kind;
    }
}

TEST_F(DecodingTest, WhatThePluginTellsBesideItsResultIsChecked) {
    plugin_.SetDllName(Plugin(L"iftst.spi"));
    Bind("condition:1:cut\tshort ");
    EXPECT_EQ(Decode(), 0U);
    EXPECT_EQ(plugin_.Damage(), L"cut short");
    // Of a picture that is whole nothing of the one before is left.
    Bind("");
    EXPECT_EQ(Decode(), 0U);
    EXPECT_EQ(plugin_.Damage(), L"");
    // Texts without an end are cut, missing ones replaced, and unknown conditions are none.
    Bind("condition:1:endless");
    Decode();
    EXPECT_EQ(plugin_.Damage(), std::wstring(256, L'x'));
    Bind("condition:1:");
    Decode();
    EXPECT_EQ(plugin_.Damage(), L"データが壊れているか、途中で切れています");
    for (const char* nothing : {"condition:6:x", "condition:-1:x", "condition:0:x"}) {
        Bind(nothing);
        Decode();
        EXPECT_EQ(plugin_.Condition().kind, susie::kConditionNone) << nothing;
        EXPECT_EQ(plugin_.Condition().text, L"") << nothing;
    }
    // A failure has the plug-in's reason.
    Bind("condition:5:BC7\nanswer-after:GetPicture:2");
    EXPECT_EQ(DecodeFailure(), 2U);
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionKindNotRead);
    EXPECT_EQ(plugin_.ErrorString(), L"BC7");
    EXPECT_EQ(plugin_.Damage(), L"");
    // A call that crashed is not asked about.
    Bind("condition:1:x\ncrash:av:GetPicture");
    EXPECT_EQ(DecodeFailure(), 255U);
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionNone);
}

TEST_F(DecodingTest, APluginThatCrashesWhenItIsToTellIsNotAskedAgain) {
    const std::wstring path =
        Plugin(L"iftst.spi", "condition:1:x\ncrash:av:GetLastCondition\n", L"teller.spi");
    plugin_.SetDllName(path);
    Bind("");
    EXPECT_EQ(Decode(), 0U);
    EXPECT_EQ(Decode(), 0U);
    EXPECT_TRUE(picture_);
    EXPECT_EQ(plugin_.Damage(), L"");
    EXPECT_EQ(Calls(path, "GetLastCondition"), 1);
    EXPECT_EQ(plugin_.ErrorCount(L"GetLastCondition"), 1);
}

TEST_F(DecodingTest, ProgressCanStopAndMayThrow) {
    Bind("");
    EXPECT_EQ(DecodeFailure(0, [](int, int) { return false; }), 1U);
    EXPECT_EQ(Calls(path_, "GetPicture"), 1);  // no second try against the user's will
    EXPECT_EQ(DecodeFailure(0, [](int, int) -> bool { throw std::bad_alloc(); }), 1U);
    int last = -1;
    EXPECT_EQ(Decode(0, [&](int done, int) { return (last = done) >= 0; }), 0U);
    EXPECT_EQ(last, 2);
}

TEST_F(DecodingTest, WrongUseIsRefused) {
    tessary::Picture pair;
    const auto decode = [&](DecodeTarget target, tessary::Picture* picture) {
        return Raised([&] { plugin_.DecodePicture(target, 0, {}, {}, picture); });
    };
    EXPECT_EQ(decode(DecodeTarget::kMemory, &pair), kErrorNothingBound);
    Bind("");
    EXPECT_EQ(decode(DecodeTarget::kMemory, nullptr), kErrorInvalidArgument);
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, &pair), kErrorInvalidArgument);
    plugin_.SetMemoryHandle(Block("TST 5x3x24\n").Get(), L"a.tst");  // is gone at once
    EXPECT_EQ(decode(DecodeTarget::kMemory, &pair), kErrorInvalidMemory);
    plugin_.SetDllName(test::TestPluginPath(L"axtsa.spi"));
    plugin_.SetFile(folder_.Write(L"a.tsa", "TSA\n\n"));
    EXPECT_EQ(decode(DecodeTarget::kMemory, &pair), kErrorWrongPluginKind);
}

TEST_F(DecodingTest, DrawsFittedAndCentred) {
    plugin_.SetFile(folder_.Write(L"wide.tst", "TST 400x100x24\n"));
    Decode();
    PicturePair pair = picture_.ReleasePair();
    const UniqueMemoryDc context(CreateCompatibleDC(nullptr));
    BITMAPINFO canvas{};
    canvas.bmiHeader = {sizeof(BITMAPINFOHEADER), 200, -200, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* pixels = nullptr;
    const UniqueBitmap bitmap(
        CreateDIBSection(context.Get(), &canvas, DIB_RGB_COLORS, &pixels, nullptr, 0));
    SelectObject(context.Get(), bitmap.Get());
    using Box = std::vector<LONG>;  // where something was drawn: left, top, right, bottom
    const auto drawn = [&](int32_t showType, int width, int height) {
        auto* const canvasPixels = static_cast<uint32_t*>(pixels);
        std::fill_n(canvasPixels, 200 * 200, 0x00FEFEFEU);
        plugin_.SetShowType(showType);
        plugin_.ShowPicture(context.Get(), width, height, pair);
        RECT box{};
        for (int i = 0; i < 200 * 200; ++i) {
            const RECT pixel{i % 200, i / 200, i % 200 + 1, i / 200 + 1};
            if (canvasPixels[i] != 0x00FEFEFEU) UnionRect(&box, &box, &pixel);
        }
        return Box{box.left, box.top, box.right, box.bottom};
    };
    EXPECT_EQ(drawn(1, 200, 200), (Box{0, 75, 200, 125}));
    EXPECT_TRUE(plugin_.ErrorString().starts_with(L"ShowPicture Return:"));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowFixControl"));
    EXPECT_EQ(drawn(2, 200, 20), (Box{60, 0, 140, 20}));
    EXPECT_EQ(drawn(0, 50, 50), (Box{0, 0, 200, 100}));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowDefault"));
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(context.Get(), 9, 9, {}); }), kErrorInvalidMemory);
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(nullptr, 9, 9, pair); }), kErrorDrawingFailed);
    FreePicture(pair);
}

}  // namespace
}  // namespace tessary
