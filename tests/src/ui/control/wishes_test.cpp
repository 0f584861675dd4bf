// What the user asks for while a picture is being loaded.
#include "host/host_connection.h"
#include "plugin/plugin_log.h"
#include "tests/plugins/test_plugins.h"
#include "tests/src/ui/control/control_bar_test.h"
#include "tests/support/distant_files.h"
#include "tests/support/finished_folder.h"
#include "ui/form/timer.h"
#include "ui/form/worker.h"

namespace tessary::test {
namespace {

class WishTest : public ControlBarTest {
  protected:
    void SetUp() override {
        ControlBarTest::SetUp();
        for (int i = 0; i < 8; ++i) {
            const std::wstring name = std::to_wstring(i);
            files_.push_back(i == 1 ? SlowPicture(L"1.tst") : Bitmap(name + L".bmp", 10 + i));
        }
        bar_.SetFileList(files_);
    }
    // From now on the plug-in of file 1 lets nothing be heard before it is done.
    void MakeDeaf() { folder_.Write(L"1.tst", "TST 8x50x24\nprogress:0\n"); }
    void PostCommand(int command) const {
        PostMessageW(window_.Handle(), WM_COMMAND, static_cast<WPARAM>(command), 0);
    }
    // N steps on, H with a key that is held down, B back, E is Esc, a digit clicks the entry.
    void Post(std::string_view wishes) const {
        for (const char wish : wishes) {
            if (wish >= '0' && wish <= '9') {
                Click(bar_.listFileName(), wish - '0', PostMessageW);
            } else {
                PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN,
                             wish == 'E'   ? VK_ESCAPE
                             : wish == 'B' ? VK_BACK
                                           : VK_RETURN,
                             wish == 'H' ? LPARAM{KF_REPEAT} << 16 : 0);
            }
        }
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
    FakeDistantFiles cloud_;
};

// The same with the plug-ins in a host process, where that of file 1 never comes back.
class HangTest : public WishTest {
  protected:
    HangTest() {
        SetPluginConnector([this](const std::wstring& plugin) {
            return std::make_unique<HostConnection>(plugin, hosts_);
        });
    }
    ~HangTest() override { SetPluginConnector({}); }
    void SetUp() override {
        WishTest::SetUp();
        folder_.Write(L"1.tst", "TST 8x50x24\nearly:sleep:GetPicture\n");
    }

    HostPool hosts_{
        FinishedFolder() + kHostProgram, {}, [](auto handles, DWORD milliseconds, bool) {
            WaitPainting(handles, milliseconds);
            return true;
        }};
};

TEST_F(HangTest, WhateverTheUserAsksForInsteadEndsIt) {
    Values().general.slideShowTime = 0;
    const auto hang = [&] {
        const ULONGLONG begin = GetTickCount64();
        LoadSlowly(1);
        EXPECT_LT(GetTickCount64() - begin, 10000u) << "the limit is twice that";
    };
    for (const auto& [wishes, shown] : {std::pair{"NNN", 4}, {"H", 2}, {"5", 5}}) {
        Post(wishes);
        hang();
        EXPECT_TRUE(Shows(shown)) << wishes;
    }
    Click(bar_.listFileName(), 0);
    PostCommand(menuControl_3);  // 再生
    Sleep(25);
    bar_.Press(BarButton::kStepForward);
    EXPECT_TRUE(Shows(7));
    bool isThere = false;
    window_.Commands().Register(menuOptionSetup, {.run = [&] { isThere = true; }});
    PostCommand(menuOptionSetup);
    hang();
    EXPECT_TRUE(RunUntil([&] { return isThere; }));
    window_.OpenLater({files_[6]});
    hang();
    EXPECT_TRUE(RunUntil([&] { return Info().starts_with(L"[画像] 6"); }));
    EXPECT_EQ(ReadErrorCount(TestPluginPath(L"iftst.spi"), {}), 0);
}

TEST_F(WishTest, StepsAddUpAndALaterClickWins) {
    for (const auto& [wishes, shown] : {std::pair{"NNNN", 5},
                                        {"HHHH", 2},
                                        {"N5N", 6},
                                        // Beyond the ends there is nothing to skip to.
                                        {"NNNNNNNNN", 7}}) {
        Post(wishes);
        LoadSlowly(1);
        EXPECT_EQ(Info(), L"[画像] 1.tst ( 8×50 24bit )");
        EXPECT_TRUE(Shows(shown)) << wishes;
    }
    // Stop takes everything back.
    Post("N");
    PostCommand(menuControl_2);
    LoadSlowly(1);
    EXPECT_FALSE(RunUntil([&] { return Selected() != 1; }, 100));
}

TEST_F(WishTest, StepsGoThroughEveryArchiveOnTheirWay) {
    const std::string slow = "TST 8x50x24\nprogress:9\n";
    List archives;
    for (const wchar_t* const name : {L"a.tsa", L"b.tsa", L"c.tsa"})
        archives.push_back(
            folder_.Write(name, ArchiveOf({{"1.tst", slow}, {"2.tst", slow}, {"3.tst", slow}})));
    // So long a load keeps the messages waiting.
    const auto loadMember = [&](int index) {
        Sleep(25);
        Click(bar_.listArchiveFile(), index);
    };
    const auto shows = [&](int file, int member) {
        return RunUntil([&] {
            return Selected() == file && bar_.listArchiveFile().Selected() == member &&
                   !IsReadUnderWay();
        });
    };
    Values().general.backToLast = 1;
    bar_.SetFileList(archives);
    for (const auto& [wishes, file, member] : {std::tuple{"NNNNN", 1, 2}, {"NNNNNNN", 2, 1}}) {
        Click(bar_.listFileName(), 0);
        Post(wishes);
        loadMember(0);
        EXPECT_TRUE(shows(file, member)) << wishes;
    }
    Post("BBBBB");
    loadMember(1);
    EXPECT_TRUE(shows(0, 2));
    // A click, and steps behind it.
    Post("1NN");
    loadMember(0);
    EXPECT_TRUE(shows(1, 2));
}

TEST_F(WishTest, AStepThatComesBeforeTheWishIsCarriedOutCountsToo) {
    const std::string slow = "TST 8x50x24\nprogress:9\n";
    bar_.SetFileList(List{folder_.Write(
        L"a.tsa",
        ArchiveOf({{"1.tst", slow}, {"2.tst", slow}, {"3.tst", slow}, {"4.tst", slow}}))});
    Post("N");
    Sleep(25);
    Click(bar_.listArchiveFile(), 0);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(bar_.listArchiveFile().Selected(), 1);
    EXPECT_TRUE(RunUntil([&] { return bar_.listArchiveFile().Selected() == 2; }));
    // Back off the first file, with a click waiting.
    files_[0] = SlowPicture(L"0.tst");
    bar_.SetFileList(files_);
    Post("2");
    LoadSlowly(0);
    bar_.ListIndexBackOne();
    EXPECT_TRUE(Shows(2));
}

TEST_F(WishTest, MotionAndCommandsWaitToo) {
    bar_.Press(BarButton::kFastForward);
    Post("N");  // stops the run behind the step
    Sleep(25);
    Values().general.slideShowTime = 0;
    EXPECT_TRUE(StopsByItself());
    EXPECT_LT(Selected(), 7);
    PostCommand(menuEditClear);
    LoadSlowly(1);
    EXPECT_TRUE(window_.PictureShown());
    EXPECT_TRUE(RunUntil([&] { return !window_.PictureShown(); }));
    // Nothing of the file that is gone from the view.
    EXPECT_EQ(Info() + Panel(), L"3個のプラグイン");
    PostCommand(menuControl_3);  // 再生
    LoadSlowly(1);
    EXPECT_TRUE(Shows(7));
}

// Not the file that comes up next, which the user has not seen yet.
TEST_F(WishTest, DeleteTakesWhatIsSeen) {
    MakeDeaf();
    bar_.SetVisible(false);
    PostCommand(commandAddToDeleteList);
    PostCommand(commandAddToDeleteList);
    LoadSlowly(1);
    EXPECT_TRUE(RunUntil([&] { return bar_.listDelete().Count() > 0; }));
    EXPECT_EQ(Items(bar_.listDelete()), List{files_[0]});
    EXPECT_EQ(Selected(), 0);  // which is the slow one now
    EXPECT_EQ(Note(), L"削除リストに追加しました（1 個）: 0.bmp");
    bar_.PictureReplaced(L"pasted");
    EXPECT_EQ(Info(), L"pasted");
    bar_.Press(BarButton::kDeleteList);
    EXPECT_EQ(bar_.listDelete().Count(), 1);
}

TEST_F(WishTest, WhatIsPutBackIsNotDeletedAfterwards) {
    bar_.Press(BarButton::kDeleteList);
    Click(bar_.listFileName(), 1);
    for (const wchar_t* const button : {L"ディスクから削除(&D)", L"取り消し(&U)"})
        PostMessageW(PanelButton(button), BM_CLICK, 0, 0);
    Post("2");
    LoadSlowly(0);
    EXPECT_TRUE(RunUntil([&] { return Info().starts_with(L"[画像] 3"); }));
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(WishTest, EscapeDuringALoadMeansTheLoad) {
    const auto isFull = [&] { return GetMenu(window_.Handle()) == nullptr; };
    Choose(commandFullScreen);
    for (const bool isDeaf : {false, true}) {
        if (isDeaf) MakeDeaf();
        Post(isDeaf ? "EE" : "E");
        LoadSlowly(1);
        DoEvents();
        EXPECT_TRUE(isFull());
        EXPECT_EQ(Info() + Panel(), L"[中止] 1.tst[中止] 1.tst");
        EXPECT_FALSE(window_.PictureShown());
    }
    // Too late to stop it.
    window_.OnPictureShownChanged([&] {
        Post("E");
        Sleep(25);
    });
    Click(bar_.listFileName(), 1);
    DoEvents();
    EXPECT_TRUE(isFull());
    EXPECT_EQ(Info(), L"[画像] 1.tst ( 8×50 24bit )");
    window_.OnPictureShownChanged({});
    Post("E");
    DoEvents();
    EXPECT_FALSE(isFull());
    // During a show it is the show that stops.
    SlowPicture(L"1.tst");
    Values().general.slideShowTime = 10000;
    Click(bar_.listFileName(), 0);
    bar_.Press(BarButton::kPlay);
    PostCommand(commandEscape);
    LoadSlowly(1);
    EXPECT_EQ(Info(), L"[画像] 1.tst ( 8×50 24bit )");
    EXPECT_EQ(bar_.PlayMode(), BarButton::kStop);
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
    Post("NNNN");
    doMeanwhile = [&] { Post("E"); };
    LoadSlowly(1);
    EXPECT_TRUE(RunUntil([&] { return Info() == L"[中止] 5.bmp"; })) << Info();
    EXPECT_EQ(told, L"クラウドから取得しています（Esc で中止）");
    EXPECT_EQ(cloud_.pieces, 1);
    // What is left behind keeps nobody from the next.
    doMeanwhile = [&] { Post("0"); };
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
        Post("N");
        cloud_.isStuck = false;
    };
    Click(bar_.listFileName(), 7);
    EXPECT_TRUE(Shows(7));
    EXPECT_EQ(cloud_.pieces, 8);
    EXPECT_TRUE(messages_.All().empty());
}

}  // namespace
}  // namespace tessary::test
