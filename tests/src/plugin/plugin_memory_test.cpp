// What plug-ins tell about themselves, remembered from start to start.
#include "plugin/plugin_memory.h"

#include <algorithm>

#include "app/settings/modValue.h"
#include "plugin/modSusie.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/support/content_of.h"

namespace tessary {
namespace {

using enum LeftOutReason;

class PluginMemoryTest : public test::PluginTest {
  protected:
    PluginMemoryTest() {
        general_.useSPI = 1;
        general_.spiFolder[0] = folder_.Path();
    }
    ~PluginMemoryTest() override { UnloadSPI(); }

    // As if the program was started anew: the names of those that are going to be asked.
    std::wstring Start() {
        UnloadSPI();
        SusieCollection().RememberPlugins();
        EXPECT_TRUE(LoadSPI({}, Asking::kNobody));
        EXPECT_EQ(SusieCollection().GetInMemorySPICount(), 0);
        std::wstring waiting;
        for (const LeftOutPlugin& one : SusieCollection().LeftOut()) {
            if (one.reason == kWaiting) waiting += FileNameOf(one.path) + L' ';
        }
        return waiting;
    }
    // And asks them.
    std::wstring StartToItsEnd() {
        const std::wstring waiting = Start();
        EXPECT_TRUE(LoadWaitingSPI({}));
        return waiting;
    }
    // All that windows show of the plug-ins.
    static std::wstring Told() {
        std::wstring told = SusieCollection().GetCommonDialogString();
        for (const auto& one : SusieCollection().NewEnum()) {
            told += one->DllName() + std::to_wstring(one->DllStyle()) + one->FileType(0) +
                    one->ProductName() + (one->SupportConfigurationDialog() ? L"!\n" : L"\n");
        }
        for (const LeftOutPlugin& one : SusieCollection().LeftOut())
            told += one.path + std::to_wstring(static_cast<int>(one.reason)) + L'\n';
        return told;
    }
    // The way of the entry of a plug-in in the store.
    static std::wstring Entry(const std::wstring& path) { return GetSetting(L"SPI_KNOWN", path); }
    // Ends this process where a plug-in is loaded once more.
    void MakeFatal(const std::wstring& name) const {
        folder_.Write(name + L".script", "crash:exit:DllMain");
    }

    // Moves the time of a file's last change by so many 100 ns.
    static void MakeLater(const std::wstring& path, uint64_t units) {
        const uint64_t changed = StampOf(path)->changed + units;
        const FILETIME time{static_cast<DWORD>(changed), static_cast<DWORD>(changed >> 32)};
        const UniqueFile file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
    }

    GeneralSettings& general_ = Values().general;
};

TEST_F(PluginMemoryTest, AStartLoadsOnlyWhatMayTellSomethingNew) {
    Plugin(L"iftst.spi", "info:1:A | B;\\C\r1.0\ninfo:2:*.a;b;*.c", L"a.spi");
    Plugin(L"axtsa.spi");
    Plugin(L"minimal.spi", "patterns:80");
    Plugin(L"config_only.spi");
    folder_.Write(L"text.spi", "text");
    std::string x64 = test::ContentOf(test::TestPluginPath(L"iftst.spi"));
    x64.replace(static_cast<uint8_t>(x64[0x3C]) + 4U, 2, "\x64\x86");
    folder_.Write(L"x64.spi", x64);
    Plugin(L"iftst.spi", "answer:DllMain:0", L"refuses.spi");
    Plugin(L"iftst.spi", "crash:av:DllMain", L"crashes.spi");
    Plugin(L"iftst.spi", "crash:av:GetPluginInfo", L"mute.spi");
    Plugin(L"needs_missing.spi");
    const std::wstring barred = Plugin(L"iftst.spi", {}, L"barred.spi");
    EXPECT_NE(StartToItsEnd().find(L"barred.spi"), std::wstring::npos);
    for (int run = 0; run < 2; ++run)
        EndRunIn(L"LoadLibrary", barred);
    StartToItsEnd();
    const std::wstring told = Told();
    for (const wchar_t* lasting : {L"a.spi", L"axtsa.spi", L"minimal.spi", L"config_only.spi"})
        MakeFatal(lasting);
    NoteFatalLoad(folder_.Path() + L"a.spi");
    const std::wstring temporary = StartToItsEnd();
    EXPECT_EQ(std::ranges::count(temporary, L' '), 4) << temporary;
    for (const wchar_t* name : {L"refuses.spi", L"crashes.spi", L"mute.spi", L"needs_missing.spi"})
        EXPECT_NE(temporary.find(name), std::wstring::npos) << name;
    EXPECT_EQ(Told(), told);
    EXPECT_EQ(GetSetting(L"SPI_FATALLOADS", folder_.Path() + L"a.spi"), L"1") << "was not loaded";

    // Somebody does not want to wait for a new one: it comes to its place the next time.
    const auto names = [] {
        std::wstring all;
        for (const KnownPlugin& one : SusieCollection().Known())
            all += FileNameOf(one.path) + L' ';
        return all;
    };
    Plugin(L"minimal.spi", {}, L"b.spi");
    Start();
    EXPECT_TRUE(LoadWaitingSPI([](const std::wstring&, int32_t, int32_t) { return false; }));
    EXPECT_TRUE(SusieCollection().IsWaiting());
    const std::wstring without = names();
    EXPECT_EQ(without.find(L"b.spi "), without.npos);
    EXPECT_NE(without.find(L"a.spi "), without.npos);
    StartToItsEnd();
    const std::wstring with = names();
    EXPECT_NE(with.find(L"b.spi "), with.npos);
    StartToItsEnd();
    EXPECT_EQ(names(), with);

    // A change by some seconds, and one within a second.
    for (const uint64_t later : {50'000'000, 1}) {
        const std::wstring path = folder_.Path() + L"a.spi";
        folder_.Write(L"a.spi.script", "info:2:*." + std::to_string(later));
        UnloadSPI();
        MakeLater(path, later);
        EXPECT_NE(StartToItsEnd().find(L"a.spi"), std::wstring::npos);
        EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*." + std::to_wstring(later));
    }
}

TEST_F(PluginMemoryTest, WhatIsDamagedOrOfAnotherVersionIsAskedAnew) {
    const std::wstring path = Plugin(L"iftst.spi");
    folder_.Write(L"text.spi", "text");
    StartToItsEnd();
    const std::wstring told = Told();
    const std::wstring entry = Entry(path);
    const std::wstring head = entry.substr(0, entry.find(L"*."));
    ASSERT_EQ(Start(), L"");
    for (size_t i = 0; i < entry.size() - 12; ++i) {  // behind that the product's name begins
        for (const std::wstring& damaged :
             {entry.substr(0, i), entry.substr(i + 1), entry.substr(0, i) + L'|' + entry.substr(i),
              entry.substr(0, i) + L'\x1' + entry.substr(i + 1)}) {
            SaveSetting(L"SPI_KNOWN", path, damaged);
            // A wrong pattern is one like any other.
            EXPECT_TRUE(PluginMemory().Find(path, *StampOf(path)) == nullptr ||
                        damaged.starts_with(head))
                << damaged;
        }
    }
    const DWORD noText = 1;
    RegSetKeyValueW(HKEY_CURRENT_USER, (store_.KeyPath() + L"\\SPI_KNOWN").c_str(), path.c_str(),
                    REG_DWORD, &noText, sizeof(noText));
    SaveSetting(L"SPI_KNOWN", folder_.Path() + L"text.spi",
                L"0" + Entry(folder_.Path() + L"text.spi"));
    SaveSetting(L"SPI_KNOWN", std::wstring(9000, L'x'), std::wstring(70000, L'y'));
    EXPECT_EQ(StartToItsEnd(), L"iftst.spi text.spi ");
    EXPECT_EQ(Told(), told);
    EXPECT_EQ(Entry(path), entry);
    EXPECT_EQ(Start(), L"");
}

TEST_F(PluginMemoryTest, CopiesOfTheProgramShareItAndWhatIsGoneGoes) {
    const FileStamp stamp{1, 2};
    const PluginTraits traits{.style = kStyleArchive, .patterns = {L"*.A"}};
    const std::wstring here = folder_.Path() + L"here.spi";
    PluginMemory one;
    PluginMemory other;
    one.Keep(here, {stamp, {}, traits});
    other.Keep(L"X:\\away\\a.spi", {stamp, kNoDll});
    other.Keep(L"X:\\away\\b.spi", {stamp, {}, traits});
    other.Keep(L"X:\\away\\b.spi", {stamp, kBlocked});
    PluginMemory third;
    ASSERT_NE(third.Find(ToUpper(here), stamp), nullptr);
    EXPECT_EQ(third.Find(here, stamp)->traits, traits);
    EXPECT_NE(third.Find(L"X:\\away\\a.spi", stamp), nullptr);
    EXPECT_EQ(third.Find(L"X:\\away\\b.spi", stamp), nullptr) << "that may change";
    EXPECT_TRUE(Entry(L"X:\\away\\b.spi").empty());

    Plugin(L"minimal.spi");
    Start();
    EXPECT_FALSE(Entry(here).empty()) << "not all has been looked at";
    LoadWaitingSPI({});
    EXPECT_TRUE(Entry(here).empty());
    EXPECT_FALSE(Entry(L"X:\\away\\a.spi").empty()) << "a drive may come back";
    EXPECT_FALSE(Entry(folder_.Path() + L"minimal.spi").empty());
    for (int i = 0; i < 1000; ++i)
        one.Keep(L"X:\\" + std::to_wstring(i), {stamp, kNoDll});
    StartToItsEnd();
    EXPECT_EQ(SettingKeys(L"SPI_KNOWN"), std::vector{folder_.Path() + L"minimal.spi"});
}

// Another program, or its settings window.
TEST_F(PluginMemoryTest, WhatAPluginTellsLaterIsRememberedToo) {
    const std::wstring path = Plugin(L"iftst.spi", "info:2:*.a");
    StartToItsEnd();
    folder_.Write(L"iftst.spi.script", "info:2:*.b\nset-up:2:*.c\nanswer:DllUnload:1");
    EXPECT_EQ(Start(), L"");
    EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*.A");
    NoteFatalLoad(path);
    EXPECT_EQ(SusieCollection().FileSupported(PictureFile()), 1);
    EXPECT_EQ(GetSetting(L"SPI_FATALLOADS", path), L"0") << "now it was loaded";
    EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*.B");
    MakeFatal(L"iftst.spi");
    EXPECT_EQ(Start(), L"");
    EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*.B");

    folder_.Write(L"iftst.spi.script", "info:2:*.b\nset-up:2:*.c");
    SusieCollection().Item(path)->ShowConfigurationDialog(nullptr);
    EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*.C");
    MakeFatal(L"iftst.spi");
    general_.dynamicSPILoad = 1;
    EXPECT_EQ(Start(), L"");
    EXPECT_EQ(SusieCollection().Item(path)->FileType(0), L"*.C");
    EXPECT_TRUE(SusieCollection().Item(path)->AutoUnload());
}

TEST_F(PluginMemoryTest, OneThatCrashesWhenItIsFirstUsedIsNotTriedAgainInThisRun) {
    const std::wstring path = Plugin(L"iftst.spi", "info:2:*.tst");
    StartToItsEnd();
    folder_.Write(L"iftst.spi.script", "crash:av:DllMain");
    EXPECT_EQ(Start(), L"");
    clsSusie& plugin = *SusieCollection().Item(path);
    EXPECT_EQ(SusieCollection().FileSupported(PictureFile()), 0);
    EXPECT_TRUE(plugin.IsUnloadable());
    MakeFatal(L"iftst.spi");
    Search search = SusieCollection().SearchFor(PictureFile());
    EXPECT_EQ(search.Next(), nullptr);
    ASSERT_TRUE(search.LastRefusal());
    EXPECT_TRUE(search.LastRefusal()->hasCrashed) << "which is told each time";
    folder_.Write(L"iftst.spi.script", "");
    plugin.ForgetErrors();
    EXPECT_EQ(SusieCollection().FileSupported(PictureFile()), 1);
    EXPECT_EQ(StartToItsEnd(), L"iftst.spi ") << "what was remembered is doubtful";
    folder_.Write(L"iftst.spi.script", "answer:DllMain:0");
    EXPECT_EQ(Start(), L"");
    Search blocked = SusieCollection().SearchFor(PictureFile());
    EXPECT_EQ(blocked.Next(), nullptr);
    ASSERT_TRUE(blocked.LastRefusal()) << "as a virus scanner may do it";
    EXPECT_EQ(blocked.LastRefusal()->reason, L"プラグインを読み込めません");
    EXPECT_EQ(Start(), L"iftst.spi ");
}

}  // namespace
}  // namespace tessary
