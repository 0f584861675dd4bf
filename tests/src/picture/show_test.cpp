// Showing: from a file on disk to the picture in a view, with real helper libraries and plug-ins.
#include "picture/show/modShowPicture.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "app/base/cloud_folder.h"
#include "app/base/handles.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "picture/bitmap_file.h"
#include "picture/current_picture.h"
#include "picture/show/fit.h"
#include "picture/show/natural_order.h"
#include "picture/show/picture_kernel.h"
#include "picture/show/picture_text.h"
#include "plugin/modSusie.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/distant_files.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

// Remembers what it was told to show.
class FakeView : public PictureView {
  public:
    SIZE WorkAreaSize() const override { return {1200, 900}; }
    void SetPicture(IPicture* picture, int width, int height) override {
        SIZE himetric{};
        picture->get_Width(&himetric.cx);
        EXPECT_GT(himetric.cx, 0);
        shown = {width, height};
        ++pictures;
    }
    void ClearPicture() override { ShowReason({}); }
    void ShowReason(const std::wstring& why) override {
        shown = {};
        reason = why;
    }
    void SetPanelText(int, const std::wstring&) override {}
    void TellFetching(int, int) override { ++fetchNews; }
    bool AwaitsFile() const override { return awaits; }
    bool Breathe() override { return !stops && !Values().quitRequested; }

    SIZE shown{};
    std::wstring reason;
    int pictures = 0;
    bool stops = false;  // asks every read to stop
    bool awaits = true;
    int fetchNews = 0;
};

class FakeList : public MemberList {
  public:
    void SetMembers(std::span<const ListedMember> members) override {
        names.clear();
        for (const ListedMember& member : members)
            names += std::to_wstring(member.position) + L':' + member.name + L' ';
    }
    std::wstring names;
};

class ShowTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { test::LoadHelperLibraries(); }
    // Loads copies of test plug-ins (the archive one for `ax…`), the last by name tried first.
    void UsePlugins(const std::vector<std::pair<std::wstring, std::string>>& namesAndScripts) {
        for (const auto& [name, script] : namesAndScripts) {
            const auto* original = name.starts_with(L"ax") ? L"axtsa.spi" : L"iftst.spi";
            std::filesystem::copy_file(test::TestPluginPath(original), plugins_.Path() + name);
            if (!script.empty()) plugins_.Write(name + L".script", script);
        }
        Values().general.useSPI = 1;
        Values().general.spiFolder[0] = plugins_.Path();
        Values().general.loadSPI[0] = true;
        ASSERT_TRUE(LoadSPI());
        ASSERT_EQ(SusieCollection().Count(), static_cast<int32_t>(namesAndScripts.size()));
    }

    ~ShowTest() override {
        SetCurrentPicture({});
        UnloadSPI();
        EXPECT_TRUE(messages_.All().empty());  // whoever shows decides whom to tell
    }

    ShownFile Show(const std::wstring& file) { return ShowFile(file, view_, list_); }
    // What the view has in place of a picture.
    std::wstring ReasonFor(const std::wstring& file) {
        Show(file);
        EXPECT_FALSE(CurrentPicture()) << file;
        EXPECT_EQ(view_.shown.cx, 0) << file;
        return view_.reason;
    }
    int Calls(const wchar_t* plugin, const char* function) const {
        return test::TestCallCount(GetModuleHandleW((plugins_.Path() + plugin).c_str()), function);
    }

    test::RedirectedSettings settings_;
    test::RecordedMessages messages_;
    test::TemporaryFolder plugins_;
    test::TemporaryFolder files_;
    FakeView view_;
    FakeList list_;
};

TEST(FitTest, KeepsProportionsInsideTheBox) {
    struct Case {
        SIZE picture, box, fitted;
    };
    for (const Case& c :
         {Case{{4000, 3000}, {800, 600}, {800, 600}}, Case{{3000, 4000}, {800, 600}, {450, 600}},
          Case{{10, 10}, {640, 480}, {480, 480}}, Case{{30000, 1}, {640, 480}, {640, 1}},
          Case{{1, 30000}, {640, 480}, {1, 480}}, Case{{333, 250}, {640, 480}, {639, 480}},
          Case{{7, 5}, {0, 0}, {7, 5}}, Case{{2000000000, 2000000000}, {1024, 768}, {768, 768}}}) {
        const SIZE fitted = FitIntoBox(c.picture, c.box);
        EXPECT_EQ(fitted.cx, c.fitted.cx) << c.picture.cx << "x" << c.picture.cy;
        EXPECT_EQ(fitted.cy, c.fitted.cy) << c.picture.cx << "x" << c.picture.cy;
    }
    EXPECT_EQ(SizeModeBox(kSizeModeScreen, {1920, 1040}).cy, 1040);
    EXPECT_EQ(SizeModeBox(kSizeMode1024, {1, 1}).cx, 1024);
    EXPECT_EQ(SizeModeBox(5, {1920, 1040}).cx, 0);
}

TEST_F(ShowTest, BitmapNeedsNoPlugin) {
    const std::wstring file = files_.Write(L"絵.dat", test::BitmapFileOf(20, 10, RGB(1, 2, 3)));
    EXPECT_EQ(QueryFileKind(file), kFileBitmap);
    EXPECT_EQ(Show(file).kind, kFileBitmap);
    EXPECT_EQ(view_.shown.cx, 20);
    EXPECT_EQ(CurrentPicture().Height(), 10);

    Values().fixSizeValue = kSizeMode640;
    EXPECT_TRUE(DisplayCurrentPicture(view_));
    EXPECT_EQ(view_.shown.cx, 640);
    EXPECT_EQ(view_.shown.cy, 320);
    // The current picture keeps its own size, whatever is shown.
    EXPECT_EQ(CurrentPicture().Width(), 20);
}

TEST_F(ShowTest, FilesInACloudAreJudgedByTheirNamesAndFetchedOnlyToBeShown) {
    UsePlugins(
        {{L"1.spi", "accept-all\ninfo:2:*.tst\n"}, {L"axtsa.spi", ""}, {L"2.spi", "info:2:*.*\n"}});
    test::FakeDistantFiles cloud;
    // The contents are other ones.
    const std::wstring picture = files_.Write(L"a.tst", test::BitmapFileOf(20, 10, 0));
    const std::wstring archive = files_.Write(L"b.tsa", "TST 30x20x24\n");
    const std::wstring film = files_.Write(L"d.mp4", test::BitmapFileOf(20, 10, 0));
    cloud.elsewhere = {picture, archive, files_.Path() + L"c.BMP", film};
    const auto calls = [&] {
        return Calls(L"1.spi", "IsSupported") + Calls(L"2.spi", "IsSupported");
    };
    EXPECT_EQ(QueryFileKind(picture), kFilePicture);
    EXPECT_EQ(QueryFileKind(archive), kFileArchive);
    EXPECT_EQ(QueryFileKind(files_.Path() + L"c.BMP"), kFileBitmap);
    EXPECT_EQ(QueryFileKind(film), kFileUnknown);
    EXPECT_EQ(calls(), 0);

    view_.awaits = false;
    EXPECT_TRUE(Show(picture).passedBy);
    EXPECT_TRUE(view_.reason.ends_with(L"クラウドにあり、まだ取得していません。"));
    view_.awaits = true;
    view_.stops = true;
    EXPECT_TRUE(Show(picture).stopped);
    view_.stops = false;
    EXPECT_TRUE(ReasonFor(film).ends_with(L"画像ではないため、取得していません。"));
    EXPECT_EQ(cloud.pieces, 0);
    view_.fetchNews = 0;
    EXPECT_EQ(Show(picture).kind, kFileBitmap);
    EXPECT_GE(cloud.pieces, 1);
    EXPECT_GE(view_.fetchNews, 1);
    EXPECT_EQ(Show(archive).kind, kFilePicture);
    cloud.error = 362;
    EXPECT_EQ(Show(picture).failure, L"ファイル " + picture +
                                         L" を表示できません。\r\nクラウドのプログラム（OneDrive "
                                         L"など）が動作していません（エラー 362）。");
}

TEST_F(ShowTest, EmptyFilesAreCalledEmptyUnlessAPluginKnowsThem) {
    UsePlugins({{L"1.spi", "by-name\ninfo:2:*.tst\nempty-is:30x20x24\n"},
                {L"2.spi", "accept-all\ninfo:2:*.abc\n"},
                {L"3.spi", "answer:IsSupported:0\n"}});
    EXPECT_EQ(QueryFileKind(files_.Write(L"a.tst")), kFilePicture);
    EXPECT_EQ(Show(files_.Path() + L"a.tst").kind, kFilePicture);
    EXPECT_EQ(Show(files_.Write(L"b.tst", "TST 3x2x24\n")).kind, kFilePicture);
    EXPECT_EQ(Calls(L"2.spi", "IsSupported"), 0);
    // Nobody guesses: there is nothing to guess by. Nor does one that fails with it tell more.
    for (const wchar_t* const name : {L"a.xyz", L"a.abc", L"a.bmp"}) {
        const std::wstring file = files_.Write(name);
        EXPECT_EQ(Show(file).failure,
                  L"ファイル " + file + L" を表示できません。\r\nファイルが空です。");
    }
    EXPECT_EQ(Calls(L"2.spi", "IsSupported"), 1);
}

TEST_F(ShowTest, ResizedPictureIsTheSameInMemoryAndThroughAFile) {
    const std::wstring file = files_.Write(L"a.bmp", test::BitmapFileOf(51, 30, RGB(10, 120, 250)));
    Picture source;
    ASSERT_TRUE(ReadBitmapFile(file, source));
    const std::wstring temporary = AppFolder() + L"~temp.bmp";
    // A folder of that name is what no file can be written over.
    const auto resized = [&](Handover handover, bool isRefused) {
        if (isRefused) CreateDirectoryW(temporary.c_str(), nullptr);
        const Picture picture = ResizePicture(source, 7, 90, handover);
        if (isRefused) RemoveDirectoryW(temporary.c_str());
        EXPECT_FALSE(PathExists(temporary));
        if (!picture) return std::string();
        EXPECT_EQ(picture.Width(), 7);
        EXPECT_EQ(picture.Height(), 90);
        EXPECT_FALSE(picture.View().IsTopDown());
        const auto bits = picture.View().Bits();
        return std::string(reinterpret_cast<const char*>(bits.data()), bits.size());
    };
    const std::string inMemory = resized(Handover::kMemory, true);
    ASSERT_EQ(inMemory.size(), 24u * 90);
    EXPECT_EQ(inMemory.substr(24 * 45 + 3 * 3, 3), "\xFA\x78\x0A");
    EXPECT_FALSE(Values().avoidsProgramFolder.has_value());
    EXPECT_TRUE(resized(Handover::kFile, false) == inMemory);
    EXPECT_EQ(Values().avoidsProgramFolder, false);
    EXPECT_TRUE(resized(Handover::kFile, true) == inMemory);
    EXPECT_EQ(Values().avoidsProgramFolder, true);  // until the program ends
    Values().avoidsProgramFolder.reset();
    SetEnvironmentVariableW(L"OneDrive", AppFolder().c_str());
    EXPECT_TRUE(resized(Handover::kFile, false) == inMemory);
    EXPECT_EQ(Values().avoidsProgramFolder, true);
    EXPECT_FALSE(IsInCloud(AppFolder().substr(0, AppFolder().size() - 1) + L"x"));
    SetEnvironmentVariableW(L"OneDrive", nullptr);
    EXPECT_FALSE(IsInCloud(AppFolder()));
}

TEST_F(ShowTest, PluginThatFailsMakesRoomForAllOthers) {
    const std::string lenient = "accept-all\ninfo:2:*.xyz\nanswer:GetPicture:2\n";
    UsePlugins(
        {{L"c_refuses.spi", "answer:IsSupported:0\n"}, {L"b_good.spi", ""}, {L"a.spi", lenient}});
    const auto asked = [&](const wchar_t* name) { return Calls(name, "IsSupported"); };
    // It stands behind the good one, but accepted last.
    EXPECT_EQ(QueryFileKind(files_.Write(L"a.xyz", "text")), kFilePicture);
    EXPECT_EQ(Show(files_.Write(L"a.dat", "TST 30x20x24\n")).kind, kFilePicture);
    EXPECT_EQ(asked(L"a.spi"), 2);
    EXPECT_EQ(asked(L"c_refuses.spi"), 1);
    // It is the only one to claim this by its name.
    EXPECT_EQ(Show(files_.Write(L"b.xyz", "TST 40x20x24\n")).kind, kFilePicture);
    EXPECT_EQ(view_.shown.cx, 40);
}

TEST_F(ShowTest, AQueryIsNotMadeASecondTime) {
    UsePlugins({{L"c_refuses.spi", "answer:IsSupported:0\n"}, {L"axtsa.spi", ""}, {L"a.spi", ""}});
    const std::wstring picture = files_.Write(L"a.tst", "TST 30x20x24\n");
    EXPECT_EQ(QueryFileKind(picture), kFilePicture);
    EXPECT_EQ(Show(picture).kind, kFilePicture);
    EXPECT_EQ(Calls(L"a.spi", "IsSupported"), 1);
    EXPECT_EQ(Show(picture).kind, kFilePicture);  // a show alone leaves nothing behind
    EXPECT_EQ(Calls(L"a.spi", "IsSupported"), 2);

    const std::wstring archive = files_.Write(L"a.tsa", test::ArchiveOf({{"a.jpg", "a"}}));
    EXPECT_EQ(QueryFileKind(archive), kFileArchive);
    EXPECT_EQ(Show(archive).kind, kFileArchive);
    EXPECT_EQ(Calls(L"axtsa.spi", "GetArchiveInfo"), 1);
    EXPECT_EQ(Show(archive).kind, kFileArchive);  // may have changed since
    EXPECT_EQ(Calls(L"axtsa.spi", "GetArchiveInfo"), 2);

    EXPECT_EQ(QueryFileKind(archive), kFileArchive);
    files_.Write(L"a.tsa", "no archive any more");
    EXPECT_EQ(Show(archive).kind, kFileUnknown);
}

TEST_F(ShowTest, MembersAreListedInNaturalOrder) {
    UsePlugins({{L"axtsa.spi", ""}});
    const std::wstring file =
        files_.Write(L"a.tsa", test::ArchiveOf({{"b/10.jpg", "a"},
                                                {"10.jpg", "a"},
                                                {"b/", ""},
                                                {"B/9.jpg", "a"},
                                                {"b/c/1.jpg", "a"},
                                                {"b 2/1.jpg", "a"},
                                                {"IMG99999999999999999999.jpg", "a"},
                                                {"img100000000000000000000.jpg", "a"},
                                                {"_cover.jpg", "a"},
                                                {"9.jpg", "a"},
                                                {"08.jpg", "a"}}));
    const ShownFile shown = Show(file);
    EXPECT_EQ(shown.kind, kFileArchive);
    EXPECT_EQ(shown.pluginName, L"axtsa.spi");
    EXPECT_EQ(list_.names,
              L"9:_cover.jpg 11:08.jpg 10:9.jpg 2:10.jpg 7:IMG99999999999999999999.jpg "
              L"8:img100000000000000000000.jpg 4:B\\9.jpg 1:b\\10.jpg 5:b\\c\\1.jpg 6:b 2\\1.jpg ");

    // Characters that are ordered as several ones each.
    const std::wstring signs(40, L'\u33A0');
    std::vector<ListedMember> members{{signs + L".jpg", 1}, {L"a.jpg", 2}};
    SortNaturally(members);
    EXPECT_EQ(members[0].position, 2);
}

TEST_F(ShowTest, MembersAreShownWhateverBecomesOfTheOthers) {
    // The last is tried first; one tells an archive by anything at all.
    UsePlugins({{L"a1good.spi", ""},
                {L"a2bad.spi", "answer:GetPicture:2\n"},
                {L"axlenient.spi", "accept-all\ninfo:2:*.tst\nanswer:GetArchiveInfo:2\n"},
                {L"axtsa.spi", ""}});
    const std::wstring file = files_.Write(
        L"a.tsa",
        test::ArchiveOf({{"\x83\x5C/1.bmp", test::BitmapFileOf(20, 10, RGB(1, 2, 3)) + "x"},
                         {"2.tst", "TST 30x20x24\n"},
                         {"3.tst", "TST 30x20x24\ncrash:av:GetPicture\n"},
                         {"4.tsa", "TSA\n\n"},
                         {"5.bmp", "BM no bitmap"},
                         {"6.tst", ""}}));
    ASSERT_EQ(Show(file).kind, kFileArchive);
    const auto show = [&](int32_t position) { return ShowArchiveMember(file, position, view_); };
    EXPECT_EQ(show(1).kind, kFileBitmap);
    EXPECT_EQ(view_.shown.cx, 20);
    const ShownFile picture = show(2);
    EXPECT_EQ(picture.kind, kFilePicture);
    EXPECT_EQ(picture.pluginName + picture.failure, L"a1good.spi");
    EXPECT_EQ(view_.shown.cx, 30);
    EXPECT_EQ(show(4).kind, kFileArchive);
    EXPECT_EQ(view_.shown.cx, 0);
    EXPECT_EQ(view_.reason,
              L"ファイル a.tsa 内の 4.tsa を表示できません。\r\n"
              L"圧縮ファイルの中の圧縮ファイルは開けません。");
    EXPECT_EQ(Calls(L"axtsa.spi", "GetArchiveInfo"), 1);  // the archive was bound all the time

    // It was unbound meanwhile.
    QueryFileKind(files_.Write(L"b.tst", "TST 30x20x24\n"));
    EXPECT_EQ(show(2).kind, kFilePicture);

    UnloadSPI();
    plugins_.Write(L"axlenient.spi.script", "answer:IsSupported:0\nanswer:GetArchiveInfo:2\n");
    LoadSPI();
    const std::wstring inArchive = L"ファイル " + file + L" 内の ";
    EXPECT_TRUE(
        show(3).failure.starts_with(inArchive +
                                    L"3.tst を表示できません。\r\n画像の展開に失敗しました\r\n"
                                    L"SPIファイル内の関数で致命的エラーが発生しました"));
    EXPECT_TRUE(show(5).failure.starts_with(inArchive + L"5.bmp を表示できません。"));
    EXPECT_EQ(show(6).failure, inArchive +
                                   L"6.tst を表示できません。\r\n"
                                   L"圧縮ファイルの展開に失敗しました\r\nデータが壊れています\r\n"
                                   L"プラグイン: axtsa.spi");
    EXPECT_EQ(show(7).kind, kFileUnknown);
    EXPECT_EQ(show(2).kind, kFilePicture);

    files_.Write(L"a.tsa", "no archive any more");
    SusieCollection().UnloadFile();
    EXPECT_FALSE(show(2).failure.empty());
    EXPECT_EQ(view_.shown.cx, 0);
    Values().quitRequested = true;
    files_.Write(L"a.tsa", test::ArchiveOf({{"1.tst", "TST 30x20x24\n"}}));
    EXPECT_EQ(show(1).failure, L"");
}

TEST_F(ShowTest, AnArchiveThatWasReplacedIsNotReadByItsOldList) {
    UsePlugins({{L"axtsa.spi", ""}});
    const std::wstring file = files_.Write(L"a.tsa", test::ArchiveOf({{"1.bmp", "a"}}));
    ASSERT_EQ(Show(file).kind, kFileArchive);
    files_.Write(L"a.tsa", test::ArchiveOf({{"other.bmp", "b"}, {"1.bmp", "a"}}));
    const auto saysChanged = [&] {
        const ShownFile shown = ShowArchiveMember(file, 1, view_);
        return shown.failure.find(L"変更") != std::wstring::npos;
    };
    EXPECT_TRUE(saysChanged());
    Show(file);
    EXPECT_FALSE(saysChanged());
}

TEST_F(ShowTest, LastFailureIsToldWithItsCulprit) {
    UsePlugins({{L"a_bad.spi", "crash:av:GetPicture\n"}, {L"b_bad.spi", "crash:av:GetPicture\n"}});
    const std::wstring shown = files_.Write(L"shown.bmp", test::BitmapFileOf(9, 9, 0));
    ASSERT_EQ(Show(shown).kind, kFileBitmap);
    const std::wstring file = files_.Write(L"picture.tst", "TST 30x20x24\n");
    const ShownFile failed = Show(file);
    EXPECT_EQ(failed.kind, kFileUnknown);
    const std::wstring reason = ReasonFor(file);
    for (const wchar_t* const part :
         {L"画像の展開に失敗しました", L"SPIファイル内の関数で致命的エラーが発生しました",
          L"_bad.spi"}) {
        EXPECT_NE(failed.failure.find(part), std::wstring::npos) << failed.failure;
        EXPECT_NE(reason.find(part), std::wstring::npos) << reason;
    }
    EXPECT_TRUE(failed.failure.starts_with(L"ファイル " + file + L" を表示できません。"));
    EXPECT_TRUE(reason.starts_with(L"ファイル picture.tst を表示できません。"));
}

TEST_F(ShowTest, ADamagedArchiveShowsThePluginsReason) {
    UsePlugins({{L"axb.spi", "answer:IsSupported:0\nanswer:GetArchiveInfo:3\n"}, {L"axa.spi", ""}});
    const auto failureOf = [&](const char* answer) {
        return Show(files_.Write(L"damaged.tsa", std::string("TSA\nanswer:GetArchiveInfo:") +
                                                     answer + "\nmember\t1\t\tx\n\nx"))
            .failure;
    };
    EXPECT_TRUE(failureOf("3").ends_with(L"データが壊れています\r\nプラグイン: axa.spi"));
    EXPECT_TRUE(failureOf("2").ends_with(L"プラグインの知らない形式です\r\nプラグイン: axa.spi"));
    EXPECT_EQ(Show(files_.Write(L"other.tsa", "text")).failure, L"");  // nobody's
}

TEST_F(ShowTest, APictureThatIsThereInPartIsMarked) {
    UsePlugins({{L"ax.spi", ""}, {L"1.spi", ""}});
    const std::string bitmap = test::BitmapFileOf(20, 10, RGB(1, 2, 3));
    const std::string cut = bitmap.substr(0, bitmap.size() - 40);
    const std::string picture = "TST 6x5x24\n";
    const std::wstring archive = files_.Write(
        L"a.tsa", test::ArchiveOf({{"1.bmp", bitmap}, {"2.bmp", cut}, {"3.tst", picture}}));
    const std::wstring torn =
        files_.Write(L"torn.tsa", test::ArchiveOf({{"1.bmp", bitmap}}, "condition:1:torn\n"));
    const auto damage = [&](const ShownFile& shown) {
        EXPECT_TRUE(IsPictureKind(shown.kind));
        EXPECT_EQ(PictureInfoTail().ends_with(L"（損傷）"), !shown.damage.empty());
        return shown.damage;
    };
    const auto member = [&](int32_t position) {
        return damage(ShowArchiveMember(archive, position, view_));
    };
    constexpr wchar_t kCutShort[] = L"ファイルが途中で切れています";
    EXPECT_EQ(damage(Show(files_.Write(L"cut.bmp", cut))), kCutShort);
    EXPECT_EQ(damage(Show(files_.Write(L"whole.bmp", bitmap))), L"");
    EXPECT_EQ(damage(Show(files_.Write(L"cut.tst", picture + "condition:1:half\n"))), L"half");
    EXPECT_EQ(damage(Show(files_.Write(L"whole.tst", picture))), L"");
    Show(archive);
    EXPECT_EQ(member(1), L"");
    EXPECT_EQ(member(2), kCutShort);
    EXPECT_EQ(member(3), L"");
    Show(torn);
    EXPECT_EQ(damage(ShowArchiveMember(torn, 1, view_)), L"torn");
}

TEST_F(ShowTest, NothingOfTheFileBeforeStandsForOneThatCannotBeShown) {
    UsePlugins({{L"axtsa.spi", ""}});
    const std::wstring shown = files_.Write(L"shown.bmp", test::BitmapFileOf(9, 9, 0));
    const std::wstring locked = files_.Write(L"locked.bmp", test::BitmapFileOf(9, 9, 0));
    const UniqueFile lock(
        CreateFileW(locked.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    const std::wstring broken = files_.Write(L"broken.bmp", "BM no bitmap");
    const std::wstring nothing = files_.Write(L"none.tsa", test::ArchiveOf({}));
    const std::wstring missing = files_.Path() + L"無い.bmp";
    const std::wstring unopened =
        L" が開けません。\r\nファイルが存在しないか、ほかのアプリケーションで"
        L"使用中の可能性があります。";
    struct Case {
        std::wstring file, reason;
        bool isTold;  // in a message box, when the file is opened by hand
    };
    for (const Case& c :
         {Case{missing, unopened, true}, Case{locked, unopened, true},
          Case{broken,
               L" を表示できません。\r\nビットマップファイルが壊れているか、"
               L"対応していない形式です。",
               true},
          Case{nothing, L" を表示できません。\r\n圧縮ファイルの中にファイルがありません。", true},
          Case{files_.Write(L"readme.txt", "BMW is no bitmap, and this no picture"),
               L" を表示できません。\r\n対応しているプラグインがありません。", false}}) {
        ASSERT_EQ(Show(shown).kind, kFileBitmap);
        EXPECT_EQ(ReasonFor(c.file), L"ファイル " + FileNameOf(c.file) + c.reason);
        EXPECT_EQ(Show(c.file).failure,
                  c.isTold ? L"ファイル " + c.file + c.reason : std::wstring());
    }
    EXPECT_EQ(QueryFileKind(missing), kFileUnknown);
}

TEST_F(ShowTest, NamesOutsideTheCodePageAndLongPathsAreShown) {
    UsePlugins({{L"a.spi", ""}});
    for (const std::wstring& name : {std::wstring(L"사진 \U0001F600.tst"),
                                     std::wstring(L"deep\\") + std::wstring(120, L'a') + L"\\" +
                                         std::wstring(120, L'b') + L"\\写真.tst"}) {
        const std::wstring file = files_.Write(name, "TST 30x20x24\n");
        view_.shown = {};
        EXPECT_EQ(Show(file).kind, kFilePicture) << file.size();
        EXPECT_EQ(view_.shown.cx, 30);
    }
}

TEST_F(ShowTest, StoppedReadHasNotFailed) {
    UsePlugins({{L"a.spi", ""}, {L"axtsa.spi", ""}});
    const std::wstring archive =
        files_.Write(L"a.tsa", test::ArchiveOf({{"1.tst", "TST 30x20x24\n"}}));
    for (bool* const asks : {&view_.stops, &Values().quitRequested}) {
        *asks = true;
        for (const std::wstring& file :
             {archive, files_.Write(L"picture.tst", "TST 30x20x24\n"),
              files_.Write(L"deaf.tst", "TST 30x20x24\nignore-abort\n"),
              files_.Write(L"large.bmp", test::BitmapFileOf(2000, 2000, RGB(1, 2, 3)))}) {
            const ShownFile shown = Show(file);
            EXPECT_TRUE(shown.stopped) << file;
            EXPECT_EQ(shown.kind, kFileUnknown) << file;
            EXPECT_EQ(shown.failure, L"") << file;
            EXPECT_EQ(view_.reason,
                      L"ファイル " + FileNameOf(file) + L" の読み込みを中止しました。");
        }
        *asks = false;
    }
    ASSERT_EQ(Show(archive).kind, kFileArchive);
    view_.stops = true;
    EXPECT_TRUE(ShowArchiveMember(archive, 1, view_).stopped);
    EXPECT_EQ(view_.pictures, 0);
}

}  // namespace
}  // namespace tessary
