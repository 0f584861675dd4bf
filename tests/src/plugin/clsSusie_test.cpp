// A plug-in object: what it learns from its plug-in, when the file is loaded, and what it binds.
#include "plugin/source_block.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

class ClsSusieTest : public test::PluginTest {
  protected:
    std::wstring Picture(const std::wstring& name = L"a.tst") const {
        return folder_.Write(name, "TST 3x2x24\n");
    }

    clsSusie plugin_;
};

// A thread that counts in the pixels of the screen, as the program's do.
class OfPixels {
  public:
    ~OfPixels() { Set(former_); }

    // Whether the system enlarges that window; also where it has no such windows.
    static bool IsEnlarged(HWND window) {
        const auto context = User<HANDLE(WINAPI*)(HWND)>("GetWindowDpiAwarenessContext");
        const auto awareness = User<int(WINAPI*)(HANDLE)>("GetAwarenessFromDpiAwarenessContext");
        return context == nullptr || awareness(context(window)) == 0;
    }

  private:
    template <typename Function>
    static Function User(const char* name) {
        return reinterpret_cast<Function>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
    }
    static HANDLE Set(HANDLE context) {
        const auto set = User<HANDLE(WINAPI*)(HANDLE)>("SetThreadDpiAwarenessContext");
        return set != nullptr ? set(context) : nullptr;
    }

    HANDLE former_ = Set(reinterpret_cast<HANDLE>(INT_PTR{-4}));
};

TEST_F(ClsSusieTest, PatternsComeOutOfEveryKindOfText) {
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {
        {L"picture_and_archive.spi", L"*.TST;*.TSA"},
        {L"info_none.spi", L"*.*"},
        {L"info_crash.spi", L"*.*"},
        {L"info_fill.spi", L"*.*"},
        {L"info_longer.spi", L"*.TST"},
        {L"info_counts_nul.spi", L"*.TST"},
        {L"info_blanks.spi", L"*.JPG;*.JPEG;*.JFIF;*.TST;*.TS2;*.TST"},
    };
    for (const auto& [plugin, patterns] : cases) {
        plugin_.SetDllName(test::TestPluginPath(plugin));
        EXPECT_EQ(plugin_.FileType(0), patterns) << plugin;
    }
    plugin_.SetDllName(Plugin(L"iftst.spi", "info:2: *.abc\n", L"blank.spi"));
    EXPECT_EQ(plugin_.FileType(0), L"*.*");
    for (const auto* many : {L"info_64.spi", L"info_80.spi", L"info_endless.spi"}) {
        plugin_.SetDllName(test::TestPluginPath(many));
        EXPECT_NE(plugin_.FileType(64), L"") << many;
        EXPECT_EQ(Raised([&] { plugin_.FileType(65); }), kErrorInvalidArgument);
    }
    EXPECT_EQ(plugin_.ProductName(), L"Test plug-in");
}

TEST_F(ClsSusieTest, RefusedFilesLeaveNothingBehind) {
    const std::wstring good = Plugin(L"iftst.spi");
    plugin_.SetDllName(good);
    EXPECT_TRUE(plugin_.SupportConfigurationDialog());
    for (const std::wstring& refused :
         {test::TestPluginPath(L"load_crash.spi"), folder_.Write(L"text.spi", "this is no library"),
          folder_.Path() + L"gone.spi", test::TestPluginPath(L"config_only.spi")}) {
        EXPECT_EQ(Raised([&] { plugin_.SetDllName(refused); }), kErrorInvalidPlugin);
        EXPECT_EQ(plugin_.DllName() + plugin_.FileType(0), L"");
        EXPECT_EQ(plugin_.DllStyle(), kStyleNone);
        EXPECT_FALSE(plugin_.SupportConfigurationDialog());
        EXPECT_FALSE(IsLoaded(refused));
    }
    EXPECT_EQ(plugin_.ErrorString(), L"登録されようとしたSPIファイルは有効な形式ではありません");
    EXPECT_EQ(Raised([&] { plugin_.SetDllName({}); }), kErrorInvalidArgument);
    EXPECT_EQ(Raised([&] { plugin_.CheckFile(L"a.tst"); }), kErrorNoPluginSet);
    EXPECT_FALSE(IsLoaded(good));
}

TEST_F(ClsSusieTest, AutoUnloadKeepsTheFileOnlyWhileSomethingIsBound) {
    const std::wstring path = Plugin(L"iftst.spi");
    plugin_.SetDllName(path);
    EXPECT_TRUE(IsLoaded(path));
    plugin_.SetAutoUnload(true);
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_TRUE(plugin_.CheckFile(Picture()) && !IsLoaded(path));
    EXPECT_TRUE(plugin_.ShowConfigurationDialog(nullptr) == 0 && !IsLoaded(path));
    plugin_.SetFile(Picture());
    plugin_.UnloadDLL();
    EXPECT_EQ(Calls(path, "DllMain"), 1);
    EXPECT_EQ(Raised([&] { plugin_.SetFile({}); }), kErrorNoFileName);
    EXPECT_FALSE(IsLoaded(path));

    const UniqueModule other(LoadLibraryW(path.c_str()));  // not ours to give back
    EXPECT_TRUE(plugin_.CheckFile(Picture()));
    EXPECT_TRUE(IsLoaded(path));
}

TEST_F(ClsSusieTest, PluginsThatHaveFailedStayLoaded) {
    const std::wstring path = Plugin(L"iftst.spi", "", L"failed.spi");
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

TEST_F(ClsSusieTest, APluginIsNotFreedUnderItsWindows) {
    const wchar_t* const title = L"Test plug-in modeless window";
    const std::wstring path =
        Plugin(L"iftst.spi", "dirty:modeless:ConfigurationDlg\ndirty:hidden:IsSupported\n");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    EXPECT_TRUE(plugin_.CheckFile(Picture()));  // a window that nobody sees keeps nothing
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_EQ(FindWindowW(nullptr, title), nullptr);

    const OfPixels thread;
    plugin_.ShowConfigurationDialog(nullptr);
    const HWND window = FindWindowW(nullptr, title);
    EXPECT_TRUE(IsLoaded(path) && plugin_.IsKeptLoaded() && IsWindow(window));
    EXPECT_TRUE(thread.IsEnlarged(window));
    DestroyWindow(window);
    plugin_.UnloadDLL();
    EXPECT_FALSE(IsLoaded(path));

    plugin_.ShowConfigurationDialog(nullptr);
    plugin_.SetDllName(test::TestPluginPath(L"minimal.spi"));
    EXPECT_FALSE(IsLoaded(path));
    EXPECT_EQ(FindWindowW(nullptr, title), nullptr);

    // A window of ours that runs through the plug-in's code.
    plugin_.SetDllName(path);
    plugin_.SetFile(Picture());
    const HWND ours = CreateWindowW(L"STATIC", L"", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr,
                                    GetModuleHandleW(nullptr), nullptr);
    const auto theirs = GetProcAddress(GetModuleHandleW(path.c_str()), "TestCallCount");
    const LONG_PTR former =
        SetWindowLongPtrW(ours, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(theirs));
    Raised([&] { plugin_.SetFile({}); });
    EXPECT_TRUE(IsLoaded(path));
    SetWindowLongPtrW(ours, GWLP_WNDPROC, former);
    DestroyWindow(ours);
    FreeLibrary(GetModuleHandleW(path.c_str()));
}

TEST_F(ClsSusieTest, APluginThatVanishedIsNotAvailable) {
    const std::wstring path = Plugin(L"iftst.spi");
    plugin_.SetAutoUnload(true);
    plugin_.SetDllName(path);
    std::filesystem::remove(path);
    EXPECT_EQ(Raised([&] { plugin_.SetFile(Picture()); }), kErrorPluginNotAvailable);
    EXPECT_EQ(plugin_.ErrorString(), L"SPIファイルがクラスに登録されていません");
    std::filesystem::copy_file(test::TestPluginPath(L"config_only.spi"), path);
    EXPECT_EQ(Raised([&] { plugin_.CheckFile(Picture()); }), kErrorPluginNotAvailable);
}

TEST_F(ClsSusieTest, BindsWhatThePluginSupports) {
    const std::wstring path = Plugin(L"iftst.spi");
    plugin_.SetDllName(path);
    plugin_.SetFile(Picture(L"a.tst"));
    EXPECT_EQ(plugin_.Width(), 3);
    plugin_.SetFile(folder_.Path() + L"A.TST");
    EXPECT_EQ(Calls(path, "IsSupported"), 1);  // the same file
    const std::wstring text = folder_.Write(L"text.tst", "no picture");
    EXPECT_EQ(Raised([&] { plugin_.SetFile(text); }), kErrorNotSupported);
    EXPECT_EQ(plugin_.ErrorString(), L"サポートされていないファイル形式です");
    EXPECT_EQ(plugin_.GetFile(), L"");
    EXPECT_EQ(plugin_.Width(), -1);

    plugin_.SetCheckMode(true);
    const int asked = Calls(path, "IsSupported");
    EXPECT_FALSE(plugin_.CheckFile(Picture(L"picture.dat")));
    EXPECT_EQ(Calls(path, "IsSupported"), asked);
    EXPECT_TRUE(plugin_.CheckFile(Picture(L"b.TsT")));
    EXPECT_EQ(Raised([&] { plugin_.CheckFile({}); }), kErrorNoFileName);
    plugin_.SetDllName(test::TestPluginPath(L"info_none.spi"));  // any name
    EXPECT_TRUE(plugin_.CheckFile(Picture(L"without_extension")));
    plugin_.SetDllName(test::TestPluginPath(L"answers_two.spi"));
    EXPECT_FALSE(plugin_.CheckFile(Picture()));
}

TEST_F(ClsSusieTest, BindsMemory) {
    plugin_.SetDllName(Plugin(L"iftst.spi", "read-beyond:2000\n"));
    const OwnedBlock block = Block("TST 7x5x8\n");  // much less than plug-ins read
    EXPECT_TRUE(plugin_.CheckMemory(block.Get(), L"a.tst"));
    EXPECT_FALSE(plugin_.CheckMemory(nullptr, L"a.tst"));
    plugin_.SetFile(Picture());
    plugin_.SetMemoryHandle(block.Get(), L"a.tst");
    EXPECT_EQ(plugin_.FileMode(), 1);
    EXPECT_EQ(plugin_.GetFile(), L"");
    EXPECT_EQ(plugin_.Width(), 7);
    const OwnedBlock other = Block(std::string(5000, 'x'));
    EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(other.Get(), L"a.tst"); }), kErrorNotSupported);
    EXPECT_EQ(plugin_.GetMemoryHandle(), nullptr);
    EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(nullptr, L"a.tst"); }), kErrorInvalidMemory);
}

TEST_F(ClsSusieTest, ListsArchiveMembersOutOfAnyList) {
    const std::string two = "member\t1\tdir/\ta.jpg\nmember\t1\t\t\x83\x5C.png\n";
    plugin_.SetDllName(Plugin(L"axtsa.spi"));
    for (const char* kind : {"", "path-in-name\n", "no-end\n", "tail:427\n", "zero-fields\n"}) {
        const OwnedBlock archive = Block(std::string("TSA\n") + kind + two + "\nab");
        plugin_.SetMemoryHandle(archive.Get(), L"x.tsa");
        ASSERT_EQ(plugin_.FileNumber(), 2) << kind;
        EXPECT_EQ(plugin_.Files(1), L"dir\\a.jpg") << kind;
        EXPECT_EQ(plugin_.Files(2), L"ソ.png") << kind;
    }
    plugin_.SetFile(folder_.Write(L"x.tsa", "TSA\nunterminated\n" + two + "\nab"));
    EXPECT_EQ(plugin_.Files(1).size(), 401U);
    EXPECT_EQ(Raised([&] { plugin_.Files(0); }), kErrorInvalidMemberIndex);
    EXPECT_EQ(Raised([&] { plugin_.Files(3); }), kErrorInvalidMemberIndex);
    for (const char* bad : {"crash:av:GetArchiveInfo\n", "answer:GetArchiveInfo:0\n"}) {
        const std::wstring file = folder_.Write(L"bad.tsa", std::string("TSA\n") + bad + two);
        EXPECT_EQ(Raised([&] { plugin_.SetFile(file); }), kErrorNotSupported) << bad;
    }
    EXPECT_EQ(Raised([&] { plugin_.FileNumber(); }), kErrorNothingBound);

    // An empty list is believed only of what the plug-in says it supports.
    const std::string empty = "TSA\n\n";
    for (const bool supported : {true, false}) {
        plugin_.SetDllName(Plugin(L"axtsa.spi", supported ? "" : "answer:IsSupported:0\n",
                                  std::to_wstring(supported) + L".spi"));
        const uint32_t expected = supported ? 0 : kErrorNotSupported;
        const std::wstring file = folder_.Write(L"empty.tsa", empty);
        EXPECT_EQ(Raised([&] { plugin_.SetFile(file); }), expected);
        const OwnedBlock block = Block(empty);
        EXPECT_EQ(Raised([&] { plugin_.SetMemoryHandle(block.Get(), L"x.tsa"); }), expected);
    }
}

TEST_F(ClsSusieTest, FilesThatPluginsCannotNameAreRead) {
    plugin_.SetDllName(Plugin(L"iftst.spi"));
    for (const auto* name : {L"\U0001F600.tst", L"사진.tst"}) {
        plugin_.SetFile(Picture(name));
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
    ASSERT_TRUE(CopyFileW(Picture().c_str(), ExtendedPath(path).c_str(), TRUE));
    EXPECT_TRUE(plugin_.CheckFile(path));
    plugin_.SetFile(path);
    EXPECT_EQ(plugin_.Width(), 3);
    tessary::Picture decoded;
    plugin_.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &decoded);
    EXPECT_TRUE(decoded);
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

}  // namespace
}  // namespace tessary
