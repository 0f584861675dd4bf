// Where the user is: the title, the slider, the note on the full screen.
#include <utility>

#include "tests/src/ui/control/control_bar_test.h"

namespace tessary::test {
namespace {

class PlaceTest : public ControlBarTest {
  protected:
    std::wstring Title() const {
        wchar_t title[200]{};
        GetWindowTextW(window_.Handle(), title, 200);
        return title;
    }
    bool Tells(const std::wstring& place) {
        const std::wstring title = place + (place.empty() ? L"" : L" — ") + L"てっさりビューア";
        return RunUntil([&] { return Title() == title; }, 3000);
    }
    // The user moves it so, and maybe lets go.
    void Slide(int position, int code) const {
        const HWND slider = bar_.sliderPlace().Handle();
        SendMessageW(slider, TBM_SETPOS, TRUE, position);
        SendMessageW(bar_.Handle(), WM_HSCROLL,
                     MAKEWPARAM(code, code == TB_THUMBTRACK ? position : 0),
                     reinterpret_cast<LPARAM>(slider));
    }
};

TEST_F(PlaceTest, TheTitleFollowsWhateverIsShown) {
    const List files{Bitmap(L"10.bmp"), Archive(L"9.tsa"), Bitmap(L"8.bmp")};
    EXPECT_TRUE(Tells(L""));
    bar_.SetFileList(files);
    EXPECT_TRUE(Tells(L"10.bmp — 1 / 3"));
    bar_.ListIndexForwardOne();
    EXPECT_TRUE(Tells(L"9.tsa — b9.tst — 1 / 3"));
    bar_.ListIndexForwardOne();
    EXPECT_TRUE(Tells(L"9.tsa — b10.tst — 2 / 3"));
    EXPECT_EQ(bar_.sliderPlace().Position(), 2);
    Click(bar_.listFileName(), 2);
    EXPECT_TRUE(Tells(L"8.bmp — 3 / 3"));
    EXPECT_EQ(bar_.sliderPlace().Position(), 3);
    Choose(commandOrder_0);
    EXPECT_TRUE(Tells(L"8.bmp — 1 / 3"));
    bar_.Press(BarButton::kDeleteList);
    EXPECT_TRUE(Tells(L"9.tsa — b9.tst — 1 / 3"));
    Click(bar_.listFileName(), 1);
    EXPECT_TRUE(Tells(L"10.bmp — 2 / 2"));
    Values().general.plainTitle = 1;
    window_.ShowTitle();
    EXPECT_TRUE(Tells(L""));
    Values().general.plainTitle = 0;
    window_.ShowTitle();
    DeleteFileW(files[0].c_str());
    Click(bar_.listFileName(), 1);
    EXPECT_TRUE(Tells(L"10.bmp — 2 / 2")) << "where it was";
    Click(bar_.listFileName(), 0);
    Choose(menuEditClear);
    EXPECT_TRUE(Tells(L""));
}

TEST_F(PlaceTest, TheSliderShowsWhereItRests) {
    List files = Bitmaps(40);
    files[20] = folder_.Write(L"slow.tst", "TST 8x50x24\ndirty:slow:GetPicture\nprogress:9\n");
    files[30] = Archive(L"a.tsa");
    bar_.SetFileList(files);
    for (int position = 2; position < 20; ++position)
        Slide(position, TB_THUMBTRACK);
    EXPECT_EQ(Note(), L"19.bmp — 19 / 40");
    EXPECT_EQ(Selected(), 0) << "only passed";
    EXPECT_TRUE(Tells(L"19.bmp — 19 / 40")) << "it rests";
    // On from there, while what it rested at is being loaded.
    Slide(21, TB_THUMBTRACK);
    bool isMoved = false;
    Timer during([&] {
        if (!window_.IsReading() || std::exchange(isMoved, true)) return;
        Slide(31, TB_THUMBTRACK);
        Slide(31, TB_THUMBPOSITION);
    });
    during.Start(1);
    EXPECT_TRUE(RunUntil([&] { return isMoved && Selected() == 30 && !window_.IsReading(); }));
    // It is the members' now, and goes back to what is shown.
    EXPECT_TRUE(Tells(L"a.tsa — b9.tst — 1 / 3"));
    EXPECT_TRUE(RunUntil([&] { return bar_.sliderPlace().Position() == 1; }));
    Slide(2, TB_LINEDOWN);
    Slide(2, TB_ENDTRACK);
    EXPECT_TRUE(Tells(L"a.tsa — b10.tst — 2 / 3"));
    // Of a list that is gone it leads nowhere.
    Slide(1, TB_THUMBTRACK);
    bar_.SetFileList(Bitmaps(2));
    EXPECT_FALSE(RunUntil([&] { return Selected() != 0; }, 400));
    bar_.SetFileList(Bitmaps(1));
    EXPECT_FALSE(bar_.sliderPlace().IsEnabled());
}

TEST_F(PlaceTest, OnTheFullScreenEachStepTellsIt) {
    window_.Show();
    bar_.SetFileList(Bitmaps(3));
    bar_.ListIndexForwardOne();
    EXPECT_EQ(Note(), L"") << "the title has it";
    Choose(commandFullScreen);
    EXPECT_EQ(Note(), L"2.bmp — 2 / 3");
    bar_.ListIndexForwardOne();
    EXPECT_EQ(Note(), L"3.bmp — 3 / 3");
    window_.ShowNote(L"more than that");
    bar_.ListIndexBackOne();
    EXPECT_EQ(Note(), L"more than that");
    window_.ShowNote({});
    Values().general.notePlace = 0;
    bar_.ListIndexBackOne();
    EXPECT_EQ(Note(), L"");
    Choose(commandFullScreen);
}

TEST_F(PlaceTest, SpaceGoesThroughTallPicturesBothWays) {
    const auto tall = [&](const wchar_t* name) {
        return folder_.Write(name, BitmapFileOf(8, 3000, RGB(1, 2, 3)));
    };
    Values().general.atListEnd = kEndStays;
    window_.Show();
    bar_.SetFileList(List{tall(L"1.bmp"), tall(L"2.bmp"), Bitmap(L"3.bmp")});
    const long bottom = View().cy - 3000;
    const auto press = [&](int command, size_t most) {
        std::vector<long> places;
        const int file = Selected();
        while (Selected() == file && places.size() < most) {
            places.push_back(Position().y);
            Choose(command);
        }
        return places;
    };
    const std::vector<long> forth = press(commandReadOn, 100);
    EXPECT_GT(forth.size(), static_cast<size_t>(3000 / View().cy));
    EXPECT_EQ(forth.front(), 0);
    EXPECT_EQ(forth.back(), bottom);
    EXPECT_EQ(Selected(), 1);
    EXPECT_EQ(Position().y, 0);
    Choose(commandReadBack);
    EXPECT_EQ(Selected(), 0);
    EXPECT_EQ(Position().y, bottom) << "it arrives with its lower end";
    EXPECT_EQ(press(commandReadBack, forth.size() + 1).size(), forth.size() + 1) << "no further";
    // Another step back does not.
    Click(bar_.listFileName(), 1);
    Choose(commandStepBack);
    EXPECT_EQ(Position().y, 0);
    Values().general.spaceScrolls = 0;
    Choose(commandReadOn);
    EXPECT_EQ(Selected(), 1);
}

TEST_F(PlaceTest, MouseButtonsBesideTheThumbStepInBothWindows) {
    window_.Show();
    bar_.SetFileList(Bitmaps(3));
    for (const HWND window : {window_.pictureView().Handle(), bar_.listFileName().Handle()}) {
        PostMessageW(window, WM_XBUTTONDOWN, MAKEWPARAM(0, XBUTTON2), 0);
        PostMessageW(window, WM_XBUTTONDBLCLK, MAKEWPARAM(0, XBUTTON2), 0);
        EXPECT_TRUE(RunUntil([&] { return Selected() == 2; }));
        for (int i = 0; i < 2; ++i)
            PostMessageW(window, WM_XBUTTONDOWN, MAKEWPARAM(0, XBUTTON1), 0);
        EXPECT_TRUE(RunUntil([&] { return Selected() == 0; }));
    }
    EnableWindow(window_.Handle(), FALSE);  // behind a dialog
    PostMessageW(bar_.listFileName().Handle(), WM_XBUTTONDOWN, MAKEWPARAM(0, XBUTTON2), 0);
    DoEvents();
    EXPECT_EQ(Selected(), 0);
    EnableWindow(window_.Handle(), TRUE);
}

}  // namespace
}  // namespace tessary::test
