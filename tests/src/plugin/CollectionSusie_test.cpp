// The collection of plug-ins and the routine that fills it from the settings.
#include "plugin/CollectionSusie.h"

#include <functional>
#include <map>

#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"
#include "plugin/susie_calls.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

using test::Raised;

class CollectionTest : public test::PluginTest {
  protected:
    void Add(const std::wstring& name, std::string_view script = {}, int failures = 0) {
        const std::wstring path = Plugin(L"iftst.spi", script, name);
        CheckFileDate(path);
        for (int i = 0; i < failures; ++i)
            IncrementErrorCount(path, L"GetPicture");
        collection_.AddSPI(path);
    }
    int Asked(const std::wstring& name) { return Calls(folder_.Path() + name, "IsSupported"); }

    CollectionSusie collection_;
};

TEST_F(CollectionTest, ReliablePluginsComeFirst) {
    Add(L"b.spi", "", 2);
    Add(L"a.spi", "", 3);
    Add(L"c.spi");
    Add(L"d.spi", "", 2);
    Add(L"e.spi");
    std::wstring order;
    for (const auto& member : collection_.NewEnum())
        order += FileNameOf(member->DllName()) + L' ';
    EXPECT_EQ(order, L"e.spi c.spi d.spi b.spi a.spi ");

    collection_.RemoveAll();
    for (const auto* keptLoaded : {L"a.spi", L"b.spi", L"d.spi"})
        FreeLibrary(GetModuleHandleW((folder_.Path() + keptLoaded).c_str()));
    Touch(folder_.Path() + L"a.spi");
    collection_.AddSPI(folder_.Path() + L"a.spi");
    EXPECT_EQ(collection_.Item(1).ErrorCount({}), 0);  // a new file has no past
}

TEST_F(CollectionTest, ScansAFolderOnceForEachFile) {
    const std::wstring plain = Plugin(L"iftst.spi");
    const std::wstring hidden = Plugin(L"minimal.spi");
    SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
    folder_.Write(L"broken.SPI", "text");
    folder_.Write(L"other.spix", "text");
    folder_.Write(L"folder.spi\\x", "text");
    WriteCallLog({L"GetPicture", plain, L"x.tst"});
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 3);
    EXPECT_EQ(collection_.InterruptedCalls().at(0).plugin, plain);
    EXPECT_EQ(collection_.Compact(), 2);
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 3);
    EXPECT_EQ(collection_.Compact(), 2);
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path() + L"nowhere\\"), 2);
    EXPECT_EQ(collection_.Item(hidden)->DllName(), hidden);
    collection_.Remove(1);
    EXPECT_EQ(Raised([&] { collection_.Item(2); }), kErrorInvalidArgument);
    EXPECT_EQ(Raised([&] { collection_.Remove(0); }), kErrorInvalidArgument);
}

TEST_F(CollectionTest, MoreThanFiftyPluginsAreNotKeptLoaded) {
    for (int i = 0; i < 50; ++i)
        Plugin(L"minimal.spi", "", std::to_wstring(i) + L".spi");
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 50);
    EXPECT_FALSE(collection_.DynamicLoad());
    EXPECT_EQ(collection_.GetInMemorySPICount(), 50);
    Plugin(L"minimal.spi", "", L"50.spi");
    collection_.RemoveAll();
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 51);
    EXPECT_TRUE(collection_.DynamicLoad());
    EXPECT_EQ(collection_.GetInMemorySPICount(), 0);
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.tst", "TST 1x1x24\n")), 1);
    EXPECT_EQ(collection_.GetInMemorySPICount(), 1);
    collection_.UnloadFile();
    EXPECT_EQ(collection_.GetInMemorySPICount(), 0);
}

TEST_F(CollectionTest, SearchGoesByHintThenPatternThenEverybody) {
    Add(L"3.spi", "info:2:*.jpg\n");
    Add(L"2.spi", "info:2:*.abc\n");
    Add(L"1.spi", "info:2:*.xyz\naccept-all\n");
    const std::wstring abc = folder_.Write(L"a.Abc", "TST 1x1x24\n");
    EXPECT_EQ(collection_.FileSupported(abc), 2);  // by its pattern
    EXPECT_EQ(collection_.Item(2).GetFile(), abc);
    const std::wstring dat = folder_.Write(L"a.dat", "TST 1x1x24\n");
    EXPECT_EQ(collection_.FileSupported(dat), 2);  // accepted last
    EXPECT_EQ(Asked(L"1.spi"), 0);
    EXPECT_EQ(collection_.FileSupported(dat, 3), 3);  // the hint is below the start
    EXPECT_EQ(collection_.FileSupported(dat, 4), 0);
    collection_.RemoveAll();
    Add(L"4.spi");
    Add(L"5.spi", "crash:av:IsSupported\n");
    EXPECT_EQ(collection_.FileSupported(dat), 2);  // everybody is asked, in turn
    EXPECT_EQ(Asked(L"5.spi"), 1);
    Search nobody = collection_.SearchFor(folder_.Write(L"nobody.tst", "text"));
    EXPECT_EQ(nobody.Next(), nullptr);
    EXPECT_EQ(Asked(L"5.spi"), 2);  // claimed it by name, and is not asked a second time
    ASSERT_TRUE(nobody.LastRefusal());
    EXPECT_TRUE(nobody.LastRefusal()->hasCrashed);
    EXPECT_EQ(nobody.LastRefusal()->dllName, folder_.Path() + L"5.spi");
    EXPECT_EQ(collection_.FileSupported(folder_.Path() + L"gone.tst"), 0);
}

TEST_F(CollectionTest, WhoTakesAnythingTakesNothingFromThoseWhoKnowIt) {
    Add(L"4.spi", "info:2:*.*\naccept-all\n");
    Add(L"3.spi", "info:2:*.abc\n");
    Add(L"2.spi", "info:2:*.jpg\naccept-all\n");
    Add(L"1.spi", "info:2:*.xyz\naccept-all\n");
    const auto find = [&](const wchar_t* name, std::string_view content) {
        return collection_.FileSupported(folder_.Write(name, content));
    };
    EXPECT_EQ(find(L"a.xyz", "text"), 1);
    EXPECT_EQ(find(L"a.abc", "TST 1x1x24\n"), 3) << "the hint says 1 to everything";
    EXPECT_EQ(find(L"a.dat", "text"), 4);
    EXPECT_EQ(find(L"b.abc", "TST 1x1x24\n"), 3) << "the hint claims every name";
    EXPECT_EQ(find(L"b.dat", "\xFF\xD8\xFF\xE0"), 2) << "by its content";
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(find((std::to_wstring(i) + L".jpg").c_str(), "text"), 2);
    EXPECT_EQ(Asked(L"2.spi"), 10) << "files of one kind cost one question each";
    EXPECT_EQ(Asked(L"1.spi"), 1);
    // Those whose names mislead do, too.
    collection_.Remove(4);
    EXPECT_EQ(find(L"c.jpg", "text"), 2);
    Search search = collection_.SearchFor(folder_.Write(L"c.abc", "text"));
    EXPECT_EQ(search.Next(), &collection_.Item(2));
    search.NoteFailure();
    EXPECT_EQ(find(L"d.abc", "text"), 1);
}

TEST_F(CollectionTest, NothingChangesWhileAPluginIsAtWork) {
    Add(L"a.spi");
    const std::wstring file = folder_.Write(L"a.tst", "TST 2x3x24\n");
    const OwnedBlock block = Block("TST 1x1x24\n");
    ASSERT_EQ(collection_.FileSupported(file), 1);
    clsSusie& plugin = collection_.Item(1);
    clsSusie other;
    other.SetDllName(Plugin(L"minimal.spi"));
    // As the user may do it in a message box that a plug-in shows.
    const auto useTheProgram = [&](int, int) {
        EXPECT_TRUE(PluginCallUnderWay());
        EXPECT_EQ(collection_.FileSupported(file), 0);
        EXPECT_EQ(collection_.MemorySupported(block.Get(), L"a.tst"), 0);
        EXPECT_FALSE(LoadSPI());
        tessary::Picture picture;
        const std::function<void()> refused[] = {
            [&] { plugin.SetDllName(test::TestPluginPath(L"iftst.spi")); },
            [&] { plugin.SetFile({}); },
            [&] { plugin.SetMemoryHandle(nullptr, {}); },
            [&] { other.SetFile(file); },
            [&] { other.SetMemoryHandle(block.Get(), L"a.tst"); },
            [&] { other.CheckFile(file); },
            [&] { other.CheckMemory(block.Get(), L"a.tst"); },
            [&] { other.ShowConfigurationDialog(nullptr); },
            [&] { plugin.DecodePicture(DecodeTarget::kMemory, 0, {}, {}, &picture); },
        };
        for (const auto& member : refused)
            EXPECT_EQ(Raised(member), kErrorCallUnderWay) << &member - refused;
        other.UnloadDLL();
        EXPECT_TRUE(IsLoaded(other.DllName()));
        collection_.UnloadFile();
        collection_.AddSPI(other.DllName());
        collection_.FScanAllSPI(folder_.Path());
        EXPECT_EQ(collection_.Compact(), 1);
        collection_.Remove(1);
        collection_.RemoveAll();
        EXPECT_EQ(collection_.Count(), 1);
        return CallIsLogged();
    };
    tessary::Picture picture;
    plugin.DecodePicture(DecodeTarget::kMemory, 0, useTheProgram, {}, &picture);
    EXPECT_TRUE(picture);
    EXPECT_EQ(plugin.GetFile(), file);
    EXPECT_FALSE(PluginCallUnderWay());
}

TEST_F(CollectionTest, AnUnreadableStoreEntryDisablesNoPlugin) {
    const std::wstring path = Plugin(L"iftst.spi");
    const DWORD noText = 1;
    const auto spoil = [&](const wchar_t* section, const wchar_t* key) {
        RegSetKeyValueW(HKEY_CURRENT_USER, (store_.KeyPath() + section).c_str(), key, REG_DWORD,
                        &noText, sizeof(noText));
    };
    spoil(L"\\SPI_DATETIME", path.c_str());
    spoil(L"\\SPI_RUNS", L"1");
    spoil(L"\\SPI_CALLLOG", L"SPI");
    EXPECT_EQ(collection_.FScanAllSPI(folder_.Path()), 1);
    EXPECT_EQ(collection_.Item(1).DllName(), path);

    // Loading this one once ended the program, but now it is merely refused.
    const std::wstring broken = folder_.Write(L"broken.spi", "text");
    CheckFileDate(broken);
    NoteFatalLoad(broken);
    collection_.AddSPI(broken);
    EXPECT_EQ(GetSetting(L"SPI_FATALLOADS", broken), L"0");
}

TEST_F(CollectionTest, ByExtensionOnlyThoseThatClaimTheFileAreAsked) {
    collection_.SetTryAll(false);
    Add(L"any.spi", "accept-all\ninfo:2:*.xyz\n");
    Add(L"jpeg.spi", "accept-all\ninfo:2:*.jpg\n");
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.xyz", "text")), 2);
    // Not even the one that accepted last.
    EXPECT_EQ(collection_.FileSupported(folder_.Write(L"a.txt", "text")), 0);
    EXPECT_EQ(Asked(L"any.spi"), 1);
    EXPECT_EQ(Asked(L"jpeg.spi"), 0);
    const OwnedBlock block = Block("\xFF\xD8\xFF\xE0");
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.dat"), 0);
    EXPECT_EQ(collection_.MemorySupported(block.Get(), L"dir\\a.jpg"), 1);
    EXPECT_EQ(collection_.Item(1).GetMemoryHandle(), block.Get());
    collection_.UnloadFile();
    EXPECT_EQ(collection_.Item(1).GetMemoryHandle(), nullptr);
    const std::wstring jpeg = folder_.Write(L"a.dat", "\xFF\xD8\xFF\xE0");
    EXPECT_EQ(collection_.FileSupported(jpeg), 1);  // by its content
    EXPECT_TRUE(collection_.Item(1).CheckMode());
}

TEST_F(CollectionTest, ABlockOutOfAnArchiveDoesNotUnbindIt) {
    Add(L"b.spi");
    Add(L"a.spi");
    const std::wstring archivePlugin = Plugin(L"axtsa.spi");
    collection_.AddSPI(archivePlugin);
    const std::wstring file = folder_.Write(L"a.tsa", test::ArchiveOf({{"b.tsa", "TSA\n\n"}}));
    ASSERT_EQ(collection_.FileSupported(file), 1);
    clsSusie& archive = collection_.Item(1);
    const OwnedBlock inner = archive.DecodeArchive(1, {});
    EXPECT_EQ(collection_.MemorySupported(inner.Get(), L"b.tsa"), 1);
    EXPECT_EQ(archive.GetFile(), file);
    EXPECT_EQ(collection_.ArchivePlugin(file), &archive);
    EXPECT_EQ(Calls(archivePlugin, "GetArchiveInfo"), 1);

    const OwnedBlock picture = Block("TST 1x1x24\n");
    Search search = collection_.SearchFor(picture.Get(), L"a.tst");
    EXPECT_EQ(search.Next(), &collection_.Item(2));
    EXPECT_EQ(search.Next(), &collection_.Item(3));
    EXPECT_EQ(search.Next(), nullptr);
    collection_.UnloadMemory();
    EXPECT_FALSE(collection_.Item(2).IsBound() || collection_.Item(3).IsBound());
    EXPECT_EQ(archive.GetFile(), file);

    collection_.UnloadFile();
    EXPECT_EQ(collection_.ArchivePlugin(file), &archive);  // bound again
    EXPECT_EQ(collection_.ArchivePlugin(folder_.Write(L"a.tst", "TST 1x1x24\n")), nullptr);
}

TEST_F(CollectionTest, TheOpenDialogGetsPairs) {
    Add(L"b.spi", "info:1:A|B\ninfo:2:*.bmp;*.jpg;*.jpeg\n");
    Add(L"a.spi");
    EXPECT_EQ(collection_.GetCommonDialogString(),
              L"すべてのファイル(*.*)|*.*|すべての対応ファイル|*.BMP;*.TST;*.JPG;*.JPEG"
              L"|BMPファイル(*.BMP)|*.BMP|Test plug-in(*.TST)|*.TST|"
              L"A B(*.BMP;*.JPG;*.JPEG)|*.BMP;*.JPG;*.JPEG|");
}

TEST_F(CollectionTest, LoadingFollowsTheSettings) {
    GeneralSettings& settings = Values().general;
    Plugin(L"iftst.spi");
    folder_.Write(L"broken.spi", "text");
    // Has ended two runs in a row, and would end this one.
    const std::wstring fatal = Plugin(L"iftst.spi", "crash:exit:DllMain\n", L"fatal.spi");
    CheckFileDate(fatal);
    for (int run = 0; run < 2; ++run)
        EndRunIn(L"LoadLibrary", fatal);
    settings.useSPI = settings.dynamicSPILoad = settings.spiExt = 1;
    settings.spiFolder[0] = folder_.Path() + L"nowhere";
    settings.spiFolder[1] = RemoveBackslash(folder_.Path());
    settings.spiFolder[2] = folder_.Path();
    std::fill_n(settings.loadSPI, kPluginFolderCount, true);
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().Count(), 1);
    EXPECT_TRUE(KeepsEndingTheProgram(fatal));  // and the next
    EXPECT_TRUE(settings.loadSPI[0]);           // the folder may come back
    EXPECT_TRUE(settings.loadSPI[1]);
    EXPECT_EQ(LoadingNotices(),
              std::vector{L"プラグインフォルダ " + folder_.Path() + L"nowhere\\ が見つかりません"});
    SusieCollection().NoteFolder(L"C:\\spi\\a.spi", LeftOutReason::kBlocked);
    SusieCollection().NoteFolder(L"C:\\spi\\b.spi", LeftOutReason::kBlocked);
    EXPECT_EQ(LoadingNotices().back(),
              L"プラグイン a.spi、b.spi は、Windowsかウイルス対策ソフトにブロックされています");
    EXPECT_FALSE(SusieCollection().TryAll());
    EXPECT_EQ(SusieCollection().GetInMemorySPICount(), 0);
    settings.useSPI = 0;
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().Count(), 0);
    UnloadSPI();
    EXPECT_TRUE(messages_.All().empty());
}

// A new version was unpacked over an old one. Another author's plug-in may have the same name.
TEST_F(CollectionTest, OurOwnPluginsUnderFormerNamesAreLeftOut) {
    const std::string ours = "info:1:iftwic 1.0 - GIF, TIFF, ICO, WebP, HEIF (WIC)";
    const auto isLeftOut = [&](const std::string& script) {
        std::filesystem::remove(folder_.Path() + L"iftwic.spi");
        CollectionSusie plugins;
        plugins.AddSPI(Plugin(L"iftst.spi", script, L"iftwic.spi"));
        const bool isRenamed = !plugins.LeftOut().empty() &&
                               plugins.LeftOut().front().reason == LeftOutReason::kRenamed;
        EXPECT_EQ(plugins.Compact(), isRenamed ? 0 : 1);
        EXPECT_EQ(IsLoaded(folder_.Path() + L"iftwic.spi"), !isRenamed);
        return isRenamed;
    };
    EXPECT_FALSE(isLeftOut(ours));
    folder_.Write(L"iftesswic.spi", "the new one");
    EXPECT_TRUE(isLeftOut(ours));
    EXPECT_FALSE(isLeftOut("info:1:iftwic Plug-in 1.2 by somebody else"));
}

TEST_F(CollectionTest, WhatIsLeftOutIsToldWithItsReason) {
    GeneralSettings& settings = Values().general;
    settings.useSPI = 1;
    settings.spiFolder[0] = settings.spiFolder[1] = folder_.Path();
    settings.loadSPI[1] = true;
    Plugin(L"iftst.spi");
    Plugin(L"config_only.spi");
    Plugin(L"iftst.spi", "answer:DllMain:0", L"load_refuses.spi");
    Plugin(L"iftst.spi", "crash:av:DllMain", L"load_crash.spi");
    folder_.Write(L"text.spi", "text");
    std::string image(1024, '\0');  // the headers of a 64-bit DLL
    image.replace(0, 2, "MZ");
    image.replace(0x3C, 1, "\x80");
    image.replace(0x80, 6, std::string("PE\0\0\x64\x86", 6));
    image.replace(0x96, 2, std::string("\x02\x20", 2));
    folder_.Write(L"x64.spi", image);
    const std::wstring barred = Plugin(L"minimal.spi");
    CheckFileDate(barred);
    for (int run = 0; run < 2; ++run)
        EndRunIn(L"LoadLibrary", barred);
    const auto told = [] {
        std::map<std::wstring, LeftOutReason> reasons;
        for (const LeftOutPlugin& one : SusieCollection().LeftOut())
            EXPECT_TRUE(reasons.emplace(FileNameOf(one.path), one.reason).second) << "twice";
        return reasons;
    };
    using enum LeftOutReason;
    std::map<std::wstring, LeftOutReason> expected = {
        {L"config_only.spi", kNoPlugin}, {L"load_refuses.spi", kNotLoadable},
        {L"load_crash.spi", kCrashed},   {L"text.spi", kNoDll},
        {L"x64.spi", kOtherMachine},     {L"minimal.spi", kBarred}};
    ASSERT_TRUE(LoadSPI());
    EXPECT_EQ(told(), expected);
    EXPECT_EQ(LoadingNotices(), std::vector<std::wstring>{
                                    L"プラグイン load_crash.spi は、読み込み中に異常終了しました"});
    EXPECT_EQ(WhyNotLoaded(folder_.Path() + L"text.spi", 4551), kBlocked);
    ASSERT_TRUE(LoadSPI());  // barred for the whole run
    EXPECT_EQ(told(), expected);
    EXPECT_FALSE(SusieCollection().IsIncomplete());

    SusieCollection().ForgetErrorsOfLeftOut(folder_.Path() + L"minimal.spi");
    EXPECT_TRUE(SusieCollection().IsIncomplete());
    ASSERT_TRUE(LoadSPI());
    EXPECT_FALSE(SusieCollection().IsIncomplete());
    EXPECT_EQ(SusieCollection().Count(), 2);

    // Stopped before the first: nothing is known about the folders, so they stay switched on.
    int asked = 0;
    ASSERT_TRUE(LoadSPI([&](const std::wstring&, int32_t done, int32_t total) {
        EXPECT_EQ(total, 14);
        return ++asked < 1 && done > 100;
    }));
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(SusieCollection().Count(), 0);
    EXPECT_TRUE(settings.loadSPI[0] && settings.loadSPI[1]);
    EXPECT_EQ(told()[L"iftst.spi"], kWaiting);
    UnloadSPI();
}

TEST(PluginCollectionChild, DISABLED_Loads) {
    test::LoadHelper(L"susiectl.dll");
    CollectionSusie().FScanAllSPI(FolderOf(_wgetenv(L"TESSARY_TEST_FILE")));
}

TEST(PluginCollectionChild, DISABLED_IsDamagedByOne) {
    test::LoadHelper(L"susiectl.dll");
    const std::wstring culprit = _wgetenv(L"TESSARY_TEST_FILE");
    GeneralSettings& settings = Values().general;
    settings.useSPI = 1;
    settings.spiFolder[0] = settings.spiFolder[1] = FolderOf(culprit);
    settings.loadSPI[1] = true;
    EXPECT_TRUE(LoadSPI());
    EXPECT_TRUE(PluginsAreStopped());
    EXPECT_EQ(LoadingNotices().back(), PluginsStoppedText());
    EXPECT_NE(PluginsStoppedText().find(L"プラグイン fatal.spi の異常"), std::wstring::npos);
    TerminateProcess(GetCurrentProcess(), HasFailure() ? 1 : 0);
}

TEST_F(CollectionTest, OneThatDamagesTheMemoryWhileItIsLoadedIsSkippedThenBarred) {
    Plugin(L"minimal.spi");
    const std::wstring fatal =
        Plugin(L"iftst.spi", "crash:heap-damage:GetPluginInfo\n", L"fatal.spi");
    CheckFileDate(fatal);
    for (const auto expected : {LeftOutReason::kSkipped, LeftOutReason::kBarred}) {
        EXPECT_EQ(RunAsChild(L"PluginCollectionChild.DISABLED_IsDamagedByOne", fatal), 0U);
        // Whichever function of the loading it was.
        EXPECT_EQ(ReadErrorCount(fatal, L"GetPluginInfo"), 1);
        EXPECT_EQ(ReadErrorCount(fatal, L"LoadLibrary"), expected == LeftOutReason::kBarred);
        folder_.Write(L"fatal.spi.script", "crash:heap-damage:DllMain\n");
        CollectionSusie plugins;
        plugins.FScanAllSPI(folder_.Path());
        EXPECT_EQ(plugins.Compact(), 1);
        ASSERT_EQ(plugins.LeftOut().size(), 1U);
        EXPECT_EQ(plugins.LeftOut()[0].reason, expected);
        ASSERT_EQ(plugins.InterruptedCalls().size(), 1U);
        EXPECT_EQ(plugins.InterruptedCalls()[0].plugin, fatal);
    }
}

TEST_F(CollectionTest, ACrashThatTheLoaderCannotGetOverEndsTheRun) {
    const std::wstring fatal = Plugin(L"iftst.spi", {}, L"fatal.spi");
    for (const std::string kind : {"bare-chain", "wild-chain"}) {
        folder_.Write(L"fatal.spi.script", "crash:" + kind + ":DllMain\n");
        const DWORD before = GetTickCount();
        EXPECT_EQ(RunAsChild(L"PluginCollectionChild.DISABLED_Loads", fatal), 0xC0000374) << kind;
        EXPECT_LT(GetTickCount() - before, 15'000U) << "it hung, until that was noticed";
        const std::vector<PluginCall> calls = RecoverInterruptedCalls();
        ASSERT_EQ(calls.size(), 1U) << kind;
        EXPECT_EQ(calls[0].plugin + calls[0].function, fatal + L"LoadLibrary");
        ForgetFailures(fatal);
    }
}

TEST_F(CollectionTest, ACrashWhileItIsLoadedAnewIsToldOfTheFile) {
    CollectionSusie plugins;
    plugins.SetDynamicLoad(true);
    plugins.AddSPI(Plugin(L"iftst.spi"));
    folder_.Write(L"iftst.spi.script", "crash:av:DllMain\n");
    Search search = plugins.SearchFor(folder_.Write(L"a.tst", "TST 2x2x24\n"));
    EXPECT_EQ(search.Next(), nullptr);
    ASSERT_TRUE(search.LastRefusal());
    EXPECT_TRUE(search.LastRefusal()->hasCrashed);
    EXPECT_EQ(search.LastRefusal()->dllName, folder_.Path() + L"iftst.spi");
}

TEST_F(CollectionTest, OneThatEndsTheProgramWhileItTellsAboutItselfIsSkippedThenBarred) {
    Plugin(L"minimal.spi");
    const std::wstring fatal = Plugin(L"iftst.spi", "crash:exit:GetPluginInfo\n", L"fatal.spi");
    const auto load = [&] {
        GeneralSettings& settings = Values().general;
        settings.useSPI = 1;
        settings.spiFolder[0] = folder_.Path();
        EXPECT_TRUE(LoadSPI());
        const auto& leftOut = SusieCollection().LeftOut();
        return leftOut.empty() ? LeftOutReason::kWaiting : leftOut[0].reason;
    };
    RunAsChild(L"PluginCollectionChild.DISABLED_Loads", fatal);
    EXPECT_EQ(load(), LeftOutReason::kSkipped);
    EXPECT_EQ(InterruptedCallNotices().at(0),
              L"前回は fatal.spi "
              L"の処理中（GetPluginInfo）に終了しました。今回は読み込みません");
    EXPECT_EQ(ReadErrorCount(fatal, L"GetPluginInfo"), 1);
    EXPECT_TRUE(SusieCollection().IsIncomplete());
    // The run after that tries it again.
    RunAsChild(L"PluginCollectionChild.DISABLED_Loads", fatal);
    for (int run = 0; run < 3; ++run) {
        UnloadSPI();
        EXPECT_EQ(load(), LeftOutReason::kBarred) << run;
    }
    SusieCollection().ForgetErrorsOfLeftOut(fatal);
    folder_.Write(L"fatal.spi.script", "");
    EXPECT_EQ(load(), LeftOutReason::kWaiting);  // nothing is left out
    EXPECT_EQ(SusieCollection().Count(), 2);
    UnloadSPI();
}

TEST_F(CollectionTest, AFolderThatIsAwayOrEmptyIsLookedAtAgain) {
    GeneralSettings& settings = Values().general;
    const std::wstring stick = folder_.Path() + L"stick\\";
    settings.useSPI = 1;
    settings.spiFolder[0] = stick;
    const auto load = [&] {
        EXPECT_TRUE(LoadSPI());
        const auto& leftOut = SusieCollection().LeftOut();
        return leftOut.empty() ? LeftOutReason::kWaiting : leftOut[0].reason;
    };
    EXPECT_EQ(load(), LeftOutReason::kNoFolder);
    EXPECT_TRUE(settings.loadSPI[0]);
    std::filesystem::create_directory(stick);
    EXPECT_EQ(load(), LeftOutReason::kEmptyFolder);
    EXPECT_FALSE(settings.loadSPI[0]);
    EXPECT_EQ(LoadingNotices().size(), 1U);
    std::filesystem::remove(stick);  // it was off already: nothing to complain about
    EXPECT_EQ(load(), LeftOutReason::kWaiting);
    std::filesystem::create_directory(stick);
    std::filesystem::rename(Plugin(L"minimal.spi"), stick + L"minimal.spi");
    EXPECT_EQ(load(), LeftOutReason::kWaiting);
    EXPECT_EQ(SusieCollection().Count(), 1);
    EXPECT_TRUE(settings.loadSPI[0]);
    UnloadSPI();
}

TEST_F(CollectionTest, FilesOfOneNameInTwoFoldersAreTwoPlugins) {
    const std::wstring one = Plugin(L"iftst.spi");
    const std::wstring other = folder_.Path() + L"a\\iftst.spi";
    const std::wstring third = folder_.Path() + L"b\\a\\iftst.spi";
    for (const std::wstring& copy : {other, third}) {
        std::filesystem::create_directories(FolderOf(copy));
        std::filesystem::copy_file(one, copy);
    }
    Touch(other);
    for (const std::wstring& path : {one, other}) {
        collection_.AddSPI(path);
        EXPECT_EQ(collection_.NameOf(one) == L"iftst.spi", path == one);
    }
    collection_.AddSPI(third);
    EXPECT_EQ(collection_.NameOf(third), L"b\\a\\iftst.spi");
    EXPECT_EQ(collection_.NameOf(L"other.spi"), L"other.spi");
    collection_.Item(other)->SpiSEHError(L"GetPicture");
    EXPECT_EQ(collection_.Item(one)->ErrorCount({}), 0);
    collection_.RemoveAll();
    collection_.AddSPI(one);  // of another date than the one that has failed
    collection_.AddSPI(other);
    EXPECT_EQ(collection_.Item(other)->ErrorCount({}), 1);
    collection_.RemoveAll();
    FreeLibrary(GetModuleHandleW(other.c_str()));  // it was kept loaded
}

TEST(PluginCollectionChild, DISABLED_StaysEmptyWithoutSusiectl) {
    test::RecordedMessages messages;
    CollectionSusie collection;
    EXPECT_EQ(messages.Only(), L"SUSIECTL.DLL が見つかりません");
    EXPECT_EQ(collection.FScanAllSPI(test::TestProgramFolder() + L"plugins\\"), 0);
    char text[255] = {};
    SusieCalls calls(L"x.spi");
    EXPECT_EQ(calls.GetPluginInfo(0, text, 255), -1);
    EXPECT_EQ(calls.TakeFault().function, L"GetPlugInInfo");
}

TEST_F(CollectionTest, StaysEmptyWithoutSusiectl) {
    EXPECT_EQ(RunAsChild(L"PluginCollectionChild.DISABLED_StaysEmptyWithoutSusiectl"), 0U);
}

}  // namespace
}  // namespace tessary
