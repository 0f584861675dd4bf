// The control bar's lists: filling them, and what selecting an entry shows.
#include "picture/current_picture.h"
#include "tests/src/ui/control/control_bar_test.h"
#include "ui/form/activity.h"
#include "ui/form/message_loop.h"

namespace tessary::test {
namespace {

const List kNotArchive{L"Not Archive File."};

using FileListTest = ControlBarTest;

TEST_F(FileListTest, ShowsTheFirstFileAndTellsEachKind) {
    const List files{Bitmap(L"一.bmp"), Archive(L"書庫.tsa"), folder_.Write(L"x.txt", "text")};
    window_.Commands().Register(menuFileSaveAs, {.run = [] {}});
    EXPECT_FALSE(bar_.SetFileList({}));
    EXPECT_FALSE(bar_.IsVisible());
    EXPECT_EQ(Info() + Panel(), L"");
    EXPECT_FALSE(IsEnabled(BarButton::kSave));
    window_.Show();
    ShowWindow(window_.Handle(), SW_MINIMIZE);
    EXPECT_TRUE(bar_.SetFileList(files));
    EXPECT_FALSE(bar_.IsVisible());  // it comes with the main window
    ShowWindow(window_.Handle(), SW_RESTORE);
    EXPECT_TRUE(bar_.IsVisible());
    EXPECT_TRUE(IsEnabled(BarButton::kSave));
    EXPECT_EQ(Items(bar_.listFileName()), files);
    EXPECT_EQ(Info(), L"[画像] 一.bmp ( 8×6 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 一.bmp ( 8×6 24bit )");
    EXPECT_EQ(Items(bar_.listArchiveFile()), kNotArchive);

    Click(bar_.listFileName(), 1);
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"b9.tst", L"b10.tst", L"readme.txt"}));
    EXPECT_TRUE(bar_.listArchiveFile().IsEnabled());
    EXPECT_EQ(Info(), L"[圧縮] 書庫.tsa - [画像] b9.tst ( 9×4 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] 書庫.tsa - b9.tst書庫.tsa ( 9×4 24bit )");
    Click(bar_.listArchiveFile(), 2);
    EXPECT_EQ(Info(), L"[圧縮] 書庫.tsa - [未知] readme.txt");
    EXPECT_EQ(Panel(), Info());
    EXPECT_FALSE(IsEnabled(BarButton::kSave));
    Click(bar_.listFileName(), 2);
    EXPECT_EQ(Info(), L"[未知] x.txt");
}

TEST_F(FileListTest, NamesTellFilesApart) {
    Values().general.listText = kListNames;
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"),
                     (CreateDirectoryW((folder_.Path() + L"sub").c_str(), nullptr),
                      folder_.Write(LR"(sub\1.bmp)", "x"))};
    ASSERT_TRUE(bar_.SetFileList(std::span(files).first(2)));
    EXPECT_EQ(Items(bar_.listFileName()), (List{L"1.bmp", L"2.bmp"}));
    ASSERT_TRUE(bar_.SetFileList(files));
    EXPECT_EQ(Items(bar_.listFileName()), (List{L"1.bmp", L"2.bmp", LR"(sub\1.bmp)"}));
    window_.Commands().Run(commandListPaths);
    EXPECT_EQ(Items(bar_.listFileName()), files);
}

// A click leads to a file; what is chosen beside it changes nothing in the view.
TEST_F(FileListTest, SeveralFilesCanBeChosen) {
    const List files = Bitmaps(6);
    window_.Show();
    ASSERT_TRUE(bar_.SetFileList(files));
    const VirtualList& list = bar_.listFileName();
    const auto choose = [&](int index) {  // beside the others, as Ctrl and a click do
        LVITEMW one{};
        one.state = one.stateMask = LVIS_SELECTED;
        SendMessageW(list.Handle(), LVM_SETITEMSTATE, static_cast<WPARAM>(index),
                     reinterpret_cast<LPARAM>(&one));
        DoEvents();
    };
    const auto selected = [&] {  // as the control itself tells others
        DoEvents();
        std::vector<int> all;
        for (int i = 0; i < list.Count(); ++i)
            if (SendMessageW(list.Handle(), LVM_GETITEMSTATE, static_cast<WPARAM>(i),
                             LVIS_SELECTED))
                all.push_back(i);
        return all;
    };
    EXPECT_EQ(selected(), std::vector{0});
    choose(2);
    choose(4);
    EXPECT_EQ(selected(), (std::vector{0, 2, 4}));
    EXPECT_EQ(Info(), L"[画像] 1.bmp ( 8×6 24bit )");
    Choose(commandEscape);
    EXPECT_EQ(selected(), std::vector{0});
    choose(5);
    bar_.CoolBar_ButtonClick(BarButton::kStepForward);
    EXPECT_EQ(selected(), std::vector{1}) << "gone on";
    Choose(commandMarkFile);
    Choose(commandMarkFile);
    Click(list, 4);
    EXPECT_EQ(Info(), L"[画像] 5.bmp ( 8×6 24bit )");
    EXPECT_EQ(selected(), (std::vector{1, 2})) << "marks stay";
    bar_.CoolBar_ButtonClick(BarButton::kDeleteList);
    EXPECT_EQ(Items(bar_.listDelete()), (List{files[1], files[2]}));
    EXPECT_EQ(Info(), L"[画像] 5.bmp ( 8×6 24bit )");
    Choose(commandChooseAll);
    bar_.CoolBar_ButtonClick(BarButton::kDeleteList);
    EXPECT_EQ(Items(bar_.listDelete()).size(), 6U);
    EXPECT_EQ(bar_.listFileName().Count(), 0);
}

// Small pictures are in another window, which does as the list does.
TEST_F(FileListTest, SmallPicturesAreChosenAsNamesAre) {
    Values().general.listText = kListNames;
    const List files = Bitmaps(9);
    window_.Show();
    ASSERT_TRUE(bar_.SetFileList(files));
    const VirtualList& list = bar_.listFileName();
    list.SetFocus();
    const HWND names = list.Handle();
    Choose(commandFileLook_1);
    ASSERT_NE(list.Handle(), names);
    EXPECT_FALSE(IsWindow(names));
    EXPECT_TRUE(list.HasFocus());
    EXPECT_GT(list.PictureSide(), 0);
    const auto press = [&](int key, int shift = 0) {
        BYTE former[256]{}, keys[256]{};
        GetKeyboardState(former);
        if (shift & kCtrlMask) keys[VK_CONTROL] = 0x80;
        if (shift & kShiftMask) keys[VK_SHIFT] = 0x80;
        SetKeyboardState(keys);
        SendMessageW(list.Handle(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        SetKeyboardState(former);
        DoEvents();
    };
    const auto chosen =
        [&] {  // as the list of names has it, back from where keys go on at the cursor
            Choose(commandFileLook_0);
            std::vector<int> all;
            for (int i = 0; i < list.Count(); ++i)
                if (SendMessageW(list.Handle(), LVM_GETITEMSTATE, static_cast<WPARAM>(i),
                                 LVIS_SELECTED))
                    all.push_back(i);
            Choose(commandFileLook_1);
            return all;
        };
    press(VK_END);
    EXPECT_EQ(Selected(), 8);
    press(VK_HOME);
    press(VK_RIGHT);
    EXPECT_EQ(Selected(), 1);
    press(VK_RIGHT, kShiftMask);
    press(VK_RIGHT, kShiftMask);
    EXPECT_EQ(chosen(), (std::vector{1, 2, 3}));
    EXPECT_EQ(Selected(), 1) << "what is in view stays";
    for (int i = 0; i < 4; ++i)
        press(VK_RIGHT, kCtrlMask);
    press(VK_SPACE, kCtrlMask);
    EXPECT_EQ(chosen(), (std::vector{1, 2, 3, 5}));
    press('A', kCtrlMask);
    EXPECT_EQ(chosen().size(), 9U);
    SendMessageW(list.Handle(), WM_CHAR, '7', 0);
    EXPECT_EQ(Selected(), 6);
    EXPECT_EQ(chosen(), std::vector{6});
    EXPECT_TRUE(list.HasFocus());
    Choose(commandFileLook_0);
    EXPECT_EQ(list.Text(), L"ファイルの一覧");
}

TEST_F(FileListTest, PagesAreGoneThroughAsMembersAre) {
    SusieCollection().RemoveAll();
    SusieCollection().AddSPI(test::TestPluginPath(L"frames.spi"));
    const std::wstring pages = folder_.Write(L"scan.tst", "TST 30x20x24\nframes:2:3:0\n");
    const std::wstring moving = folder_.Write(L"moving.tst", "TST 5x5x24\nframes:1:3:0\n");
    ASSERT_TRUE(bar_.SetFileList(List{Bitmap(L"a.bmp"), pages, moving}));
    const auto width = [] { return CurrentPicture().Width(); };
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"1 ページ", L"2 ページ", L"3 ページ"}));
    EXPECT_TRUE(bar_.listArchiveFile().IsEnabled());
    EXPECT_EQ(bar_.listArchiveFile().Selected(), 0);
    EXPECT_EQ(Info(), L"[画像] scan.tst ( 30×20 24bit )");
    EXPECT_TRUE(bar_.ListIndexForwardOne() && bar_.ListIndexForwardOne());
    EXPECT_EQ(width(), 32);
    EXPECT_EQ(Info(), L"[画像] scan.tst - 3 ページ ( 32×20 24bit )");
    EXPECT_EQ(Panel(), L"[表示中] scan.tst - 3 ページ ( 32×20 24bit )");
    EXPECT_EQ(window_.Source().fileName, L"scan.tst");
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_EQ(width(), 31);
    Click(bar_.listArchiveFile(), 0);
    EXPECT_EQ(width(), 30);
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_EQ(Items(bar_.listArchiveFile()), kNotArchive);
    Click(bar_.listFileName(), 1);
    Click(bar_.listArchiveFile(), 2);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(width(), 5);
    EXPECT_EQ(Items(bar_.listArchiveFile()), kNotArchive) << "frames of an animation are no pages";
    // A page is not a file.
    Click(bar_.listFileName(), 1);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    bar_.CoolBar_ButtonClick(BarButton::kDeleteList);
    EXPECT_EQ(Items(bar_.listDelete()), List{pages});
}

TEST_F(FileListTest, PagesOfAMemberAreGoneThroughByTheKeysOfFrames) {
    SusieCollection().RemoveAll();
    for (const wchar_t* plugin : {L"frames.spi", L"axtsa.spi"})
        SusieCollection().AddSPI(test::TestPluginPath(plugin));
    const std::string scan = "TST 30x20x24\nframes:2:5:0\n", other = "TST 5x5x24\n";
    const std::wstring archive = folder_.Write(
        L"a.tsa", "TSA\nmember\t" + std::to_string(scan.size()) + "\t\tscan.tst\nmember\t" +
                      std::to_string(other.size()) + "\t\tz.tst\n\n" + scan + other);
    ASSERT_TRUE(bar_.SetFileList(List{archive, Bitmap(L"b.bmp")}));
    const auto run = [&](int command) {
        window_.Commands().Run(command);
        const std::wstring scale = window_.statusInformation().PanelText(kScalePanel);
        const size_t at = scale.find(L"   ");
        return std::to_wstring(CurrentPicture().Width()) +
               (at == scale.npos ? L"" : scale.substr(at));
    };
    EXPECT_EQ(run(commandFormerFrame), L"30   1 / 5 ページ");
    EXPECT_EQ(run(commandNextFrame), L"31   2 / 5 ページ");
    EXPECT_EQ(CurrentPicture().Origin()->page, 2U);
    EXPECT_EQ(window_.Source().page, 2U);
    EXPECT_EQ(window_.Source().fileName, L"scan.tst");
    // What is asked for during a load adds up.
    Sleep(25);
    for (int i = 0; i < 2; ++i)
        PostMessageW(window_.Handle(), WM_COMMAND, commandNextFrame, 0);
    EXPECT_EQ(run(commandNextFrame), L"32   3 / 5 ページ");
    EXPECT_TRUE(RunUntil([] { return CurrentPicture().Width() == 34; }));
    EXPECT_EQ(run(commandNextFrame), L"34   5 / 5 ページ") << "the last one stays";
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"scan.tst", L"z.tst"}));
    EXPECT_EQ(run(commandFormerFrame), L"33   4 / 5 ページ");
    EXPECT_EQ(run(commandFirstFrame), L"30   1 / 5 ページ");
    run(commandNextFrame);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(run(commandNextFrame), L"5") << "the other member has none";
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_FALSE(window_.Commands().IsEnabled(commandNextFrame));
    // A page that cannot be read keeps nobody from those behind it.
    Click(bar_.listFileName(), 0);
    folder_.Write(L"a.tsa", "TSA\n\n");
    run(commandNextFrame);
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(window_.Commands().IsEnabled(commandNextFrame));
}

TEST_F(FileListTest, TakesTheEntriesUpToTheLimitAndLeavesOutEmptyOnes) {
    List files(32100, folder_.Path() + L"gone.bmp");
    files[1].clear();
    files.back() = L"beyond";
    // The list was filled although nothing can be shown; what vanished leaves the flag.
    EXPECT_TRUE(bar_.SetFileList(files));
    EXPECT_EQ(bar_.listFileName().Count(), 32001);
    EXPECT_EQ(Notice(), L"32002 個を超えたため、後の 98 個は一覧に入りません。");
    bar_.SetFileList(Bitmaps(1));
    EXPECT_EQ(Notice(), L"");
    bar_.SetFileList(files);
    EXPECT_TRUE(CurrentActivity().pictureLoading);
    window_.Unload();  // it can be closed nevertheless
    EXPECT_EQ(window_.Handle(), nullptr);
}

TEST_F(FileListTest, ClosingDuringALoadClosesWhenItEnds) {
    bar_.SetFileList(List{Bitmap(L"1.bmp"), SlowPicture(L"2.tst")});
    PostMessageW(window_.Handle(), WM_CLOSE, 0, 0);
    LoadSlowly(1);
    EXPECT_TRUE(CurrentActivity().quitRequested);
    EXPECT_NE(window_.Handle(), nullptr);
    EXPECT_TRUE(RunUntil([&] { return window_.Handle() == nullptr; }));
    EXPECT_EQ(bar_.Handle(), nullptr);
    EXPECT_TRUE(messages_.All().empty());
}

// The picture of another file never stays, and nobody is stopped by a message box.
TEST_F(FileListTest, WhatCannotBeShownLeavesTheViewEmpty) {
    bar_.SetFileList(List{Bitmap(L"1.bmp"), folder_.Path() + L"gone.bmp",
                          folder_.Write(L"b.tst", "TST 8x8x24\ncrash:av:GetPicture\n"),
                          folder_.Write(L"none.tsa", "TSA\n\n")});
    const auto reason = [&] { return GetWindowTextLengthW(window_.pictureView().Handle()); };
    for (const auto& [index, told] :
         {std::pair{1, L"[未知] gone.bmp"}, {2, L"[未知] b.tst"}, {3, L"[圧縮] none.tsa"}}) {
        Click(bar_.listFileName(), 0);
        EXPECT_TRUE(window_.PictureShown());
        EXPECT_EQ(reason(), 0);
        Click(bar_.listFileName(), index);
        EXPECT_FALSE(window_.PictureShown()) << told;
        EXPECT_FALSE(CurrentPicture()) << told;
        EXPECT_NE(reason(), 0) << told;
        EXPECT_EQ(Info(), told);
        EXPECT_EQ(Panel(), told);
        EXPECT_EQ(CurrentActivity().pictureLoading, index == 1) << told;  // what vanished leaves it
        EXPECT_EQ(Items(bar_.listArchiveFile()), index == 3 ? List{} : kNotArchive) << told;
        EXPECT_FALSE(bar_.listArchiveFile().IsEnabled()) << told;
        EXPECT_EQ(bar_.Failure().empty(), index == 1) << told;
    }
    EXPECT_TRUE(messages_.All().empty());
}

}  // namespace
}  // namespace tessary::test
