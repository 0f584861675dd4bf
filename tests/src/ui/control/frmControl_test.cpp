// The real control bar and main window over real files, decoded by the finished program's helper
// libraries and by test plug-ins.
#include "ui/control/frmControl.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <filesystem>

#include "app/base/stay_awake.h"
#include "app/settings/settings_store.h"
#include "picture/current_picture.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "tests/plugins/test_plugins.h"
#include "tests/src/ui/run_until.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/distant_files.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"
#include "ui/control/panel_place.h"
#include "ui/form/message_loop.h"
#include "ui/form/screen.h"
#include "ui/form/timer.h"

namespace tessary {
namespace {

using test::RunUntil;
using List = std::vector<std::wstring>;

constexpr wchar_t kNotArchive[] = L"Not Archive File.";

List Items(const ListBox& list) {
    List items;
    for (int i = 0; i < list.Count(); ++i)
        items.push_back(list.Item(i));
    return items;
}

class ControlBarTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::LoadHelperLibraries(); }

    void SetUp() override {
        Values().general.useSPI = 1;
        SusieCollection().AddSPI(test::TestPluginPath(L"iftst.spi"));
        SusieCollection().AddSPI(test::TestPluginPath(L"axtsa.spi"));
        SaveSetting(L"Window", L"ControlBar_X", L"0");
        window_.SetControlBar(bar_);
        ASSERT_TRUE(window_.Load());
        ASSERT_TRUE(bar_.Load(window_.Handle()));
    }

    void TearDown() override {
        Values().readsUnderWay = 0;
        window_.Unload();
        DoEvents();
        UnloadSPI();
    }

    std::wstring Bitmap(const std::wstring& name, int width = 8) {
        return folder_.Write(name, test::BitmapFileOf(width, 6, RGB(1, 2, 3)));
    }
    std::wstring Archive(const std::wstring& name) {
        return folder_.Write(name,
                             "TSA\n"
                             "member\t13\t\tb10.tst\nmember\t12\t\tb9.tst\n"
                             "member\t6\t\treadme.txt\n\n"
                             "TST 10x4x24\n\nTST 9x4x24\n\nhello\n");
    }
    std::wstring Panel() const { return window_.statusInformation().PanelText(kShownFilePanel); }
    std::wstring Reason() const {
        wchar_t text[300]{};
        GetWindowTextW(window_.pictureView().Handle(), text, 300);
        return text;
    }
    std::wstring Info() const { return bar_.textFileInfo().Text(); }
    std::wstring Notice() const { return window_.statusInformation().PanelText(kNoticePanel); }
    int Selected() const { return bar_.listFileName().Selected(); }
    // A user's click on an entry of a list.
    static void Click(const ListBox& list, int index) {
        SendMessageW(list.Handle(), LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        SendMessageW(GetParent(list.Handle()), WM_COMMAND, MAKEWPARAM(0, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list.Handle()));
    }
    int HeightAt96Dpi() const {
        RECT frame{};
        GetWindowRect(bar_.Handle(), &frame);
        return MulDiv(frame.bottom - frame.top, 96, Metrics(bar_.Handle()).Dpi());
    }

    test::RedirectedSettings settings_;
    test::RecordedMessages messages_;
    test::TemporaryFolder folder_;
    frmMain window_{{.commandLine = {}, .pluginCount = [] { return 2; }, .endProgram = {}}};
    frmControl bar_{window_};
};

class FileListTest : public ControlBarTest {};
class StepTest : public ControlBarTest {};
class PlayerTest : public ControlBarTest {};

// What is asked for while a picture is being loaded.
class WishTest : public ControlBarTest {
  protected:
    void SetUp() override {
        ControlBarTest::SetUp();
        for (int i = 0; i < 8; ++i) {
            const std::wstring name = std::to_wstring(i) + (i == 1 ? L".tst" : L".bmp");
            files_.push_back(i == 1 ? folder_.Write(name, "TST 8x50x24\nprogress:9\n")
                                    : Bitmap(name, 10 + i));
        }
        bar_.SetFileList(files_);
    }
    // From now on the plug-in of file 1 lets nothing be heard before it is done.
    void MakeDeaf() { folder_.Write(L"1.tst", "TST 8x50x24\nprogress:0\n"); }
    // Loads file 1 and does what was posted in the middle of that.
    void LoadSlowly() {
        Sleep(25);  // so long a load keeps the messages waiting
        Click(bar_.listFileName(), 1);
    }
    void PostKey(WPARAM key, LPARAM repeat = 0) const {
        PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN, key, repeat);
    }
    void PostClick(int index) const {
        const HWND list = bar_.listFileName().Handle();
        PostMessageW(list, LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        PostMessageW(bar_.Handle(), WM_COMMAND, MAKEWPARAM(0, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(list));
    }
    bool Shows(int index) {
        return RunUntil([&] {
            return Selected() == index && Info().starts_with(L"[画像] " + std::to_wstring(index));
        });
    }

    List files_;
};

// The same with files that have to be fetched, but for the first; none of them ever comes.
class CloudTest : public WishTest {
  protected:
    void SetUp() override {
        WishTest::SetUp();
        cloud_.elsewhere = {files_.begin() + 1, files_.end()};
        cloud_.isStuck = true;
    }
    test::FakeDistantFiles cloud_;
};
class DeleteListTest : public ControlBarTest {};
class FoldTest : public ControlBarTest {};

class KeyTest : public ControlBarTest {
  protected:
    void SetUp() override {
        ControlBarTest::SetUp();
        bar_.SetFileList(
            List{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp"), Bitmap(L"4.bmp")});
        window_.Show();
        DoEvents();
    }
    // A key pressed where the focus is.
    static void Press(int key) {
        PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        DoEvents();
    }
    HWND View() const { return window_.pictureView().Handle(); }
};

TEST_F(FileListTest, ShowsTheFirstFileAndTellsEachKind) {
    const List files{Bitmap(L"一.bmp"), Archive(L"書庫.tsa"), folder_.Write(L"x.txt", "text")};
    EXPECT_FALSE(bar_.SetFileList({}));
    EXPECT_FALSE(bar_.IsVisible());
    EXPECT_TRUE(bar_.SetFileList(files));
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_EQ(Items(bar_.listFileName()), files);
    EXPECT_EQ(bar_.FileList(), files);
    EXPECT_EQ(Info(), L"[画像] 一.bmp ( 8×6 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 一.bmp ( 8×6 24bit )");
    EXPECT_EQ(Items(bar_.listArchiveFile()), List{kNotArchive});
    EXPECT_FALSE(bar_.listArchiveFile().IsEnabled());

    Click(bar_.listFileName(), 1);
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"b9.tst", L"b10.tst", L"readme.txt"}));
    EXPECT_TRUE(bar_.listArchiveFile().IsEnabled());
    EXPECT_EQ(Info(), L"[圧縮] 書庫.tsa - [画像] b9.tst ( 9×4 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 書庫.tsa - b9.tst書庫.tsa ( 9×4 24bit )");
    Click(bar_.listArchiveFile(), 2);
    EXPECT_EQ(Info(), L"[圧縮] 書庫.tsa - [未知] readme.txt");
    EXPECT_EQ(Panel(), Info());
    EXPECT_FALSE(window_.PictureShown());

    Click(bar_.listFileName(), 2);
    EXPECT_EQ(Info(), L"[未知] x.txt");
    EXPECT_FALSE(Values().pictureLoading);
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(FileListTest, AMinimisedWindowsBarComesWithIt) {
    window_.Show();
    ShowWindow(window_.Handle(), SW_MINIMIZE);
    bar_.SetFileList(List{Bitmap(L"1.bmp")});
    EXPECT_FALSE(bar_.IsVisible());
    ShowWindow(window_.Handle(), SW_RESTORE);
    EXPECT_TRUE(bar_.IsVisible());
}

TEST_F(FileListTest, TakesTheEntriesUpToTheLimitAndLeavesOutEmptyOnes) {
    List files(32100, folder_.Path() + L"gone.bmp");
    files[1].clear();
    files.back() = L"beyond";
    // The list was filled although nothing can be shown; what vanished leaves the flag.
    EXPECT_TRUE(bar_.SetFileList(files));
    EXPECT_EQ(bar_.listFileName().Count(), 32001);
    EXPECT_EQ(Notice(), L"32002 個を超えたため、後の 98 個は一覧に入りません。");
    bar_.SetFileList(List{Bitmap(L"1.bmp")});
    EXPECT_EQ(Notice(), L"");
    bar_.SetFileList(files);
    EXPECT_TRUE(Values().pictureLoading);
    // The window can be closed nevertheless.
    const HWND main = window_.Handle();
    window_.Unload();
    EXPECT_FALSE(IsWindow(main));
}

TEST_F(FileListTest, ClosingDuringALoadClosesWhenItEnds) {
    const HWND main = window_.Handle();
    bar_.SetFileList(List{Bitmap(L"1.bmp"), folder_.Write(L"2.tst", "TST 8x50x24\nprogress:9\n")});
    Sleep(25);  // so long a load keeps the messages waiting
    PostMessageW(main, WM_CLOSE, 0, 0);
    Click(bar_.listFileName(), 1);
    EXPECT_TRUE(Values().quitRequested);
    EXPECT_TRUE(IsWindow(main));
    EXPECT_TRUE(RunUntil([&] { return !IsWindow(main); }));
    EXPECT_EQ(bar_.Handle(), nullptr);
    EXPECT_TRUE(messages_.All().empty());
}

// The picture of another file never stays, and nobody is stopped by a message box.
TEST_F(FileListTest, WhatCannotBeShownLeavesTheViewEmpty) {
    const std::wstring gone = Bitmap(L"gone.bmp");
    const List files{Bitmap(L"1.bmp"), gone,
                     folder_.Write(L"b.tst", "TST 8x8x24\ncrash:av:GetPicture\n"),
                     folder_.Write(L"none.tsa", "TSA\n\n")};
    bar_.SetFileList(files);
    std::filesystem::remove(gone);
    for (const auto& [index, told] :
         {std::pair{1, L"[未知] gone.bmp"}, {2, L"[未知] b.tst"}, {3, L"[圧縮] none.tsa"}}) {
        Click(bar_.listFileName(), 0);
        EXPECT_TRUE(window_.PictureShown());
        EXPECT_EQ(Reason(), L"");
        Click(bar_.listFileName(), index);
        EXPECT_FALSE(window_.PictureShown()) << told;
        EXPECT_FALSE(CurrentPicture()) << told;
        EXPECT_NE(Reason(), L"") << told;
        EXPECT_EQ(Info(), told);
        EXPECT_EQ(Panel(), told);
        EXPECT_EQ(Values().pictureLoading, index == 1) << told;  // what vanished leaves it
        EXPECT_EQ(Items(bar_.listArchiveFile()), index == 3 ? List{} : List{kNotArchive}) << told;
        EXPECT_FALSE(bar_.listArchiveFile().IsEnabled()) << told;
        EXPECT_EQ(bar_.Failure().empty(), index == 1) << told;
    }
    EXPECT_FALSE(bar_.SetFileList({}));
    EXPECT_EQ(Info() + Panel(), L"");
    EXPECT_TRUE(messages_.All().empty());
}

// Some plug-ins let nothing be painted before they are done.
TEST_F(FileListTest, TellsOfALoadBeforeThePluginIsCalled) {
    bar_.SetFileList(List{Bitmap(L"1.bmp"), folder_.Write(L"2.tst", "TST 8x8x24\nprogress:0\n")});
    window_.Show();
    DoEvents();
    List painted;
    const auto record = [&](const auto& text) {
        return [&](UINT message, WPARAM, LPARAM) -> std::optional<LRESULT> {
            if (message == WM_PAINT) painted.push_back(text());
            return std::nullopt;
        };
    };
    const auto panel = [&] { return Panel(); };
    const auto info = [&] { return Info(); };
    WindowProcedureHook ofPanel;
    WindowProcedureHook ofInfo;
    ofPanel.Install(window_.statusInformation().Handle(), record(panel));
    ofInfo.Install(bar_.textFileInfo().Handle(), record(info));
    window_.Breathe();  // the load does not, so soon behind
    Click(bar_.listFileName(), 1);
    ASSERT_GE(painted.size(), 2u);
    EXPECT_EQ(painted[0], L"[読み込み中]2.tst");
    EXPECT_EQ(painted[1], painted[0]);
}

TEST_F(FileListTest, AStoppedLoadLeavesNothing) {
    bar_.SetFileList(List{Bitmap(L"1.bmp"), folder_.Write(L"2.tst", "TST 8x50x24\nprogress:9\n")});
    const auto escapeALoad = [&] {
        Sleep(25);  // so long a load keeps the messages waiting
        PostMessageW(window_.Handle(), WM_COMMAND, commandEscape, 0);
        Click(bar_.listFileName(), 1);
    };
    escapeALoad();
    EXPECT_EQ(Info(), L"[中止] 2.tst");
    EXPECT_EQ(Panel(), L"[中止] 2.tst");
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(bar_.listFileName().IsEnabled());
    // During a show it is the show that stops.
    Values().general.slideShowTime = 10000;
    bar_.Press(BarButton::kPlay);
    escapeALoad();
    EXPECT_EQ(Info(), L"[画像] 2.tst ( 8×50 24bit )");
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(StepTest, LeavesOutUnknownFilesAndTreatsTheEndsDifferently) {
    const std::wstring text = folder_.Write(L"a.txt", "text");
    const List files{text, Bitmap(L"1.bmp"), text, Archive(L"2.tsa"), Bitmap(L"3.bmp"), text};
    bar_.SetFileList(files);
    for (const int expected : {1, 3, 3, 3, 4}) {
        EXPECT_TRUE(bar_.ListIndexForwardOne());
        EXPECT_EQ(Selected(), expected);
    }
    EXPECT_FALSE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Selected(), 5);  // the last, although unknown
    EXPECT_FALSE(bar_.ListIndexForwardOne());
    for (const int expected : {4, 3, 1}) {
        EXPECT_TRUE(bar_.ListIndexBackOne());
        EXPECT_EQ(Selected(), expected);
    }
    EXPECT_FALSE(bar_.ListIndexBackOne());
    EXPECT_EQ(Selected(), -1);
    EXPECT_FALSE(bar_.ListIndexBackOne());
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Selected(), 1);
}

TEST_F(WishTest, StepsAddUpAndALaterClickWins) {
    for (int i = 0; i < 4; ++i)
        PostKey(VK_RETURN);
    LoadSlowly();
    EXPECT_EQ(Info(), L"[画像] 1.tst ( 8×50 24bit )");
    EXPECT_TRUE(Shows(5));
    for (int i = 0; i < 4; ++i)
        PostKey(VK_RETURN, LPARAM{KF_REPEAT} << 16);  // held down
    LoadSlowly();
    EXPECT_TRUE(Shows(2));
    PostKey(VK_RETURN);
    PostClick(5);
    PostKey(VK_RETURN);
    LoadSlowly();
    EXPECT_TRUE(Shows(6));
    // Beyond the ends there is nothing to skip to.
    for (int i = 0; i < 9; ++i)
        PostKey(VK_RETURN);
    LoadSlowly();
    EXPECT_TRUE(Shows(7));
    // Stop takes everything back.
    PostKey(VK_RETURN);
    PostMessageW(window_.Handle(), WM_COMMAND, menuControl_2, 0);
    LoadSlowly();
    DoEvents();
    EXPECT_FALSE(RunUntil([&] { return Selected() != 1; }, 100));
}

TEST_F(WishTest, MotionAndCommandsWaitToo) {
    bar_.Press(BarButton::kFastForward);
    PostKey(VK_RETURN);  // stops the run behind the step
    Sleep(25);
    Values().general.slideShowTime = 0;
    EXPECT_TRUE(RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; }));
    EXPECT_LT(Selected(), 7);
    PostMessageW(window_.Handle(), WM_COMMAND, menuEditClear, 0);
    LoadSlowly();
    EXPECT_TRUE(window_.PictureShown());
    EXPECT_TRUE(RunUntil([&] { return !window_.PictureShown(); }));
    EXPECT_EQ(Info() + Panel(),
              L"2個のプラグイン");  // nothing of the file that is gone from the view
    PostMessageW(window_.Handle(), WM_COMMAND, menuControl_3, 0);  // 再生
    LoadSlowly();
    EXPECT_TRUE(Shows(7));
}

// Not the file that comes up next, which the user has not seen yet.
TEST_F(WishTest, DeleteTakesWhatIsSeen) {
    MakeDeaf();
    bar_.SetVisible(false);
    for (int i = 0; i < 2; ++i)
        PostMessageW(window_.Handle(), WM_COMMAND, commandAddToDeleteList, 0);
    LoadSlowly();
    EXPECT_TRUE(RunUntil([&] { return bar_.listDelete().Count() > 0; }));
    EXPECT_EQ(Items(bar_.listDelete()), List{files_[0]});
    EXPECT_EQ(Selected(), 0);  // which is the slow one now
    EXPECT_EQ(window_.pictureView().Note(), L"削除リストに追加しました（1 個）: 0.bmp");
    bar_.PictureReplaced(L"pasted");
    EXPECT_EQ(Info(), L"pasted");
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(bar_.listDelete().Count(), 1);
}

TEST_F(WishTest, WhatIsPutBackIsNotDeletedAfterwards) {
    bar_.Press(BarButton::kDeleteList);
    Click(bar_.listFileName(), 1);
    int asked = 0;
    SetMessageBoxResponder([&](const std::wstring&, unsigned, const std::wstring&) {
        ++asked;
        return IDCANCEL;
    });
    for (const wchar_t* const button : {L"ディスクから削除(&D)", L"取り消し(&U)"})
        PostMessageW(FindWindowExW(bar_.Handle(), nullptr, L"BUTTON", button), BM_CLICK, 0, 0);
    PostClick(2);
    Sleep(25);
    Click(bar_.listFileName(), 0);
    EXPECT_TRUE(RunUntil([&] { return Info().starts_with(L"[画像] 3"); }));
    EXPECT_EQ(asked, 0);
}

TEST_F(WishTest, EscapeDuringALoadMeansTheLoad) {
    MakeDeaf();
    bar_.Press(BarButton::kDeleteList);
    const auto isFull = [&] { return GetMenu(window_.Handle()) == nullptr; };
    window_.Commands().Run(commandFullScreen);
    for (int i = 0; i < 2; ++i)
        PostKey(VK_ESCAPE);
    Sleep(25);
    Click(bar_.listFileName(), 0);
    DoEvents();
    EXPECT_TRUE(isFull());
    EXPECT_EQ(Info(), L"[中止] 1.tst");
    // Too late to stop it.
    window_.OnPictureShownChanged([&] {
        PostKey(VK_ESCAPE);
        Sleep(25);
    });
    Click(bar_.listFileName(), 0);
    DoEvents();
    EXPECT_TRUE(isFull());
    EXPECT_EQ(Info(), L"[画像] 1.tst ( 8×50 24bit )");
    window_.OnPictureShownChanged({});
    PostKey(VK_ESCAPE);
    DoEvents();
    EXPECT_FALSE(isFull());
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(CloudTest, OnlyWhatTheUserStaysWithIsFetched) {
    std::wstring told;
    std::function<void()> doMeanwhile;
    Timer user([&] {
        if (cloud_.waiting == 0 || !Notice().starts_with(L"クラウドから取得しています")) return;
        told = Notice();
        doMeanwhile();
    });
    user.Start(10);
    for (int i = 0; i < 4; ++i)
        PostKey(VK_RETURN);
    doMeanwhile = [&] { PostKey(VK_ESCAPE); };
    LoadSlowly();
    EXPECT_TRUE(RunUntil([&] { return Info() == L"[中止] 5.bmp"; })) << Info();
    EXPECT_EQ(told, L"クラウドから取得しています（Esc で中止）");
    EXPECT_EQ(cloud_.pieces, 1);
    // What is left behind keeps nobody from the next.
    doMeanwhile = [&] { PostClick(0); };
    Click(bar_.listFileName(), 6);
    EXPECT_TRUE(Shows(0));
    EXPECT_EQ(cloud_.pieces, 2);
    // A fast motion fetches nothing but what it ends with.
    cloud_.isStuck = false;
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(Shows(7));
    EXPECT_EQ(cloud_.pieces, 4);  // one more for the end of the file
    cloud_.elsewhere.insert(files_[0]);
    bar_.Press(BarButton::kRewind);
    EXPECT_TRUE(Shows(0));
    EXPECT_EQ(cloud_.pieces, 6);
    // There is nothing to step to.
    cloud_.isStuck = true;
    doMeanwhile = [&] {
        PostKey(VK_RETURN);
        cloud_.isStuck = false;
    };
    Click(bar_.listFileName(), 7);
    EXPECT_TRUE(Shows(7));
    EXPECT_EQ(cloud_.pieces, 8);
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(PlayerTest, PlaysToTheEndAndStops) {
    Values().general.slideShowTime = 0;
    bar_.SetFileList(List{Bitmap(L"1.bmp"), Archive(L"2.tsa"), Bitmap(L"3.bmp")});
    bar_.Press(BarButton::kPlay);
    EXPECT_FALSE(bar_.CoolBar().IsButtonEnabled(static_cast<int>(BarButton::kDeleteList)));
    EXPECT_EQ(bar_.PlayMode(), BarButton::kPlay);
    EXPECT_TRUE(RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; }));
    EXPECT_EQ(Selected(), 2);
    EXPECT_TRUE(bar_.CoolBar().IsButtonEnabled(static_cast<int>(BarButton::kDeleteList)));
    bar_.Press(BarButton::kRewind);
    EXPECT_TRUE(RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; }));
    EXPECT_EQ(Selected(), -1);
    EXPECT_EQ(Info(), L"[画像] 1.bmp ( 8×6 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 1.bmp ( 8×6 24bit )");
}

TEST_F(PlayerTest, StepsStopTheShowAndFailuresDoNot) {
    Values().general.slideShowTime = 0;
    const std::wstring broken = folder_.Write(L"b.tst", "TST 8x8x24\ncrash:av:GetPicture\n");
    bar_.SetFileList(List{Bitmap(L"1.bmp"), broken, broken, Bitmap(L"4.bmp", 16)});
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(RunUntil([&] { return Selected() == 3; }));
    EXPECT_TRUE(messages_.All().empty());
    EXPECT_TRUE(RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; }));
    EXPECT_EQ(Info(), L"[画像] 4.bmp ( 16×6 24bit )");
    bar_.Press(BarButton::kReversePlay);
    bar_.Press(BarButton::kStepBack);
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    EXPECT_EQ(Selected(), 2);
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(PlayerTest, DeleteDuringAShowTakesWhatIsSeen) {
    Values().general.slideShowTime = 10000;
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")};
    bar_.SetFileList(files);
    const auto pressDelete = [&] {
        window_.Commands().Run(commandAddToDeleteList);
        return RunUntil([&] { return bar_.listDelete().Count() > 0; }, 500);
    };
    bar_.Press(BarButton::kFastForward);
    EXPECT_FALSE(pressDelete());
    EXPECT_EQ(window_.pictureView().Note(),
              L"早送りや巻き戻しを止めてから、もう一度押してください。");
    bar_.SetFileList(files);
    bar_.Press(BarButton::kPlay);
    EXPECT_TRUE(pressDelete());
    EXPECT_EQ(Items(bar_.listDelete()), List{files[0]});
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");
    EXPECT_EQ(bar_.PlayMode(), BarButton::kPlay);
    EXPECT_FALSE(RunUntil([&] { return Selected() != 0; }, 100));  // it is shown as long as others
}

TEST_F(PlayerTest, KeepsTheScreenOnWhileAShowIsSeen) {
    int screens = 0;
    SetAwakeObserver([&](AwakeNeed need, bool isOn) {
        if (need == AwakeNeed::kScreen) screens += isOn ? 1 : -1;
    });
    const auto becomes = [&](int count) { return RunUntil([&] { return screens == count; }); };
    Values().general.slideShowTime = 20000;
    window_.Show();
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")};
    bar_.SetFileList(files);
    EXPECT_EQ(screens, 0);
    bar_.Press(BarButton::kReversePlay);
    bar_.Press(BarButton::kPlay);  // still one show
    EXPECT_EQ(screens, 1);
    EnableWindow(window_.Handle(), FALSE);  // behind a dialog
    EXPECT_TRUE(becomes(0));
    EnableWindow(window_.Handle(), TRUE);
    EXPECT_TRUE(becomes(1));
    ShowWindow(window_.Handle(), SW_MINIMIZE);
    EXPECT_TRUE(becomes(0));
    ShowWindow(window_.Handle(), SW_RESTORE);
    EXPECT_TRUE(becomes(1));
    for (const BarButton end : {BarButton::kStop, BarButton::kStepForward}) {
        bar_.Press(BarButton::kPlay);
        EXPECT_EQ(screens, 1);
        bar_.Press(end);
        EXPECT_EQ(screens, 0);
    }
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(becomes(0)) << "at the end of the list";
    bar_.SetFileList(files);
    bar_.Press(BarButton::kPlay);
    window_.Unload();
    EXPECT_EQ(screens, 0);
    SetAwakeObserver({});
}

TEST_F(PlayerTest, DisplaySizesGoRound) {
    Values().fixSizeValue = 3;
    bar_.SetFileList(List{Bitmap(L"1.bmp")});
    for (const int expected : {4, 0, 1}) {
        bar_.Press(BarButton::kDisplaySize);
        EXPECT_EQ(Values().fixSizeValue, expected);
    }
    EXPECT_EQ(window_.pictureView().PictureSize().cx, 640);  // at once, not with the next file
}

TEST_F(DeleteListTest, MovesFilesOutAndBack) {
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(messages_.Only(),
              L"ファイルが選択されていません。削除するファイルをリストから選んでください。");
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")};
    bar_.SetFileList(files);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(HeightAt96Dpi(), 270);
    EXPECT_FALSE(bar_.CoolBar().IsButtonEnabled(static_cast<int>(BarButton::kFold)));
    EXPECT_EQ(Selected(), 0);  // the next one is up
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(Items(bar_.listDelete()), (List{files[0], files[1]}));

    SendMessageW(bar_.listDelete().Handle(), LB_SETCURSEL, 0, 0);
    SendMessageW(bar_.Handle(), WM_COMMAND, MAKEWPARAM(0, LBN_DBLCLK),
                 reinterpret_cast<LPARAM>(bar_.listDelete().Handle()));
    EXPECT_EQ(Items(bar_.listFileName()), (List{files[2], files[0]}));
    bar_.Press(BarButton::kCancelDelete);
    EXPECT_EQ(Items(bar_.listFileName()), (List{files[2], files[0], files[1]}));
    EXPECT_EQ(HeightAt96Dpi(), 130);
    EXPECT_TRUE(bar_.CoolBar().IsButtonEnabled(static_cast<int>(BarButton::kFold)));
}

TEST_F(DeleteListTest, DeletesAndLetsTheUserDecideAboutFailures) {
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp"), Bitmap(L"4.bmp")};
    SetFileAttributesW(files[2].c_str(), FILE_ATTRIBUTE_READONLY);
    bar_.SetFileList(files);
    for (int i = 0; i < 3; ++i)
        bar_.Press(BarButton::kDeleteList);
    UniqueFile locked(CreateFileW(files[1].c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, 0, nullptr));
    std::vector<int> answers{IDIGNORE, IDOK};  // from the last one on
    std::vector<unsigned> styles;
    SetMessageBoxResponder([&](const std::wstring&, unsigned style, const std::wstring&) {
        styles.push_back(style);
        // Too late for this question, and for every other while the deletion runs.
        if (styles.size() <= 2) bar_.Press(BarButton::kDeleteList);
        const int answer = answers.back();
        if (answer == IDRETRY) locked.Reset();
        if (answers.size() > 1) answers.pop_back();
        return answer;
    });
    const HWND cmdOK = FindWindowExW(bar_.Handle(), nullptr, L"BUTTON", L"ディスクから削除(&D)");
    const auto pressOK = [&] { SendMessageW(cmdOK, BM_CLICK, 0, 0); };
    pressOK();
    EXPECT_EQ(styles, (std::vector<unsigned>{65 | MB_DEFBUTTON2, 18}));
    EXPECT_EQ(Items(bar_.listDelete()), (List{files[1], files[3]}));
    EXPECT_TRUE(std::filesystem::exists(files[3]));
    EXPECT_FALSE(std::filesystem::exists(files[2]));
    EXPECT_EQ(HeightAt96Dpi(), 270);
    answers = {IDRETRY, IDOK};
    pressOK();
    EXPECT_FALSE(std::filesystem::exists(files[1]));
    EXPECT_FALSE(std::filesystem::exists(files[3]));
    EXPECT_EQ(HeightAt96Dpi(), 130);
}

// What has become of a file since it was marked counts, not what it is called.
TEST_F(DeleteListTest, DeletesOnlyWhatWasMarked) {
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp"), Bitmap(L"4.bmp"),
                     Bitmap(L"5.bmp")};
    const std::wstring again = folder_.Path() + LR"(.\)" + L"4.BMP";
    List listed = files;
    listed.push_back(again);
    bar_.SetFileList(listed);
    for (int i = 0; i < 4; ++i)
        bar_.Press(BarButton::kDeleteList);
    Click(bar_.listFileName(), 1);
    bar_.FileSaved(folder_.Path() + L"1.BMP");
    EXPECT_EQ(window_.pictureView().Note(), L"保存したので、削除リストから一覧に戻しました: 1.bmp");
    EXPECT_EQ(Items(bar_.listDelete()), (List{files[1], files[2], files[3]}));
    EXPECT_EQ(Items(bar_.listFileName()), (List{files[4], again, files[0]}));

    folder_.Write(L"2.bmp", test::BitmapFileOf(9, 9, RGB(1, 2, 3)));
    std::filesystem::remove(files[2]);
    List questions;
    SetMessageBoxResponder([&](const std::wstring& text, unsigned, const std::wstring&) {
        questions.push_back(text);
        return questions.size() == 1 ? IDOK : IDNO;
    });
    const HWND cmdOK = FindWindowExW(bar_.Handle(), nullptr, L"BUTTON", L"ディスクから削除(&D)");
    SendMessageW(cmdOK, BM_CLICK, 0, 0);
    ASSERT_EQ(questions.size(), 2u);
    EXPECT_NE(questions[1].find(L"2.bmp は、削除リストに入れた後に変更"), std::wstring::npos);
    EXPECT_TRUE(std::filesystem::exists(files[1]));
    EXPECT_FALSE(std::filesystem::exists(files[3]));
    EXPECT_EQ(HeightAt96Dpi(), 130);
    EXPECT_EQ(Items(bar_.listFileName()), (List{files[4], files[0], files[1]}));
    EXPECT_EQ(Info(), L"[画像] 1.bmp ( 8×6 24bit )");  // in the place of the one that was shown

    bar_.SetFileList(List{files[0], again, folder_.Path() + L"1.BMP"});
    Click(bar_.listFileName(), 2);
    bar_.Press(BarButton::kDeleteList);
    Click(bar_.listFileName(), 0);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(bar_.listDelete().Count(), 1);
    EXPECT_EQ(window_.pictureView().Note(), L"1.bmp は、もう削除リストにあります。");
    bar_.Press(BarButton::kCancelDelete);  // the answers to further questions end here
}

TEST_F(KeyTest, StepFromEveryPart) {
    const auto stepsHere = [&](const char* where) {
        int at = Selected();
        for (const auto& [key, step] :
             {std::pair{VK_NEXT, 1}, {VK_BACK, -1}, {VK_NEXT, 1}, {VK_PRIOR, -1}}) {
            Press(key);
            EXPECT_EQ(Selected(), at += step) << where;
        }
    };
    bar_.listFileName().SetFocus();
    stepsHere("files");
    Press(VK_SPACE);
    Press(VK_RETURN);
    EXPECT_EQ(Selected(), 2);
    bar_.textFileInfo().SetFocus();
    stepsHere("information");
    bar_.CoolBar().SetFocus();
    stepsHere("toolbar");
    bar_.listFileName().SetFocus();
    Press('F');  // no button is under the keys then
    EXPECT_EQ(GetFocus(), bar_.Handle());
    stepsHere("folded");
    Press(VK_RETURN);
    EXPECT_EQ(Selected(), 3);
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    Press('F');
    EXPECT_EQ(GetFocus(), bar_.listFileName().Handle());
}

TEST_F(KeyTest, EnterBehindACancelledDeletionStepsOn) {
    int asked = 0;
    SetMessageBoxResponder([&](const std::wstring&, unsigned, const std::wstring&) {
        ++asked;
        return IDCANCEL;
    });
    bar_.Press(BarButton::kDeleteList);
    ::SetFocus(FindWindowExW(bar_.Handle(), nullptr, L"BUTTON", L"ディスクから削除(&D)"));
    PostMessageW(GetFocus(), WM_KEYDOWN, VK_RETURN, LPARAM{KF_REPEAT} << 16);  // held down
    DoEvents();
    EXPECT_EQ(asked, 0);
    for (const int step : {0, 1, 2}) {
        Press(VK_RETURN);
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(Selected(), step);
    }
}

TEST_F(KeyTest, ScreenReadersFindNames) {
    const auto nameOf = [](HWND window) -> std::wstring {
        IAccessible* object = nullptr;
        if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT),
                                              IID_IAccessible,
                                              reinterpret_cast<void**>(&object)))) {
            return L"(no object)";
        }
        VARIANT self{};
        self.vt = VT_I4;
        self.lVal = CHILDID_SELF;
        BSTR name = nullptr;
        object->get_accName(self, &name);
        object->Release();
        std::wstring text = name != nullptr ? name : L"(no name)";
        SysFreeString(name);
        return text;
    };
    EXPECT_EQ(nameOf(bar_.textFileInfo().Handle()), L"表示中のファイル");
    EXPECT_EQ(nameOf(bar_.listFileName().Handle()), L"ファイルの一覧");
    EXPECT_EQ(nameOf(bar_.listArchiveFile().Handle()), L"圧縮ファイルの中身");
    EXPECT_EQ(nameOf(bar_.listDelete().Handle()), L"削除リスト");
    EXPECT_EQ(nameOf(bar_.CoolBar().Handle()), L"操作ボタン");
}

TEST_F(KeyTest, PanelOpenedOnTheFullScreenLeavesTheTitleInSight) {
    SetWindowPos(window_.Handle(), nullptr, 200, 340, 600, 300, SWP_NOZORDER);
    SetWindowPos(bar_.Handle(), nullptr, 200, 200, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    window_.Commands().Run(commandFullScreen);
    Press(VK_DELETE);
    window_.Commands().Run(commandFullScreen);
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_EQ(HeightAt96Dpi(), 270);
    RECT bar{};
    RECT main{};
    RECT hidden{};
    GetWindowRect(bar_.Handle(), &bar);
    GetWindowRect(window_.Handle(), &main);
    main.bottom = main.top + 20;
    EXPECT_FALSE(IntersectRect(&hidden, &bar, &main));
}

TEST_F(KeyTest, TabGoesRoundBothWindowsAndF6Between) {
    const auto round = [&] {
        std::vector<HWND> stops;
        window_.TakeFocus();
        do {
            Press(VK_TAB);
            stops.push_back(GetFocus());
        } while (GetFocus() != View() && stops.size() < 20);
        return stops;
    };
    const HWND toolbar = bar_.CoolBar().Handle();
    const HWND info = bar_.textFileInfo().Handle();
    const HWND files = bar_.listFileName().Handle();
    EXPECT_EQ(round(), (std::vector<HWND>{toolbar, info, files, View()}));
    Press(VK_F6);
    EXPECT_EQ(GetFocus(), files);
    Press(VK_F6);
    EXPECT_EQ(GetFocus(), View());
    bar_.SetVisible(false);
    Press(VK_TAB);
    Press(VK_F6);
    EXPECT_EQ(GetFocus(), View());
    bar_.SetVisible(true);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(round().size(), 8u);  // the panel's list and buttons too
    bar_.Press(BarButton::kCancelDelete);
    bar_.Press(BarButton::kFold);
    EXPECT_EQ(round(), (std::vector<HWND>{toolbar, View()}));
    Press(VK_F6);
    EXPECT_TRUE(bar_.CoolBar().HasFocus() || GetFocus() == bar_.Handle());
    PostMessageW(GetFocus(), WM_SYSKEYDOWN, VK_F4, 1 << 29);  // with Alt
    DoEvents();
    EXPECT_EQ(window_.Handle(), nullptr);
}

TEST_F(DeleteListTest, NothingIsDroppedUnasked) {
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")};
    bar_.SetFileList(files);
    bar_.Press(BarButton::kDeleteList);
    bar_.Press(BarButton::kDeleteList);
    EXPECT_NE(FindWindowExW(bar_.Handle(), nullptr, L"STATIC", L"2 個のファイル"), nullptr);
    int answer = IDNO;
    int asked = 0;
    SetMessageBoxResponder([&](const std::wstring& text, unsigned, const std::wstring&) {
        ++asked;
        EXPECT_NE(text.find(L" 2 個"), std::wstring::npos) << text;
        return answer;
    });
    const HWND main = window_.Handle();
    const auto escape = [&] { SendMessageW(main, WM_COMMAND, commandEscape, 0); };
    escape();
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(bar_.listDelete().Count(), 2);
    // A show is nearer to the user.
    Values().general.slideShowTime = 10000;
    bar_.Press(BarButton::kPlay);
    escape();
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
    EXPECT_EQ(asked, 1);
    answer = IDCANCEL;
    SendMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(asked, 2);
    EXPECT_TRUE(IsWindow(main));
    EXPECT_FALSE(Values().quitRequested);
    // Another attempt while what cannot be deleted is being told.
    {
        const UniqueFile locked(CreateFileW(files[1].c_str(), GENERIC_READ, FILE_SHARE_READ,
                                            nullptr, OPEN_EXISTING, 0, nullptr));
        SetMessageBoxResponder([&](const std::wstring&, unsigned style, const std::wstring&) {
            if ((style & MB_TYPEMASK) == MB_YESNOCANCEL) return IDYES;
            SendMessageW(main, WM_CLOSE, 0, 0);
            return IDABORT;
        });
        SendMessageW(main, WM_CLOSE, 0, 0);
        EXPECT_TRUE(IsWindow(main));
        EXPECT_FALSE(Values().quitRequested);
    }
    SetMessageBoxResponder([&](const auto&, unsigned, const auto&) { return IDYES; });
    escape();
    EXPECT_EQ(Items(bar_.listFileName()), (List{files[2], files[0], files[1]}));
    bar_.Press(BarButton::kDeleteList);
    bar_.Press(BarButton::kDeleteList);
    SendMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(main));
    EXPECT_FALSE(std::filesystem::exists(files[2]));
    EXPECT_TRUE(std::filesystem::exists(files[1]));
}

TEST(PanelPlaceTest, KeepsToolbarWorkAreaAndTitle) {
    const RECT work{0, 0, 1000, 700};
    const RECT title{200, 300, 800, 350};
    struct Case {
        POINT bar, frame;
        bool above;
    };
    for (const Case& c : {Case{{10, 10}, {10, 10}, false},         // there is room below
                          Case{{200, 160}, {200, 20}, true},       // the title is below
                          Case{{200, 560}, {200, 420}, true},      // the screen ends below
                          Case{{200, 80}, {200, 30}, false},       // no room above either
                          Case{{900, 560}, {520, 430}, false},     // beyond the right edge
                          Case{{250, 320}, {250, 350}, false}}) {  // upon the title
        const RECT bar{c.bar.x, c.bar.y, c.bar.x + 480, c.bar.y + 130};
        const PanelPlace place = PlacePanel(bar, 270, 140, work, title);
        EXPECT_EQ(place.frame.left, c.frame.x) << c.bar.x << " " << c.bar.y;
        EXPECT_EQ(place.frame.top, c.frame.y) << c.bar.x << " " << c.bar.y;
        EXPECT_EQ(place.frame.bottom - place.frame.top, 270);
        EXPECT_EQ(place.above, c.above) << c.bar.x << " " << c.bar.y;
    }
}

TEST_F(FoldTest, FoldingDuringAFastRunLeavesNoListBehind) {
    bar_.SetFileList(List{Bitmap(L"1.bmp"), folder_.Write(L"2.tst", "TST 8x8x24\n")});
    bar_.Press(BarButton::kFold);
    Sleep(25);  // so long a load keeps the messages waiting
    PostMessageW(window_.Handle(), WM_COMMAND, menuControl_5, 0);
    bar_.Press(BarButton::kFastForward);
    EXPECT_TRUE(RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; }));
    EXPECT_FALSE(bar_.IsRollUp());
    EXPECT_TRUE(IsWindowVisible(bar_.listFileName().Handle()));
}

TEST_F(FoldTest, StateAndPlaceAreKept) {
    EXPECT_EQ(HeightAt96Dpi(), 130);
    bar_.Press(BarButton::kFold);
    EXPECT_EQ(HeightAt96Dpi(), 28);
    EXPECT_FALSE(IsWindowVisible(bar_.listFileName().Handle()));
    SetWindowPos(bar_.Handle(), nullptr, 40, 60, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    bar_.Unload();
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarRollUP"), L"True");
    EXPECT_EQ(GetSetting(L"Window", L"ControlBar_X"), L"600");
    EXPECT_EQ(GetSetting(L"Window", L"ControlBar_Y"), L"900");
    SaveSetting(L"Window", L"ControlBar_X", L"-50");
    ASSERT_TRUE(bar_.Load(window_.Handle()));
    RECT frame{};
    GetWindowRect(bar_.Handle(), &frame);
    EXPECT_EQ(frame.left, 0);
    EXPECT_EQ(frame.top, 60);
    EXPECT_EQ(HeightAt96Dpi(), 28);

    // Where the buttons would be out of reach it comes back when it is shown.
    const RECT work = ScreenOf(bar_.Handle()).rcWork;
    SetWindowPos(bar_.Handle(), nullptr, 40, work.bottom - 5, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    bar_.SetVisible(true);
    GetWindowRect(bar_.Handle(), &frame);
    EXPECT_EQ(frame.left, 40);
    EXPECT_EQ(frame.bottom, work.bottom);
}

}  // namespace
}  // namespace tessary
