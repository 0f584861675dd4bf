// What can be loaded, what is refused in silence, and what files are told to be.
#include "app/base/text.h"
#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/content_of.h"

namespace tessary::test {
namespace {

class LoadingTest : public testing::Test {
  protected:
    // Whether a file can be loaded, and freed again; the system's error when it cannot.
    static DWORD ErrorOf(const std::wstring& path) {
        SetLastError(ERROR_SUCCESS);
        HMODULE module = Susiectl().loadLibrary(path.c_str());
        if (!module) return GetLastError();
        EXPECT_TRUE(Susiectl().freeLibrary(module));
        EXPECT_FALSE(GetModuleHandleW(path.c_str()));
        return ERROR_SUCCESS;
    }
    static bool Loads(const std::wstring& path) { return ErrorOf(path) == ERROR_SUCCESS; }

    TemporaryFolder folder_;
    const std::string good_ = ContentOf(TestPluginPath(L"iftst.spi"));
};

TEST_F(LoadingTest, FilesThatAreNoDllOfThisArchitectureAreRefused) {
    EXPECT_EQ(ErrorOf(folder_.Path() + L"missing.spi"), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(ErrorOf(folder_.Write(L"empty.spi")), DWORD{ERROR_BAD_EXE_FORMAT});
    EXPECT_EQ(ErrorOf(TestPluginPath(L"needs_missing.spi")), DWORD{ERROR_MOD_NOT_FOUND});
    EXPECT_FALSE(Loads(folder_.Path()));
    EXPECT_FALSE(Loads(TestProgramFolder() + L"susiectl_test.exe"));
    const auto ntHeader = *reinterpret_cast<const uint32_t*>(good_.data() + 0x3C);
    const auto changed = [&](size_t offset, const std::string& bytes) {
        return std::string(good_).replace(ntHeader + offset, bytes.size(), bytes);
    };
    for (const std::string& content :
         {std::string("A text.\r\n"), std::string("MZ"), good_.substr(0, 0x180),
          changed(0, "NE"),         // 16 bits
          changed(4, "\x64\x86"),   // 64 bits
          changed(24, "\x0B\x02"),  // 64 bits, says the optional header
          std::string(good_).replace(0x3C, 4, "\xFF\xFF\xFF\x7F")})
        EXPECT_FALSE(Loads(folder_.Write(L"made.spi", content))) << content.size();
    EXPECT_TRUE(Loads(folder_.Write(L"made.spi", good_)));
    EXPECT_FALSE(Susiectl().freeLibrary(nullptr));
}

TEST_F(LoadingTest, ACrashIsToldFromARefusal) {
    const std::pair<const char*, bool> plugins[] = {
        {"crash:av:DllMain", true},
        {"crash:stack-overflow:DllMain", true},
        {"crash:cpp:DllMain", true},
        {"crash:fpu:DllMain", true},
        {"crash:create/av:DllMain", true},
        {"crash:create-in-create/av:DllMain", true},
        {"crash:timer/av:DllMain", true},
        {"crash:destroy-twice/av:DllMain", true},
        {"answer:DllMain:0", false},
        {"handled:av:DllMain", false},
        {"handled:cpp:DllMain\nanswer:DllMain:0", false},
        {"crash:av:DllUnload", false}};
    for (const auto& [script, hasCrashed] : plugins) {
        const LoadedPlugin plugin(L"iftst.spi", script);
        const bool isTold = GetLastError() == susiectl::kErrorCrashed;
        EXPECT_EQ(!plugin.Module() && isTold, hasCrashed) << script;
        EXPECT_EQ(!plugin.Module(), hasCrashed || strstr(script, "answer")) << script;
    }
    EXPECT_TRUE(Loads(TestPluginPath(L"iftst.spi")))
        << "after the last, which crashed as it was freed";
}

// The system starts no thread while it believes that a DLL is being loaded.
TEST_F(LoadingTest, ThreadsStartAfterACrashWhileLoading) {
    for (const char* crash : {"crash:stack-overflow:DllMain", "crash:create/av:DllMain"}) {
        const auto load = [=] { EXPECT_FALSE(LoadedPlugin(L"iftst.spi", crash).Module()); };
        EXPECT_TRUE(EndsInThread(load, 10'000) && EndsInThread([] {}, 10'000)) << crash;
    }
}

TEST_F(LoadingTest, WhatAPluginNeedsIsSoughtInTrustedFolders) {
    EXPECT_TRUE(Loads(TestPluginPath(L"needs_sibling.spi"))) << "beside the plug-in";

    const std::wstring needing = TestPluginPath(L"needs_missing.spi");
    const std::string sibling = ContentOf(TestPluginPath(L"gone\\sibling_gone.dll"));
    const std::wstring beside = folder_.Write(L"sibling_gone.dll", sibling);
    SetCurrentDirectoryW(folder_.Path().c_str());
    EXPECT_FALSE(Loads(needing)) << "in the current folder";

    const std::wstring besideProgram = TestProgramFolder() + L"sibling_gone.dll";
    CopyFileW(beside.c_str(), besideProgram.c_str(), FALSE);
    SetCurrentDirectoryW(L"C:\\");
    EXPECT_TRUE(Loads(needing)) << "beside the program";
    SetCurrentDirectoryW(TestProgramFolder().c_str());
    DeleteFileW(besideProgram.c_str());
}

TEST_F(LoadingTest, NamesOfAllKindsAreTaken) {
    EXPECT_TRUE(Loads(folder_.Write(L"\u30D7\u30E9\U0001F600\uD55C.spi", good_)));
    const std::wstring longPath = folder_.Deep() + L"a.spi";
    const std::wstring good = TestPluginPath(L"iftst.spi");
    ASSERT_TRUE(CopyFileW(good.c_str(), (LR"(\\?\)" + longPath).c_str(), FALSE));
    EXPECT_TRUE(Loads(longPath));

    const LoadedLibrary library(L"susiectl.dll");
    const susiectl::SPILoadLibraryFunction load = library[susiectl::kSPILoadLibrary];
    HMODULE module = load(ToAnsi(folder_.Write(L"\u8868\u793A.spi", good_)).c_str());
    EXPECT_TRUE(module) << "a name whose second byte is a backslash in the code page";
    Susiectl().freeLibrary(module);
    EXPECT_FALSE(load(nullptr));
}

using namespace susiectl;

TEST_F(LoadingTest, PluginsSeeTheBeginningOfAFile) {
    const LoadedPlugin plugin(L"iftst.spi");
    const std::pair<std::string, int> files[] = {{"TST 1x1x24\nread-beyond:4096\n", 1},
                                                 {"TST 1x1x24\n\n" + std::string(9999, 'x'), 1},
                                                 {"TST 1x1x24\nanswer:IsSupported:2\n", 2},
                                                 {"", 0},
                                                 {"TST 1x1x24\nexclusive\n", 1}};
    for (const auto& [content, answer] : files) {
        const std::string file = ToAnsi(folder_.Write(L"a.tst", content));
        EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], file.c_str(), nullptr), answer);
    }
    for (const char* nothing : {static_cast<const char*>(nullptr), "C:\\missing.tst"})
        EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], nothing, nullptr), 0);
    EXPECT_EQ(plugin.Calls("IsSupported"), 5) << "of nothing it was not asked";
}

TEST_F(LoadingTest, ContentTellsTheFormat) {
    using namespace std::string_view_literals;
    const std::pair<int, std::vector<std::string_view>> kinds[] = {
        {kContentBmp,
         {"BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"sv, "BM\0\0\0\0\0\0\0\0\x1A\0\0\0\x0C\0\0\0"sv}},
        {kContentPng, {"\x89PNG\r\n\x1A\n\0\0\0\x0D"sv}},
        {kContentJpeg, {"\xFF\xD8\xFF\xE1"}},
        {kContentGif, {"GIF87a", "GIF89a\x01"}},
        {kContentLzh, {"\x20\x7A-lh5-\x10", "\x20\x7A-pm2-", "\x20\x7A-lzs-"}},
        {kContentZip, {"PK\3\4", "PK\5\6\0\0"sv}},
        {kContentUnknown,
         {"BMW is no bitmap, and this is a text", "BM", "\x89PNG\n\x1A\n", "GIF88a",
          "\x20\x7A-xx5-", "PK\1\2", ""}}};
    for (const auto& [kind, contents] : kinds)
        for (const std::string_view content : contents)
            EXPECT_EQ(Susiectl().getFileInformation(folder_.Write(L"file", content).c_str()), kind)
                << content;
    EXPECT_EQ(Susiectl().getFileInformation((folder_.Path() + L"none").c_str()), kContentUnknown);
    const LoadedLibrary library(L"susiectl.dll");
    const GetFileInformationFunction ofAnsi = library[kGetFileInformation];
    EXPECT_EQ(ofAnsi(ToAnsi(folder_.Write(L"file", "GIF87a")).c_str()), kContentGif);
    EXPECT_EQ(ofAnsi(nullptr), kContentUnknown);
}

}  // namespace
}  // namespace tessary::test
