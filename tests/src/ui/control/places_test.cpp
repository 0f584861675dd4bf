// What is remembered of what was opened: its menus, and going on.
#include "app/base/paths.h"
#include "places/place_memory.h"
#include "tests/src/ui/control/control_bar_test.h"
#include "ui/control/place_commands.h"
#include "ui/form/menu.h"

namespace tessary::test {
namespace {

class PlacesTest : public ControlBarTest {
  protected:
    // What the user opens by hand.
    void Open(const std::wstring& path) {
        window_.OpenLater({path});
        DoEvents();
    }
    // As he finds them when he opens the menu.
    std::wstring Caption(int id) const {
        const HMENU menu = GetMenu(window_.Handle());
        SendMessageW(window_.Handle(), WM_INITMENU, reinterpret_cast<WPARAM>(menu), 0);
        return MenuCaption(menu, id);
    }
    bool IsAlive(int id) { return window_.Commands().IsEnabled(id); }
    int Shown() const { return CurrentPicture().Width(); }
    // The program ends and is started once more.
    void Restart() { commands_.emplace(window_, bar_); }

    std::optional<PlaceCommands> commands_{std::in_place, window_, bar_};
};

TEST_F(PlacesTest, AnArchiveGoesOnWhereItWasLeft) {
    Values().general.listNeighbours = 0;
    const std::wstring archive = Archive(L"a.tsa");
    Open(archive);
    EXPECT_EQ(Shown(), 9);
    EXPECT_FALSE(IsAlive(commandGoOn));
    EXPECT_FALSE(IsAlive(commandLastRun));
    bar_.ListIndexForwardOne();
    EXPECT_EQ(Shown(), 10);
    commands_.reset();
    Restart();
    Open(archive);
    EXPECT_EQ(Shown(), 9);
    EXPECT_TRUE(Has(Note(), L"a.tsa - b10.tst")) << Note();
    window_.Commands().Run(commandGoOn);
    EXPECT_EQ(Shown(), 10);
    EXPECT_FALSE(IsAlive(commandGoOn));

    // Another file is open: the archive comes back with its place.
    Open(Bitmap(L"1.bmp", 33));
    window_.Commands().Run(commandLastRun);
    DoEvents();
    EXPECT_EQ(Shown(), 10);
    Values().general.goOnAtOnce = 1;
    bar_.ListIndexBackOne();
    Open(Bitmap(L"1.bmp", 33));
    Open(archive);
    EXPECT_EQ(Shown(), 9) << "where it was left";
    Open(archive);
    bar_.ListIndexForwardOne();
    Open(archive);
    EXPECT_EQ(Shown(), 10);
}

TEST_F(PlacesTest, AFolderGoesOnWhereItWasLeft) {
    Bitmaps(12);
    Open(folder_.Path());
    for (int step = 0; step < 2; ++step)
        bar_.ListIndexForwardOne();
    const std::wstring left = bar_.listFileName().Item(Selected());
    Open(RemoveBackslash(folder_.Path()));
    EXPECT_EQ(Selected(), 0);
    EXPECT_TRUE(Has(Note(), FileNameOf(left))) << Note();
    window_.Commands().Run(commandGoOn);
    EXPECT_EQ(bar_.listFileName().Item(Selected()), left);
    EXPECT_EQ(RecentPaths(), List{folder_.Path()}) << "once, however it is written";
}

TEST_F(PlacesTest, MenusNameThemAsTheyAreAndOfferToDropWhatIsGone) {
    Values().general.listNeighbours = 0;
    const std::wstring gone = Bitmap(L"R&D.bmp", 21);
    Open(gone);
    window_.Commands().Run(commandToggleBookmark);
    EXPECT_EQ(Bookmarks(), std::vector{Place{gone}});
    Open(Bitmap(std::wstring(150, L'x') + L".bmp"));
    Open(Bitmap(L"2.bmp", 22));
    EXPECT_TRUE(Caption(commandRecent_0).starts_with(L"&1  "));
    EXPECT_TRUE(Caption(commandRecent_0 + 1).ends_with(L"xxx.bmp"));
    EXPECT_LT(Caption(commandRecent_0 + 1).size(), 70U);
    EXPECT_TRUE(Caption(commandRecent_0 + 2).ends_with(LR"(\R&&D.bmp)"));
    EXPECT_TRUE(Caption(commandBookmark_0).ends_with(LR"(\R&&D.bmp)"));
    EXPECT_EQ(Caption(commandRecent_0 + 3), L"");
    Choose(commandBookmark_0);
    DoEvents();
    EXPECT_EQ(Shown(), 21);
    EXPECT_EQ(Caption(commandBookmark_0 + 1), L"");

    DeleteFileW(gone.c_str());
    for (const int answer : {IDNO, IDYES}) {
        const RecordedMessages messages(answer);
        Choose(commandRecent_0);
        DoEvents();
        EXPECT_TRUE(Has(messages.Only(), gone)) << messages.Only();
        EXPECT_EQ(RecentPaths().size(), answer == IDNO ? 3U : 2U);
        EXPECT_EQ(Bookmarks().size(), answer == IDNO ? 1U : 0U);
    }
}

TEST_F(PlacesTest, NothingIsKeptOfWhatIsForgotten) {
    Open(Archive(L"a.tsa"));
    window_.Commands().Run(commandToggleBookmark);
    bar_.ListIndexForwardOne();
    for (const auto& [answer, recent, bookmarks] :
         {std::tuple{IDCANCEL, 1U, 1U}, {IDNO, 0U, 1U}, {IDYES, 0U, 0U}}) {
        const RecordedMessages messages(answer);
        Choose(commandForget);
        EXPECT_EQ(RecentPaths().size(), recent);
        EXPECT_EQ(Bookmarks().size(), bookmarks);
    }
    commands_.reset();
    EXPECT_TRUE(LastSeen().IsNone()) << "not even at the end";
    SetRemembering(false);
    Restart();
    Open(Archive(L"a.tsa"));
    bar_.ListIndexForwardOne();
    EXPECT_FALSE(IsAlive(commandToggleBookmark));
    commands_.reset();
    EXPECT_TRUE(RecentPaths().empty());
    EXPECT_TRUE(SettingKeys(L"Places").empty());
}

}  // namespace
}  // namespace tessary::test
