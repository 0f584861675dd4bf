// The log of whole runs, as it stands in the file.
#include <tuple>

#include "app/base/text.h"
#include "app/settings/settings.h"
#include "convert/numbered_files.h"
#include "tests/src/convert/convert_test.h"
#include "tests/support/links.h"

namespace tessary::test {
namespace {

class ConvertLogTest : public ConvertTest {
  protected:
    ConvertLogTest() {
        settings_.saveType1 = 1;
        settings_.saveType2 = 2;
        settings_.outputErrorLog = 1;
        settings_.errorLogFileName = LogFile();
    }

    std::wstring LogFile() const { return target_.Path() + L"変換.log"; }

    std::wstring Log() const { return FromAnsi(ContentOf(LogFile()), 932); }

    // A log from the folder logs: {BEGIN} and {END} stand for what every file's lines begin and end
    // with, {S} and {T} for the folders; `$` makes blanks at a line's end visible.
    std::wstring Expected(const std::string& name) const {
        std::wstring text = FromAnsi(ContentOf(TESSARY_LOGS "/" + name), CP_UTF8);
        const std::pair<std::wstring, std::wstring> places[] = {
            {L"{BEGIN}", L"*** 変換開始 ***\n  ファイル名          "},
            {L"{END}", L"*** 変換処理終了 ***\n                        "},
            {L"$\n", L"\n"},
            {L"\n", L"\r\n"},
            {L"{S}", source_.Path()},
            {L"{T}", Target()}};
        for (const auto& [place, filling] : places) {
            for (size_t at = 0; (at = text.find(place, at)) != text.npos; at += filling.size())
                text.replace(at, place.size(), filling);
        }
        return text;
    }
};

TEST_F(ConvertLogTest, TellsWhatBecomesOfFiles) {
    settings_.onConflict = kConflictOverwrite;
    std::filesystem::create_directories(Target() + L"A.BMP.jpg");  // in the way
    settings_.noDecodeSmall = 1;
    settings_.minDecodeSizeX = 4;
    settings_.minDecodeSizeY = 4;
    Add(L"a.bmp", BitmapFileOf(9, 5, 0));
    Add(L"絵.b.tst", "TST 8x8x4\n");
    Add(L"crash.tst", "TST 8x8x24\ncrash:av:GetPicture\n");
    Add(L"cut.bmp", BitmapFileOf(9, 5, 0).substr(0, 30));
    Add(L"note.txt", "a note");
    Add(L"small.tst", "TST 4x1x24\n");
    Add(L"A.BMP.TST", "TST 5x1x24\n");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Log(), Expected("files.txt"));
    EXPECT_EQ(Converted(), L"a.jpg 絵.b.png ");
    EXPECT_EQ(ContentOf(Target() + L"a.jpg").substr(0, 2), "\xFF\xD8");
    EXPECT_EQ(ContentOf(Target() + L"絵.b.png").substr(1, 3), "PNG");
    EXPECT_EQ(OutcomeText(monitor_.counts), L"変換 2 個、対象外 2 個、失敗 3 個");

    // Others may read the file while it is written, and not write to it.
    settings_.outputAddMode = 1;
    monitor_.onLine = [&](const std::wstring& line) {
        if (line != L"*** 変換処理終了 ***") return;
        NumberedFiles others;
        for (const auto access : {OpenAccess::kRead, OpenAccess::kWrite})
            EXPECT_EQ(
                others.OpenFileNumber(LogFile(), OpenMode::kBinary, access, OpenLock::kShared),
                access == OpenAccess::kRead ? 1 : 0);
    };
    EXPECT_TRUE(Run());
    std::wstring again = Expected("files.txt");
    for (const wchar_t* const name : {L"out\\a.jpg\r\n", L"out\\絵.b.png\r\n"})
        again.insert(again.find(name) + wcslen(name), L"    既存のファイルを置き換えます\r\n");
    EXPECT_EQ(Log(), Expected("files.txt") + again);
}

TEST_F(ConvertLogTest, TellsThatOfSeveralFramesTheFirstIsConverted) {
    UnloadSPI();
    std::filesystem::copy_file(TestPluginPath(L"frames.spi"), plugins_.Path() + L"iftst.spi",
                               std::filesystem::copy_options::overwrite_existing);
    LoadSPI();
    Add(L"film.tst", "TST 8x8x24\nframes:1:12:0\n");
    Add(L"pages.tst", "TST 8x8x24\nframes:2:3:0\n");
    Add(L"one.tst", "TST 8x8x24\n");
    EXPECT_TRUE(Run());
    EXPECT_TRUE(LogHolds(L"  変換する部分        1 / 12 コマ"));
    EXPECT_TRUE(LogHolds(L"  変換する部分        1 / 3 ページ"));
    for (const uint32_t frames : {12u, 3u, 0u})
        EXPECT_EQ(CountOf(&FileReport::frames, frames), 1) << frames;
}

TEST_F(ConvertLogTest, TellsWhatBecomesOfArchives) {
    settings_.saveType2 = 0;
    target_.Write(L"out\\x.tsa", "in the way");
    target_.Write(L"out\\x.tsa(0)\\keep.bmp", "somebody else's");
    Add(L"x.tsa", ArchiveOf({{"sub/m.tst", "TST 6x6x24\n"},
                             {"../*.bmp", BitmapFileOf(3, 3, 0)},
                             {"SUB/M.tst", "TST 6x6x8\n"},
                             {"read.me", "text"},
                             {"..", "text"},
                             {"empty", ""}}));
    EXPECT_TRUE(Run());
    EXPECT_EQ(Log(), Expected("archives.txt"));
    // A member that keeps its name is what it has become, and stays.
    EXPECT_EQ(Converted(),
              LR"(x.tsa x.tsa(0)\_.bmp x.tsa(0)\keep.bmp x.tsa(0)\sub\M (2).png )"
              LR"(x.tsa(0)\sub\m.bmp )");
    EXPECT_EQ(monitor_.steps,
              L"1/7:1/6 1/7:2/6 1/7:3/6 1/7:4/6 1/7:6/6 1/7:0/100 2/7:0/100 "
              L"3/7:0/100 4/7:0/100 5/7:0/100 6/7:0/100 7/7:0/100 ");
    EXPECT_EQ(OutcomeText(monitor_.counts), L"変換 3 個、対象外 0 個、失敗 3 個（うち別名 1 個）");
}

TEST_F(ConvertLogTest, TellsWhyAnArchiveIsNotRead) {
    // What the plug-in tells, which function fails and how, and what becomes of both.
    const std::tuple<std::string, std::string, std::wstring, FileReason> table[] = {
        {"4:hidden list", "GetArchiveInfo:2", L"hidden list", FileReason::kPassword},
        {"2:hidden member", "GetFile:2", L"hidden member", FileReason::kPassword},
        {"3:volume", "GetArchiveInfo:3", L"volume", FileReason::kVolumeMissing},
        {"1:torn", "GetArchiveInfo:3", L"torn", FileReason::kBrokenData},
        {"5:method", "GetFile:2", L"method", FileReason::kKindNotRead}};
    for (const auto& [condition, failure, text, reason] : table) {
        monitor_.files.clear();
        Add(L"x.tsa", ArchiveOf({{"a.tst", "x"}},
                                "condition:" + condition + "\nanswer-after:" + failure + "\n"));
        EXPECT_TRUE(RunAnew());
        ASSERT_EQ(monitor_.reports.size(), 1U) << condition;
        EXPECT_EQ(monitor_.reports[0].text, text + L" (axtsa.spi)");
        EXPECT_EQ(monitor_.reports[0].reason, reason) << condition;
    }
}

TEST_F(ConvertLogTest, TellsWhatIsRefused) {
    settings_.useDecodeFileMask = 1;
    settings_.decodeFileMaskSet = 1;
    settings_.decodeFileMask = L"*.BMP";
    settings_.decodeUnknownFile = 1;
    Add(L"x.tsa", ArchiveOf({{"d/a.tst", "a"}, {"b.BMP", "b"}}, "crash:av:GetFile\n"));
    Add(L"none.tsa", ArchiveOf({}));
    Add(L"x.BMP", "");
    EXPECT_TRUE(Run());
    EXPECT_EQ(Log(), Expected("refused.txt"));
    EXPECT_EQ(OutcomeText(monitor_.counts), L"変換 0 個、対象外 2 個、失敗 2 個");
}

TEST_F(ConvertLogTest, LogFileThatCannotBeOpenedIsDoneWithout) {
    settings_.errorLogFileName = target_.Path() + L"no folder\\x.log";
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    EXPECT_TRUE(Run());
    EXPECT_EQ(settings_.outputErrorLog, 0);
    ASSERT_GT(monitor_.lines.size(), 5U);
    EXPECT_EQ(monitor_.lines[0], L"!!! エラー                             !!!");
    EXPECT_EQ(monitor_.lines[4], L"    詳細情報        フォルダが見つかりません。");
    EXPECT_EQ(monitor_.lines[3], L"!!! 処理を継続します。                 !!!");
    EXPECT_EQ(Converted(), L"a.jpg ");
    ASSERT_TRUE(WriteConvertSettings());
    EXPECT_EQ(GetSetting(L"Convert", L"OutputErrorLog", L""), L"1") << "the user's own choice";
}

// What cannot be written is not held against the plug-in that has extracted it.
TEST_F(ConvertLogTest, TellsWhyMembersCannotBeWritten) {
    std::filesystem::create_directories(Target() + L"x.tsa");
    ASSERT_TRUE(MakeFolderLink(Target() + LR"(x.tsa\sub)", source_.Path()));
    Add(L"x.tsa", ArchiveOf({{"sub/m.tst", "TST 6x6x24\n"}}));
    EXPECT_TRUE(Run());
    ASSERT_EQ(monitor_.reports.size(), 1u);
    EXPECT_EQ(monitor_.reports[0].reason, FileReason::kWriteFailed);
    EXPECT_EQ(monitor_.reports[0].text.find(L"axtsa"), std::wstring::npos);
    EXPECT_NE(monitor_.reports[0].text.find(std::to_wstring(ERROR_ALREADY_EXISTS)),
              std::wstring::npos);
}

}  // namespace
}  // namespace tessary::test
