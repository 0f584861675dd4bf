// What is remembered of what the user has opened, and where he may go on.
#include <gtest/gtest.h>

#include "app/settings/settings_store.h"
#include "places/place_memory.h"
#include "places/target_folders.h"
#include "places/visit.h"
#include "tests/support/redirected_settings.h"

namespace tessary {
namespace {

using List = std::vector<std::wstring>;

TEST(PlaceTest, IsNamedAndKeptWhateverItsMembersAreCalled) {
    for (const auto& [place, name] :
         {std::pair{Place{LR"(C:\画像 & 他\a.zip)", LR"(x|2|y\p 1.png)", 0}, L"a.zip - p 1.png"},
          {Place{LR"(C:\a.zip)", L"p.tif", 3}, L"a.zip - p.tif 3 ページ"},
          {Place{LR"(C:\a.tif)", L"", 1}, L"a.tif - 1 ページ"},
          {Place{LR"(C:\a.bmp)"}, L"a.bmp"}}) {
        EXPECT_EQ(NameOf(place), name);
        EXPECT_EQ(PlaceOfText(ToText(place)), place);
    }
    for (const wchar_t* const text : {L"", L"a", L"a|1", L"a|x|", L"a|-1|b", L"a|01|b"})
        EXPECT_TRUE(PlaceOfText(text).IsNone()) << text;

    EXPECT_EQ(ShortenedPath(LR"(C:\a\b)", 6), LR"(C:\a\b)");
    EXPECT_EQ(ShortenedPath(LR"(C:\one\two\three\name.zip)", 18), LR"(C:\one\t…\name.zip)");
    EXPECT_EQ(ShortenedPath(LR"(C:\one\two\three\folder\)", 16), LR"(C:\one\…\folder\)");
    const std::wstring torn =
        ShortenedPath(std::wstring(30, L'a') + L"\xD83D\xDE00" + L"bbbbbbb", 12);
    EXPECT_EQ(torn.size(), 11U) << "no half of a character";
}

class PlaceMemoryTest : public testing::Test {
  protected:
    test::RedirectedSettings settings_;
};

TEST_F(PlaceMemoryTest, KeepsTheNewestOfEachKindAndLosesNothingOfOtherCopies) {
    for (int i = 0; i < 17; ++i)
        AddRecent(LR"(C:\)" + std::to_wstring(i));
    AddRecent(LR"(c:\5)");                                          // another spelling of the same
    SaveSetting(L"Recent", LR"(C:\other)", L"900000000000000000");  // by a wrong clock
    SaveSetting(L"Recent", LR"(C:\damaged)", L"99999999999999999999");
    AddRecent(LR"(C:\6)");
    List recent = RecentPaths();
    EXPECT_EQ(recent.size(), kMostRecent);
    EXPECT_EQ((List{recent.begin(), recent.begin() + 3}),
              (List{LR"(C:\6)", LR"(C:\other)", LR"(C:\5)"}));

    for (uint32_t i = 0; i < kMostBookmarks; ++i)
        EXPECT_TRUE(AddBookmark({LR"(C:\a.zip)", L"m", i}));
    EXPECT_FALSE(AddBookmark({L"b"})) << "no bookmark goes for another";
    EXPECT_EQ(Bookmarks().size(), kMostBookmarks);
    EXPECT_EQ(Bookmarks().front().page, kMostBookmarks - 1);
    DropBookmark({LR"(C:\a.zip)", L"m", 7});
    EXPECT_FALSE(IsBookmark({LR"(C:\a.zip)", L"m", 7}));
    SaveSetting(L"Bookmarks", L"damaged", L"1");
    EXPECT_EQ(Bookmarks().size(), kMostBookmarks - 1);
}

TEST_F(PlaceMemoryTest, TakesNothingWhileItIsOff) {
    const auto remember = [] {
        AddRecent(L"a");
        KeepStop(L"a", {L"a", L"m"});
        KeepLastSeen({L"a"});
        KeepOrder(L"a", {OrderBy::kDate, true, 7});
        AddBookmark({L"a"});
    };
    remember();
    SetRemembering(false);
    EXPECT_EQ(Bookmarks().size(), 1U) << "the user's own stay";
    ForgetBookmarks();
    remember();
    for (const wchar_t* const section : {L"Recent", L"Places", L"Orders", L"Bookmarks"})
        EXPECT_TRUE(SettingKeys(section).empty()) << section;
    EXPECT_EQ(SettingKeys(L"Memory"), List{L"Remember"});
    SetRemembering(true);
    remember();
    EXPECT_EQ(StoppedAt(L"A"), (Place{L"a", L"m"}));
    EXPECT_EQ(LastSeen(), Place{L"a"});
    EXPECT_EQ(OrderOf(L"A"), (EntryOrder{OrderBy::kDate, true, 7}));
    FollowFile(L"a", L"b");
    EXPECT_TRUE(OrderOf(L"b") && !OrderOf(L"a"));
    SaveSetting(L"Orders", L"b", L"1|6|0|0");
    EXPECT_FALSE(OrderOf(L"b")) << "damaged";
}

TEST_F(PlaceMemoryTest, TargetFoldersKeepTheirNumbers) {
    const auto paths = [] {
        List paths;
        for (const TargetFolder& folder : TargetFolders())
            paths.push_back(std::to_wstring(folder.number) + folder.path);
        return paths;
    };
    for (const wchar_t* const path : {LR"(D:\a\)", LR"(D:\b)", LR"(E:\)", LR"(d:\A)"})
        KeepTargetFolder(path);
    SetRemembering(false);
    EXPECT_EQ(paths(), (List{LR"(0d:\A)", LR"(1D:\b)", LR"(2E:\)"}));
    DropTargetFolder(LR"(D:\b\)");
    SaveSetting(L"TargetFolders", L"5", L"damaged");
    for (int i = 0; i < 9; ++i)
        KeepTargetFolder(L"F:\\" + std::to_wstring(i));
    const List full = paths();
    EXPECT_EQ(full.size(), 10U);
    EXPECT_EQ(full[1], LR"(1F:\0)");
    EXPECT_EQ(full[2], LR"(2F:\8)") << "in place of the one that was not used for longest";
}

class VisitsTest : public PlaceMemoryTest {
  protected:
    // A further run of the program.
    void Restart() {
        visits_.Keep();
        visits_ = {};
    }

    const Place one_{LR"(C:\b\a.zip)", L"1"};
    const Place two_{LR"(C:\b\a.zip)", L"2"};
    const Place nine_{LR"(C:\b\a.zip)", L"9"};
    const Place picture_{LR"(C:\b\z.bmp)"};
    Visits visits_;
};

TEST_F(VisitsTest, ALookAtTheBeginningForgetsNoPlace) {
    visits_.Begin({});
    for (const Place& place : {one_, two_, nine_})
        EXPECT_FALSE(visits_.Show(place));
    for (int run = 0; run < 2; ++run) {
        Restart();
        visits_.Begin({});
        EXPECT_TRUE(visits_.Show(one_));
        EXPECT_EQ(visits_.Offer(), nine_);
    }
    visits_.Show(two_);
    EXPECT_EQ(visits_.Offer(), nine_) << "he may still";
    visits_.Show(nine_);
    EXPECT_TRUE(visits_.Offer().IsNone()) << "he is there";
    visits_.Show(two_);
    visits_.Show(picture_);
    EXPECT_TRUE(visits_.Show(one_)) << "back within the same run";
    EXPECT_EQ(visits_.Offer(), two_);
    visits_.Forget();
    Restart();
    visits_.Show(one_);
    EXPECT_EQ(visits_.Offer(), two_) << "only what came since is forgotten";
    EXPECT_EQ(LastSeen(), two_);
}

TEST_F(VisitsTest, WhatIsRememberedFollowsAFile) {
    const Place renamed{LR"(C:\B\NEW.zip)", one_.member, one_.page};
    AddRecent(one_.file);
    AddBookmark(one_);
    KeepBook(one_.file, {.isOpen = true});
    visits_.Begin({});
    for (const Place& place : {two_, one_})
        visits_.Show(place);
    visits_.Keep();
    for (const std::wstring& path : {std::wstring(LR"(C:\b\new.zip)"), renamed.file}) {
        const std::wstring former = RecentPaths().front();
        visits_.Follow(former, path);
        FollowFile(former, path);
    }
    EXPECT_EQ(RecentPaths(), List{renamed.file});
    EXPECT_EQ(Bookmarks(), std::vector<Place>{renamed});
    EXPECT_TRUE(BookOf(renamed.file).has_value());
    EXPECT_EQ(StoppedAt(renamed.file), renamed);
    EXPECT_EQ(LastSeen(), renamed);
    EXPECT_EQ(visits_.Shown(), renamed);
}

TEST_F(VisitsTest, AFolderLeadsIntoItsArchive) {
    visits_.Begin(LR"(C:\)");
    for (const Place& place : {Place{LR"(C:\a.bmp)"}, one_, two_})
        visits_.Show(place);
    Restart();
    visits_.Begin(LR"(c:\)");  // with what lies below it
    visits_.Show({LR"(C:\a.bmp)"});
    EXPECT_EQ(visits_.Offer(), two_);
    Restart();
    visits_.Begin({});
    visits_.Show(picture_);
    EXPECT_TRUE(visits_.Offer().IsNone()) << "another folder";

    // The folder that was opened comes before the archive that it begins with.
    visits_.Show(one_);
    Restart();
    KeepStop(LR"(C:\b\)", picture_);
    visits_.Begin(LR"(C:\b\)");
    visits_.Show(one_);
    EXPECT_EQ(visits_.Offer(), picture_);
}

}  // namespace
}  // namespace tessary
