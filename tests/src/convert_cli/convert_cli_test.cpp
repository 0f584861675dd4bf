// The console converter: its arguments, and the finished program.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <future>
#include <string>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "app/settings/settings_store.h"
#include "convert_cli/console_options.h"
#include "convert_cli/json_report.h"
#include "tests/plugins/test_plugins.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/child_process.h"
#include "tests/support/content_of.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
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
    Outcome RunProgram(const std::wstring& arguments) {
        return Run(L'"' + test::FinishedFolder() + L"tessary-convert.exe\" " + arguments,
                   DETACHED_PROCESS);
    }
    // The same from a console of that code page.
    Outcome RunInConsole(const std::wstring& codePage, const std::wstring& arguments) {
        return Run(L"cmd /s /c \"chcp " + codePage + L">nul & \"" + test::FinishedFolder() +
                       L"tessary-convert.exe\" " + arguments + L'"',
                   CREATE_NEW_CONSOLE);
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
    // The folder spi with iftst.spi is the only one.
    void UsePlugins() {
        std::filesystem::create_directory(folder_.Path() + L"spi");
        std::filesystem::copy_file(test::TestPluginPath(L"iftst.spi"),
                                   folder_.Path() + LR"(spi\iftst.spi)");
        SaveSetting(L"Init", L"Run", L"1");
        SaveSetting(L"General", L"UseSPI", L"1");
        SaveSetting(L"General", L"SPIFolder_1", folder_.Path() + L"spi");
    }

    test::RedirectedSettings settings_;
    test::TemporaryFolder folder_;
};

TEST_F(ConvertCliTest, ArgumentsChangeSettings) {
    ConsoleOptions options;
    const std::vector<std::wstring> arguments = {L"a",
                                                 L"--out",
                                                 LR"(C:\o)",
                                                 L"--format-low=jpeg",
                                                 L"--format-high",
                                                 L"PNG",
                                                 L"--no-unpack",
                                                 L"--min-width",
                                                 L"100",
                                                 L"--exclude-mask",
                                                 L"[!a]*",
                                                 L"--keep-unknown",
                                                 L"--log=C:\\x",
                                                 L"--append",
                                                 L"--jpeg-quality",
                                                 L"95",
                                                 L"--png-level",
                                                 L"0",
                                                 L"--png-interlace",
                                                 L"--encoding",
                                                 L"shift_jis",
                                                 L"--recursive",
                                                 L"--on-conflict",
                                                 L"skip",
                                                 L"--archive-depth=2",
                                                 L"--strict",
                                                 L"--keep-folders",
                                                 L"--",
                                                 L"--both"};
    ASSERT_EQ(ParseOptions(arguments, options), L"");
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
    EXPECT_EQ(Values().saveOptions.jpeg.quality, 95);
    EXPECT_EQ(Values().saveOptions.png.quality, 0);
    EXPECT_EQ(Values().saveOptions.png.interlace, 1);

    const std::vector<std::wstring> wrong[] = {{},
                                               {L"--out", L"o"},
                                               {L"a"},
                                               {L"a", L"--out"},
                                               {L"--out=", L"a"},
                                               {L"--out", L"o", L"a", L"--what"},
                                               {L"--out", L"o", L"a", L"--png-level", L"10"},
                                               {L"--out", L"o", L"a", L"--min-height", L"-1"},
                                               {L"--out", L"o", L"a", L"--format", L"gif"},
                                               {L"--out", L"o", L"a", L"--encoding", L"x"}};
    for (const auto& each : wrong) {
        ConsoleOptions ignored;
        EXPECT_NE(ParseOptions(each, ignored), L"") << each.size();
    }
}

TEST_F(ConvertCliTest, ConvertsAndTellsByItsStatus) {
    SaveSetting(L"Convert", L"SaveType2", L"1");
    folder_.Write(LR"(in\絵.bmp)", BitmapFileOf(3, 3, 0));
    folder_.Write(LR"(in\sub\b.bmp)", BitmapFileOf(3, 3, 0));
    const Outcome good = RunProgram(L"--out out in");
    EXPECT_EQ(good.status, 0U) << good.output;
    EXPECT_EQ(ContentOf(folder_.Path() + LR"(out\絵.png)").substr(1, 3), "PNG");
    EXPECT_FALSE(PathExists(folder_.Path() + LR"(out\b.png)"));
    EXPECT_NE(good.output.find("  保存ファイル名      "), std::string::npos) << "UTF-8";
    EXPECT_NE(good.output.find("変換 1"), std::string::npos) << good.output;

    // Masks are no names of files; what they leave out is no failure.
    const Outcome some = RunProgram(L"--out out --recursive --mask b* --encoding shift_jis in");
    EXPECT_EQ(some.status, 0U) << some.output;
    EXPECT_TRUE(PathExists(folder_.Path() + LR"(out\b.png)"));
    EXPECT_NE(some.output.find("\x8Cx\x8D\x90"), std::string::npos) << "警告";

    folder_.Write(L"x.dat", "no picture");
    EXPECT_EQ(RunProgram(L"--out out x.dat").status, 1U);
    EXPECT_EQ(RunProgram(LR"(--out out in\*.bmp gone.bmp)").status, 1U);
    EXPECT_EQ(RunProgram(L"--out out --no-unpack --mask none* in").status, 1U);
    EXPECT_EQ(RunProgram(LR"(--out x.dat\out in)").status, 2U);
    EXPECT_EQ(RunProgram(LR"(--out out --log x.dat\log in)").status, 2U);
    EXPECT_EQ(RunProgram(LR"(--out out --report in\絵.bmp in)").status, 2U);
    EXPECT_EQ(RunProgram(LR"(--out out --log in\絵.bmp in)").status, 2U);
    EXPECT_EQ(RunProgram(LR"(--out out --log in\絵.bmp in\sub)").status, 2U);
    EXPECT_EQ(RunProgram(LR"(--out out --log new.txt --report in\..\NEW.txt in)").status, 2U);
    EXPECT_FALSE(PathExists(folder_.Path() + L"new.txt"));
    EXPECT_EQ(ContentOf(folder_.Path() + LR"(in\絵.bmp)"), BitmapFileOf(3, 3, 0));
    EXPECT_EQ(RunProgram({}).status, 2U);
    EXPECT_EQ(RunProgram(L"/?").status, 0U);
    EXPECT_EQ(RunProgram(L"--format x in").status, 2U);
    EXPECT_EQ(RunProgram(L"--help").status, 0U);
    // A setting that cannot be read would ask in a window.
    SaveSetting(L"Convert", L"MinDecodeSizeX", L"wide");
    const Outcome broken = RunProgram(L"--out out in");
    EXPECT_EQ(broken.status, 2U);
    EXPECT_NE(broken.output.find("レジストリの読み取りエラーです。"), std::string::npos);
    EXPECT_EQ(RunProgram(L"--out out --ignore-settings in").status, 0U);
    EXPECT_EQ(GetSetting(L"Init", L"Run", L"-"), L"-") << "settings are never written";
    EXPECT_EQ(GetSetting(L"General", L"UseSPI", L"-"), L"-");
}

TEST_F(ConvertCliTest, WritesWhatItsConsoleReads) {
    folder_.Write(L"é表.xyz", "no picture");
    const Outcome japanese = RunInConsole(L"932", L"--quiet --out out é表.xyz");
    EXPECT_EQ(japanese.status, 1U);
    EXPECT_NE(japanese.output.find("\x8E\xB8\x94s: "), std::string::npos) << "失敗";
    EXPECT_NE(japanese.output.find("?\x95\\.xyz"), std::string::npos) << japanese.output;
    const Outcome utf8 = RunInConsole(L"65001", L"--quiet --out out é表.xyz");
    EXPECT_NE(utf8.output.find("é表.xyz （未知の形式）"), std::string::npos) << utf8.output;
    const Outcome chosen = RunInConsole(L"932", L"--quiet --encoding utf-8 --out out é表.xyz");
    EXPECT_EQ(chosen.output, utf8.output);
    const Outcome same = RunInConsole(L"932", L"--quiet --encoding console --out out é表.xyz");
    EXPECT_EQ(same.output, japanese.output);

    // For programs every name comes through, whatever the code page.
    const Outcome report = RunInConsole(L"932", L"--quiet --report - --out out é表.xyz 2>nul");
    EXPECT_NE(report.output.find(R"(\\\u00e9\u8868.xyz","target":"","result":"failed")"),
              std::string::npos)
        << report.output;
    EXPECT_TRUE(report.output.starts_with('{') && report.output.ends_with("}\n"));
    EXPECT_EQ(JsonLine({.source = L"\xD83D\xDE00\xD83D\"é"}, false).find(R"(😀\ud83d\"é")"), 11u);
}

TEST_F(ConvertCliTest, NamesWhatDidNotBecomeWhatItShould) {
    folder_.Write(LR"(in\a.bmp)", BitmapFileOf(3, 3, 0));
    folder_.Write(LR"(in\b\a.bmp)", BitmapFileOf(3, 3, RGB(9, 9, 9)));
    folder_.Write(LR"(in\b\x.xyz)", "no picture");
    folder_.Write(LR"(in\b\film.MP4)", "no picture");
    folder_.Write(LR"(in\b\mp4)", "no picture");
    folder_.Write(LR"(in\b\hidden.bmp)", BitmapFileOf(3, 3, 0));
    SetFileAttributesW((folder_.Path() + LR"(in\b\hidden.bmp)").c_str(), FILE_ATTRIBUTE_HIDDEN);
    SetFileAttributesW(folder_.Write(L"r.jsonl", std::string(5000, '?')).c_str(),
                       FILE_ATTRIBUTE_HIDDEN);
    const Outcome run =
        RunProgram(LR"(--format png --quiet --recursive --report r.jsonl --out out in in\b\*.bmp)");
    EXPECT_EQ(run.status, 1U);
    EXPECT_EQ(run.output.find("変換 "), std::string::npos) << run.output;
    EXPECT_EQ(run.output.find("hidden"), std::string::npos);
    EXPECT_NE(run.output.find("失敗: "), std::string::npos);
    EXPECT_NE(run.output.find("x.xyz"), std::string::npos);
    EXPECT_NE(run.output.find("別名: "), std::string::npos);
    EXPECT_TRUE(PathExists(folder_.Path() + LR"(out\a (2).png)"));
    const std::string report = ContentOf(folder_.Path() + L"r.jsonl");
    EXPECT_NE(report.find(R"(\\in\\b\\x.xyz","target":"","result":"failed","reason":")"),
              std::string::npos)
        << report;
    EXPECT_NE(report.find(R"(\\in\\b\\mp4","target":"","result":"failed")"), std::string::npos);
    EXPECT_NE(report.find(R"("result":"declined","reason":"no-picture")"), std::string::npos);
    EXPECT_EQ(report.find('?'), std::string::npos);
    EXPECT_NE(report.find(R"("result":"converted","renamed":true,"reason":"target-exists")"),
              std::string::npos)
        << report;

    const Outcome unreported = RunProgram(LR"(--out out2 --report none\r.jsonl in\a.bmp)");
    EXPECT_EQ(unreported.status, 2U);
    EXPECT_NE(unreported.output.find("レポートに書き込めません"), std::string::npos);
    EXPECT_NE(unreported.output.find("フォルダが見つかりません。"), std::string::npos);
    const std::wstring kept = folder_.Path() + LR"(out2\a.bmp)";
    EXPECT_TRUE(SetFileAttributesW(kept.c_str(), FILE_ATTRIBUTE_READONLY));
    RunProgram(LR"(--on-conflict overwrite --out out2 --report r.jsonl in\a.bmp)");
    EXPECT_NE(ContentOf(folder_.Path() + L"r.jsonl")
                  .find(R"("result":"failed","reason":"read-only-target")"),
              std::string::npos);
}

TEST_F(ConvertCliTest, PluginsNeitherEndARunUnseenNorHoldItUp) {
    folder_.Write(L"ask.tst", "TST 8x8x24\ndirty:question:GetPicture\n");
    folder_.Write(L"end.tst", "TST 8x8x24\ncrash:exit-well:GetPicture\n");
    UsePlugins();
    const Outcome asked = RunProgram(L"--format png --out out ask.tst");
    EXPECT_EQ(asked.status, 0U) << asked.output;
    EXPECT_NE(
        asked.output.find("プラグイン iftst.spi が表示したウィンドウを閉じました: Test plug-in "
                          "question: Go on?"),
        std::string::npos)
        << asked.output;
    EXPECT_TRUE(PathExists(folder_.Path() + LR"(out\ask.png)"));

    // What was done before is told all the same, by the process that sees to it.
    folder_.Write(L"a.bmp", BitmapFileOf(3, 3, 0));
    folder_.Write(L"b.bmp", BitmapFileOf(3, 3, 0));
    folder_.Write(L"x.xyz", "no picture");
    const Outcome ended = RunProgram(
        L"--format png --quiet --report r.jsonl --out out x.xyz a.bmp b.bmp end.tst ask.tst");
    EXPECT_EQ(ended.status, 4U) << ended.output;
    EXPECT_NE(ended.output.find("プラグイン iftst.spi の処理中（GetPicture）"), std::string::npos)
        << ended.output;
    EXPECT_NE(ended.output.find("x.xyz （未知の形式）"), std::string::npos) << ended.output;
    EXPECT_NE(ended.output.find("end.tst （途中でプロセスが終了した (iftst.spi)）"),
              std::string::npos);
    const std::string report = ContentOf(folder_.Path() + L"r.jsonl");
    EXPECT_EQ(std::ranges::count(report, '\n'), 4) << report;
    EXPECT_NE(report.find(R"(a.png","result":"converted")"), std::string::npos) << report;
    EXPECT_NE(report.find(R"("result":"failed","reason":"process-ended")"), std::string::npos);

    // One that ends the process while it is loaded is left out by the next run, and tried again.
    folder_.Write(LR"(spi\iftst.spi.script)", "crash:exit:DllMain\n");
    using Expected = std::pair<bool, const char*>;
    for (const auto& [ends, told] :
         {Expected{true, "（LoadLibrary）でした"}, Expected{false, "今回は読み込みません"},
          Expected{true, "（LoadLibrary）でした"}, Expected{false, "今後は読み込みません"},
          Expected{false, "続けて異常終了"}}) {
        const Outcome run = RunProgram(L"--format png --out out --recursive none");
        EXPECT_EQ(run.status == 4U, ends) << run.output;
        EXPECT_NE(run.output.find(told), std::string::npos) << run.output;
    }

    SaveSetting(L"General", L"SPIFolder_1", folder_.Path() + L"gone");
    const Outcome away = RunProgram(L"--format png --out out ask.tst");
    EXPECT_EQ(away.status, 2U) << away.output;
    EXPECT_NE(away.output.find("プラグインがひとつも"), std::string::npos) << away.output;
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
    DWORD worker = 0;
    GetWindowThreadProcessId(question, &worker);
    int listeners = 0;
    HWND listener = nullptr;  // the worker's
    for (HWND window = nullptr;
         (window = FindWindowExW(nullptr, window, L"TessaryConvertSession", nullptr)) != nullptr;) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        ++listeners;
        if (process == worker) listener = window;
    }
    EXPECT_EQ(listeners, 2) << "or the process that tells the end is ended at once";
    DWORD_PTR answer = 0;
    SendMessageTimeoutW(listener, WM_QUERYENDSESSION, 0, 0, SMTO_NORMAL, 10000, &answer);
    EXPECT_TRUE(answer);
    EXPECT_EQ(GetSetting(L"SPI_CALLLOG", L"SPI"), L"iftst.spi") << "others may refuse";
    EXPECT_EQ(SendMessageTimeoutW(listener, WM_ENDSESSION, TRUE, 0, SMTO_NORMAL, 100, &answer), 0)
        << "it would be ended in the middle of the file";
    while (IsWindow(question) && !GetSetting(L"SPI_CALLLOG", L"SPI").empty())
        Sleep(1);
    EXPECT_TRUE(IsWindow(question)) << "the plug-in has no part in the end";
    const Outcome ended = run.get();
    EXPECT_EQ(ended.status, 3U) << ended.output;
    EXPECT_TRUE(PathExists(folder_.Path() + LR"(out\ask.png)"));
    EXPECT_FALSE(PathExists(folder_.Path() + LR"(out\b.png)"));
}

}  // namespace
}  // namespace tessary
