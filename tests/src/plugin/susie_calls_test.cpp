// The calls into a plug-in: kinds, results, call log, error log, and the recovery of a run that
// ended inside a call.
#include "plugin/susie_calls.h"

#include <optional>

#include <algorithm>

#include "app/base/modGetFolder.h"
#include "app/base/quit.h"
#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

constexpr SusieSource kNoFile{"C:\\nothing.tst", 0, susie::kSourceFile};
const SusieProgress kNobody;
const ProgressRelay kProgress(kNobody);

class SusieCallsTest : public test::PluginTest {
  protected:
    ~SusieCallsTest() override {
        if (module_ != nullptr) calls_->Free(module_);
    }
    // Loads a plug-in and answers its kind.
    int32_t Load(const std::wstring& path) {
        if (module_ != nullptr) calls_->Free(module_);
        calls_.emplace(path);
        module_ = calls_->Load();
        return calls_->BindAddresses(module_);
    }

    std::optional<SusieCalls> calls_;
    HMODULE module_ = nullptr;
    PicturePair picture_;
    HLOCAL block_ = nullptr;
};

TEST_F(SusieCallsTest, ExportsDecideTheKind) {
    EXPECT_EQ(Load(Plugin(L"minimal.spi")), kStylePicture);
    EXPECT_EQ(Load(Plugin(L"picture_and_archive.spi")), kStylePicture);
    EXPECT_EQ(Load(Plugin(L"axtsa.spi")), kStyleArchive);
    for (const auto* unusable :
         {L"no_get_file_info.spi", L"config_only.spi", L"no_is_supported.spi"}) {
        EXPECT_EQ(Load(Plugin(unusable)), kStyleNone) << unusable;
        EXPECT_EQ(calls_->Address(SusieFunction::kGetPluginInfo), nullptr);
        EXPECT_EQ(calls_->Address(SusieFunction::kGetFile), nullptr);
    }
    EXPECT_NE(calls_->Address(SusieFunction::kConfigurationDlg), nullptr);  // left as it was found
    EXPECT_FALSE(CallIsLogged());
}

TEST_F(SusieCallsTest, CrashesAreCountedUnderTheKeysOfTheStore) {
    std::string script;
    for (const char* function :
         {"GetPluginInfo", "IsSupported", "GetPictureInfo", "GetPicture", "GetPreview",
          "GetArchiveInfo", "GetFileInfo", "GetFile", "ConfigurationDlg"})
        script += std::string("crash:av:") + function + "\n";
    const std::wstring bad = Plugin(L"picture_and_archive.spi", script, L"bad.spi");
    Load(bad);
    std::wstring section = bad + L"_SPI_ERRORLOG";
    std::ranges::replace(section, L'\\', L'/');
    susie::PictureInfo picture;
    susie::FileInfo file;
    char text[255];
    const FARPROC preview = calls_->Address(SusieFunction::kGetPreview);
    const std::pair<const wchar_t*, int32_t> results[] = {
        {L"IsSupported", calls_->IsSupported("a", "header")},
        {L"GetPictureInfo", calls_->GetPictureInfo(kNoFile, picture)},
        {L"GetPicture", calls_->GetPicture(kNoFile, picture_, kProgress)},
        {L"GetPrevew", calls_->GetPreview(preview, kNoFile, picture_, kProgress)},
        {L"GetArchiveInfo", calls_->GetArchiveInfo(kNoFile, block_)},
        {L"GetFileInfo", calls_->GetFileInfo(kNoFile, "m", file)},
        {L"GetFileMM", calls_->GetFileMM("x", 0, block_, kProgress)},
        {L"GetFileSM", calls_->GetFileSM("x", 0, block_, kProgress)},
        {L"GetFileMS", calls_->GetFileMS("x", 0, "y", kProgress)},
        {L"GetFileSS", calls_->GetFileSS("x", 0, "y", kProgress)},
    };
    for (const auto& [key, result] : results) {
        EXPECT_EQ(result, kResultCrashed) << key;
        EXPECT_EQ(GetSetting(section, key), L"1") << key;
    }
    EXPECT_EQ(calls_->TakeFault().function, L"GetFile");
    EXPECT_EQ(calls_->ConfigurationDlg(nullptr), kResultCrashed);
    EXPECT_EQ(ReadErrorCount(bad, L"GetFileSS"), 2);
    EXPECT_EQ(calls_->GetPluginInfo(0, text, 255), kResultCrashed);
    EXPECT_EQ(calls_->TakeFault().message, L"SPIファイル内の関数で致命的エラーが発生しました");
    EXPECT_EQ(GetSetting(section, L"Total"), L"11");
    EXPECT_FALSE(CallIsLogged());
}

TEST_F(SusieCallsTest, OtherFailuresAreTold) {
    const std::wstring path = Plugin(L"minimal.spi", "answer:IsSupported:8\n");
    Load(path);
    EXPECT_EQ(calls_->IsSupported("a", "header"), 8);
    EXPECT_EQ(calls_->TakeFault().message, L"");
    EXPECT_EQ(calls_->GetPreview(nullptr, kNoFile, picture_, kProgress), kResultNotExported);
    EXPECT_EQ(calls_->TakeFault().message,
              L"呼び出そうとした関数はSPIファイルでサポートされていません");
    EXPECT_EQ(ReadErrorCount(path, {}), 0);

    // A store that takes nothing disables no plug-in.
    EXPECT_FALSE(CallsGoUnlogged());
    RedirectSettingsStore(std::wstring(300, L'x'));  // longer than a key can be
    EXPECT_EQ(calls_->IsSupported("a", "header"), 8);
    RedirectSettingsStore(store_.KeyPath());
    EXPECT_TRUE(CallsGoUnlogged());
}

TEST(PluginCallChild, DISABLED_DiesInsideACall) {
    test::LoadHelper(L"susiectl.dll");
    const std::wstring file = _wgetenv(L"TESSARY_TEST_FILE");
    clsSusie plugin;
    plugin.SetDllName(FolderOf(file) + L"iftst.spi");
    plugin.SetFile(file);
    Picture picture;
    plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture);
}

TEST(PluginCallChild, DISABLED_CallsNobodyAfterDamage) {
    test::LoadHelper(L"susiectl.dll");
    const std::wstring file = _wgetenv(L"TESSARY_TEST_FILE");
    clsSusie plugin;
    plugin.SetDllName(FolderOf(file) + L"iftst.spi");
    plugin.SetFile(file);
    const auto decode = [&] {
        Picture picture;
        plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture);
    };
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
    others.AddSPI(FolderOf(file) + L"minimal.spi");
    EXPECT_EQ(others.FileSupported(file), 0);
    EXPECT_NE(test::Raised([&] { plugin.SetDllName(FolderOf(file) + L"minimal.spi"); }), 0U);
}

TEST_F(SusieCallsTest, NobodyIsCalledAfterACrashThatDamagesTheMemory) {
    const std::wstring plugin = Plugin(L"iftst.spi");
    Plugin(L"minimal.spi");
    for (const char* crash :
         {"crash:heap-damage:GetPicture\n", "early:heap-lock:GetPicture\ncrash:av:GetPicture\n"}) {
        ForgetFailures(plugin);
        const std::wstring file = folder_.Write(L"damage.tst", std::string("TST 2x2x24\n") + crash);
        EXPECT_EQ(RunAsChild(L"PluginCallChild.DISABLED_CallsNobodyAfterDamage", file), 0U)
            << crash;
    }
}

// The way back from the crash needs the very memory that the plug-in has ruined.
TEST_F(SusieCallsTest, ACrashThatCannotBeContainedEndsTheRunAndIsCounted) {
    const std::wstring plugin = Plugin(L"iftst.spi");
    const std::wstring file =
        folder_.Write(L"ruin.tst", "TST 2x2x24\ncrash:heap-ruin:GetPicture\n");
    EXPECT_EQ(RunAsChild(L"PluginCallChild.DISABLED_DiesInsideACall", file), 0xC0000374);
    EXPECT_EQ(RecoverInterruptedCalls().at(0).plugin, plugin);
    EXPECT_EQ(ReadErrorCount(plugin, L"GetPicture"), 1);
}

TEST_F(SusieCallsTest, TheNextRunCountsTheCallThatEndedTheLast) {
    Plugin(L"iftst.spi");
    const std::wstring file = folder_.Write(L"end.tst", "TST 2x2x24\ncrash:exit:GetPicture\n");
    RunAsChild(L"PluginCallChild.DISABLED_DiesInsideACall", file);
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"iftst.spi");
    const PluginCall call = RecoverInterruptedCalls().at(0);
    const std::wstring plugin = folder_.Path() + L"iftst.spi";
    EXPECT_EQ(call.plugin + L'|' + call.function + L'|' + call.file,
              plugin + L"|GetPicture|" + file);
    EXPECT_FALSE(CallIsLogged());
    EXPECT_TRUE(RecoverInterruptedCalls().empty());
    EXPECT_EQ(ReadErrorCount(plugin, L"GetPicture"), 1);
    EXPECT_EQ(ReadErrorCount(plugin, {}), 1);
}

TEST_F(SusieCallsTest, EveryLivingCopyHasALogOfItsOwn) {
    const std::wstring name = L"Tessary_test_run_" + std::to_wstring(GetCurrentProcessId());
    UniqueMutex other(CreateMutexW(nullptr, FALSE, name.c_str()));
    SaveSetting(L"SPI_RUNS", L"1", name);
    SaveSetting(L"SPI_CALLLOG", L"Function", L"GetPicture");
    SaveSetting(L"SPI_CALLLOG", L"SPI", L"y.spi");
    Plugin(L"iftst.spi");
    RunAsChild(L"PluginCallChild.DISABLED_DiesInsideACall",
               folder_.Write(L"end.tst", "TST 2x2x24\ncrash:exit:GetPicture\n"));
    EXPECT_EQ(FileNameOf(RecoverInterruptedCalls().at(0).plugin), L"iftst.spi");
    EXPECT_TRUE(RecoverInterruptedCalls().empty());
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"y.spi");
    EXPECT_EQ(ReadErrorCount(L"y.spi", {}), 0);
    other.Reset();
    EXPECT_EQ(RecoverInterruptedCalls().at(0).plugin, L"y.spi");
    EXPECT_EQ(ReadErrorCount(L"y.spi", {}), 1);
    EXPECT_FALSE(CallIsLogged());
    EXPECT_TRUE(GetSetting(L"SPI_RUNS", L"2").starts_with(L"Global\\")) << "other sessions' too";
}

TEST_F(SusieCallsTest, RunsThatEndInOneLoadingCountAsOne) {
    const std::wstring path = folder_.Write(L"x.spi", "text");
    for (const wchar_t* log : {L"SPI_INFOLOG", L"SPI_INFOLOG_2", L"SPI_CALLLOG_3"}) {
        SaveSetting(log, L"Function", log[4] == L'I' ? L"GetPluginInfo" : L"LoadLibrary");
        SaveSetting(log, L"SPI", L"x.spi");
        SaveSetting(log, L"Path", path);
    }
    EXPECT_EQ(FindInterruptedCalls().size(), 1U);
    EXPECT_EQ(RecoverInterruptedCalls().size(), 1U);
    EXPECT_TRUE(RecoverInterruptedCalls().empty());
    EXPECT_FALSE(KeepsEndingTheProgram(path));
    EXPECT_EQ(ReadErrorCount(path, {}), 1);
}

TEST(PluginCallChild, DISABLED_FreesOneWithAThread) {
    test::LoadHelper(L"susiectl.dll");
    const std::wstring file = _wgetenv(L"TESSARY_TEST_FILE");
    clsSusie().SetDllName(file);
    WriteCallLog({L"FreeLibrary", L"C:\\innocent.spi", {}});
    Sleep(5000);
    TerminateProcess(GetCurrentProcess(), 99);
}

TEST_F(SusieCallsTest, AThreadThatIsLeftBehindIsHeldAgainstItsOwnPlugin) {
    const std::wstring plugin = Plugin(L"iftst.spi", "dirty:thread:DllUnload\n");
    EXPECT_NE(RunAsChild(L"PluginCallChild.DISABLED_FreesOneWithAThread", plugin), 99U);
    const std::vector<PluginCall> calls = RecoverInterruptedCalls();
    ASSERT_EQ(calls.size(), 1U);
    EXPECT_EQ(calls[0].plugin, plugin);
}

TEST_F(SusieCallsTest, ARequestToQuitIsNotThePluginsToMake) {
    Load(Plugin(L"iftst.spi",
                "dirty:quit:DllMain\ndirty:quit:GetPluginInfo\ndirty:quit:ConfigurationDlg\n"));
    const auto isPosted = [] {
        MSG message{};
        return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE;
    };
    EXPECT_FALSE(isPosted());
    char text[255] = {};
    calls_->GetPluginInfo(0, text, 255);
    EXPECT_FALSE(isPosted());
    RequestQuit(3);
    calls_->ConfigurationDlg(nullptr);  // the program is to end all the same, with its own status
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 3U);
    QuitIsDone();
}

TEST_F(SusieCallsTest, FailuresBelongToOneVersionOfAFile) {
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

TEST_F(SusieCallsTest, PluginsThatAreGoneAreForgottenWhereVeryManyAreKnown) {
    const std::wstring path = folder_.Write(L"x.spi", "here");
    const std::wstring gone = folder_.Path() + L"gone\\0.spi";
    CheckFileDate(path);
    IncrementErrorCount(gone, L"GetPicture");
    for (int i = 0; i < 998; ++i)
        SaveSetting(L"SPI_DATETIME", folder_.Path() + L"gone\\" + std::to_wstring(i) + L".spi",
                    L"");
    CheckFileDate(folder_.Write(L"y.spi", ""));
    EXPECT_EQ(ReadErrorCount(gone, {}), 1);
    CheckFileDate(folder_.Write(L"z.spi", ""));
    EXPECT_EQ(ReadErrorCount(gone, {}), 0);
    EXPECT_EQ(SettingKeys(L"SPI_DATETIME").size(), 3U);
}

TEST_F(SusieCallsTest, WhatWasKeptByFileNameIsTakenOverOnce) {
    const std::wstring path = folder_.Write(L"x.spi", "here");
    const std::wstring other = folder_.Write(L"other\\x.spi", "there");
    CheckFileDate(path);
    const std::wstring date = GetSetting(L"SPI_DATETIME", path);
    DeleteSettingSection(L"SPI_DATETIME");
    SaveSetting(L"SPI_DATETIME", L"x.spi", date);
    SaveSetting(L"SPI_CALLLOG", L"Function", L"LoadLibrary");
    SaveSetting(L"SPI_CALLLOG", L"SPI", L"x.spi");
    RecoverInterruptedCalls();
    EXPECT_EQ(GetSetting(L"x.spi_SPI_ERRORLOG", L"Total"), L"1");
    Touch(other);
    EXPECT_TRUE(CheckFileDate(other));  // it was another one's
    EXPECT_FALSE(CheckFileDate(path));
    EXPECT_EQ(ReadErrorCount(path, L"LoadLibrary") + ReadErrorCount(path, {}), 2);
    EXPECT_EQ(ReadErrorCount(other, {}) + ReadErrorCount(L"x.spi", {}), 0);
    EndRunIn(L"LoadLibrary", path);
    EXPECT_TRUE(KeepsEndingTheProgram(path));  // counted on
}

TEST_F(SusieCallsTest, HistoriesGoWhereTheProgramGoes) {
    const std::wstring path = test::TestPluginPath(L"iftst.spi");
    const std::wstring left = folder_.Path();
    std::wstring former = path;
    former.replace(0, AppFolder().size(), left);
    Values().general.leftProgramFolder = left;
    CheckFileDate(path);
    SaveSetting(L"SPI_DATETIME", former, GetSetting(L"SPI_DATETIME", path));
    DeleteSetting(L"SPI_DATETIME", path);
    IncrementErrorCount(former, L"GetPicture");
    NoteFatalLoad(former);
    NoteFatalLoad(former);
    EXPECT_FALSE(CheckFileDate(path));
    EXPECT_EQ(ReadErrorCount(path, L"GetPicture"), 1);
    EXPECT_TRUE(KeepsEndingTheProgram(path));
    EXPECT_EQ(ReadErrorCount(former, {}), 0);
    EXPECT_EQ(SettingKeys(L"SPI_DATETIME").size(), 1U);
    Values().general.leftProgramFolder.clear();
}

TEST(PluginCallChild, DISABLED_EndsWithItsSession) {
    WriteCallLog({L"GetPicture", _wgetenv(L"TESSARY_TEST_FILE"), {}});
    const InfoCalls info(L"x.spi");
    ExcuseLastCall();
    WriteCallLog({L"GetPicture", L"x.spi", {}});
    TerminateProcess(GetCurrentProcess(), 0);
}

TEST_F(SusieCallsTest, AnOrdinaryEndConvictsNobody) {
    RunAsChild(L"PluginCallChild.DISABLED_EndsWithItsSession", folder_.Path() + L"x.spi");
    EXPECT_TRUE(RecoverInterruptedCalls().empty());
}

}  // namespace
}  // namespace tessary
