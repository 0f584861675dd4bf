// The console converter: its arguments, and the finished program.
#include <gtest/gtest.h>

#include <algorithm>
#include <future>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "convert_cli/console_options.h"
#include "convert_cli/json_report.h"
#include "helpers/metadata/exif_data.h"
#include "helpers/metadata/file_metadata.h"
#include "plugin/plugin_log.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/child_process.h"
#include "tests/support/content_of.h"
#include "tests/support/finished_folder.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/seeds.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using test::BitmapFileOf;
using test::ContentOf;

class ConvertCliTest : public testing::Test {
  protected:
    // Runs the program; answers its exit status and what it wrote to its two streams together.
    struct Outcome {
        DWORD status;
        std::string output;
    };
    static void Holds(const std::string& whole, const std::vector<std::string>& parts) {
        for (const std::string& part : parts)
            EXPECT_NE(whole.find(part), whole.npos) << part << " is not in " << whole;
    }
    static void Expect(const Outcome& run, DWORD status, const std::vector<std::string>& texts) {
        EXPECT_EQ(run.status, status) << run.output;
        Holds(run.output, texts);
    }
    bool IsThere(const std::wstring& name) const { return PathExists(folder_.Path() + name); }
    void MarkFile(const std::wstring& name, DWORD attributes) const {
        EXPECT_TRUE(SetFileAttributesW((folder_.Path() + name).c_str(), attributes));
    }
    Outcome RunProgram(const std::wstring& arguments) {
        return Run(kProgram + arguments, DETACHED_PROCESS);
    }
    // The same from a console of that code page.
    Outcome RunInConsole(const std::wstring& codePage, const std::wstring& arguments) {
        const std::wstring command = L"chcp " + codePage + L">nul & " + kProgram + arguments;
        return Run(L"cmd /s /c \"" + command + L'"', CREATE_NEW_CONSOLE);
    }
    Outcome Run(const std::wstring& command, DWORD flags) {
        SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
        const std::wstring path = folder_.Path() + L"output";
        // Its console, which may live on, has the file too.
        constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
        UniqueFile output(CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, &inherited,
                                      CREATE_ALWAYS, 0, nullptr));
        const test::ChildProcess program(
            command, {.environment = {{L"TESSARY_SETTINGS_KEY", settings_.KeyPath()}},
                      .folder = RemoveBackslash(folder_.Path()),
                      .output = output.Get(),
                      .showCommand = SW_HIDE,
                      .flags = flags});
        output.Reset();
        const DWORD status = program.ExitCode();
        return {status, ContentOf(path)};
    }
    // What the program says about arguments, which have blanks between.
    static std::wstring Parse(const std::wstring& arguments, ConsoleOptions& options) {
        std::vector<std::wstring> words;
        if (!arguments.empty()) SplitText(arguments, L' ', words);
        return ParseOptions(words, options);
    }
    // The folder spi with iftst.spi is the only one.
    void UsePlugins() {
        const std::wstring plugin = folder_.Write(LR"(spi\iftst.spi)");
        CopyFileW(test::TestPluginPath(L"iftst.spi").c_str(), plugin.c_str(), FALSE);
        SaveSetting(L"Init", L"Run", L"1");
        SaveSetting(L"General", L"UseSPI", L"1");
        SaveSetting(L"General", L"SPIFolder_1", folder_.Path() + L"spi");
    }

    const std::wstring kProgram = L'"' + test::FinishedFolder() + L"tessary-convert.exe\" ";
    test::RedirectedSettings settings_;
    test::TemporaryFolder folder_;
};

TEST_F(ConvertCliTest, ArgumentsChangeSettings) {
    ConsoleOptions options;
    const wchar_t* const arguments =
        LR"(a --out C:\o --format-low=jpeg --format-high PNG --no-unpack --min-width 100 )"
        LR"(--exclude-mask [!a]* --keep-unknown --log=C:\x --append --jpeg-quality 95 )"
        LR"(--png-level 0 --png-interlace --no-jpeg-optimize --bmp-type os2 --bmp-rle )"
        LR"(--encoding shift_jis --recursive --on-conflict skip --archive-depth=2 )"
        LR"(--strict --keep-folders --keep-date --no-jpeg-icc -- --both)";
    Values().saveOptions.jpeg.optimizedHuffman = 1;
    ASSERT_EQ(Parse(arguments, options), L"");
    EXPECT_EQ(options.inputs, (std::vector<std::wstring>{L"a", L"--both"}));
    EXPECT_EQ(options.targetFolder, LR"(C:\o)");
    EXPECT_TRUE(options.recursive);
    EXPECT_EQ(options.codePage, 932U);
    const ConvertSettings& convert = Values().convert;
    EXPECT_EQ(convert.saveType1, 2);
    EXPECT_EQ(convert.saveType2, 1);
    EXPECT_EQ(convert.unpackArchive, 0);
    EXPECT_EQ(convert.noDecodeSmall, 1);
    EXPECT_EQ(convert.minDecodeSizeX, 100);
    EXPECT_EQ(convert.minDecodeSizeY, INT32_MAX) << "or every height would do";
    EXPECT_FALSE(convert.decodeSizeBoth);
    EXPECT_EQ(convert.useDecodeFileMask, 1);
    EXPECT_EQ(convert.decodeFileMaskSet, 1);
    EXPECT_EQ(convert.decodeFileMask, L"[!a]*");
    EXPECT_EQ(convert.decodeUnknownFile, 1);
    EXPECT_EQ(convert.errorLogFileName, LR"(C:\x)");
    EXPECT_EQ(convert.outputErrorLog, 1);
    EXPECT_EQ(convert.outputAddMode, 1);
    EXPECT_EQ(convert.onConflict, kConflictSkip);
    EXPECT_EQ(convert.archiveDepth, 2);
    EXPECT_TRUE(convert.skipDamaged && convert.keepFolders);
    saving::SaveOptions expected;
    expected.bmp = {.saveType = 1, .saveRLE = 1};
    expected.png = {.quality = 0, .interlace = 1};
    expected.jpeg.quality = 95;
    expected.jpegProfile = 0;
    expected.keepDates = 1;
    EXPECT_TRUE(Values().saveOptions == expected);

    for (const wchar_t* const wrong :
         {L"", L"--out o", L"a", L"a --out", L"--out= a", L"--out o a --what",
          L"--out o a --no-png-level", L"--out o a --png-level 10", L"--out o a --bmp-type dos",
          L"--out o a --bmp-rle=1", L"--out o a --min-height -1", L"--out o a --format gif",
          L"--out o a --encoding x"})
        EXPECT_NE(Parse(wrong, options = {}), L"") << wrong;
}

TEST_F(ConvertCliTest, ConvertsAndTellsByItsStatus) {
    SaveSetting(L"Convert", L"SaveType2", L"1");
    folder_.Write(LR"(in\絵.bmp)", BitmapFileOf(3, 3, 0));
    folder_.Write(LR"(in\sub\b.bmp)", BitmapFileOf(3, 3, 0));
    Expect(RunProgram(L"--out out in"), 0, {"  保存ファイル名      ", "変換 1"});
    EXPECT_EQ(ContentOf(folder_.Path() + LR"(out\絵.png)").substr(1, 3), "PNG");
    EXPECT_FALSE(IsThere(LR"(out\b.png)"));
    // Masks are no names of files; what they leave out is no failure. What is told is a warning.
    Expect(RunProgram(L"--out out --recursive --mask b* --encoding shift_jis in"), 0,
           {"\x8Cx\x8D\x90"});
    EXPECT_TRUE(IsThere(LR"(out\b.png)"));

    folder_.Write(L"x.dat", "no picture");
    const std::pair<const wchar_t*, DWORD> statuses[] = {
        {L"--out out x.dat", 1},
        {LR"(--out out in\*.bmp gone.bmp)", 1},
        {L"--out out --no-unpack --mask none* in", 1},
        {LR"(--out x.dat\out in)", 2},
        {LR"(--out out --log x.dat\log in)", 2},
        {LR"(--out out --report in\絵.bmp in)", 2},
        {LR"(--out out --log in\絵.bmp in)", 2},
        {LR"(--out out --log in\絵.bmp in\sub)", 2},
        {LR"(--out out --log new.txt --report in\..\NEW.txt in)", 2},
        {L"", 2},
        {L"/?", 0},
        {L"--format x in", 2},
        {L"--help", 0}};
    for (const auto& [arguments, status] : statuses)
        EXPECT_EQ(RunProgram(arguments).status, status) << arguments;
    EXPECT_FALSE(IsThere(L"new.txt"));
    EXPECT_EQ(ContentOf(folder_.Path() + LR"(in\絵.bmp)"), BitmapFileOf(3, 3, 0));
    // A setting that cannot be read would ask in a window.
    SaveSetting(L"Convert", L"MinDecodeSizeX", L"wide");
    Expect(RunProgram(L"--out out in"), 2, {"レジストリの読み取りエラーです。"});
    Expect(RunProgram(L"--out out --ignore-settings in"), 0, {});
    EXPECT_EQ(GetSetting(L"Init", L"Run", L"-"), L"-") << "settings are never written";
    EXPECT_EQ(GetSetting(L"General", L"UseSPI", L"-"), L"-");
}

// Small files are read by the run itself, large ones on threads; both take it along.
TEST_F(ConvertCliTest, KeepsWhatPhotographsSay) {
    UsePlugins();
    for (const wchar_t* const name : {L"iftessjpeg.spi", L"iftesspng.spi"})
        CopyFileW((test::FinishedFolder() + name).c_str(),
                  (folder_.Path() + LR"(spi\)" + name).c_str(), FALSE);
    const test::Bytes photo = test::Seed("fuzz_metadata/jpeg");
    std::string bytes(photo.begin(), photo.end());
    folder_.Write(LR"(in\small.jpg)", bytes);
    folder_.Write(LR"(in\large.jpg)", bytes + std::string(300'000, 'x'));
    const auto told = [&](const std::wstring& name) {
        const auto file = ContentOf<test::Bytes>(folder_.Path() + name);
        dib::MemorySource source(file);
        return metadata::ReadFileMetadata(source);
    };
    const auto has = [&](const std::wstring& name, metadata::FieldKind kind, const char* text) {
        return std::ranges::count(told(name).fields, metadata::Field{kind, text}) == 1;
    };
    using metadata::FieldKind;
    for (const std::wstring format : {L"jpg", L"png"}) {
        Expect(RunProgram(L"--out " + format + L" --format " + format + L" in"), 0, {"変換 2"});
        for (const wchar_t* const stem : {L"small.", L"large."}) {
            const std::wstring name = format + L'\\' + stem + format;
            EXPECT_TRUE(has(name, FieldKind::kModel, "T-1")) << name;
            EXPECT_TRUE(has(name, FieldKind::kOrientation, "1")) << "the pixels are turned";
            EXPECT_TRUE(has(name, FieldKind::kPosition, "35\u00B039'31.2\"N 139\u00B044'43.5\"E"));
            const auto exif = told(name).exif;
            const auto wide = metadata::LoadExif(exif);
            const auto number = [&](ExifTag tag) {
                return metadata::ExifValue(wide, EXIF_IFD_EXIF, tag).Number();
            };
            EXPECT_EQ(number(EXIF_TAG_PIXEL_X_DIMENSION), 16u);
            EXPECT_EQ(number(EXIF_TAG_PIXEL_Y_DIMENSION), 24u);
            EXPECT_EQ(wide->size, 0u) << "the thumbnail";
            EXPECT_EQ(number(EXIF_TAG_COLOR_SPACE), 0xFFFFu) << "the camera's: it has a profile";
            Holds(ContentOf(folder_.Path() + name), {format == L"png" ? "iCCP" : "ICC_PROFILE"});
        }
    }
    EXPECT_EQ(ContentOf(folder_.Path() + LR"(png\small.png)"),
              ContentOf(folder_.Path() + LR"(png\large.png)"));
    Expect(RunProgram(L"--out srgb --format png --no-png-icc in"), 0, {});
    const std::string srgb = ContentOf(folder_.Path() + LR"(srgb\small.png)");
    EXPECT_TRUE(srgb.find("sRGB") != srgb.npos && srgb.find("iCCP") == srgb.npos);
    EXPECT_EQ(srgb, ContentOf(folder_.Path() + LR"(srgb\large.png)"));
    Expect(RunProgram(L"--out hidden --format jpg --no-jpeg-gps in"), 0, {});
    EXPECT_TRUE(has(LR"(hidden\small.jpg)", FieldKind::kModel, "T-1"));
    EXPECT_FALSE(has(LR"(hidden\small.jpg)", FieldKind::kPosition,
                     "35\u00B039'31.2\"N 139\u00B044'43.5\"E"));
    Expect(RunProgram(L"--out without --format jpg --no-jpeg-exif in"), 0, {});
    EXPECT_TRUE(told(LR"(without\small.jpg)").exif.empty());
    EXPECT_TRUE(told(LR"(without\large.jpg)").exif.empty());
}

TEST_F(ConvertCliTest, WritesWhatItsConsoleReads) {
    folder_.Write(L"é表.xyz", "no picture");
    const Outcome japanese = RunInConsole(L"932", L"--quiet --out out é表.xyz");
    Expect(japanese, 1, {"\x8E\xB8\x94s: ", "?\x95\\.xyz"});
    const Outcome utf8 = RunInConsole(L"65001", L"--quiet --out out é表.xyz");
    Expect(utf8, 1, {"é表.xyz （未知の形式）"});
    const Outcome chosen = RunInConsole(L"932", L"--quiet --encoding utf-8 --out out é表.xyz");
    EXPECT_EQ(chosen.output, utf8.output);
    const Outcome same = RunInConsole(L"932", L"--quiet --encoding console --out out é表.xyz");
    EXPECT_EQ(same.output, japanese.output);

    // For programs every name comes through, whatever the code page.
    const Outcome report = RunInConsole(L"932", L"--quiet --report - --out out é表.xyz 2>nul");
    Expect(report, 1, {R"(\\\u00e9\u8868.xyz","target":"","result":"failed")"});
    EXPECT_TRUE(report.output.starts_with('{') && report.output.ends_with("}\n"));
    EXPECT_EQ(JsonLine({.source = L"\xD83D\xDE00\xD83D\"é"}, false).find(R"(😀\ud83d\"é")"), 11u);
    EXPECT_NE(JsonLine({.frames = 12}, false).find(",\"frames\":12,"), std::string::npos);
}

TEST_F(ConvertCliTest, NamesWhatDidNotBecomeWhatItShould) {
    folder_.Write(LR"(in\a.bmp)", BitmapFileOf(3, 3, 0));
    folder_.Write(LR"(in\b\a.bmp)", BitmapFileOf(3, 3, RGB(9, 9, 9)));
    folder_.Write(LR"(in\b\x.xyz)", "no picture");
    folder_.Write(LR"(in\b\film.MP4)", "no picture");
    folder_.Write(LR"(in\b\mp4)", "no picture");
    folder_.Write(LR"(in\b\hidden.bmp)", BitmapFileOf(3, 3, 0));
    folder_.Write(L"r.jsonl", std::string(5000, '?'));
    for (const wchar_t* const hidden : {LR"(in\b\hidden.bmp)", L"r.jsonl"})
        MarkFile(hidden, FILE_ATTRIBUTE_HIDDEN);
    const Outcome run =
        RunProgram(LR"(--format png --quiet --recursive --report r.jsonl --out out in in\b\*.bmp)");
    Expect(run, 1, {"失敗: ", "x.xyz", "別名: "});
    for (const char* const other : {"変換 ", "hidden"})
        EXPECT_EQ(run.output.find(other), run.output.npos) << other;
    EXPECT_TRUE(IsThere(LR"(out\a (2).png)"));
    const std::string report = ContentOf(folder_.Path() + L"r.jsonl");
    EXPECT_EQ(report.find('?'), report.npos);
    Holds(report, {R"(\\in\\b\\x.xyz","target":"","result":"failed","reason":")",
                   R"(\\in\\b\\mp4","target":"","result":"failed")",
                   R"("result":"declined","reason":"no-picture")",
                   R"("result":"converted","renamed":true,"reason":"target-exists")"});

    Expect(RunProgram(LR"(--out out2 --report none\r.jsonl in\a.bmp)"), 2,
           {"レポートに書き込めません", "フォルダが見つかりません。"});
    MarkFile(LR"(out2\a.bmp)", FILE_ATTRIBUTE_READONLY);
    RunProgram(LR"(--on-conflict overwrite --out out2 --report r.jsonl in\a.bmp)");
    Holds(ContentOf(folder_.Path() + L"r.jsonl"),
          {R"("result":"failed","reason":"read-only-target")"});
}

TEST_F(ConvertCliTest, PluginsNeitherEndARunUnseenNorHoldItUp) {
    folder_.Write(L"ask.tst", "TST 8x8x24\ndirty:question:GetPicture\n");
    folder_.Write(L"end.tst", "TST 8x8x24\ncrash:exit-well:GetPicture\n");
    UsePlugins();
    Expect(
        RunProgram(L"--format png --out out ask.tst"), 0,
        {"プラグイン iftst.spi が表示したウィンドウを閉じました: Test plug-in question: Go on?"});
    EXPECT_TRUE(IsThere(LR"(out\ask.png)"));

    // One that ends its process loses its own file alone.
    folder_.Write(L"a.bmp", BitmapFileOf(3, 3, 0));
    folder_.Write(L"b.bmp", BitmapFileOf(3, 3, 0));
    folder_.Write(L"x.xyz", "no picture");
    Expect(RunProgram(L"--format png --quiet --report r.jsonl --out out x.xyz a.bmp b.bmp end.tst "
                      L"ask.tst"),
           1,
           {"x.xyz （未知の形式）",
            "end.tst （SPIファイル内の関数で致命的エラーが発生しました (iftst.spi)）"});
    const std::string report = ContentOf(folder_.Path() + L"r.jsonl");
    EXPECT_EQ(std::ranges::count(report, '\n'), 5) << report;
    Holds(report,
          {R"(a.png","result":"converted")", R"("result":"failed","reason":"plugin-crashed")",
           R"(ask.png","result":"converted")"});

    // With the third end it is called no more. Nobody loads one that is known and not needed.
    folder_.Write(LR"(spi\iftst.spi.script)", "crash:exit:DllMain\n");
    Expect(RunProgram(L"--format png --out out none"), 1, {});
    const std::pair<DWORD, const char*> runs[] = {{1, "致命的エラーが発生しました (iftst.spi)"},
                                                  {2, "読み込み中に異常終了しました"},
                                                  {2, "使用を止めています（プロセス終了 3 回）"}};
    for (const auto& [status, told] : runs)
        Expect(RunProgram(L"--format png --out out ask.tst"), status, {told});

    SaveSetting(L"General", L"SPIFolder_1", folder_.Path() + L"gone");
    Expect(RunProgram(L"--format png --out out ask.tst"), 2, {"プラグインがひとつも"});
}

TEST_F(ConvertCliTest, TheEndOfTheSessionLetsItFinishTheFile) {
    folder_.Write(L"ask.tst", "TST 8x8x24\ndirty:question:GetPicture\n");
    folder_.Write(L"b.bmp", BitmapFileOf(3, 3, 0));
    UsePlugins();
    auto run = std::async(std::launch::async,
                          [&] { return RunProgram(L"--format png --out out ask.tst b.bmp"); });
    HWND question = nullptr;
    for (int looks = 0; question == nullptr && looks < 3000; ++looks) {
        Sleep(10);
        question = FindWindowW(nullptr, L"Test plug-in question");
    }
    const HWND listener = FindWindowW(L"TessaryConvertSession", nullptr);
    DWORD_PTR answer = 0;
    SendMessageTimeoutW(listener, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, 10000, &answer);
    EXPECT_TRUE(answer);
    EXPECT_EQ(SendMessageTimeoutW(listener, WM_ENDSESSION, TRUE, 0, SMTO_NORMAL, 100, &answer), 0)
        << "it would be ended in the middle of the file";
    // Somebody answers the question all the same, and the plug-in goes on where it was.
    Expect(run.get(), 3, {"プラグイン iftst.spi が表示したウィンドウを閉じました"});
    EXPECT_EQ(ReadErrorCount(folder_.Path() + LR"(spi\iftst.spi)", {}), 0);
    EXPECT_TRUE(IsThere(LR"(out\ask.png)") && !IsThere(LR"(out\b.png)"));
}

}  // namespace
}  // namespace tessary
