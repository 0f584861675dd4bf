// A plug-in object: what it learns from its plug-in, when the file is loaded, and what it binds.
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

}  // namespace
}  // namespace tessary
