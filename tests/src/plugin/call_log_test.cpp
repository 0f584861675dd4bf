// What is kept of plug-in calls: the call log and the recovery of a run that ended inside a call,
// the histories of failures.
#include "app/base/modGetFolder.h"
#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

// Is run as a process, which ends in the call or goes on behind it.
TEST(PluginCallChild, DISABLED_DecodesWithOneThatCrashes) {
    const std::wstring file = test::FileOfParent();
    clsSusie plugin;
    plugin.SetDllName(FolderOf(file) + L"iftst.spi");
    plugin.SetFile(file);
    Picture picture;
    const auto decode = [&] { plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture); };
    EXPECT_FALSE(PluginsAreStopped());
    EXPECT_EQ(test::Raised(decode), kErrorDecodingFailed);
    EXPECT_TRUE(PluginsAreStopped());
    EXPECT_EQ(test::Raised(decode), kErrorPluginsStopped);
    EXPECT_EQ(plugin.ErrorString(), PluginsStoppedText());
    EXPECT_EQ(plugin.ErrorCount({}), 1);
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"iftst.spi") << "should the process end by it";
    UnloadSPI();
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"");
    EXPECT_FALSE(LoadSPI());
    CollectionSusie others;
    others.AddSPI(test::TestPluginPath(L"minimal.spi"));
    EXPECT_EQ(others.FileSupported(file), 0);
    EXPECT_EQ(others.Compact(), 0);
}

class CallLogTest : public test::PluginTest {
  protected:
    // Writes what a run has left behind that ended in a call.
    static void LeaveLog(const wchar_t* log, const wchar_t* function, const wchar_t* plugin,
                         const std::wstring& path = {}) {
        SaveSetting(log, L"Function", function);
        SaveSetting(log, L"SPI", plugin);
        if (!path.empty()) SaveSetting(log, L"Path", path);
    }
    // The calls that the runs before have ended in, as `plugin|function|file`.
    static std::wstring Recovered() {
        std::wstring calls;
        for (const PluginCall& call : RecoverInterruptedCalls())
            calls += call.plugin + L'|' + call.function + L'|' + call.file;
        return calls;
    }
    // Has a run end, or not, in decoding a picture; the status of its process.
    DWORD RunInto(const std::string& crash) {
        if (plugin.empty()) plugin = Plugin(L"iftst.spi");
        file = PictureFile(crash);
        return RunAsChild(L"PluginCallChild.DISABLED_DecodesWithOneThatCrashes", file);
    }

    std::wstring plugin;
    std::wstring file;
};

TEST_F(CallLogTest, NobodyIsCalledAfterACrashThatDamagesTheMemory) {
    for (const char* crash :
         {"crash:heap-damage:GetPicture\n", "early:heap-lock:GetPicture\ncrash:av:GetPicture\n"}) {
        EXPECT_EQ(RunInto(crash), 0U) << crash;
        ForgetFailures(plugin);
    }
}

TEST_F(CallLogTest, TheNextRunCountsTheCallThatEndedTheLast) {
    EXPECT_EQ(RunInto("crash:exit:GetPicture"), 3U);
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"iftst.spi");
    EXPECT_EQ(Recovered(), plugin + L"|GetPicture|" + file);
    EXPECT_FALSE(CallIsLogged());
    EXPECT_EQ(Recovered(), L"");
    EXPECT_EQ(ReadErrorCount(plugin, L"GetPicture"), 1);
    EXPECT_EQ(ReadErrorCount(plugin, {}), 1);
    // The way back from this crash needs the very memory that the plug-in has ruined.
    EXPECT_EQ(RunInto("crash:heap-ruin:GetPicture"), 0xC0000374);
    EXPECT_EQ(Recovered(), plugin + L"|GetPicture|" + file);
    EXPECT_EQ(ReadErrorCount(plugin, L"GetPicture"), 2);
}

TEST_F(CallLogTest, EveryLivingCopyHasALogOfItsOwn) {
    const std::wstring name = L"Tessary_test_run_" + std::to_wstring(GetCurrentProcessId());
    UniqueMutex other(CreateMutexW(nullptr, FALSE, name.c_str()));
    SaveSetting(L"SPI_RUNS", L"1", name);
    LeaveLog(L"SPI_CALLLOG", L"GetPicture", L"y.spi");
    EXPECT_EQ(RunInto("crash:exit:GetPicture"), 3U);
    EXPECT_EQ(Recovered(), plugin + L"|GetPicture|" + file);
    EXPECT_EQ(Recovered(), L"");
    EXPECT_EQ(ReadErrorCount(L"y.spi", {}), 0);
    other.Reset();
    EXPECT_EQ(Recovered(), L"y.spi|GetPicture|");
    EXPECT_EQ(ReadErrorCount(L"y.spi", {}), 1);
    EXPECT_FALSE(CallIsLogged());
    EXPECT_TRUE(GetSetting(L"SPI_RUNS", L"2").starts_with(L"Global\\")) << "other sessions' too";
}

TEST_F(CallLogTest, RunsThatEndInOneLoadingCountAsOne) {
    const std::wstring path = folder_.Write(L"x.spi", "text");
    LeaveLog(L"SPI_INFOLOG", L"GetPluginInfo", L"x.spi", path);
    LeaveLog(L"SPI_INFOLOG_2", L"GetPluginInfo", L"x.spi", path);
    LeaveLog(L"SPI_CALLLOG_3", L"LoadLibrary", L"x.spi", path);
    EXPECT_EQ(FindInterruptedCalls().size(), 1U);
    EXPECT_EQ(RecoverInterruptedCalls().size(), 1U);
    EXPECT_TRUE(RecoverInterruptedCalls().empty());
    EXPECT_FALSE(KeepsEndingTheProgram(path));
    EXPECT_EQ(ReadErrorCount(path, {}), 1);
}

TEST(PluginCallChild, DISABLED_FreesOneWithAThread) {
    clsSusie().SetDllName(test::FileOfParent());
    WriteCallLog({L"FreeLibrary", L"C:\\innocent.spi", {}});
    Sleep(5000);
    TerminateProcess(GetCurrentProcess(), 99);
}

TEST(PluginCallChild, DISABLED_EndsWithItsSession) {
    WriteCallLog({L"GetPicture", test::FileOfParent(), {}});
    const InfoCalls info(L"x.spi");
    ExcuseLastCall();
    WriteCallLog({L"GetPicture", L"x.spi", {}});
    TerminateProcess(GetCurrentProcess(), 0);
}

TEST_F(CallLogTest, AThreadIsHeldAgainstItsOwnPluginAndAnOrdinaryEndAgainstNobody) {
    const std::wstring threads = Plugin(L"iftst.spi", "dirty:thread:DllUnload\n");
    EXPECT_NE(RunAsChild(L"PluginCallChild.DISABLED_FreesOneWithAThread", threads), 99U);
    EXPECT_TRUE(Recovered().starts_with(threads));
    RunAsChild(L"PluginCallChild.DISABLED_EndsWithItsSession", threads);
    EXPECT_EQ(Recovered(), L"");
}

TEST_F(CallLogTest, FailuresBelongToOneVersionOfAFile) {
    const std::wstring path = folder_.Write(L"x.spi", "old");
    CheckFileDate(path);
    for (int run = 0; run < 2; ++run) {
        EXPECT_FALSE(KeepsEndingTheProgram(path));
        EndRunIn(L"LoadLibrary", path);
    }
    EXPECT_TRUE(KeepsEndingTheProgram(path));
    CheckFileDate(path);
    EXPECT_EQ(ReadErrorCount(path, L"LoadLibrary"), 2);
    Touch(path);
    CheckFileDate(path);
    EXPECT_EQ(ReadErrorCount(path, {}), 0);
    EXPECT_FALSE(KeepsEndingTheProgram(path));
    SaveSetting(L"y.spi_SPI_ERRORLOG", L"Total", L"many");
    EXPECT_EQ(ReadErrorCount(L"y.spi", {}), 0);
    const std::wstring deep = L"C:\\" + std::wstring(400, L'x') + L"\\x.spi";
    IncrementErrorCount(deep, L"GetPicture");
    EXPECT_EQ(ReadErrorCount(deep, {}), 1);
}

TEST_F(CallLogTest, PluginsThatAreGoneAreForgottenWhereVeryManyAreKnown) {
    const std::wstring gone = folder_.Path() + L"gone\\";
    CheckFileDate(folder_.Write(L"x.spi"));
    IncrementErrorCount(gone + L'0', L"GetPicture");
    for (int i = 0; i < 998; ++i)
        SaveSetting(L"SPI_DATETIME", gone + std::to_wstring(i), L"");
    for (const int32_t kept : {1, 0}) {
        CheckFileDate(folder_.Write(NewName(L".spi")));
        EXPECT_EQ(ReadErrorCount(gone + L'0', {}), kept);
    }
    EXPECT_EQ(SettingKeys(L"SPI_DATETIME").size(), 3U);
}

TEST_F(CallLogTest, WhatWasKeptByFileNameIsTakenOverOnce) {
    const std::wstring path = folder_.Write(L"x.spi");
    const std::wstring other = folder_.Write(L"other\\x.spi");
    CheckFileDate(path);
    const std::wstring date = GetSetting(L"SPI_DATETIME", path);
    DeleteSettingSection(L"SPI_DATETIME");
    SaveSetting(L"SPI_DATETIME", L"x.spi", date);
    LeaveLog(L"SPI_CALLLOG", L"LoadLibrary", L"x.spi");
    Recovered();
    EXPECT_EQ(GetSetting(L"x.spi_SPI_ERRORLOG", L"Total"), L"1");
    Touch(other);
    EXPECT_TRUE(CheckFileDate(other));  // it was another one's
    EXPECT_FALSE(CheckFileDate(path));
    EXPECT_EQ(ReadErrorCount(path, L"LoadLibrary") + ReadErrorCount(path, {}), 2);
    EXPECT_EQ(ReadErrorCount(other, {}) + ReadErrorCount(L"x.spi", {}), 0);
    EndRunIn(L"LoadLibrary", path);
    EXPECT_TRUE(KeepsEndingTheProgram(path));  // counted on
}

TEST_F(CallLogTest, HistoriesGoWhereTheProgramGoes) {
    const std::wstring path = test::TestPluginPath(L"iftst.spi");
    const std::wstring former = folder_.Path() + path.substr(AppFolder().size());
    Values().general.leftProgramFolder = folder_.Path();
    CheckFileDate(path);
    SaveSetting(L"SPI_DATETIME", former, GetSetting(L"SPI_DATETIME", path));
    DeleteSetting(L"SPI_DATETIME", path);
    for (int run = 0; run < 2; ++run)
        EndRunIn(L"LoadLibrary", former);
    EXPECT_FALSE(CheckFileDate(path));
    EXPECT_EQ(ReadErrorCount(path, L"LoadLibrary"), 2);
    EXPECT_TRUE(KeepsEndingTheProgram(path));
    EXPECT_EQ(ReadErrorCount(former, {}), 0);
    EXPECT_EQ(SettingKeys(L"SPI_DATETIME").size(), 1U);
}

}  // namespace
}  // namespace tessary
