// Showing: from a file on disk to the picture in a view, with real helper libraries and plug-ins.
#include "picture/show/modShowPicture.h"

#include <gtest/gtest.h>

#include "app/base/cloud_folder.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "picture/bitmap_file.h"
#include "picture/current_picture.h"
#include "picture/read/arrangement.h"
#include "picture/read/source_file.h"
#include "picture/show/picture_text.h"
#include "picture/view/picture_kernel.h"
#include "plugin/modSusie.h"
#include "tests/helpers/dib/test_bitmap.h"
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
    SightRoom Room() const override { return {{300, 200}, {17, 17}, {1200, 900}}; }
    void SetPicture(Picture picture, const Picture&) override {
        const SIZE size = SizeInRoom({picture.Width(), picture.Height()}, ChosenFitRule(), Room());
        shown = std::to_wstring(size.cx) + L"×" + std::to_wstring(size.cy);
    }
    void ClearPicture() override { ShowReason({}); }
    void ShowReason(const std::wstring& why) override {
        shown.clear();
        reason = why;
    }
    void SetPanelText(int, const std::wstring&) override {}
    void TellFetching(int, int) override { ++fetchNews; }
    bool AwaitsFile() const override { return awaits; }
    bool Breathe() override { return !stops; }

    std::wstring shown;  // the picture's size
    std::wstring reason;
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

    // What comes of showing a file, or an archive's member: the picture's size, who read it and
    // what it lacks; the archive's plug-in; or what cannot be shown and, behind a colon, why, with
    // a `~` before what no message box is to tell.
    std::wstring Show(const std::wstring& file) {
        view_.shown = view_.reason = L"old";
        return Told(ShowFile(file, view_, list_), file);
    }
    std::wstring Show(const std::wstring& archive, int32_t position) {
        view_.shown = view_.reason = L"old";
        return Told(ShowArchiveMember(archive, position, view_), archive);
    }
    std::wstring Told(const ShownFile& file, const std::wstring& path) {
        if (IsPictureKind(file.kind)) {
            EXPECT_EQ(file.failure, L"");
            EXPECT_EQ(file.kind == kFilePicture, !file.pluginName.empty());
            EXPECT_EQ(PictureInfoTail(), L" ( " + view_.shown + L" 24bit )" +
                                             (file.damage.empty() ? L"" : L"（損傷）"));
            return view_.shown + L' ' + file.pluginName + L' ' + file.damage;
        }
        if (view_.reason == L"old") return file.pluginName;  // its members are listed
        EXPECT_EQ(view_.shown, L"");
        EXPECT_FALSE(CurrentPicture());
        const std::wstring told = Replaced(file.failure, path, FileNameOf(path));
        EXPECT_EQ(told, file.failure.empty() ? L"" : view_.reason);
        const std::wstring plain =
            Replaced(Replaced(view_.reason, L"ファイル ", L""), L" を表示できません。\r\n", L": ");
        return (told.empty() ? L"~" : L"") + plain;
    }
    static std::wstring Replaced(std::wstring text, const std::wstring& part,
                                 const std::wstring& other) {
        const size_t at = text.find(part);
        return at == text.npos ? text : text.replace(at, part.size(), other);
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

constexpr char kPicture[] = "TST 30x20x24\n";
const std::wstring kCutShort = L"20×10  ファイルが途中で切れています";
const std::string kBitmap = test::BitmapFileOf(20, 10, RGB(1, 2, 3));

TEST_F(ShowTest, ABitmapNeedsNoPluginAndKeepsItsOwnSize) {
    for (const uint32_t header : {12, 40, 124}) {
        const auto file =
            dib::test::TestBitmap{20, 10, 24, dib::test::Bytes(600), {}, header}.File();
        const std::string content(file.begin(), file.end());
        EXPECT_EQ(Show(files_.Write(L"絵.dat", content)), L"20×10  ") << header;
    }
    Values().fixSizeValue = kSizeMode640;
    EXPECT_TRUE(DisplayCurrentPicture(view_));
    EXPECT_EQ(view_.shown, L"20×10");
    Values().general.enlargeSmall = 1;
    EXPECT_TRUE(DisplayCurrentPicture(view_));
    EXPECT_EQ(view_.shown, L"640×320");
    EXPECT_EQ(CurrentPicture().Width(), 20);
}

TEST_F(ShowTest, PreparesPicturesInTheSizeBesideTheBarsUnlessNobodySeesMostOfThem) {
    Values().fixSizeValue = kSizeModeWidth;
    for (const int height : {2000, 20000}) {
        Picture picture;
        ASSERT_TRUE(ReadBitmapFile(
            files_.Write(L"a.bmp", test::BitmapFileOf(320, height, RGB(1, 2, 3))), picture));
        const Picture prepared = PreparationFor(view_)(picture);
        ASSERT_EQ(static_cast<bool>(prepared), height == 2000);
        EXPECT_TRUE(!prepared || prepared.Width() == 300 - 17);
    }
}

TEST_F(ShowTest, FilesInACloudAreJudgedByTheirNamesAndFetchedOnlyToBeShown) {
    UsePlugins(
        {{L"1.spi", "accept-all\ninfo:2:*.tst\n"}, {L"axtsa.spi", ""}, {L"2.spi", "info:2:*.*\n"}});
    test::FakeDistantFiles cloud;
    // The contents are other ones.
    const std::wstring picture = files_.Write(L"a.tst", kBitmap);
    const std::wstring archive = files_.Write(L"b.tsa", kPicture);
    const std::wstring film = files_.Write(L"d.mp4", kBitmap);
    cloud.elsewhere = {picture, archive, files_.Path() + L"c.BMP", film};
    EXPECT_EQ(QueryFile(picture).kind, kFilePicture);
    EXPECT_EQ(QueryFile(archive).kind, kFileArchive);
    EXPECT_EQ(QueryFile(files_.Path() + L"c.BMP").kind, kFileBitmap);
    EXPECT_EQ(QueryFile(film).kind, kFileUnknown);
    EXPECT_EQ(Calls(L"1.spi", "IsSupported") + Calls(L"2.spi", "IsSupported"), 0);

    view_.awaits = false;
    EXPECT_EQ(Show(picture), L"~a.tst: クラウドにあり、まだ取得していません。");
    view_.awaits = view_.stops = true;
    EXPECT_EQ(Show(picture), L"~a.tst の読み込みを中止しました。");
    view_.stops = false;
    EXPECT_EQ(Show(film), L"d.mp4: クラウドにあり、名前からは画像ではないため、取得していません。");
    EXPECT_EQ(cloud.pieces, 0);
    view_.fetchNews = 0;
    EXPECT_EQ(Show(picture), L"20×10  ");
    EXPECT_GE(cloud.pieces, 1);
    EXPECT_GE(view_.fetchNews, 1);
    EXPECT_EQ(Show(archive), L"30×20 2.spi ");
    cloud.error = 362;
    EXPECT_TRUE(Show(picture).starts_with(L"a.tst: クラウドのプログラム"));
}

TEST_F(ShowTest, ResizedPictureIsTheSameInMemoryAndThroughAFile) {
    Picture source;
    ASSERT_TRUE(ReadBitmapFile(
        files_.Write(L"a.bmp", test::BitmapFileOf(51, 30, RGB(10, 120, 250))), source));
    const std::wstring temporary = AppFolder() + L"~temp.bmp";
    // A folder of that name is what no file can be written over.
    const auto resized = [&](Handover handover, bool isRefused) {
        if (isRefused) CreateDirectoryW(temporary.c_str(), nullptr);
        const Picture picture = ResizePicture(source, 7, 90, handover);
        if (isRefused) RemoveDirectoryW(temporary.c_str());
        EXPECT_FALSE(PathExists(temporary));
        if (!picture) return std::string();
        return std::string(picture.Bits().begin(), picture.Bits().end());
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
    // It stands behind the good one, but accepted last.
    EXPECT_EQ(QueryFile(files_.Write(L"a.xyz", "text")).kind, kFilePicture);
    const std::wstring deep = std::wstring(120, L'a') + L'\\' + std::wstring(120, L'b');
    const std::wstring file = files_.Write(deep + L"\\사진 \U0001F600.dat", kPicture);
    EXPECT_EQ(Show(file), L"30×20 b_good.spi ");
    EXPECT_EQ(Calls(L"a.spi", "IsSupported"), 2);
    EXPECT_EQ(Calls(L"c_refuses.spi", "IsSupported"), 1);
    // It is the only one to claim this by its name.
    EXPECT_EQ(Show(files_.Write(L"b.xyz", "TST 40x20x24\n")), L"40×20 b_good.spi ");
}

TEST_F(ShowTest, AQueryIsNotMadeASecondTime) {
    UsePlugins({{L"c_refuses.spi", "answer:IsSupported:0\n"}, {L"axtsa.spi", ""}, {L"a.spi", ""}});
    const std::wstring archive = files_.Write(L"a.tsa", test::ArchiveOf({{"a.jpg", "a"}}));
    const struct {
        std::wstring file;
        const wchar_t* plugin;
        const char* function;
    } cases[] = {{files_.Write(L"a.tst", kPicture), L"a.spi", "IsSupported"},
                 {archive, L"axtsa.spi", "GetArchiveInfo"}};
    for (const auto& [file, plugin, function] : cases) {
        QueryFile(file);
        // A show alone leaves nothing behind: the file may have changed since.
        for (const int count : {1, 2}) {
            EXPECT_NE(Show(file).find(plugin), std::wstring::npos);
            EXPECT_EQ(Calls(plugin, function), count) << function;
        }
    }
    // Who refuses a file is not asked again for the same show.
    const int refused = Calls(L"c_refuses.spi", "IsSupported");
    Show(files_.Write(L"b.tst", "no picture"));
    EXPECT_EQ(Calls(L"c_refuses.spi", "IsSupported"), refused + 1);
    EXPECT_EQ(QueryFile(archive).kind, kFileArchive);
    files_.Write(L"a.tsa", "no archive any more");
    EXPECT_EQ(Show(archive), L"~a.tsa: 対応しているプラグインがありません。");
}

TEST(NaturalOrderTest, FoldersAndNumbersComeAsPeopleLookForThem) {
    const std::wstring eachSeveral(40, L'\u33A0');  // one character is ordered as several
    const std::vector<std::wstring> ordered{L"_cover.jpg",
                                            L"08.jpg",
                                            L"9.jpg",
                                            L"10.jpg",
                                            eachSeveral,
                                            L"IMG99999999999999999999.jpg",
                                            L"img100000000000000000000.jpg",
                                            L"B\\9.jpg",
                                            L"b\\10.jpg",
                                            L"b\\c\\1.jpg",
                                            L"b 2\\1.jpg"};
    std::vector<ListedMember> members;
    for (const std::wstring& name : ordered)
        members.insert(members.begin(), {name, 1});
    SortBy({}, members);
    for (size_t at = 0; at < ordered.size(); ++at)
        EXPECT_EQ(members[at].name, ordered[at]);
}

TEST_F(ShowTest, MembersAreShownWhateverBecomesOfTheOthers) {
    // The last is tried first; one tells an archive by anything at all.
    UsePlugins({{L"a1good.spi", ""},
                {L"a2bad.spi", "answer:GetPicture:2\n"},
                {L"axlenient.spi", "accept-all\ninfo:2:*.tst\nanswer:GetArchiveInfo:2\n"},
                {L"axtsa.spi", ""}});
    const std::string crashing = std::string(kPicture) + "crash:av:GetPicture\n";
    const std::wstring file =
        files_.Write(L"a.tsa", test::ArchiveOf({{"\x83\x5C/1.bmp", kBitmap + "x"},
                                                {"2.tst", kPicture},
                                                {"3.tst", crashing},
                                                {"4.tsa", "TSA\n\n"},
                                                {"5.bmp", "BM no bitmap"},
                                                {"6.tst", ""}}));
    EXPECT_EQ(Show(file), L"axtsa.spi");
    EXPECT_EQ(list_.names, L"2:2.tst 3:3.tst 4:4.tsa 5:5.bmp 6:6.tst 1:ソ\\1.bmp ");
    EXPECT_EQ(Show(file, 1), L"20×10  ");
    EXPECT_EQ(Show(file, 2), L"30×20 a1good.spi ");
    EXPECT_EQ(Show(file, 4), L"~a.tsa 内の 4.tsa: 圧縮ファイルの中の圧縮ファイルは開けません。");
    EXPECT_EQ(Calls(L"axtsa.spi", "GetArchiveInfo"), 1);  // the archive was bound all the time
    QueryFile(files_.Write(L"b.tst", kPicture));          // and is not any more
    EXPECT_EQ(Show(file, 2), L"30×20 a1good.spi ");

    UnloadSPI();
    plugins_.Write(L"axlenient.spi.script", "answer:IsSupported:0\nanswer:GetArchiveInfo:2\n");
    LoadSPI();
    EXPECT_TRUE(
        Show(file, 3).starts_with(L"a.tsa 内の 3.tst: 画像の展開に失敗しました\r\n"
                                  L"SPIファイル内の関数で致命的エラーが発生しました"));
    EXPECT_TRUE(Show(file, 5).starts_with(L"a.tsa 内の 5.bmp: ビットマップファイルが壊れて"));
    EXPECT_EQ(Show(file, 6),
              L"a.tsa 内の 6.tst: 圧縮ファイルの展開に失敗しました\r\n"
              L"データが壊れています\r\nプラグイン: axtsa.spi");
    EXPECT_TRUE(Show(file, 7).starts_with(L"a.tsa: "));
    EXPECT_EQ(Show(file, 2), L"30×20 a1good.spi ");
}

TEST_F(ShowTest, AnArchiveThatWasReplacedIsNotReadByItsOldList) {
    UsePlugins({{L"axtsa.spi", ""}});
    const std::wstring file = files_.Write(L"a.tsa", test::ArchiveOf({{"1.bmp", kBitmap}}));
    EXPECT_EQ(Show(file), L"axtsa.spi");
    const std::wstring changed =
        L"a.tsa: 圧縮ファイルが変更されたか、読み取れなくなっています。開き直してください。";
    for (const std::string& content :
         {test::ArchiveOf({{"other.bmp", "b"}, {"1.bmp", "a"}}), std::string("no archive")}) {
        files_.Write(L"a.tsa", content);
        EXPECT_EQ(Show(file, 1), changed);
    }
    SusieCollection().UnloadFile();
    EXPECT_EQ(Show(file, 1), changed);
}

TEST_F(ShowTest, TheLastFailureIsToldWithItsReasonAndCulprit) {
    UsePlugins({{L"b_bad.spi", "crash:av:GetPicture\n"},
                {L"axb.spi", "answer:IsSupported:0\nanswer:GetArchiveInfo:3\n"},
                {L"axa.spi", ""},
                {L"a_bad.spi", "crash:av:GetPicture\n"}});
    EXPECT_EQ(Show(files_.Write(L"a.tst", kPicture)),
              L"a.tst: 画像の展開に失敗しました\r\n"
              L"SPIファイル内の関数で致命的エラーが発生しました\r\nプラグイン: a_bad.spi");
    EXPECT_EQ(Show(files_.Write(L"a.tsa", "TSA\nanswer:GetArchiveInfo:2\nmember\t1\t\tx\n\nx")),
              L"a.tsa: プラグインの知らない形式です\r\nプラグイン: axa.spi");
}

TEST_F(ShowTest, APictureThatIsThereInPartIsMarked) {
    UsePlugins({{L"ax.spi", ""}, {L"1.spi", ""}});
    const std::string cut = kBitmap.substr(0, kBitmap.size() - 40);
    EXPECT_EQ(Show(files_.Write(L"cut.bmp", cut)), kCutShort);
    EXPECT_EQ(Show(files_.Write(L"cut.tst", "TST 6x5x24\ncondition:1:half\n")), L"6×5 1.spi half");
    EXPECT_EQ(Show(files_.Write(L"whole.tst", "TST 6x5x24\n")), L"6×5 1.spi ");
    const std::wstring archive = files_.Write(
        L"a.tsa", test::ArchiveOf({{"1.bmp", kBitmap}, {"2.bmp", cut}, {"3.tst", kPicture}}));
    Show(archive);
    EXPECT_EQ(Show(archive, 1), L"20×10  ");
    EXPECT_EQ(Show(archive, 2), kCutShort);
    EXPECT_EQ(Show(archive, 3), L"30×20 1.spi ");
    files_.Write(L"a.tsa", test::ArchiveOf({{"1.bmp", kBitmap}}, "condition:1:torn\n"));
    Show(archive);
    EXPECT_EQ(Show(archive, 1), L"20×10  torn");
}

TEST_F(ShowTest, NothingOfTheFileBeforeStandsForOneThatCannotBeShown) {
    UsePlugins({{L"axtsa.spi", ""}});
    const std::wstring shown = files_.Write(L"shown.bmp", kBitmap);
    const UniqueFile lock(CreateFileW(files_.Write(L"locked.bmp", "BM").c_str(), GENERIC_READ, 0,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    files_.Write(L"broken.bmp", "BM no bitmap");
    files_.Write(L"none.tsa", test::ArchiveOf({}));
    files_.Write(L"readme.txt", "BMW is no bitmap, and this no picture");
    for (const auto& [name, told] :
         {std::pair(L"無い.bmp", L" が開けません。\r\nファイルが存在しないか、ほかの"),
          {L"locked.bmp", L" が開けません。\r\nファイルが存在しないか、ほかの"},
          {L"broken.bmp", L": ビットマップファイルが壊れているか、対応していない形式です。"},
          {L"none.tsa", L": 圧縮ファイルの中にファイルがありません。"},
          {L"readme.txt", L": 対応しているプラグインがありません。"}}) {
        EXPECT_EQ(Show(shown), L"20×10  ");
        const std::wstring text = Show(files_.Path() + name);
        EXPECT_TRUE(text.substr(text[0] == L'~').starts_with(std::wstring(name) + told)) << text;
        EXPECT_EQ(text[0] == L'~', std::wstring(name) == L"readme.txt");
    }
    EXPECT_EQ(QueryFile(files_.Path() + L"無い.bmp").kind, kFileUnknown);
}

TEST_F(ShowTest, StoppedReadHasNotFailed) {
    UsePlugins({{L"a.spi", ""}, {L"axtsa.spi", ""}});
    const std::wstring archive = files_.Write(L"a.tsa", test::ArchiveOf({{"1.tst", kPicture}}));
    files_.Write(L"b.tst", kPicture);
    files_.Write(L"deaf.tst", std::string(kPicture) + "ignore-abort\n");
    files_.Write(L"large.bmp", test::BitmapFileOf(2000, 2000, RGB(1, 2, 3)));
    view_.stops = true;
    for (const std::wstring name : {L"a.tsa", L"b.tst", L"deaf.tst", L"large.bmp"})
        EXPECT_EQ(Show(files_.Path() + name), L'~' + name + L" の読み込みを中止しました。");
    view_.stops = false;
    EXPECT_EQ(Show(archive), L"axtsa.spi");
    view_.stops = true;
    EXPECT_TRUE(Show(archive, 1).ends_with(L" の読み込みを中止しました。"));
}

}  // namespace
}  // namespace tessary
