// What can be loaded, and what is refused in silence.
#include <gtest/gtest.h>

#include <cstring>

#include "app/base/text.h"
#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/content_of.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {
namespace {

class LoadingTest : public testing::Test {
  protected:
    // Whether a file can be loaded, and freed again.
    static bool Loads(const std::wstring& path) {
        HMODULE module = Susiectl().loadLibraryW(path.c_str());
        if (!module) return false;
        EXPECT_TRUE(Susiectl().freeLibrary(module));
        EXPECT_FALSE(GetModuleHandleW(path.c_str()));
        return true;
    }
    bool LoadsContent(const std::string& content) const {
        return Loads(folder_.Write(L"made.spi", content));
    }

    TemporaryFolder folder_;
};

TEST_F(LoadingTest, FilesThatAreNoDllOfThisArchitectureAreRefused) {
    const std::string good = ContentOf(TestPluginPath(L"iftst.spi"));
    ASSERT_TRUE(LoadsContent(good));
    const auto refusal = [&](const std::wstring& path) {
        SetLastError(ERROR_SUCCESS);
        return Loads(path) ? ERROR_SUCCESS : GetLastError();
    };
    EXPECT_EQ(refusal(folder_.Path() + L"missing.spi"), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(refusal(folder_.Write(L"empty.spi")), DWORD{ERROR_BAD_EXE_FORMAT});
    EXPECT_EQ(refusal(TestPluginPath(L"needs_missing.spi")), DWORD{ERROR_MOD_NOT_FOUND});
    EXPECT_FALSE(Loads(TestPluginPath(L"load_refuses.spi")));
    EXPECT_FALSE(Loads(folder_.Path()));
    EXPECT_FALSE(Loads(TestProgramFolder() + L"susiectl_test.exe"));
    uint32_t ntHeader = 0;
    std::memcpy(&ntHeader, good.data() + 0x3C, 4);
    const auto changed = [&](size_t offset, const std::string& bytes) {
        return std::string(good).replace(ntHeader + offset, bytes.size(), bytes);
    };
    for (const std::string& content :
         {std::string("A text.\r\n"), std::string("MZ"), good.substr(0, 0x180),
          changed(0, "NE"),         // 16 bits
          changed(4, "\x64\x86"),   // 64 bits
          changed(24, "\x0B\x02"),  // 64 bits, says the optional header
          std::string(good).replace(0x3C, 4, "\xFF\xFF\xFF\x7F")})
        EXPECT_FALSE(LoadsContent(content)) << content.substr(0, 2) << content.size();
    EXPECT_FALSE(Susiectl().loadLibrary(nullptr));
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
        {"handled:cpp:DllMain\nanswer:DllMain:0", false}};
    for (const auto& [script, hasCrashed] : plugins) {
        const LoadedPlugin plugin(folder_, script);
        EXPECT_EQ(!plugin.Module() && GetLastError() == susiectl::kErrorCrashed, hasCrashed)
            << script;
    }
}

// The system starts no thread while it believes that a DLL is being loaded.
TEST_F(LoadingTest, ThreadsStartAfterACrashWhileLoading) {
    constexpr DWORD kLongest = 10'000;
    for (const char* crash : {"crash:stack-overflow:DllMain", "crash:create/av:DllMain"}) {
        const auto load = [=, this] { EXPECT_FALSE(LoadedPlugin(folder_, crash).Module()); };
        EXPECT_TRUE(EndsInThread(load, kLongest));
        EXPECT_TRUE(EndsInThread([] {}, kLongest));
    }
}

TEST_F(LoadingTest, ACrashWhileItIsFreedIsContained) {
    HMODULE plugin = Susiectl().loadLibraryW(TestPluginPath(L"unload_crash.spi").c_str());
    ASSERT_TRUE(plugin);
    Susiectl().freeLibrary(plugin);
    EXPECT_TRUE(Loads(TestPluginPath(L"iftst.spi")));
}

TEST_F(LoadingTest, WhatAPluginNeedsIsSoughtInTrustedFolders) {
    EXPECT_TRUE(Loads(TestPluginPath(L"needs_sibling.spi"))) << "beside the plug-in";

    const std::string sibling = ContentOf(TestPluginPath(L"gone\\sibling_gone.dll"));
    const std::wstring beside = folder_.Write(L"sibling_gone.dll", sibling);
    SetCurrentDirectoryW(folder_.Path().c_str());
    EXPECT_FALSE(Loads(TestPluginPath(L"needs_missing.spi"))) << "in the current folder";
    SetCurrentDirectoryW(TestProgramFolder().c_str());

    const std::wstring besideProgram = TestProgramFolder() + L"sibling_gone.dll";
    CopyFileW(beside.c_str(), besideProgram.c_str(), FALSE);
    // Not by the current folder, which is the program's above.
    SetCurrentDirectoryW(L"C:\\");
    EXPECT_TRUE(Loads(TestPluginPath(L"needs_missing.spi"))) << "beside the program";
    SetCurrentDirectoryW(TestProgramFolder().c_str());
    DeleteFileW(besideProgram.c_str());
}

TEST_F(LoadingTest, NamesOfAllKindsAreTaken) {
    const std::string good = ContentOf(TestPluginPath(L"iftst.spi"));
    EXPECT_TRUE(Loads(folder_.Write(L"\u30D7\u30E9\U0001F600\uD55C.spi", good)));

    HMODULE module =
        Susiectl().loadLibrary(ToAnsi(folder_.Write(L"\u8868\u793A.spi", good)).c_str());
    EXPECT_TRUE(module) << "a name whose second byte is a backslash in the code page";
    Susiectl().freeLibrary(module);

    const std::wstring longPath = folder_.Deep() + L"a.spi";
    ASSERT_TRUE(
        CopyFileW(TestPluginPath(L"iftst.spi").c_str(), (LR"(\\?\)" + longPath).c_str(), FALSE));
    EXPECT_TRUE(Loads(longPath));
}

}  // namespace
}  // namespace tessary::test
