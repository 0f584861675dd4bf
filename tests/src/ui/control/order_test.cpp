// The list as a whole: its order, the neighbours of a file that is opened alone, and its ends.
#include <algorithm>

#include "app/base/paths.h"
#include "picture/read/arrangement.h"
#include "places/place_memory.h"
#include "tests/src/ui/control/control_bar_test.h"

namespace tessary::test {
namespace {

class OrderTest : public ControlBarTest {
  protected:
    // What users have.
    OrderTest() {
        const GeneralSettings usual;
        Values().general.unclaimed = usual.unclaimed;
        Values().general.atListEnd = usual.atListEnd;
        Values().general.backToLast = usual.backToLast;
    }

    List Names() const {
        List names = Items(bar_.listFileName());
        for (std::wstring& name : names)
            name = FileNameOf(name);
        return names;
    }
    std::wstring Shown() const { return FileNameOf(bar_.listFileName().Item(Selected())); }
};

TEST_F(OrderTest, AFileOpenedAloneBringsItsNeighboursAlong) {
    folder_.Write(L"p10.bmp", BitmapFileOf(8, 6, RGB(1, 2, 3)));
    Archive(L"p9.tsa");
    folder_.Write(L"p.txt");
    const std::wstring hidden = Bitmap(L"hidden.bmp");
    SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN);
    std::wstring opened = Bitmap(L"P1.bmp");
    opened.back() = L'P';  // as the user spells it
    window_.Show();
    ASSERT_TRUE(bar_.OpenFiles({{.path = opened}}, ListSource::kOneFile));
    EXPECT_EQ(Names(), (List{L"P1.bmP"})) << "the picture comes first";
    bar_.CoolBar_ButtonClick(BarButton::kStepForward);
    EXPECT_TRUE(RunUntil([&] { return Shown() == L"p9.tsa"; })) << "the step waits for them";
    EXPECT_EQ(Names(), (List{L"P1.bmP", L"p9.tsa", L"p10.bmp"}));
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"b9.tst", L"b10.tst"}));

    // Nor does it lead past what no plug-in has been asked about yet.
    SusieCollection().RemoveAll();
    SusieCollection().AddSPI(TestPluginPath(L"iftst.spi"));
    arePluginsComing_ = true;
    ASSERT_TRUE(bar_.OpenFiles({{.path = opened}}, ListSource::kOneFile));
    bar_.CoolBar_ButtonClick(BarButton::kStepForward);
    EXPECT_FALSE(RunUntil([&] { return Names().size() > 1; }, 200));
    SusieCollection().AddSPI(TestPluginPath(L"axtsa.spi"));
    arePluginsComing_ = false;
    EXPECT_TRUE(RunUntil([&] { return Shown() == L"p9.tsa"; }));

    // Opened otherwise, a file that nobody would list is among its neighbours.
    ASSERT_TRUE(bar_.OpenFiles({{.path = hidden}}, ListSource::kOneFile));
    EXPECT_TRUE(RunUntil([&] { return Names().size() == 4; }));
    EXPECT_EQ(Shown(), L"hidden.bmp");
    // Another list is not disturbed.
    ASSERT_TRUE(bar_.OpenFiles({{.path = opened}}, ListSource::kOneFile));
    ASSERT_TRUE(bar_.SetFileList(List{hidden}));
    Values().general.listNeighbours = 0;
    ASSERT_TRUE(bar_.OpenFiles({{.path = opened}}, ListSource::kOneFile));
    EXPECT_FALSE(RunUntil([&] { return Names().size() > 1; }, 300));
}

TEST_F(OrderTest, TheListFollowsItsFolder) {
    const List files{Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")};
    window_.Show();
    ASSERT_TRUE(bar_.OpenFiles({{.path = files[1]}}, ListSource::kOneFile));
    EXPECT_TRUE(RunUntil([&] { return Names().size() == 3; }));
    const auto becomes = [&](const List& names, const wchar_t* shown) {
        return RunUntil([&] { return Names() == names && Shown() == shown; });
    };
    Bitmap(L"0.bmp");
    folder_.Write(L"none.txt");
    EXPECT_TRUE(becomes({L"0.bmp", L"1.bmp", L"2.bmp", L"3.bmp"}, L"2.bmp"));
    // What is shown goes by its new name, and is shown anew when it is written anew.
    MoveFileW(files[1].c_str(), (folder_.Path() + L"9.bmp").c_str());
    EXPECT_TRUE(becomes({L"0.bmp", L"1.bmp", L"3.bmp", L"9.bmp"}, L"9.bmp"));
    EXPECT_EQ(Info(), L"[画像] 9.bmp ( 8×6 24bit )");
    Bitmap(L"9.bmp", 20);
    EXPECT_TRUE(RunUntil([&] { return CurrentPicture() && CurrentPicture().Width() == 20; }));
    // What was taken from the list does not come back.
    Click(bar_.listFileName(), 0);
    bar_.CoolBar_ButtonClick(BarButton::kDeleteList);
    SendMessageW(PanelButton(L"リストから削除(&L)"), BM_CLICK, 0, 0);
    DeleteFileW((folder_.Path() + L"1.bmp").c_str());
    EXPECT_TRUE(becomes({L"3.bmp", L"9.bmp"}, L"3.bmp")) << "that stands in its place now";
}

TEST_F(OrderTest, TheOrderChangesUnderWhatIsShown) {
    const List files{Archive(L"a.tsa"), Bitmap(L"b10.bmp", 90), Bitmap(L"b9.bmp", 9),
                     Bitmap(L"c.BMP", 40)};
    ASSERT_TRUE(bar_.OpenFiles({{.path = files[0], .size = 5, .time = 1, .place = 3},
                                {.path = files[1], .size = 9, .time = 3, .place = 2},
                                {.path = files[2], .size = 1, .time = 4, .place = 0},
                                {.path = files[3], .size = 7, .time = 2, .place = 1}},
                               ListSource::kFiles));
    bar_.ListIndexForwardOne();
    EXPECT_EQ(CurrentPicture().Width(), 10) << "the archive's second";
    for (const auto& [command, names] : {
             std::pair{commandOrder_0, List{L"a.tsa", L"b9.bmp", L"b10.bmp", L"c.BMP"}},
             {commandOrder_1, {L"b9.bmp", L"c.BMP", L"b10.bmp", L"a.tsa"}},
             {commandOrder_2, {L"a.tsa", L"c.BMP", L"b10.bmp", L"b9.bmp"}},
             {commandOrderDescending, {L"b9.bmp", L"b10.bmp", L"c.BMP", L"a.tsa"}},
             {commandOrder_3, {L"b10.bmp", L"c.BMP", L"a.tsa", L"b9.bmp"}},
             {commandOrder_4, {L"a.tsa", L"c.BMP", L"b10.bmp", L"b9.bmp"}},
         }) {
        window_.Commands().Run(command);
        EXPECT_EQ(Names(), names) << command;
        EXPECT_EQ(Shown(), L"a.tsa");
        EXPECT_EQ(bar_.listArchiveFile().Item(bar_.listArchiveFile().Selected()), L"b10.tst");
    }
    EXPECT_EQ(Items(bar_.listArchiveFile()), (List{L"b10.tst", L"b9.tst"})) << "and its members";
    window_.Commands().Run(commandOrder_5);
    EXPECT_EQ(Names().size(), 4U);
}

TEST_F(OrderTest, EachFolderAndArchiveKeepsItsOrder) {
    const auto open = [this](const std::wstring& folder) {
        std::vector<ListedFile> files;
        for (const wchar_t* const name : {L"1.bmp", L"2.bmp", L"3.tsa"})
            files.push_back({.path = folder_.Path() + folder + name});
        SortBy(ChosenListingRules().order, files);  // as they are found
        return bar_.OpenFiles(std::move(files), ListSource::kOneFolder);
    };
    const List up{L"1.bmp", L"2.bmp", L"3.tsa"};
    const List down{L"3.tsa", L"2.bmp", L"1.bmp"};
    for (const std::wstring folder : {L"a/", L"b/"}) {
        Bitmap(folder + L"1.bmp");
        Bitmap(folder + L"2.bmp");
        Archive(folder + L"3.tsa");
    }
    const auto members = [this] { return Items(bar_.listArchiveFile()); };
    ASSERT_TRUE(open(L"a\\"));
    window_.Commands().Run(commandOrderDescending);
    EXPECT_EQ(Names(), down);
    ASSERT_TRUE(open(L"b\\"));
    EXPECT_EQ(Names(), down) << "as chosen last";
    window_.Commands().Run(commandOrderDescending);
    EXPECT_EQ(Names(), up);
    Click(bar_.listFileName(), 2);
    EXPECT_EQ(members(), (List{L"b9.tst", L"b10.tst"}));
    ASSERT_TRUE(open(L"a\\"));
    EXPECT_EQ(Names(), down);
    window_.Commands().Run(commandOrderDescending);  // of the archive too, which is in view
    ASSERT_TRUE(open(L"b\\"));
    EXPECT_EQ(Names(), up);
    Click(bar_.listFileName(), 2);
    EXPECT_EQ(members(), (List{L"b9.tst", L"b10.tst"})) << "its own, and not the last one";
    SetRemembering(false);
    ASSERT_TRUE(open(L"b\\"));
    EXPECT_EQ(Names(), down);
}

TEST_F(OrderTest, BackIsTheMirrorImageOfForth) {
    ASSERT_TRUE(bar_.SetFileList(
        List{Bitmap(L"1.bmp"), Archive(L"2.tsa"), Archive(L"3.tsa"), Bitmap(L"4.bmp")}));
    List forth{Info()};
    while (bar_.ListIndexForwardOne())
        forth.push_back(Info());
    EXPECT_EQ(forth.size(), 6U);
    EXPECT_EQ(Note(), L"最後のファイルです。");
    List back{Info()};
    while (bar_.ListIndexBackOne())
        back.push_back(Info());
    std::ranges::reverse(back);
    EXPECT_EQ(back, forth);
    EXPECT_EQ(Note(), L"最初のファイルです。");
    EXPECT_EQ(Selected(), 0);

    // To the ends, first of the archive.
    Click(bar_.listFileName(), 2);
    for (const auto& [command, info] : {std::pair{commandLastFile, forth[4]},
                                        {commandLastFile, forth[5]},
                                        {commandFirstFile, forth[0]},
                                        {commandFirstFile, forth[0]}}) {
        window_.Commands().Run(command);
        EXPECT_EQ(Info(), info);
    }
    Values().general.atListEnd = kEndGoesRound;
    EXPECT_TRUE(bar_.ListIndexBackOne());
    EXPECT_EQ(Shown(), L"4.bmp");
    EXPECT_TRUE(bar_.ListIndexForwardOne());
    EXPECT_EQ(Shown(), L"1.bmp");
    EXPECT_EQ(Note(), L"最初のファイルに戻りました。");
    ASSERT_TRUE(bar_.SetFileList(List{Bitmap(L"1.bmp")}));
    EXPECT_FALSE(bar_.ListIndexForwardOne()) << "it is the only one";
}

TEST_F(OrderTest, BeyondTheEndLiesTheNextFolderInWhichSomethingIsToBeSeen) {
    Values().general.atListEnd = kEndNextFolder;
    for (const wchar_t* const name : {LR"(v1\a.bmp)", LR"(v9\b.bmp)", LR"(v9\c.bmp)",
                                      LR"(v10\d.bmp)", LR"(v9 notes\readme.txt)"})
        Bitmap(name);
    ASSERT_TRUE(bar_.SetFileList(List{folder_.Path() + LR"(v1\a.bmp)"}));
    for (const auto& [isForth, shown] : {std::pair{true, L"b.bmp"},
                                         {true, L"c.bmp"},
                                         {true, L"d.bmp"},
                                         {false, L"c.bmp"},
                                         {false, L"b.bmp"},
                                         {false, L"a.bmp"}}) {
        EXPECT_TRUE(isForth ? bar_.ListIndexForwardOne() : bar_.ListIndexBackOne());
        EXPECT_EQ(Shown(), shown);
    }
    EXPECT_FALSE(bar_.ListIndexBackOne());
    EXPECT_EQ(Note(), L"前のフォルダはありません。");
    EXPECT_EQ(Shown(), L"a.bmp");
}

}  // namespace
}  // namespace tessary::test
