// A plug-in object: what it learns from its plug-in, when the file is loaded, what it binds, and
// how it decodes that.
#include "helpers/color/color_profile.h"
#include "plugin/source_block.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

using ClsSusieTest = test::PluginTest;

TEST_F(ClsSusieTest, RefusedFilesLeaveNothingBehind) {
    const std::wstring good = Plugin(L"iftst.spi", "info:2:*.a;*.b\n");
    plugin_.SetDllName(good);
    EXPECT_TRUE(plugin_.SupportConfigurationDialog());
    EXPECT_EQ(plugin_.FileType(0) + plugin_.FileType(2) + plugin_.FileType(64), L"*.A;*.B*.B");
    EXPECT_EQ(Raised([&] { plugin_.FileType(65); }), kErrorInvalidArgument);
    for (const std::wstring& refused :
         {test::TestPluginPath(L"load_crash.spi"), folder_.Write(L"text.spi", "this is no library"),
          folder_.Path() + L"gone.spi", test::TestPluginPath(L"config_only.spi")}) {
        EXPECT_EQ(Raised([&] { plugin_.SetDllName(refused); }), kErrorInvalidPlugin);
        EXPECT_EQ(plugin_.DllName() + plugin_.FileType(0), L"");
        EXPECT_EQ(plugin_.DllStyle(), kStyleNone);
        EXPECT_FALSE(plugin_.SupportConfigurationDialog() || IsLoaded(refused));
    }
    EXPECT_EQ(plugin_.ErrorString(), L"登録されようとしたSPIファイルは有効な形式ではありません");
    EXPECT_EQ(Raised([&] { plugin_.SetDllName({}); }), kErrorInvalidArgument);
    EXPECT_EQ(Raised([&] { plugin_.Height(); }), kErrorNoPluginSet);
    EXPECT_EQ(plugin_.ErrorFunction(), L"Property Get Height");
    EXPECT_FALSE(IsLoaded(good));
}

TEST_F(ClsSusieTest, AutoUnloadKeepsTheFileOnlyWhileSomethingIsBound) {
    const std::wstring path = Plugin(L"iftst.spi");
    plugin_.SetDllName(path);
    EXPECT_TRUE(IsLoaded(path));
    plugin_.SetAutoUnload(true);
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_TRUE(plugin_.CheckFile(PictureFile()) && !IsLoaded(path));
    EXPECT_TRUE(plugin_.ShowConfigurationDialog(nullptr) == 0 && !IsLoaded(path));
    plugin_.SetFile(PictureFile());
    plugin_.UnloadDLL();
    EXPECT_EQ(Calls(path, "DllMain"), 1);
    EXPECT_EQ(Raised([&] { plugin_.SetFile({}); }), kErrorNoFileName);
    EXPECT_FALSE(IsLoaded(path));
    {
        const UniqueModule other(LoadLibraryW(path.c_str()));  // not ours to give back
        EXPECT_TRUE(plugin_.CheckFile(PictureFile()));
        EXPECT_TRUE(IsLoaded(path));
    }
    std::filesystem::remove(path);
    EXPECT_EQ(Raised([&] { plugin_.SetFile(PictureFile()); }), kErrorPluginNotAvailable);
    EXPECT_EQ(plugin_.ErrorString(), L"SPIファイルがクラスに登録されていません");
    std::filesystem::copy_file(test::TestPluginPath(L"config_only.spi"), path);
    EXPECT_EQ(Raised([&] { plugin_.CheckFile(PictureFile()); }), kErrorPluginNotAvailable);
}

TEST_F(ClsSusieTest, PluginsThatHaveFailedStayLoaded) {
    const std::wstring path = Plugin(L"iftst.spi");
    IncrementErrorCount(path, L"GetPicture");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    plugin_.SpiSEHError(L"GetPicture");
    EXPECT_EQ(plugin_.ErrorCount(L"GetPicture"), 2);
    plugin_.SetDllName(test::TestPluginPath(L"minimal.spi"));
    EXPECT_TRUE(UniqueModule(GetModuleHandleW(path.c_str())));
}

TEST_F(ClsSusieTest, APluginIsNotFreedUnderItsThreads) {
    const std::wstring path = Plugin(L"iftst.spi", "dirty:thread:ConfigurationDlg\n");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    plugin_.ShowConfigurationDialog(nullptr);
    EXPECT_TRUE(IsLoaded(path) && plugin_.IsKeptLoaded());
    const UniqueModule other(LoadLibraryW(path.c_str()));  // so that a fault here ends no process
    plugin_.SetDllName(
        test::TestPluginPath(L"minimal.spi"));  // for good, and not freed all the same
    plugin_.SetDllName(path);
    for (int i = 0; i < 500 && plugin_.IsKeptLoaded(); ++i)
        Sleep(10);
    plugin_.UnloadDLL();
    EXPECT_FALSE(plugin_.IsLoaded());
}

TEST_F(ClsSusieTest, APluginIsNotFreedUnderItsWindows) {
    const auto theirWindow = [] { return FindWindowW(nullptr, L"Test plug-in modeless window"); };
    const std::wstring path =
        Plugin(L"iftst.spi", "dirty:modeless:ConfigurationDlg\ndirty:hidden:IsSupported\n");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    EXPECT_TRUE(plugin_.CheckFile(PictureFile()));  // a window that nobody sees keeps nothing
    EXPECT_FALSE(IsLoaded(path) || theirWindow());

    plugin_.ShowConfigurationDialog(nullptr);
    EXPECT_TRUE(IsLoaded(path) && plugin_.IsKeptLoaded() && theirWindow());
    DestroyWindow(theirWindow());
    plugin_.UnloadDLL();
    EXPECT_FALSE(IsLoaded(path));

    plugin_.ShowConfigurationDialog(nullptr);
    plugin_.SetDllName(test::TestPluginPath(L"minimal.spi"));
    EXPECT_FALSE(IsLoaded(path) || theirWindow());

    // A window of ours that runs through the plug-in's code.
    plugin_.SetDllName(path);
    plugin_.SetFile(PictureFile());
    const HWND ours = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr,
                                    GetModuleHandleW(nullptr), nullptr);
    const auto theirs = GetProcAddress(GetModuleHandleW(path.c_str()), "TestCallCount");
    const LONG_PTR before =
        SetWindowLongPtrW(ours, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(theirs));
    Raised([&] { plugin_.SetFile({}); });
    EXPECT_TRUE(IsLoaded(path));
    SetWindowLongPtrW(ours, GWLP_WNDPROC, before);
    DestroyWindow(ours);
    FreeLibrary(GetModuleHandleW(path.c_str()));
}

TEST_F(ClsSusieTest, BindsWhatThePluginSupports) {
    const std::wstring path = Plugin(L"iftst.spi", "read-beyond:2000\n");
    plugin_.SetDllName(path);
    plugin_.SetFile(folder_.Write(L"a.tst", "TST 3x2x24\n"));
    plugin_.SetFile(folder_.Path() + L"A.TST");
    EXPECT_EQ(Calls(path, "IsSupported"), 1);  // the same file
    EXPECT_EQ(plugin_.Width() * 1000 + plugin_.Height() * 100 + plugin_.ColorDepth(), 3224);
    EXPECT_EQ(Calls(path, "GetPictureInfo"), 1);
    const std::wstring text = folder_.Write(L"text.tst", "no picture");
    EXPECT_EQ(Raised([&] { plugin_.SetFile(text); }), kErrorNotSupported);
    EXPECT_EQ(plugin_.ErrorString(), L"サポートされていないファイル形式です");
    EXPECT_EQ(plugin_.GetFile(), L"");
    EXPECT_EQ(plugin_.Width(), -1);

    plugin_.SetCheckMode(true);
    const int asked = Calls(path, "IsSupported");
    EXPECT_FALSE(plugin_.CheckFile(folder_.Write(L"picture.dat", "TST 3x2x24\n")));
    EXPECT_EQ(Calls(path, "IsSupported"), asked);
    EXPECT_TRUE(plugin_.CheckFile(folder_.Path() + L"a.TsT"));
    EXPECT_EQ(Raised([&] { plugin_.CheckFile({}); }), kErrorNoFileName);

    const OwnedBlock block = Block("TST 7x5x8\n");  // much less than plug-ins read
    EXPECT_TRUE(plugin_.CheckMemory(block.Get(), L"a.tst"));
    EXPECT_FALSE(plugin_.CheckMemory(nullptr, L"a.tst"));
    plugin_.SetFile(folder_.Path() + L"a.tst");
    plugin_.SetMemoryHandle(block.Get(), L"a.tst");
    EXPECT_EQ(plugin_.FileMode(), 1);
    EXPECT_EQ(plugin_.GetFile(), L"");
    EXPECT_EQ(plugin_.Width(), 7);
    const OwnedBlock other = Block(std::string(5000, 'x'));
    EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(other.Get(), L"a.tst"); }), kErrorNotSupported);
    EXPECT_EQ(plugin_.GetMemoryHandle(), nullptr);
    EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(nullptr, L"a.tst"); }), kErrorInvalidMemory);
    plugin_.SetDllName(Plugin(L"iftst.spi", "answer:IsSupported:2\n", L"two.spi"));
    EXPECT_FALSE(plugin_.CheckFile(PictureFile()));
}

TEST_F(ClsSusieTest, FilesThatPluginsCannotNameAreRead) {
    plugin_.SetDllName(Plugin(L"iftst.spi"));
    for (const auto* name : {L"\U0001F600.tst", L"사진.tst"}) {
        plugin_.SetFile(folder_.Write(name, "TST 3x2x24\n"));
        EXPECT_EQ(plugin_.Width(), 3);
        EXPECT_EQ(plugin_.GetFile(), folder_.Path() + name);
    }
    // Too long a path even in its short form.
    std::wstring path = folder_.Path();
    while (path.size() < 300)
        CreateDirectoryW(ExtendedPath(path += L"12345678\\").c_str(), nullptr);
    path += L"deep.tst";
    ASSERT_TRUE(CopyFileW(PictureFile().c_str(), ExtendedPath(path).c_str(), TRUE));
    EXPECT_TRUE(plugin_.CheckFile(path));
    plugin_.SetFile(path);
    EXPECT_EQ(plugin_.Width(), 3);
    EXPECT_EQ(DecodeFailure(), 0U);
    EXPECT_TRUE(picture_);
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    EXPECT_EQ(Raised([&] { plugin_.SetFile(path); }), kErrorNotSupported);

    EXPECT_EQ(AnsiNameOf(L"C:\\x\\写真 사.jpeg"), *ToAnsiExact(L"写真 _.jpeg"));
    EXPECT_EQ(AnsiNameOf(std::wstring(200, L'写') + L".jpeg"), "_.JPEG");
    EXPECT_EQ(AnsiSourceNameOf(std::wstring(259, L'a')), std::string(259, 'a'));
    EXPECT_EQ(AnsiSourceNameOf(std::wstring(255, L'a') + L"\\b.jpeg"), "b.jpeg");
}

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
    // Who wants to may convert it himself.
    Decode(kDecodeInOwnColors);
    EXPECT_TRUE(std::ranges::equal(picture_.Profile(), exchanged));
    EXPECT_TRUE(std::ranges::equal(picture_.Bits(), stored));
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
