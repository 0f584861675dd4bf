// The log of whole runs, as it stands in the file.
#include <algorithm>

#include "app/base/file_identity.h"
#include "app/base/text.h"
#include "app/settings/settings.h"
#include "tests/src/convert/convert_test.h"
#include "tests/support/links.h"

namespace tessary {
namespace {

using test::ArchiveOf;
using test::BitmapFileOf;
using test::ContentOf;

class ConvertLogTest : public test::ConvertTest {
  protected:
    ConvertLogTest() {
        ConvertSettings& settings = Values().convert;
        settings.saveType1 = 1;
        settings.saveType2 = 2;
        settings.outputErrorLog = 1;
        settings.errorLogFileName = LogFile();
    }

    // Closes whatever handles this process has of a file.
    static void CloseHandlesOf(const std::wstring& path) {
        constexpr uintptr_t kHighest = 0x2000;
        for (uintptr_t number = 4; number < kHighest; number += 4) {
            const auto handle = reinterpret_cast<HANDLE>(number);
            wchar_t name[MAX_PATH]{};
            if (GetFileType(handle) == FILE_TYPE_DISK &&
                GetFinalPathNameByHandleW(handle, name, MAX_PATH, 0) != 0 &&
                IsSameFile(name, path)) {
                CloseHandle(handle);
            }
        }
    }

    std::wstring LogFile() const { return target_.Path() + L"変換.log"; }

    // Expected text in Shift-JIS, with CR LF: {BEGIN} and {END} stand for what every file's lines
    // begin and end with, {S} and {T} for the folders; `$` makes blanks at a line's end visible.
    std::string Golden(std::wstring text) const {
        const auto replace = [&](const std::wstring& from, const std::wstring& to) {
            for (size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size())
                text.replace(at, from.size(), to);
        };
        replace(L"{BEGIN}", L"*** 変換開始 ***\n  ファイル名          ");
        replace(L"{END}", L"*** 変換処理終了 ***\n                        ");
        replace(L"$\n", L"\n");
        replace(L"\n", L"\r\n");
        replace(L"{S}", source_.Path());
        replace(L"{T}", Target());
        char bytes[20000];
        const int size = WideCharToMultiByte(932, 0, text.data(), static_cast<int>(text.size()),
                                             bytes, sizeof(bytes), nullptr, nullptr);
        return {bytes, static_cast<size_t>(size)};
    }
};

constexpr wchar_t kFiles[] =
    LR"({BEGIN}{S}a.bmp
  ファイル種別        ビットマップファイル
  ビットマップを読み込みました
  画像の色数          24 bit
  保存ファイル名      {T}a.jpg
{END}
{BEGIN}{S}絵.b.tst
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  画像を展開しました  {S}絵.b.tst
  画像の色数          4 bit
  保存ファイル名      {T}絵.b.png
{END}
{BEGIN}{S}crash.tst
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  展開に失敗しました  {S}crash.tst
    詳細情報        $
    エラーモジュールGetPicture
    エラーコード(255)SPIファイル内の関数で致命的エラーが発生しました
{END}
{BEGIN}{S}cut.bmp
  ファイル種別        ビットマップファイル
  ビットマップの読み込みに失敗しました
{END}
{BEGIN}{S}note.txt
  ファイル種別        未知のファイル
{END}
{BEGIN}{S}small.tst
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  画像を展開しました  {S}small.tst
    詳細情報        $
    画像の大きさが小さいので処理を中止しました
    画像サイズ      4 × 1
{END}
{BEGIN}{S}A.BMP.TST
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  画像を展開しました  {S}A.BMP.TST
  画像の色数          24 bit
  保存ファイル名      {T}A.BMP.jpg
  保存に失敗しました  A.BMP.jpg
    詳細情報        書き込む権限がないか、読み取り専用です。
{END}
*** すべての変換処理が完了しました ***
)";

TEST_F(ConvertLogTest, TellsWhatBecomesOfFiles) {
    Values().convert.onConflict = kConflictOverwrite;
    std::filesystem::create_directories(Target() + L"A.BMP.jpg");  // in the way
    Values().convert.noDecodeSmall = 1;
    Values().convert.minDecodeSizeX = 4;
    Values().convert.minDecodeSizeY = 4;
    Add(L"a.bmp", BitmapFileOf(9, 5, 0));
    Add(L"絵.b.tst", "TST 8x8x4\n");
    Add(L"crash.tst", "TST 8x8x24\ncrash:av:GetPicture\n");
    Add(L"cut.bmp", BitmapFileOf(9, 5, 0).substr(0, 30));
    Add(L"note.txt", "a note");
    Add(L"small.tst", "TST 4x1x24\n");
    Add(L"A.BMP.TST", "TST 5x1x24\n");
    EXPECT_TRUE(Run());
    EXPECT_EQ(ContentOf(LogFile()), Golden(kFiles));
    EXPECT_EQ(Converted(), L"a.jpg 絵.b.png ");
    EXPECT_EQ(ContentOf(Target() + L"a.jpg").substr(0, 2), "\xFF\xD8");
    EXPECT_EQ(ContentOf(Target() + L"絵.b.png").substr(1, 3), "PNG");
    EXPECT_EQ(monitor_.steps,
              L"1/7:0/100 2/7:0/100 3/7:0/100 4/7:0/100 5/7:0/100 6/7:0/100 "
              L"7/7:0/100 ");
    EXPECT_TRUE(std::ranges::equal(monitor_.counts, std::initializer_list<int>{2, 2, 3}));
    EXPECT_EQ(monitor_.breaths, static_cast<int>(monitor_.lines.size()));

    // Others may read the file while it is written, and not write to it.
    Values().convert.outputAddMode = 1;
    std::wstring shared;
    monitor_.onLine = [&](const std::wstring&) {
        if (!shared.empty()) return;
        for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}}) {
            const UniqueFile file(CreateFileW(LogFile().c_str(), access,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                              OPEN_EXISTING, 0, nullptr));
            shared += file ? L'+' : L'-';
        }
    };
    EXPECT_TRUE(Run());
    EXPECT_EQ(shared, L"+-");
    std::wstring again = kFiles;
    for (const wchar_t* const name : {L"{T}a.jpg\n", L"{T}絵.b.png\n"})
        again.insert(again.find(name) + wcslen(name), L"    既存のファイルを置き換えます\n");
    EXPECT_EQ(ContentOf(LogFile()), Golden(kFiles) + Golden(again));
}

constexpr wchar_t kArchives[] =
    LR"({BEGIN}{S}x.tsa
  ファイル種別        圧縮ファイル
  使用プラグイン      axtsa.spi
  画像の展開先        {T}x.tsa
  合計ファイル数      6
  すべてのファイルを展開します
    解凍に成功しましたsub\m.tst
    解凍に成功しました..\*.bmp
      展開ファイル名{T}x.tsa(0)\_.bmp
    解凍に成功しましたSUB\M.tst
      展開ファイル名{T}x.tsa(0)\SUB\M (2).tst
    解凍に成功しましたread.me
    解凍に失敗しました..
      詳細情報    $
      ファイル名として使用できない名前です
    解凍に成功しましたempty
  すべてのファイルの解凍が終了しました。
{END}
{BEGIN}{T}x.tsa(0)\sub\m.tst
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  画像を展開しました  {T}x.tsa(0)\sub\m.tst
  画像の色数          24 bit
  保存ファイル名      {T}x.tsa(0)\sub\m.bmp
{END}
{BEGIN}{T}x.tsa(0)\_.bmp
  ファイル種別        ビットマップファイル
  ビットマップを読み込みました
  画像の色数          24 bit
  保存ファイル名      {T}x.tsa(0)\_.bmp
{END}
{BEGIN}{T}x.tsa(0)\SUB\M (2).tst
  ファイル種別        画像ファイル
  使用プラグイン      iftst.spi
  画像を展開しました  {T}x.tsa(0)\SUB\M (2).tst
  画像の色数          8 bit
  保存ファイル名      {T}x.tsa(0)\SUB\M (2).png
{END}
{BEGIN}{T}x.tsa(0)\read.me
  ファイル種別        未知のファイル
  ファイルを削除しました
{END}
{BEGIN}$
  ファイル種別        未知のファイル
  ファイルを削除しました
{END}
{BEGIN}{T}x.tsa(0)\empty
  ファイル種別        未知のファイル
  ファイルを削除しました
{END}
*** すべての変換処理が完了しました ***
)";

TEST_F(ConvertLogTest, TellsWhatBecomesOfArchives) {
    Values().convert.saveType2 = 0;
    target_.Write(L"out\\x.tsa", "in the way");
    target_.Write(L"out\\x.tsa(0)\\keep.bmp", "somebody else's");
    Add(L"x.tsa", ArchiveOf({{"sub/m.tst", "TST 6x6x24\n"},
                             {"../*.bmp", BitmapFileOf(3, 3, 0)},
                             {"SUB/M.tst", "TST 6x6x8\n"},
                             {"read.me", "text"},
                             {"..", "text"},
                             {"empty", ""}}));
    EXPECT_TRUE(Run());
    EXPECT_EQ(ContentOf(LogFile()), Golden(kArchives));
    // A member that keeps its name is what it has become, and stays.
    EXPECT_EQ(Converted(),
              LR"(x.tsa x.tsa(0)\_.bmp x.tsa(0)\keep.bmp x.tsa(0)\sub\M (2).png )"
              LR"(x.tsa(0)\sub\m.bmp )");
    EXPECT_EQ(monitor_.steps,
              L"1/7:1/6 1/7:2/6 1/7:3/6 1/7:4/6 1/7:6/6 1/7:0/100 2/7:0/100 "
              L"3/7:0/100 4/7:0/100 5/7:0/100 6/7:0/100 7/7:0/100 ");
    EXPECT_TRUE(std::ranges::equal(monitor_.counts, std::initializer_list<int>{3, 0, 3}));
}

TEST_F(ConvertLogTest, TellsWhyAnArchiveIsNotRead) {
    const auto add = [&](const wchar_t* name, const std::string& script) {
        Add(name, ArchiveOf({{"a.tst", "x"}}, script));
    };
    add(L"a.tsa", "condition:4:hidden list\nanswer-after:GetArchiveInfo:2\n");
    add(L"b.tsa", "condition:2:hidden member\nanswer-after:GetFile:2\n");
    add(L"c.tsa", "condition:3:volume\nanswer-after:GetArchiveInfo:3\n");
    add(L"d.tsa", "condition:1:torn\nanswer-after:GetArchiveInfo:3\n");
    add(L"e.tsa", "condition:5:method\nanswer-after:GetFile:2\n");
    EXPECT_TRUE(Run());
    const std::pair<const wchar_t*, FileReason> expected[] = {
        {L"hidden list", FileReason::kPassword}, {L"volume", FileReason::kVolumeMissing},
        {L"torn", FileReason::kBrokenData},      {L"hidden member", FileReason::kPassword},
        {L"method", FileReason::kKindNotRead},
    };
    ASSERT_EQ(monitor_.reports.size(), std::size(expected));
    for (const auto& [text, reason] : expected) {
        const auto report = std::ranges::find(
            monitor_.reports, text + std::wstring(L" (axtsa.spi)"), &FileReport::text);
        ASSERT_NE(report, monitor_.reports.end()) << static_cast<int>(reason);
        EXPECT_EQ(report->reason, reason) << static_cast<int>(reason);
    }
}

constexpr wchar_t kRefused[] =
    LR"({BEGIN}{S}x.tsa
  ファイル種別        圧縮ファイル
  使用プラグイン      axtsa.spi
  画像の展開先        {T}x.tsa
  合計ファイル数      2
  すべてのファイルを展開します
    解凍に失敗しましたd\a.tst
      詳細情報    $
      エラーモジュールGetFile
      エラーコード(255)SPIファイル内の関数で致命的エラーが発生しました
    解凍に失敗しましたb.BMP
      詳細情報    $
      このファイルは解凍しない設定になっています
  すべてのファイルの解凍が終了しました。
{END}
{BEGIN}{S}none.tsa
  ファイル種別        圧縮ファイル
  使用プラグイン      axtsa.spi
  画像の展開先        {T}none.tsa
  [エラー]          このアーカイブファイルには有効なファイルがひとつもありません
{END}
{BEGIN}{S}x.BMP
  [警告]            ファイルを処理できません
    x.BMP は一括変換のファイル名のフィルタ設定と一致しません
{END}
{BEGIN}$
  ファイル種別        未知のファイル
{END}
{BEGIN}$
  ファイル種別        未知のファイル
{END}
*** すべての変換処理が完了しました ***
)";

TEST_F(ConvertLogTest, TellsWhatIsRefused) {
    Values().convert.useDecodeFileMask = 1;
    Values().convert.decodeFileMaskSet = 1;
    Values().convert.decodeFileMask = L"*.BMP";
    Values().convert.decodeUnknownFile = 1;
    Add(L"x.tsa", ArchiveOf({{"d/a.tst", "a"}, {"b.BMP", "b"}}, "crash:av:GetFile\n"));
    Add(L"none.tsa", ArchiveOf({}));
    Add(L"x.BMP", "");
    EXPECT_TRUE(Run());
    EXPECT_EQ(ContentOf(LogFile()), Golden(kRefused));
    EXPECT_TRUE(std::ranges::equal(monitor_.counts, std::initializer_list<int>{0, 2, 2}));
}

TEST_F(ConvertLogTest, LogFileThatCannotBeOpenedIsDoneWithout) {
    Values().convert.errorLogFileName = target_.Path() + L"no folder\\x.log";
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    EXPECT_TRUE(Run());
    EXPECT_EQ(Values().convert.outputErrorLog, 0);
    ASSERT_GT(monitor_.lines.size(), 5U);
    EXPECT_EQ(monitor_.lines[0], L"!!! エラー                             !!!");
    EXPECT_EQ(monitor_.lines[4], L"    詳細情報        フォルダが見つかりません。");
    EXPECT_EQ(monitor_.lines[3], L"!!! 処理を継続します。                 !!!");
    EXPECT_EQ(Converted(), L"a.jpg ");
    ASSERT_TRUE(WriteConvertSettings());
    EXPECT_EQ(GetSetting(L"Convert", L"OutputErrorLog", L""), L"1") << "the user's own choice";
}

// As if the disk was full, or the network gone.
TEST_F(ConvertLogTest, LogFileThatTakesNoMoreIsTold) {
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    Add(L"b.bmp", BitmapFileOf(2, 2, 0));
    bool isClosed = false;
    monitor_.onLine = [&](const std::wstring& line) {
        if (isClosed || !line.starts_with(L"  画像の色数")) return;
        isClosed = true;
        CloseHandlesOf(LogFile());
    };
    EXPECT_TRUE(Run());
    EXPECT_EQ(Converted(), L"a.jpg b.jpg ");
    EXPECT_EQ(std::ranges::count(monitor_.lines, L"!!! ログファイルに書き込めません。     !!!"), 1);
    EXPECT_NE(Values().logFileError, 0u);
    EXPECT_EQ(Values().convert.outputErrorLog, 1) << "the next run tries again";
    EXPECT_TRUE(Run());
    EXPECT_EQ(Values().logFileError, 0u);
}

// What cannot be written is not held against the plug-in that has extracted it.
TEST_F(ConvertLogTest, TellsWhyMembersCannotBeWritten) {
    std::filesystem::create_directories(Target() + L"x.tsa");
    ASSERT_TRUE(test::MakeFolderLink(Target() + LR"(x.tsa\sub)", source_.Path()));
    Add(L"x.tsa", ArchiveOf({{"sub/m.tst", "TST 6x6x24\n"}}));
    EXPECT_TRUE(Run());
    ASSERT_EQ(monitor_.reports.size(), 1u);
    EXPECT_EQ(monitor_.reports[0].reason, FileReason::kWriteFailed);
    EXPECT_EQ(monitor_.reports[0].text.find(L"axtsa"), std::wstring::npos);
    EXPECT_NE(monitor_.reports[0].text.find(std::to_wstring(ERROR_ALREADY_EXISTS)),
              std::wstring::npos);
}

}  // namespace
}  // namespace tessary
