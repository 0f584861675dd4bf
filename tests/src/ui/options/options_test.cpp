// The options dialog, the plug-in folder items and the version windows, with real plug-ins.
#include "ui/options/option_commands.h"

#include <algorithm>
#include <optional>

#include "plugin/modSusie.h"
#include "plugin/plugin_ends.h"
#include "res/resource.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/src/ui/message_spy.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/form/activity.h"
#include "ui/options/frmOption.h"

namespace tessary::test {
namespace {

using Texts = std::vector<std::wstring>;

constexpr wchar_t kReloading[] = L"SusiePluginをリロードしています";

class OptionsTest : public PluginTest {
  protected:
    void SetUp() override {
        ASSERT_TRUE(window_.Load());
        captionSpy_.emplace(window_.Handle(), [this](UINT message, WPARAM, LPARAM text) {
            if (message == WM_SETTEXT)
                captions_.emplace_back(reinterpret_cast<const wchar_t*>(text));
        });
        Values().general.useSPI = 1;
        Values().general.spiFolder[0] = folder_.Path();
    }
    void TearDown() override {
        captionSpy_.reset();
        window_.Unload();
        UnloadSPI();
        DoEvents();
    }

    void ShowOptions(int page, std::deque<DrivenDialog::Step> steps) {
        DrivenDialog user(std::move(steps));
        commands_.ShowOptions(window_.Handle(), page);
        EXPECT_TRUE(user.IsDone());
    }
    std::ptrdiff_t Reloads() const { return std::ranges::count(captions_, kReloading); }
    std::wstring Panel(int panel) const { return window_.statusInformation().PanelText(panel); }

    frmMain window_{{.commandLine = {},
                     .pluginCount = [] { return SusieCollection().Count(); },
                     .endProgram = [] {}}};
    OptionCommands commands_{window_};
    Texts captions_;
    std::optional<MessageSpy> captionSpy_;
};

TEST_F(OptionsTest, CancelChangesNothingAndApplyAndOKWriteAtOnce) {
    Plugin(L"iftst.spi");
    ShowOptions(kDisplayPage, {[](HWND dialog) {
                    EXPECT_FALSE(IsUsable(dialog, cmdApply));
                    PressKey(dialog, sliderSlideShowTime, VK_RIGHT);
                    EXPECT_EQ(TextOf(dialog, labelSlideShowTime), L"0.6 秒");
                    EXPECT_TRUE(IsUsable(dialog, cmdApply));
                    PressKey(dialog, sliderSlideShowTime, VK_LEFT);
                    EXPECT_FALSE(IsUsable(dialog, cmdApply));
                    Click(dialog, optionOpenFolderType_1);
                    Press(dialog, IDCANCEL);
                }});
    EXPECT_EQ(Values().general.openFolderType, 0);
    EXPECT_EQ(GetSetting(L"General", L"SlideShowTime", L"-"), L"-");

    ShowOptions(kConvertPage, {[](HWND dialog) {
                    EXPECT_FALSE(IsUsable(dialog, combDecodeFileSize));
                    Click(dialog, checkNoDecodeSmall);
                    Choose(dialog, combDecodeFileSize, 1);
                    Type(dialog, textMinDecodeSizeX, L"640");
                    Press(dialog, cmdApply);
                    EXPECT_FALSE(IsUsable(dialog, cmdApply));
                    EXPECT_EQ(GetSetting(L"Convert", L"MinDecodeSizeX"), L"640");
                    EXPECT_EQ(GetSetting(L"Convert", L"DecodeSizeBoth"), L"True");
                    Click(dialog, checkNoDecodeSmall);
                    Press(dialog, IDCANCEL);
                }});
    EXPECT_EQ(Values().convert.noDecodeSmall, 1);
    EXPECT_EQ(Reloads(), 0);
}

TEST_F(OptionsTest, PluginsAreLoadedAnewOnlyWhenSomethingAboutThemChanges) {
    Plugin(L"iftst.spi");
    Plugin(L"axtsa.spi");
    Values().general.useSPI = 0;
    ShowOptions(kPluginPage, {[](HWND dialog) {
                    EXPECT_FALSE(IsUsable(dialog, checkLoadSPI_0));
                    Click(dialog, checkUseSPI);
                    EXPECT_FALSE(IsUsable(dialog, textSPIFolder_1));
                    Click(dialog, checkLoadSPI_1);
                    Type(dialog, textSPIFolder_1, LR"( "C:\gone" )");
                    Press(dialog, cmdApply);
                    // How long they may be silent counts from the next call on.
                    Type(dialog, textWorkingSeconds, L"9");
                    Type(dialog, textAskingSeconds, L"");
                    Press(dialog, cmdApply);
                    EXPECT_EQ(GetSetting(L"General", L"PluginWorkingSeconds"), L"9");
                    EXPECT_EQ(Values().general.askingSeconds, kAskingSeconds);
                    ASSERT_EQ(Column(dialog, listSPI, 0).size(), 3U);
                    EXPECT_EQ(Column(dialog, listSPI, 0)[2], LR"(C:\gone\)");
                    EXPECT_EQ(Column(dialog, listSPI, 4)[2], L"見つかりません");
                    Press(dialog, IDOK);
                }});
    EXPECT_EQ(Reloads(), 1);
    EXPECT_EQ(captions_.back(), L"てっさりビューア");
    EXPECT_EQ(Panel(kPluginCountPanel), L"2個のプラグイン");
    EXPECT_EQ(GetSetting(L"General", L"SPIFolder_2"), LR"(C:\gone)");
    EXPECT_NE(messages_.Only().find(L"C:\\gone"), std::wstring::npos);

    // One that is chosen in the menu is switched on.
    GeneralSettings& general = Values().general;
    general.useSPI = 0;
    general.loadSPI[0] = general.loadSPI[1] = false;
    general.spiFolder[2] = LR"(C:\gone)";
    std::wstring start;
    SetFolderBrowserResponder([&](const auto&, const auto&, const std::wstring& at) {
        start = at;
        return RemoveBackslash(folder_.Path());
    });
    EXPECT_TRUE(window_.Commands().Run(menuOptionSPIFolder_2));
    SetFolderBrowserResponder({});
    EXPECT_EQ(start, LR"(C:\gone)");
    EXPECT_EQ(Panel(kPluginCountPanel), L"2個のプラグイン");
    EXPECT_EQ(GetSetting(L"General", L"LoadSPI_3"), L"True");
    EXPECT_EQ(Reloads(), 2);

    // Neither while a file is being read, nor when nothing about them has changed.
    const ReadUnderWay reading;
    EXPECT_FALSE(window_.Commands().Run(menuOptionSetup));
    commands_.ShowOptions(window_.Handle(), kPluginPage);
    EXPECT_EQ(Reloads(), 2);
}

// A log that could not be opened rests until the program ends; but the user's choice is his.
TEST_F(OptionsTest, TheLogSwitchIsWhatTheUserChoseLast) {
    const auto stored = [] { return GetSetting(L"Convert", L"OutputErrorLog"); };
    ConvertSettings& convert = Values().convert;
    convert.errorLogFileName = LR"(C:\none\x.log)";
    Values().logFileRefusal = ERROR_ACCESS_DENIED;
    ShowOptions(kConvertPage, {[](HWND dialog) {
                    EXPECT_EQ(TextOf(dialog, labelErrorLogPath), LR"(C:\none\x.log)");
                    Press(dialog, IDOK);
                }});
    EXPECT_EQ(stored(), L"1");
    EXPECT_EQ(convert.outputErrorLog, 0) << "not tried again";
    ShowOptions(kConvertPage, {[&](HWND dialog) {
                    Type(dialog, textErrorLogFileName, L"");
                    Press(dialog, IDOK);
                    EXPECT_EQ(messages_.All().size(), 1U) << "no name";
                    EXPECT_TRUE(HasFocus(dialog, textErrorLogFileName));
                    Click(dialog, checkOutputErrorLog);
                    Press(dialog, IDOK);
                }});
    EXPECT_EQ(stored(), L"0");
    EXPECT_EQ(Values().logFileRefusal, 0u);
}

TEST_F(OptionsTest, AKeyGoesToAnotherCommandWithTheUserKnowingIt) {
    const auto put = [](HWND dialog, int key) { PressKey(dialog, textNewKey, key); };
    ShowOptions(kKeyPage, {[&](HWND dialog) {
                    EXPECT_FALSE(IsUsable(dialog, cmdAssignKey));
                    put(dialog, VK_LEFT);
                    EXPECT_FALSE(IsUsable(dialog, cmdAssignKey)) << "it scrolls";
                    put(dialog, VK_RETURN);
                    EXPECT_FALSE(IsUsable(dialog, cmdAssignKey)) << "it has it already";
                    put(dialog, 'S');
                    EXPECT_EQ(
                        TextOf(dialog, labelKeyUse),
                        L"S は「次の表示サイズ」のキーです。割り当てると、そちらから外れます。");
                    Click(dialog, cmdAssignKey);
                    EXPECT_EQ(TextOf(dialog, textNewKey), L"");
                    Press(dialog, IDOK);
                }});
    EXPECT_EQ(CommandOf(ChosenKeys(), {'S', 0}), commandStepForward);
    EXPECT_TRUE(ChosenKeys().at(commandDisplaySize).empty());
    ShowOptions(kKeyPage, {[](HWND dialog) {
                    Click(dialog, cmdAllUsualKeys);
                    EXPECT_FALSE(IsUsable(dialog, cmdAllUsualKeys));
                    Press(dialog, IDOK);
                }});
    EXPECT_EQ(ChosenKeys(), UsualKeys());
    EXPECT_TRUE(SettingKeys(L"Keys").empty());
}

TEST_F(OptionsTest, NonsenseInTheSettingsIsShownAsTheNearestValue) {
    GeneralSettings& general = Values().general;
    general.slideShowTime = -5;
    general.reduceColor = 1;
    general.reduceColorNum = 30000;
    general.reduceType = -7;
    Values().fixSizeValue = 9;
    Values().convert.saveType1 = 77;
    Values().convert.saveType2 = 1;
    Values().saveOptions.jpeg.quality = -1;
    const auto selected = [](HWND dialog, int combo) {
        return SendDlgItemMessageW(dialog, combo, CB_GETCURSEL, 0, 0);
    };
    ShowOptions(kFormatPage, {[&](HWND dialog) {
                                  EXPECT_TRUE(IsUsable(dialog, combReduceType));
                                  EXPECT_EQ(TextOf(dialog, labelSlideShowTime), L"0.0 秒");
                                  EXPECT_EQ(TextOf(dialog, textReduceColorNum), L"256");
                                  EXPECT_EQ(selected(dialog, combReduceType), 0);
                                  EXPECT_EQ(selected(dialog, combFixSizeValue), 6);
                                  EXPECT_EQ(selected(dialog, combSaveType1), 2);
                                  EXPECT_EQ(selected(dialog, combSaveType2), 1);
                                  Type(dialog, textReduceColorNum, L"99999999999999999999");
                                  PressLater(dialog, cmdFileFormatEnv_1);
                              },
                              [](HWND dialog) {
                                  EXPECT_EQ(TextOf(dialog, valueJpegQuality), L"0");
                                  PressKey(dialog, sliderJpegQuality, VK_RIGHT);
                                  Press(dialog, IDOK);
                              },
                              [](HWND dialog) {
                                  EXPECT_EQ(TextOf(dialog, labelFileFormat_1), L"品質 10");
                                  Press(dialog, IDOK);
                              }});
    EXPECT_EQ(general.slideShowTime, 0);
    EXPECT_EQ(general.reduceColorNum, 256);
    EXPECT_EQ(GetSetting(L"FileFormat", L"jpg_saveQuality"), L"10");
    EXPECT_EQ(GetSetting(L"General", L"FixSizeValue"), L"6");
}

TEST_F(OptionsTest, ErrorsOfAPluginAreToldAndForgotten) {
    Plugin(L"iftst.spi", {}, L"good.spi");
    const std::wstring bad =
        Plugin(L"config_crash.spi", "early:window:ConfigurationDlg\ncrash:av:ConfigurationDlg");
    CheckFileDate(bad);  // the failures are those of this file
    CountEnd({{L"LoadLibrary", bad, L"C:\\p\\name & more.jpg"}, EndKind::kSilence});
    Values().general.dynamicSPILoad = 1;
    const std::wstring barred = Plugin(L"minimal.spi", {}, L"barred.spi");
    CheckFileDate(barred);
    for (int run = 0; run < 2; ++run)
        EndRunIn(L"LoadLibrary", barred);
    ASSERT_TRUE(LoadSPI());
    ShowOptions(kPluginPage, {[&](HWND dialog) {
                    const auto column = [&](int number) { return Column(dialog, listSPI, number); };
                    ASSERT_EQ(column(0), (Texts{L"good.spi", L"config_crash.spi", L"barred.spi"}));
                    EXPECT_EQ(column(4), (Texts{L"未ロード", L"保持", L"停止中"}));
                    SelectRow(dialog, listSPI, 0);
                    EXPECT_FALSE(IsUsable(dialog, cmdSPIErrorClear));
                    folder_.Write(L"good.spi.script", "answer:ConfigurationDlg:20\ninfo:2:*.new\n");
                    Press(dialog, cmdSPISetup);
                    EXPECT_TRUE(messages_.All().empty());
                    EXPECT_EQ(column(2)[0], L"*.NEW");
                    EXPECT_NE(SusieCollection().GetCommonDialogString().find(L";*.NEW"),
                              std::wstring::npos);
                    folder_.Write(L"good.spi.script",
                                  "answer:ConfigurationDlg:-1\ncrash:av:GetPluginInfo\n");
                    Press(dialog, cmdSPISetup);
                    EXPECT_NE(messages_.Only().find(L"good.spi の設定中"), std::wstring::npos);
                    EXPECT_EQ(column(2)[0], L"*.NEW");
                    SelectRow(dialog, listSPI, 1);
                    const std::wstring told = L"応答なし 1 回（最後: name & more.jpg）";
                    EXPECT_EQ(TextOf(dialog, labelSPIEnds), told);
                    EXPECT_EQ(column(3)[1], told);
                    Press(dialog, cmdSPISetup);
                    EXPECT_EQ(column(4)[1], L"隔離中");
                    EXPECT_NE(messages_.All().back().text.find(L"致命的エラー"),
                              std::wstring::npos);
                    EXPECT_EQ(column(5)[1], L"2");
                    EXPECT_EQ(Column(dialog, listSPIError, 0),
                              (Texts{L"GetFileSS, ConfigurationDlg", L"LoadLibrary"}));

                    SetFocus(GetDlgItem(dialog, cmdSPIErrorClear));
                    Press(dialog, cmdSPIErrorClear);
                    EXPECT_EQ(column(0)[0], L"config_crash.spi");
                    EXPECT_EQ(column(4), (Texts{L"未ロード", L"未ロード", L"停止中"}));
                    EXPECT_TRUE(Column(dialog, listSPIError, 0).empty());
                    EXPECT_EQ(TextOf(dialog, labelSPIEnds), L"");
                    EXPECT_TRUE(HasFocus(dialog, listSPI)) << "the button is grey now";

                    SelectRow(dialog, listSPI, 2);
                    EXPECT_FALSE(IsUsable(dialog, cmdApply) || IsUsable(dialog, cmdSPISetup));
                    Press(dialog, cmdSPIErrorClear);
                    EXPECT_EQ(column(4)[2], L"読み込み待ち");
                    Press(dialog, cmdApply);
                    EXPECT_EQ(SusieCollection().Count(), 3);
                    window_.SetPanelText(kNoticePanel, L"前回は config_crash.spi の処理中に");
                }});
    EXPECT_FALSE(IsLoaded(bad));
    EXPECT_EQ(ReadErrorCount(bad, {}), 0);
    EXPECT_EQ(Panel(kNoticePanel), L"") << "it is forgiven";
}

TEST_F(OptionsTest, ASettingsWindowMayStayOpenAndClose) {
    const std::wstring path = Plugin(L"iftst.spi", "dirty:modeless:ConfigurationDlg");
    Values().general.dynamicSPILoad = 1;
    ASSERT_TRUE(LoadSPI());
    int asked = -1;
    const auto calls = [&] { return Calls(path, "GetPluginInfo"); };
    ShowOptions(kPluginPage,
                {[&](HWND dialog) {
                     Press(dialog, cmdSPISetup);
                     EXPECT_EQ(Column(dialog, listSPI, 4)[0], L"保持");
                     asked = calls();
                     DestroyWindow(FindWindowW(nullptr, L"Test plug-in modeless window"));
                 },
                 // It posts a request to quit, which would end this dialog as well.
                 [](HWND dialog) { Press(dialog, IDCANCEL); }});
    EXPECT_GT(calls(), asked);  // what it reads may be set now
}

TEST_F(OptionsTest, ALongReloadIsToldAndCanBeStopped) {
    for (int i = 0; i < 20; ++i)
        Plugin(L"iftst.spi", "dirty:slow:DllMain", std::to_wstring(100 + i) + L".spi");
    folder_.Write(L"999.spi", "text");
    Values().general.useSPI = 0;
    ShowOptions(kPluginPage,
                {[](HWND dialog) {
                     Click(dialog, checkUseSPI);
                     PressLater(dialog, cmdApply);
                 },
                 [&](HWND progress) {
                     EXPECT_TRUE(TextOf(progress, progressSubject).starts_with(folder_.Path()));
                     Press(progress, IDCANCEL);
                     ShowWindow(progress, SW_HIDE);  // the next step is the options' own
                 },
                 [&](HWND dialog) {
                     const int loaded = SusieCollection().Count();
                     EXPECT_NE(
                         Panel(kNoticePanel).find(L"（" + std::to_wstring(loaded) + L" / 21）"),
                         std::wstring::npos);
                     EXPECT_TRUE(loaded > 0 && loaded < 20) << loaded;
                     EXPECT_EQ(std::ranges::count(Column(dialog, listSPI, 4), L"読み込み待ち"),
                               21 - loaded);
                     Press(dialog, IDOK);  // loads those that are waiting
                 }});
    EXPECT_EQ(Panel(kPluginCountPanel), L"20個のプラグイン");
    EXPECT_EQ(Panel(kNoticePanel), L"");
    EXPECT_EQ(Reloads(), 2);
}

TEST_F(OptionsTest, VersionWindowsTellWhatThereIs) {
    DrivenDialog user({[](HWND dialog) {
                           EXPECT_EQ(Column(dialog, aboutLibraries, 0)[1], L"libjpeg-turbo");
                           SelectRow(dialog, aboutLibraries, 1);
                           EXPECT_NE(TextOf(dialog, aboutLicence).find(L"JPEG Group"),
                                     std::wstring::npos);
                           Press(dialog, IDOK);
                       },
                       [](HWND dialog) {
                           const std::wstring second = Column(dialog, aboutPluginList, 0)[1];
                           SelectRow(dialog, aboutPluginList, 1);
                           const std::wstring facts = TextOf(dialog, aboutPluginFacts);
                           for (const std::wstring& fact : Texts{second, L"*.TST", L" バイト"})
                               EXPECT_NE(facts.find(fact), facts.npos) << fact;
                           Press(dialog, aboutPluginCopy);
                           EXPECT_TRUE(IsClipboardFormatAvailable(CF_UNICODETEXT));
                       }});
    window_.Commands().Run(menuHelpAbout);
    for (const wchar_t* const name : {L"1.spi", L"2.spi"})
        Plugin(L"minimal.spi", "info:2:*.TST", name);
    ASSERT_TRUE(LoadSPI());
    window_.Commands().Run(menuHelpSPIAbout);
    EXPECT_TRUE(user.IsDone());
}

}  // namespace
}  // namespace tessary::test
