// Loading the plug-ins that the settings name: which are left out, and why.
#include <map>

#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/support/content_of.h"

namespace tessary {
namespace {

using enum LeftOutReason;
using Reasons = std::map<std::wstring, LeftOutReason>;

Reasons LeftOutOf(const CollectionSusie& plugins) {
    Reasons reasons;
    for (const LeftOutPlugin& one : plugins.LeftOut())
        EXPECT_TRUE(reasons.emplace(FileNameOf(one.path), one.reason).second) << "twice";
    return reasons;
}

class LoadingTest : public test::PluginTest {
  protected:
    ~LoadingTest() override { UnloadSPI(); }
    // As if the last two runs had ended while they loaded it.
    static void Bar(const std::wstring& plugin) {
        CheckFileDate(plugin);
        for (int run = 0; run < 2; ++run)
            EndRunIn(L"LoadLibrary", plugin);
    }
    // Loads the plug-ins of one folder as the settings say; what is left out then.
    Reasons Load(const std::wstring& folder = {}) {
        general_.useSPI = 1;
        general_.spiFolder[0] = folder.empty() ? folder_.Path() : folder;
        EXPECT_TRUE(LoadSPI());
        return LeftOutOf(SusieCollection());
    }

    GeneralSettings& general_ = Values().general;
};

TEST_F(LoadingTest, LoadingFollowsTheSettings) {
    Plugin(L"iftst.spi");
    folder_.Write(L"broken.spi", "text");
    const std::wstring fatal = Plugin(L"iftst.spi", "crash:exit:DllMain\n", L"fatal.spi");
    Bar(fatal);
    general_.dynamicSPILoad = general_.spiExt = 1;
    general_.spiFolder[1] = RemoveBackslash(folder_.Path());
    general_.spiFolder[2] = folder_.Path();
    std::fill_n(general_.loadSPI, kPluginFolderCount, true);
    Load(folder_.Path() + L"nowhere");
    EXPECT_EQ(SusieCollection().Count(), 1);
    EXPECT_TRUE(SusieCollection().Item(1).CheckMode() && SusieCollection().Item(1).AutoUnload());
    EXPECT_TRUE(KeepsEndingTheProgram(fatal));                // and the next
    EXPECT_TRUE(general_.loadSPI[0] && general_.loadSPI[1]);  // the first may come back
    EXPECT_EQ(LoadingNotices(),
              std::vector{L"プラグインフォルダ " + folder_.Path() + L"nowhere\\ が見つかりません"});
    SusieCollection().NoteFolder(L"C:\\spi\\a.spi", kBlocked);
    SusieCollection().NoteFolder(L"C:\\spi\\b.spi", kBlocked);
    EXPECT_EQ(LoadingNotices().back(),
              L"プラグイン a.spi、b.spi は、Windowsかウイルス対策ソフトにブロックされています");
    general_.useSPI = 0;
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().Count(), 0);
}

// A new version was unpacked over an old one. Another author's plug-in may have the same name.
TEST_F(LoadingTest, OurOwnPluginsUnderFormerNamesAreLeftOut) {
    const std::string ours = "info:1:iftwic 1.0 - GIF, TIFF, ICO, WebP, HEIF (WIC)";
    const auto isLeftOut = [&](const std::string& script) {
        std::filesystem::remove(folder_.Path() + L"iftwic.spi");
        CollectionSusie plugins;
        plugins.AddSPI(Plugin(L"iftst.spi", script, L"iftwic.spi"));
        const bool isRenamed = LeftOutOf(plugins) == Reasons{{L"iftwic.spi", kRenamed}};
        EXPECT_EQ(plugins.Compact(), isRenamed ? 0 : 1);
        EXPECT_EQ(IsLoaded(folder_.Path() + L"iftwic.spi"), !isRenamed);
        return isRenamed;
    };
    EXPECT_FALSE(isLeftOut(ours));
    folder_.Write(L"iftesswic.spi", "the new one");
    EXPECT_TRUE(isLeftOut(ours));
    EXPECT_FALSE(isLeftOut("info:1:iftwic Plug-in 1.2 by somebody else"));
}

TEST_F(LoadingTest, WhatIsLeftOutIsToldWithItsReason) {
    general_.spiFolder[1] = folder_.Path();
    general_.loadSPI[1] = true;
    Plugin(L"iftst.spi");
    Plugin(L"config_only.spi");
    Plugin(L"iftst.spi", "answer:DllMain:0", L"load_refuses.spi");
    Plugin(L"iftst.spi", "crash:av:DllMain", L"load_crash.spi");
    folder_.Write(L"text.spi", "text");
    std::string x64 = test::ContentOf(test::TestPluginPath(L"iftst.spi"));
    x64.replace(static_cast<uint8_t>(x64[0x3C]) + 4U, 2, "\x64\x86");
    folder_.Write(L"x64.spi", x64);
    const std::wstring barred = Plugin(L"minimal.spi");
    Bar(barred);
    const Reasons expected = {{L"config_only.spi", kNoPlugin}, {L"load_refuses.spi", kNotLoadable},
                              {L"load_crash.spi", kCrashed},   {L"text.spi", kNoDll},
                              {L"x64.spi", kOtherMachine},     {L"minimal.spi", kBarred}};
    for (int run = 0; run < 2; ++run)  // barred for the whole run
        EXPECT_EQ(Load(), expected);
    EXPECT_EQ(LoadingNotices(), std::vector<std::wstring>{
                                    L"プラグイン load_crash.spi は、読み込み中に異常終了しました"});
    EXPECT_EQ(WhyNotLoaded(folder_.Path() + L"text.spi", 4551), kBlocked);
    EXPECT_FALSE(SusieCollection().IsIncomplete());
    SusieCollection().ForgetErrorsOfLeftOut(barred);
    EXPECT_TRUE(SusieCollection().IsIncomplete());
    Load();
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
    EXPECT_TRUE(general_.loadSPI[0] && general_.loadSPI[1]);
    EXPECT_EQ(LeftOutOf(SusieCollection())[L"iftst.spi"], kWaiting);
}

TEST(PluginCollectionChild, DISABLED_Loads) {
    GeneralSettings& general = Values().general;
    general.useSPI = 1;
    general.spiFolder[0] = FolderOf(test::FileOfParent());
    general.loadSPI[0] = true;
    EXPECT_TRUE(LoadSPI());
    EXPECT_TRUE(PluginsAreStopped());
    EXPECT_EQ(LoadingNotices().back(), PluginsStoppedText());
    EXPECT_NE(PluginsStoppedText().find(L"プラグイン fatal.spi の異常"), std::wstring::npos);
    UnloadSPI();  // as at an ordinary end
    TerminateProcess(GetCurrentProcess(), HasFailure() ? 1 : 0);
}

TEST_F(LoadingTest, OneThatEndsTheProgramWhileItIsLoadedIsSkippedThenBarred) {
    Plugin(L"minimal.spi");
    const std::wstring fatal = Plugin(L"iftst.spi", {}, L"fatal.spi");
    // What has damaged the memory ends no run itself. The last two hang where that goes unnoticed.
    const std::tuple<const char*, DWORD, std::wstring> ends[] = {
        {"crash:exit:GetPluginInfo", 3, L"GetPluginInfo）に終了しました"},
        {"crash:heap-damage:GetPluginInfo", 0, L"GetPluginInfo）にメモリーが壊れました"},
        {"crash:heap-damage:DllMain", 0, L"LoadLibrary）にメモリーが壊れました"},
        {"crash:bare-chain:DllMain", 0xC0000374, L"LoadLibrary）に終了しました"},
        {"crash:wild-chain:DllMain", 0xC0000374, L"LoadLibrary）に終了しました"}};
    for (const auto& [script, status, what] : ends) {
        folder_.Write(L"fatal.spi.script", script);
        CheckFileDate(fatal);
        for (const LeftOutReason expected : {kSkipped, kBarred}) {
            UnloadSPI();
            EXPECT_EQ(RunAsChild(L"PluginCollectionChild.DISABLED_Loads", fatal), status) << script;
            EXPECT_EQ(Load(), (Reasons{{L"fatal.spi", expected}})) << script;
            EXPECT_EQ(
                InterruptedCallNotices().back(),
                L"前回は fatal.spi の処理中（" + what +
                    (expected == kSkipped ? L"。今回は読み込みません" : L"。今後は読み込みません"));
            EXPECT_EQ(ReadErrorCount(fatal, what.substr(0, what.find(L'）'))),
                      expected == kSkipped ? 1 : 2);
            EXPECT_EQ(SusieCollection().IsIncomplete(), expected == kSkipped);
        }
        UnloadSPI();
        EXPECT_EQ(Load(), (Reasons{{L"fatal.spi", kBarred}})) << "for good";
        SusieCollection().ForgetErrorsOfLeftOut(fatal);
    }
    folder_.Write(L"fatal.spi.script", "");
    EXPECT_EQ(Load(), Reasons());
    EXPECT_EQ(SusieCollection().Count(), 2);
}

TEST_F(LoadingTest, AFolderThatIsAwayOrEmptyIsLookedAtAgain) {
    const std::wstring stick = folder_.Path() + L"stick\\";
    EXPECT_EQ(Load(stick), (Reasons{{L"", kNoFolder}}));
    EXPECT_TRUE(general_.loadSPI[0]);
    std::filesystem::create_directory(stick);
    EXPECT_EQ(Load(stick), (Reasons{{L"", kEmptyFolder}}));
    EXPECT_FALSE(general_.loadSPI[0]);
    EXPECT_EQ(LoadingNotices().size(), 1U);
    std::filesystem::remove(stick);  // it was off already: nothing to complain about
    EXPECT_EQ(Load(stick), Reasons());
    std::filesystem::create_directory(stick);
    std::filesystem::rename(Plugin(L"minimal.spi"), stick + L"minimal.spi");
    EXPECT_EQ(Load(stick), Reasons());
    EXPECT_EQ(SusieCollection().Count(), 1);
    EXPECT_TRUE(general_.loadSPI[0]);
}

}  // namespace
}  // namespace tessary
