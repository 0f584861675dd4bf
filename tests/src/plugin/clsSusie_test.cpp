// A plug-in object: when its plug-in is loaded, what it binds, and how pictures and members come
// out of that.
#include <memory>

#include "app/base/modGetFolder.h"
#include "plugin/private_folder.h"
#include "plugin/source_block.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::ArchiveOf;
using test::Raised;

class ClsSusieTest : public test::PluginTest {
  protected:
    // Binds a picture plug-in to a picture.
    void BindPicture(const std::string& directives) {
        if (plugin_.DllName().empty()) plugin_.SetDllName(path_ = Plugin(L"iftst_preview.spi"));
        plugin_.SetFile(PictureFile(directives));
    }
    // The same for an archive.
    void BindArchive(const std::string& directives) {
        if (plugin_.DllName().empty()) plugin_.SetDllName(path_ = Plugin(L"axtsa.spi"));
        plugin_.SetFile(ArchiveFile(directives));
    }
    uint32_t Decode(uint32_t flags = 0, const SusieProgress& progress = {}) {
        return plugin_.DecodePicture(DecodeTarget::kMemory, flags, progress, {}, &picture_);
    }
    std::string Extracted(int32_t index, const SusieProgress& progress = {}) {
        const OwnedBlock block = plugin_.DecodeArchive(index, progress);
        const BlockLock lock(block.Get());
        return {static_cast<const char*>(lock.Address()), lock.Size()};
    }
    // What the plug-in has answered to what is expected to fail; 0 when it does not.
    template <typename Body>
    static uint32_t Failure(Body&& body) {
        try {
            body();
            return 0;
        } catch (const DecodeError& error) {
            return error.Result();
        }
    }
    uint32_t DecodeFailure(uint32_t flags = 0, const SusieProgress& progress = {}) {
        return Failure([&] { Decode(flags, progress); });
    }
    uint32_t ExtractFailure(const SusieProgress& progress = {}) {
        return Failure([&] { Extracted(2, progress); });
    }

    Picture picture_;
    std::wstring path_;
};

TEST_F(ClsSusieTest, RefusedFilesLeaveNothingBehind) {
    plugin_.SetDllName(test::TestPluginPath(L"info_80.spi"));
    EXPECT_NE(plugin_.FileType(64), L"");
    EXPECT_EQ(Raised([&] { plugin_.FileType(65); }), kErrorInvalidArgument);
    const std::wstring good = Plugin(L"iftst.spi", "info:2:*.a;*.b\n");
    plugin_.SetDllName(good);
    EXPECT_TRUE(plugin_.SupportConfigurationDialog());
    EXPECT_EQ(plugin_.FileType(0) + plugin_.FileType(2) + plugin_.FileType(3), L"*.A;*.B*.B");
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
    EXPECT_EQ(Raised([&] { plugin_.CheckFile(L"a.tst"); }), kErrorNoPluginSet);
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
    EXPECT_EQ(plugin_.ErrorCount({}), 2);
    plugin_.SetDllName(test::TestPluginPath(L"minimal.spi"));
    const UniqueModule kept(GetModuleHandleW(path.c_str()));
    EXPECT_TRUE(kept);
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
    Sleep(700);
    plugin_.SetDllName(path);
    EXPECT_FALSE(plugin_.IsLoaded() || plugin_.IsKeptLoaded());
}

// A function of user32.dll that older systems lack.
template <typename Function>
Function User(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

TEST_F(ClsSusieTest, APluginIsNotFreedUnderItsWindows) {
    const wchar_t* const title = L"Test plug-in modeless window";
    const std::wstring path =
        Plugin(L"iftst.spi", "dirty:modeless:ConfigurationDlg\ndirty:hidden:IsSupported\n");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    EXPECT_TRUE(plugin_.CheckFile(PictureFile()));  // a window that nobody sees keeps nothing
    EXPECT_FALSE(IsLoaded(path) || FindWindowW(nullptr, title) != nullptr);

    // The program's threads count in pixels; the window is enlarged by the system, where it can.
    const auto setContext = User<HANDLE(WINAPI*)(HANDLE)>("SetThreadDpiAwarenessContext");
    const auto contextOf = User<HANDLE(WINAPI*)(HWND)>("GetWindowDpiAwarenessContext");
    const auto awareness = User<int(WINAPI*)(HANDLE)>("GetAwarenessFromDpiAwarenessContext");
    const HANDLE former =
        setContext != nullptr ? setContext(reinterpret_cast<HANDLE>(INT_PTR{-4})) : nullptr;
    plugin_.ShowConfigurationDialog(nullptr);
    const HWND window = FindWindowW(nullptr, title);
    EXPECT_TRUE(IsLoaded(path) && plugin_.IsKeptLoaded() && IsWindow(window));
    EXPECT_TRUE(contextOf == nullptr || awareness(contextOf(window)) == 0);
    if (setContext != nullptr) setContext(former);
    DestroyWindow(window);
    plugin_.UnloadDLL();
    EXPECT_FALSE(IsLoaded(path));

    plugin_.ShowConfigurationDialog(nullptr);
    plugin_.SetDllName(test::TestPluginPath(L"minimal.spi"));
    EXPECT_FALSE(IsLoaded(path) || FindWindowW(nullptr, title) != nullptr);

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
    plugin_.SetDllName(test::TestPluginPath(L"answers_two.spi"));
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
    std::vector<std::wstring> folders{folder_.Path()};
    while (folders.back().size() < 300) {
        folders.push_back(folders.back() + L"12345678\\");
        ASSERT_TRUE(CreateDirectoryW(ExtendedPath(folders.back()).c_str(), nullptr));
    }
    const std::wstring path = folders.back() + L"deep.tst";
    ASSERT_TRUE(CopyFileW(PictureFile().c_str(), ExtendedPath(path).c_str(), TRUE));
    EXPECT_TRUE(plugin_.CheckFile(path));
    plugin_.SetFile(path);
    EXPECT_EQ(plugin_.Width(), 3);
    EXPECT_EQ(DecodeFailure(), 0U);
    EXPECT_TRUE(picture_);
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    EXPECT_EQ(Raised([&] { plugin_.SetFile(path); }), kErrorNotSupported);
    DeleteFileW(ExtendedPath(path).c_str());
    for (; folders.size() > 1; folders.pop_back())
        RemoveDirectoryW(ExtendedPath(folders.back()).c_str());

    EXPECT_EQ(AnsiNameOf(L"C:\\x\\写真 사.jpeg"), *ToAnsiExact(L"写真 _.jpeg"));
    EXPECT_EQ(AnsiNameOf(std::wstring(200, L'写') + L".jpeg"), "_.JPEG");
    EXPECT_EQ(AnsiSourceNameOf(std::wstring(259, L'a')), std::string(259, 'a'));
    EXPECT_EQ(AnsiSourceNameOf(std::wstring(255, L'a') + L"\\b.jpeg"), "b.jpeg");
}

TEST_F(ClsSusieTest, FilesAreTriedTwiceAndMemoryOnce) {
    int before = 0;
    const auto calls = [&] {  // since it was asked last
        const int last = std::exchange(before, Calls(path_, "GetPicture"));
        return before - last;
    };
    BindPicture("answer-after:GetPicture:6");
    EXPECT_EQ(DecodeFailure(), 6U);
    EXPECT_EQ(calls(), 2);
    EXPECT_EQ(DecodeFailure(kDecodeTryPreview), 6U);
    EXPECT_EQ(calls(), 4);
    const OwnedBlock block = Block("TST 5x3x24\nanswer:GetPicture:6\n");
    plugin_.SetMemoryHandle(block.Get(), L"a.tst");
    EXPECT_EQ(DecodeFailure(), 6U);
    EXPECT_EQ(calls(), 1);
    BindPicture("no-bits");
    EXPECT_EQ(DecodeFailure(), static_cast<uint32_t>(susie::kBrokenData));
    EXPECT_EQ(plugin_.ErrorString(), L"画像の展開に失敗しました");
    EXPECT_EQ(calls(), 1);
    BindPicture("");
    EXPECT_EQ(DecodeFailure(0, [](int, int) { return false; }), 1U);
    EXPECT_EQ(calls(), 1) << "no second try against the user's will";
    EXPECT_EQ(Decode(kDecodeTryPreview), kPreviewResult);
    EXPECT_TRUE(picture_);
}

TEST_F(ClsSusieTest, WhatHasCrashedIsNotDoneAgain) {
    BindPicture("crash:stack-overflow:GetPicture\ncrash:av:GetPictureInfo");
    const std::wstring file = plugin_.GetFile();
    const auto crashes = [&] { return plugin_.ErrorCount({}); };
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
    for (const char* content :
         {"TST 5x3x24\ncrash:av:GetPicture\n", "TST 5x3x24\ncrash:av:GetPicture\n",
          "TST 5x4x24\ncrash:av:GetPicture\n"}) {
        const OwnedBlock block = Block(content);
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
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(ExtractFailure(), 255U);
    EXPECT_EQ(crashes(), 1);
    EXPECT_EQ(Failure([&] { Extracted(1); }), 255U);
    EXPECT_EQ(crashes(), 2) << "another member";
}

TEST_F(ClsSusieTest, DamageTravelsWithTheResultAndReasonsWithFailures) {
    plugin_.SetDllName(Plugin(L"iftst.spi"));
    BindPicture("condition:1:torn");
    EXPECT_TRUE(Decode() == 0 && plugin_.Damage() == L"torn");
    BindPicture("");
    EXPECT_TRUE(Decode() == 0 && plugin_.Damage().empty());
    BindPicture("condition:5:BC7\nanswer-after:GetPicture:2");
    EXPECT_EQ(DecodeFailure(), 2U);
    EXPECT_EQ(plugin_.ErrorString() + plugin_.Damage(), L"BC7");
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionKindNotRead);
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    BindArchive("condition:1:torn\n");
    EXPECT_EQ(Extracted(2), "second");
    EXPECT_EQ(plugin_.Damage(), L"torn");
    BindArchive("condition:2:password\nanswer-after:GetFile:3\n");
    EXPECT_EQ(ExtractFailure(), 3U);
    EXPECT_EQ(plugin_.ErrorString(), L"password");
    EXPECT_NE(Raised([&] { BindArchive("condition:3:v\nanswer-after:GetArchiveInfo:2\n"); }), 0U);
    EXPECT_EQ(plugin_.Condition().kind, susie::kConditionVolumeMissing);
    EXPECT_EQ(plugin_.ErrorString(), L"v");
}

TEST_F(ClsSusieTest, WritesBmpFilesAndRefusesWrongUse) {
    test::LoadHelper(L"convertdib.dll");
    const auto decode = [&](DecodeTarget target, const std::wstring& file, Picture* picture) {
        return Raised([&] {
            EXPECT_GT(plugin_.DecodePicture(target, kDecodeTryPreview, {},
                                            file.empty() ? file : folder_.Path() + file, picture),
                      target == DecodeTarget::kBmpFile ? kPreviewResult : 0);
        });
    };
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorNothingBound);
    BindPicture("");
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, L"사.bmp", nullptr), 0U);
    EXPECT_EQ(std::filesystem::file_size(folder_.Path() + L"사.bmp"), 54U + 2 * 12);
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, L"gone\\a.bmp", nullptr), kErrorSavingFailed);
    EXPECT_EQ(decode(DecodeTarget::kBmpFile, L"", &picture_), kErrorInvalidArgument);
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", nullptr), kErrorInvalidArgument);
    plugin_.SetMemoryHandle(Block("TST 5x3x24\n").Get(), L"a.tst");  // is gone at once
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorInvalidMemory);
    EXPECT_EQ(plugin_.Width(), -1);
    plugin_.SetDllName(test::TestPluginPath(L"axtsa.spi"));
    BindArchive({});
    EXPECT_EQ(decode(DecodeTarget::kMemory, L"", &picture_), kErrorWrongPluginKind);
}

TEST_F(ClsSusieTest, DrawsFittedAndCentred) {
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
    EXPECT_TRUE(plugin_.ErrorString().starts_with(L"ShowPicture Return:"));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowFixControl"));
    EXPECT_EQ(drawn(2, 200, 20), (std::vector{60L, 0L, 140L, 20L}));
    EXPECT_EQ(drawn(0, 50, 50), (std::vector{0L, 0L, 200L, 100L}));
    EXPECT_TRUE(plugin_.ErrorString().ends_with(L" PreView ShowDefault"));
    EXPECT_NE(GetPixel(context.Get(), 100, 50), 0U);
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(context.Get(), 9, 9, {}); }), kErrorInvalidMemory);
    EXPECT_EQ(Raised([&] { plugin_.ShowPicture(nullptr, 9, 9, pair); }), kErrorDrawingFailed);
    FreePicture(pair);
}

bool PrivateFolderIsLeft() {
    WIN32_FIND_DATAW found;
    const std::wstring name = L"tessary_" + std::to_wstring(GetCurrentProcessId()) + L"_*";
    return static_cast<bool>(
        UniqueFind(FindFirstFileW((TemporaryFolder() + name).c_str(), &found)));
}

TEST_F(ClsSusieTest, MembersComeOutOfFilesAndBlocksInEveryWayOfAPlugin) {
    const std::string extra = "extra-byte\n";
    for (const std::string& way :
         {// Of unknown size: to the disk first, until one that knows none has the last word.
          std::string("zero-fields\nno-disk\n"), std::string("zero-fields\ntrusts-size\n"),
          std::string("zero-fields\nno-memory\n"), std::string(), std::string("position:offset\n"),
          extra, std::string("no-memory\nno-overwrite\n"),
          std::string("no-memory\nstore-below\n")}) {
        const std::string expected = way == extra ? "second\xA5" : "second";
        BindArchive(way);
        EXPECT_EQ(plugin_.FileNumber(), 2);
        EXPECT_EQ(Extracted(2), expected) << way;
        const OwnedBlock archive = Block(ArchiveOf({{"a", "first"}, {"b", "second"}}, way));
        plugin_.SetMemoryHandle(archive.Get(), L"x.tsa");
        EXPECT_EQ(Extracted(2), expected) << way;
        EXPECT_FALSE(PrivateFolderIsLeft()) << way;
    }
    // Where the disk was seen to work, a failure there is the answer.
    BindArchive("zero-fields\nanswer-after:GetFile:8\n");
    const int before = Calls(path_, "GetFile");
    EXPECT_EQ(ExtractFailure(), 8U);
    EXPECT_EQ(Calls(path_, "GetFile"), before + 1);
}

TEST_F(ClsSusieTest, FailedExtractionsAreToldAndLeaveTheArchiveBound) {
    const std::pair<const char*, uint32_t> failures[] = {
        {"crash:av:GetFile\n", 255U},
        {"answer-after:GetFile:6\n", 6U},
        {"answer:GetFile:0\n", susie::kBrokenData},
        {"no-memory\nno-disk\n", 21U},
        {"no-memory\nanswer-after:GetFile:6\n", 6U},
    };
    for (const auto& [directives, result] : failures) {
        BindArchive(directives);
        EXPECT_EQ(ExtractFailure(), result) << directives;
        EXPECT_EQ(plugin_.FileNumber(), 2);
    }
    BindArchive({});
    EXPECT_EQ(ExtractFailure([](int, int) { return false; }), 1U);
    EXPECT_EQ(plugin_.Files(1), L"dir\\a");
    for (const int32_t outside : {0, 3}) {
        EXPECT_EQ(Raised([&] { Extracted(outside); }), kErrorInvalidMemberIndex);
        EXPECT_EQ(Raised([&] { plugin_.Files(outside); }), kErrorInvalidMemberIndex);
    }
    // Nothing is no member. Of the last, which extracts to disk, it is not told that it cannot
    // extract to memory.
    for (const char* way : {"", "fixed\n", "no-memory\n"}) {
        plugin_.SetFile(folder_.Write(L"empty.tsa", ArchiveOf({{"a", ""}, {"b", ""}}, way)));
        EXPECT_EQ(ExtractFailure(), static_cast<uint32_t>(susie::kBrokenData)) << way;
        EXPECT_EQ(plugin_.ErrorString(), L"圧縮ファイルの展開に失敗しました") << way;
        BindArchive({});
    }
    // The plug-in itself makes a file name of the member's.
    plugin_.SetFile(
        folder_.Write(L"x.tsa", ArchiveOf({{"..\\..\\out.tessary", "x"}}, "no-memory\n")));
    EXPECT_EQ(Raised([&] { Extracted(1); }), kErrorDecodingFailed);
    EXPECT_FALSE(PathExists(TemporaryFolder() + L"out.tessary") || PrivateFolderIsLeft());
}

TEST_F(ClsSusieTest, ListsThatAreNoneOrEmpty) {
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    const std::wstring bad = ArchiveFile("answer:GetArchiveInfo:0\n");
    EXPECT_EQ(Raised([&] { plugin_.SetFile(bad); }), kErrorNotSupported);
    EXPECT_EQ(Raised([&] { plugin_.FileNumber(); }), kErrorNothingBound);
    // An empty list is believed only of what the plug-in says it supports.
    for (const bool supported : {true, false}) {
        plugin_.SetDllName(Plugin(L"axtsa.spi", supported ? "" : "answer:IsSupported:0\n",
                                  std::to_wstring(supported) + L".spi"));
        const uint32_t expected = supported ? 0 : kErrorNotSupported;
        const std::wstring file = folder_.Write(L"empty.tsa", "TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetFile(file); }), expected);
        const OwnedBlock block = Block("TSA\n\n");
        EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(block.Get(), L"x.tsa"); }), expected);
    }
}

TEST_F(ClsSusieTest, FoldersAreNoFiles) {
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    plugin_.SetFile(folder_.Write(L"x.tsa", ArchiveOf({{"DIR/", ""},
                                                       {"dir/sub", ""},
                                                       {"dir/Sub/deep/a.jpg", "a"},
                                                       {"dir/empty", ""},
                                                       {"dir", "a file of that name"}})));
    std::wstring files;
    for (const ListedMember& file : plugin_.GetExpandFileList())
        files += std::to_wstring(file.position) + file.name + L' ';
    EXPECT_EQ(files, L"3dir\\Sub\\deep\\a.jpg 4dir\\empty 5dir ");
}

TEST(PrivateFolderTest, OnlyThoseOfEndedProcessesAreSweptAway) {
    // No process has an odd number.
    const std::wstring abandoned = TemporaryFolder() + L"tessary_4294967293_1";
    const std::wstring others[] = {TemporaryFolder() + L"tessary_4294967293",
                                   TemporaryFolder() + L"tessary_4294967293_x",
                                   TemporaryFolder() + L"tessary_4294967293_1_1"};
    CreateDirectoryW(abandoned.c_str(), nullptr);
    CreateDirectoryW((abandoned + L"\\x").c_str(), nullptr);
    CloseHandle(CreateFileW((abandoned + L"\\x\\a").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                            FILE_ATTRIBUTE_READONLY, nullptr));
    for (const std::wstring& other : others)
        CreateDirectoryW(other.c_str(), nullptr);
    const PrivateFolder own;
    RemoveAbandonedFolders();
    EXPECT_FALSE(PathExists(abandoned));
    EXPECT_TRUE(IsFolder(own.Target()));
    for (const std::wstring& other : others)
        EXPECT_TRUE(RemoveDirectoryW(other.c_str())) << other;
}

}  // namespace
}  // namespace tessary
