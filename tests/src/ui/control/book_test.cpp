// Two pages at a time: what lies side by side, where steps lead, and what is remembered of it.
#include "app/base/paths.h"
#include "places/place_memory.h"
#include "tests/src/ui/control/control_bar_test.h"

namespace tessary::test {
namespace {

class BookTest : public ControlBarTest {
  protected:
    BookTest() {
        const GeneralSettings usual;
        Values().general.unclaimed = usual.unclaimed;
        Values().general.atListEnd = usual.atListEnd;
        Values().general.backToLast = usual.backToLast;
    }

    // Pages of a width of their own each, so that it shows which ones are seen.
    std::wstring Page(const std::wstring& name, int width, int height = 200) const {
        return folder_.Write(name, BitmapFileOf(width, height, RGB(width, 0, 0)));
    }
    static std::string Member(int width, int height) {
        return "TST " + std::to_string(width) + "x" + std::to_string(height) + "x24\n";
    }
    static SIZE Seen() { return {CurrentPicture().Width(), CurrentPicture().Height()}; }
    static int Width() { return CurrentPicture() ? CurrentPicture().Width() : 0; }
    // The red of a pixel in the middle row.
    static int RedAt(int x) {
        const dib::DibView& view = CurrentPicture().View();
        return view.Row(view.Height() / 2)[static_cast<size_t>(x) * 3 + 2];
    }
    void Key(int key) { window_.pictureView_KeyDown(key, 0); }
};

TEST_F(BookTest, StepsGoBySpreadsAndBackTheSameWay) {
    const List files{Page(L"1.bmp", 10), Page(L"2.bmp", 20),  Page(L"3.bmp", 30),
                     Page(L"4.bmp", 40), Page(L"5.bmp", 250), Page(L"6.bmp", 60),
                     Page(L"7.bmp", 70)};
    ASSERT_TRUE(bar_.SetFileList(files));
    window_.Commands().Run(commandBook);
    std::vector<int> forth{Width()};
    while (bar_.ListIndexForwardOne())
        forth.push_back(Width());
    EXPECT_EQ(forth, (std::vector{10, 50, 40, 250, 130}));
    EXPECT_EQ(Note(), L"最後のファイルです。");
    std::vector<int> back{Width()};
    while (bar_.ListIndexBackOne())
        back.push_back(Width());
    std::ranges::reverse(back);
    EXPECT_EQ(back, forth);

    // The next page lies on the left, and the keys lead there.
    Key(VK_LEFT);
    EXPECT_EQ(Width(), 50);
    EXPECT_EQ(RedAt(5), 30);
    EXPECT_EQ(RedAt(45), 20);
    EXPECT_EQ(window_.ShownFile(), L"") << "no file has both";
    window_.Commands().Run(commandBookFromRight);
    EXPECT_EQ(RedAt(5), 20);
    EXPECT_EQ(RedAt(45), 30);
    Key(VK_LEFT);
    EXPECT_EQ(Width(), 10);
    window_.Commands().Run(commandBookCover);
    EXPECT_EQ(Width(), 30) << "the first with the second";
    // From a page that is chosen in the list its whole spread is seen.
    Click(bar_.listFileName(), 3);
    EXPECT_EQ(Width(), 70);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Width(), 250);
    window_.Commands().Run(commandBook);
    Click(bar_.listFileName(), 1);
    EXPECT_EQ(Width(), 20);
}

// Pages as high as each other need no resizing; those that are not become so.
TEST_F(BookTest, PagesAreSeenInOneHeight) {
    const List files{Page(L"1.bmp", 10), Page(L"2.bmp", 20, 200), Page(L"3.bmp", 40, 100),
                     Page(L"4.bmp", 30, 198)};
    ASSERT_TRUE(bar_.SetFileList(files));
    Values().general.bookFolders = 1;
    window_.Commands().Run(commandBook);
    Click(bar_.listFileName(), 1);
    EXPECT_EQ(Seen().cx, 20 + 80);
    EXPECT_EQ(Seen().cy, 200);
    window_.Commands().Run(commandBookShift);
    Click(bar_.listFileName(), 2);
    EXPECT_EQ(Seen().cy, 198);
    EXPECT_EQ(Width(), 79 + 30);
}

// Whatever stands between the pages is not lost, and lies beside none.
TEST_F(BookTest, WhatIsNoPageStandsAlone) {
    const List files{Page(L"1.bmp", 10),
                     Page(L"2.bmp", 20),
                     Archive(L"3.tsa"),
                     Page(L"4.bmp", 40),
                     folder_.Write(L"5.bmp", "BM, but broken"),
                     Page(L"6.bmp", 60)};
    ASSERT_TRUE(bar_.SetFileList(files));
    window_.Commands().Run(commandBook);
    List forth{Info()};
    while (bar_.ListIndexForwardOne())
        forth.push_back(Info());
    EXPECT_EQ(forth, (List{L"[画像] 1.bmp ( 10×200 24bit )", L"[画像] 2.bmp ( 20×200 24bit )",
                           L"[圧縮] 3.tsa - [画像] b9.tst ( 9×4 24bit )",
                           L"[圧縮] 3.tsa - [画像] b10.tst ( 10×4 24bit )",
                           L"[画像] 4.bmp ( 40×200 24bit )", L"[未知] 5.bmp",
                           L"[画像] 6.bmp ( 60×200 24bit )"}));
}

TEST_F(BookTest, AnArchiveIsReadAsItWasChosenForIt) {
    const std::string pages = Member(10, 50) + "\n" + Member(20, 50) + "\n" + Member(30, 50) + "\n";
    const std::string head =
        "TSA\nmember\t14\t\t1.tst\nmember\t14\t\t2.tst\nmember\t14\t\t3.tst\n\n";
    const std::wstring first = folder_.Write(L"a.tsa", head + pages);
    const std::wstring second = folder_.Write(L"b.tsa", head + pages);
    ASSERT_TRUE(bar_.SetFileList(List{first, second}));
    window_.Commands().Run(commandBook);
    EXPECT_EQ(Width(), 10);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Width(), 50);
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Selected(), 1) << "the next archive, in the same way";
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Width(), 50);
    window_.Commands().Run(commandBook);
    EXPECT_EQ(Width(), 20);
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_EQ(Selected(), 0);
    EXPECT_EQ(Width(), 50) << "its last spread, for it was chosen here";
    ForgetPlaces();
    EXPECT_FALSE(BookOf(first));
}

}  // namespace
}  // namespace tessary::test
