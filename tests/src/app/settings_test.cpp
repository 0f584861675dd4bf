// The settings store: defaults, conversions, order and the messages of its failures.
#include "app/settings/settings.h"

#include <gtest/gtest.h>

#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/first_run.h"
#include "app/settings/plugin_folders.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"

namespace tessary {
namespace {

class SettingsTest : public testing::Test {
  protected:
    test::RedirectedSettings store_;
    test::RecordedMessages messages_;
};

// One key of every type and of each place that has a rule of its own.
TEST_F(SettingsTest, ValuesComeBackAndHaveDefaults) {
    const std::wstring appFolder = RemoveBackslash(AppFolder());
    // section, key, first in an empty store, chosen by the user, what becomes of that if not the
    // same
    const std::wstring table[][5] = {
        {L"General", L"UseSPI", L"0", L"1"},
        {L"General", L"SPIFolder_2", L"", LR"(C:\表示ソフト\사진 )"},
        {L"General", L"LoadSPI_1", L"True", L"False"},
        {L"General", L"LoadSPI_3", L"False", L"True"},
        {L"General", L"SlideShowTime", L"500", L"-1"},
        {L"General", L"OpenPath", appFolder, LR"(C:\open)"},
        {L"General", L"FixSizeValue", L"0", L"4"},
        {L"General", L"PluginAskingSeconds", L"2", L"0", L"2"},
        {L"General", L"PluginWorkingSeconds", L"20", L"32767", L"3600"},
        {L"Convert", L"SavePath", appFolder, LR"(C:\save)"},
        {L"Convert", L"UnpackArchive", L"1", L"0"},
        {L"Convert", L"MinDecodeSizeX", L"0", L"70000"},
        {L"Convert", L"DecodeFileMask", L"*.*", std::wstring(3000, L'x')},
        {L"Convert", L"DecodeSizeBoth", L"False", L"True"},
        {L"Convert", L"OnConflict", L"0", L"9", L"0"},  // no choice is 9
        {L"Convert", L"ArchiveDepth", L"3", L"-1", L"1"},
        {L"FileFormat", L"png_saveQuality", L"6", L"9"},
        {L"FileFormat", L"jpg_saveQuality", L"60", L"61"},
        {L"FileFormat", L"jpg_saveOptimizedHaffman", L"0", L"1"},
    };
    const auto transfer = [] {
        ASSERT_TRUE(ReadGeneralSettings() && ReadConvertSettings());
        ASSERT_TRUE(WriteGeneralSettings() && WriteConvertSettings());
    };
    for (const auto& [section, key, first, chosen, kept] : table)
        SaveSetting(section, key, chosen);
    transfer();
    EXPECT_EQ(Values().general.openPath, LR"(C:\open)");
    EXPECT_EQ(Values().general.spiFolder[1], LR"(C:\表示ソフト\사진 )");
    EXPECT_FALSE(Values().general.loadSPI[0]);
    EXPECT_EQ(Values().convert.minDecodeSizeX, 70000);
    EXPECT_EQ(Values().saveOptions.jpeg.quality, 61);
    for (const auto& [section, key, first, chosen, kept] : table) {
        EXPECT_EQ(GetSetting(section, key), kept.empty() ? chosen : kept) << key;
        DeleteSetting(section, key);
    }
    transfer();
    for (const auto& [section, key, first, chosen, kept] : table)
        EXPECT_EQ(GetSetting(section, key), first) << key;
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(SettingsTest, ValueThatDoesNotConvertEndsTheReader) {
    Values().general.useSPI = 5;
    Values().general.reduceColor = 5;
    SaveSetting(L"General", L"UseSPI", L"1");
    SaveSetting(L"General", L"SlideShowTime", L"abc");
    EXPECT_FALSE(ReadGeneralSettings());
    EXPECT_EQ(messages_.Only(), L"レジストリの読み取りエラーです。");
    EXPECT_EQ(Values().general.useSPI, 1);       // before the bad value: set
    EXPECT_EQ(Values().general.reduceColor, 5);  // behind it: kept
    SaveSetting(L"General", L"SlideShowTime", L"70000");
    EXPECT_FALSE(ReadGeneralSettings());
    SaveSetting(L"General", L"SlideShowTime", L"32767");
    EXPECT_TRUE(ReadGeneralSettings());
    const DWORD number = 1;  // a value of another type
    RegSetKeyValueW(HKEY_CURRENT_USER, (store_.KeyPath() + LR"(\Convert)").c_str(), L"SaveType1",
                    REG_DWORD, &number, sizeof(number));
    EXPECT_FALSE(ReadConvertSettings());
    EXPECT_EQ(messages_.All().size(), 3u);
}

TEST_F(SettingsTest, FailedWritesAreTold) {
    // A key that is marked for deletion, or a path that cannot exist, refuses every write.
    RedirectSettingsStore(std::wstring(300, L'x'));
    EXPECT_FALSE(WriteGeneralSettings());
    EXPECT_FALSE(WriteConvertSettings());
    ASSERT_EQ(messages_.All().size(), 2u);
    EXPECT_EQ(messages_.All()[0].text, L"レジストリの書き込みエラーです。");
    EXPECT_EQ(messages_.All()[1].text, L"レジストリの読み取りエラーです。");
    EXPECT_EQ(messages_.All()[1].style, 2u);
}

TEST_F(SettingsTest, FirstRunSetsUpThePluginFolders) {
    ASSERT_TRUE(ReadGeneralSettings());
    EXPECT_TRUE(ApplyFirstRunDefaults());
    EXPECT_EQ(GetSetting(L"Init", L"Run"), L"1");
    // A process that dies now leaves a program behind that finds its plug-ins.
    EXPECT_EQ(GetSetting(L"General", L"UseSPI"), L"1");
    EXPECT_EQ(GetSetting(L"General", L"SPIFolder_1"), AppFolder());
    Values().general.useSPI = 0;
    EXPECT_TRUE(ApplyFirstRunDefaults());
    EXPECT_EQ(Values().general.useSPI, 0) << "the user's choice";
}

TEST_F(SettingsTest, TheUsersPluginFolderIsTheLastWhereThatIsFree) {
    GeneralSettings general;
    UseUserPluginFolder(general, LR"(C:\no such folder\)");
    EXPECT_EQ(general.spiFolder[2], L"");
    UseUserPluginFolder(general, WindowsFolder());
    EXPECT_EQ(general.spiFolder[2], WindowsFolder());
    EXPECT_TRUE(general.loadSPI[2]);
    general.loadSPI[2] = false;
    UseUserPluginFolder(general, WindowsFolder());
    EXPECT_FALSE(general.loadSPI[2]) << "the user's choice";
    general.spiFolder[2] = LR"(C:\chosen)";
    UseUserPluginFolder(general, WindowsFolder());
    EXPECT_EQ(general.spiFolder[2], LR"(C:\chosen)");
}

TEST_F(SettingsTest, PluginFoldersFollowTheProgram) {
    const std::wstring& here = AppFolder();
    const auto folders = [](const std::wstring& first, const std::wstring& second) {
        SaveSetting(L"General", L"SPIFolder_1", first);
        SaveSetting(L"General", L"SPIFolder_2", second);
        ReadGeneralSettings();
        return Values().general.spiFolder[0] + L'|' + Values().general.spiFolder[1];
    };
    // From a version that did not store where the program was.
    SaveSetting(L"General", L"LoadSPI_1", L"False");
    EXPECT_EQ(folders(L"Q:\\viewer\\", L"Q:\\viewer\\"), here + L"|Q:\\viewer\\");
    EXPECT_TRUE(Values().general.loadSPI[0]);
    SaveSetting(L"General", L"LoadSPI_1", L"False");
    EXPECT_EQ(folders(L"Q:\\mine", L""), L"Q:\\mine|");
    EXPECT_FALSE(Values().general.loadSPI[0]);
    EXPECT_TRUE(Values().general.emptySPI[0]);  // it may have been away once

    SaveSetting(L"General", L"ProgramFolder", L"Q:\\Viewer\\");
    EXPECT_EQ(folders(L"Q:\\viewer", L"Q:\\viewer\\gone"), here + L"|Q:\\viewer\\gone");
    EXPECT_EQ(Values().general.leftProgramFolder, L"Q:\\Viewer\\");
    EXPECT_EQ(folders(L"Q:\\viewer2\\", L"Q:\\viewer\\plugins"),
              L"Q:\\viewer2\\|" + here + L"plugins\\");
    EXPECT_EQ(folders(L"Q:\\", L""), L"Q:\\|");
    ASSERT_TRUE(WriteGeneralSettings());
    EXPECT_EQ(GetSetting(L"General", L"ProgramFolder"), here);
}

}  // namespace
}  // namespace tessary
