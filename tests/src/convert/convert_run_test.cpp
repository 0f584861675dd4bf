// Runs that are stopped, disturbed, or long.
#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "app/base/stay_awake.h"
#include "app/base/text.h"
#include "convert/convert_progress.h"
#include "files/same_content.h"
#include "host/host_connection.h"
#include "plugin/host_state.h"
#include "plugin/plugin_log.h"
#include "tests/src/convert/convert_test.h"
#include "tests/support/distant_files.h"
#include "tests/support/process_resources.h"
#include "tests/support/recorded_messages.h"

namespace tessary::test {
namespace {

constexpr uint64_t kSecond = 10'000'000;  // in the units of dates

class ConvertRunTest : public ConvertTest {
  protected:
    ConvertRunTest() { settings_.saveType2 = 1; }
    ~ConvertRunTest() override {
        UnloadSPI();
        SetPluginConnector({});
    }
    // Has the plug-ins called where the program calls them.
    void UseHosts() {
        SetPluginConnector([this](const std::wstring& plugin) {
            return std::make_unique<HostConnection>(plugin, hosts_);
        });
    }

    HostPool hosts_{FinishedFolder() + kHostProgram};
};

TEST_F(ConvertRunTest, StopsBetweenFilesAndMembersAndNowhereElse) {
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    Add(L"x.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}, {"n.tst", "TST 6x6x24\n"}}));
    Add(L"b.bmp", BitmapFileOf(2, 2, 0, sizeof(BITMAPV5HEADER)));  // the longest one
    // What is there after each step; extracted files that were not reached go.
    const std::wstring expected[] = {L"a.png ",
                                     L"a.png ",
                                     L"a.png ",
                                     L"a.png ",
                                     L"a.png b.png ",
                                     LR"(a.png b.png x.tsa\m.png )",
                                     LR"(a.png b.png x.tsa\m.png x.tsa\n.png )"};
    int step = 0;
    for (const std::wstring& files : expected) {
        monitor_.stepsLeft = ++step;
        EXPECT_FALSE(RunAnew());
        EXPECT_EQ(Converted(), files) << step;
        EXPECT_EQ(monitor_.lines.back(), L"*** すべての変換処理が完了しました ***");
        EXPECT_TRUE(LogHolds(L"!!! 変換処理がユーザーにより中断されました !!!"));
    }
}

TEST_F(ConvertRunTest, DisturbedRunsGoOn) {
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    Add(L"b.bmp", BitmapFileOf(2, 2, 0));
    Add(L"x.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}}));
    int finished = 0;
    bool nested = true;
    bool isAwake = false;
    SetAwakeObserver([&](AwakeNeed, bool isOn) { isAwake = isOn; });
    monitor_.onLine = [&](const std::wstring& line) {
        EXPECT_TRUE(isAwake);
        nested = nested && ConvertFiles(Target(), monitor_);
        // The folder is removed behind the first file; the archive's is made anew.
        if (line == L"*** 変換処理終了 ***" && ++finished == 1)
            std::filesystem::remove_all(Target());
    };
    EXPECT_TRUE(Run());
    EXPECT_FALSE(nested);
    EXPECT_TRUE(LogHolds(L"  保存に失敗しました  b.png"));
    EXPECT_EQ(Converted(), LR"(x.tsa\m.png )");
    EXPECT_FALSE(isAwake);
    monitor_.onLine = [](const std::wstring&) -> void { throw std::bad_alloc(); };
    Run();
    EXPECT_FALSE(isAwake);
    SetAwakeObserver({});
}

TEST_F(ConvertRunTest, WhatGoesWrongUnexpectedlyStaysWithItsFile) {
    for (const wchar_t* const name : {L"a.bmp", L"b.bmp", L"c.bmp"})
        Add(name, BitmapFileOf(2, 2, 0));
    Add(L"x.tsa", ArchiveOf({{"read.me", "text"}}));
    RecordedMessages messages;
    bool failsOnce = true;
    monitor_.onLine = [&](const std::wstring& line) {
        const bool isName = line.starts_with(L"  ファイル名") && line.ends_with(L"a.bmp");
        const bool isRead = line == L"  ビットマップを読み込みました";
        const bool isKind = line.starts_with(L"  ファイル種別        未知");
        if (isName || (isRead && std::exchange(failsOnce, false)) || isKind) throw std::bad_alloc();
        // Nobody is there to see a message.
        if (isRead) ReportUnexpectedError(51, L"内部エラーです。", L"x(");
    };
    EXPECT_TRUE(Run());
    EXPECT_EQ(Converted(), L"c.png ");
    EXPECT_EQ(OutcomeText(monitor_.counts), L"変換 1 個、対象外 0 個、失敗 3 個");
    EXPECT_EQ(std::ranges::count(monitor_.lines, L"  [エラー]          メモリが不足しています。"),
              3);
    EXPECT_TRUE(LogHolds(L"  [エラー]          内部エラーです。"));
    EXPECT_TRUE(messages.All().empty());
}

// A bitmap's own damage, what a plug-in tells of a picture, and what one tells of its archive.
TEST_F(ConvertRunTest, DamagedPicturesAreToldApart) {
    const std::string bitmap = BitmapFileOf(20, 10, 0);
    Add(L"a.bmp", bitmap.substr(0, bitmap.size() - 40));
    Add(L"b.tst", "TST 6x6x24\ncondition:1:half\n");
    Add(L"c.tsa", ArchiveOf({{"c.bmp", bitmap}}, "condition:1:torn\n"));
    Add(L"d.bmp", bitmap);
    const auto damages = [&] {
        std::wstring all;
        for (const FileReport& report : monitor_.reports) {
            if (report.isDamaged) all += report.text + L'|';
        }
        return all;
    };
    EXPECT_TRUE(Run());
    // The archive that has lost members comes before those that it has.
    EXPECT_EQ(damages(), L"ファイルが途中で切れています|half|torn|torn|");
    EXPECT_EQ(Converted(), LR"(a.png b.png c.tsa\c.png d.png )");
    settings_.saveType2 = 0;
    for (int time = 0; time < 2; ++time) {  // the second finds what the first has made
        monitor_.reports.clear();
        EXPECT_TRUE(ConvertFiles(source_.Path(), monitor_));
        EXPECT_EQ(damages(), L"half|torn|torn|ファイルが途中で切れています|");
    }
    settings_.saveType2 = 1;
    settings_.skipDamaged = true;
    EXPECT_TRUE(RunAnew());
    EXPECT_EQ(damages(), L"ファイルが途中で切れています|half|torn|torn|");
    EXPECT_TRUE(LogHolds(L"    損傷のある画像は保存しない設定になっています"));
    EXPECT_EQ(Converted(), L"d.png ");
}

// While a small picture is saved the next file is read.
TEST_F(ConvertRunTest, ReadingAheadChangesNothing) {
    settings_.saveType2 = 0;
    settings_.onConflict = kConflictOverwrite;
    const std::string large = BitmapFileOf(20, 20, 0);
    const std::string small = BitmapFileOf(4, 4, 0);
    monitor_.files = {target_.Write(L"out\\a.tst", "TST 4x4x24\n"),
                      target_.Write(L"out\\a.bmp", large),  // what the first becomes
                      source_.Write(L"0.bmp", small),
                      source_.Write(L"b.bmp", large),  // changes before its turn
                      target_.Write(L"out\\x.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}}))};
    int finished = 0;
    monitor_.onLine = [&](const std::wstring& line) {
        if (line == L"*** 変換処理終了 ***" && ++finished == 3) source_.Write(L"b.bmp", small);
    };
    monitor_.stepsLeft = 4;
    EXPECT_FALSE(Run());
    EXPECT_EQ(Converted(), L"0.bmp a.bmp a.tst b.bmp x.tsa ");
    for (const wchar_t* const name : {L"a.bmp", L"b.bmp"})
        EXPECT_EQ(ContentOf(Target() + name).size(), small.size()) << name;
    for (const auto& plugin : SusieCollection().NewEnum())
        EXPECT_FALSE(plugin->IsBound());

    monitor_.stepsLeft = -1;
    monitor_.files = {monitor_.files[3],
                      source_.Write(L"c.tst", "TST 4x4x24\ncrash:av:GetPicture\n")};
    EXPECT_TRUE(Run());
    EXPECT_TRUE(LogHolds(L"    エラーモジュールGetPicture"));
    EXPECT_EQ(SusieCollection().NewEnum()[0]->ErrorCount(L"GetPicture"), 1) << "not repeated";
    EXPECT_EQ(OutcomeText(monitor_.counts),
              L"変換 4 個、対象外 0 個、失敗 2 個（うち置き換え 2 個）");
}

TEST_F(ConvertRunTest, FilesInACloudAreFetchedInTheirTurn) {
    settings_.unpackArchive = 0;
    Add(L"a.bmp", BitmapFileOf(2, 2, 0));
    Add(L"b.tst", "TST 6x6x24\n");
    Add(L"c.txt", "text");
    Add(L"d.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}}));
    FakeDistantFiles cloud;
    cloud.elsewhere = {monitor_.files.begin() + 1, monitor_.files.end()};
    monitor_.onLine = [&](const std::wstring& line) {
        const bool isTurn = line.starts_with(L"  ファイル名") && line.ends_with(L"b.tst");
        EXPECT_TRUE(!isTurn || cloud.pieces == 0) << "read ahead";
    };
    EXPECT_TRUE(Run());
    EXPECT_EQ(Converted(), L"a.png b.png ");
    EXPECT_EQ(cloud.pieces, 2);  // the other one is the end of the file
    EXPECT_EQ(monitor_.reports[2].reason, FileReason::kNoPicture);
    EXPECT_EQ(monitor_.reports[3].reason, FileReason::kArchiveNotExpanded);
    // What is there already needs nothing.
    settings_.onConflict = kConflictSkip;
    settings_.saveType1 = 1;
    monitor_.onLine = {};
    EXPECT_TRUE(Run());
    EXPECT_EQ(cloud.pieces, 2);
    EXPECT_FALSE(HaveSameContent(monitor_.files[1], monitor_.files[1]));

    cloud.error = 388;
    EXPECT_TRUE(RunAnew());
    EXPECT_EQ(Converted(), L"a.png ");
    EXPECT_EQ(monitor_.reports[1].reason, FileReason::kNotFetched);
    EXPECT_TRUE(LogHolds(
        L"  [エラー]          ネットワークに接続できないため、クラウドから取得できません（エラー "
        L"388）。"));
    cloud.isStuck = true;
    monitor_.reports.clear();
    monitor_.onLine = [&](const std::wstring& line) {
        if (line == L"  クラウドから取得しています") monitor_.stepsLeft = 0;
    };
    EXPECT_FALSE(Run());
    EXPECT_EQ(monitor_.reports.back().outcome, FileOutcome::kStopped);
}

TEST_F(ConvertRunTest, KeepsTheListShortAndTheRunLong) {
    Add(L"x.tsa", "TSA\ngenerate:300\n\n");
    EXPECT_TRUE(Run());
    EXPECT_EQ(monitor_.lines.size(), 1001U);
    EXPECT_EQ(Converted(), L"");
    EXPECT_TRUE(monitor_.steps.ends_with(L"301/301:0/100 ")) << monitor_.steps.size();
}

TEST_F(ConvertRunTest, ManyFilesLeaveNothingBehind) {
    UnloadSPI();
    UseHosts();
    LoadSPI();
    settings_.noDecodeSmall = 1;
    settings_.minDecodeSizeX = settings_.minDecodeSizeY = 500;
    settings_.onConflict = kConflictOverwrite;
    std::filesystem::create_directories(Target() + L"blocked.png");
    const std::string declined = "TST 400x400x24\n";
    const std::pair<const wchar_t*, std::string> files[] = {
        {L"c.tst", "TST 501x501x24\ncrash:stack-overflow:GetPicture\n"},
        {L"x.tsa", ArchiveOf({{"a.tst", declined}}, "no-memory\n")},
        {LR"(\blocked.tst)", "TST 501x501x24\n"},
        {L"n.txt", "no picture"},
        {L"b.bmp", BitmapFileOf(400, 400, 0)},
        {L"p.tst", declined},
        {L"q.tst", declined}};
    for (int round = 0; round < 25; ++round) {
        for (const auto& [name, content] : files)
            Add(std::to_wstring(round) + name, content);
    }
    ULONG handles = 0;
    size_t bytes = 0;
    int ended = 0;
    monitor_.onLine = [&](const std::wstring& line) {
        if (line != L"*** 変換処理終了 ***" || ++ended != 70) return;  // all is warm
        handles = HandleCount();
        bytes = PrivateBytes();
    };
    EXPECT_TRUE(Run());
    EXPECT_GT(handles, 0U);
    // Threads of the system's pool close what they hold when they get to it.
    for (int tries = 0; tries < 50 && HandleCount() > handles + 2; ++tries)
        Sleep(100);
    EXPECT_LE(HandleCount(), handles + 2);
    EXPECT_LT(PrivateBytes(), bytes + (size_t{4} << 20));
    const std::wstring own = L"tessary_" + std::to_wstring(GetCurrentProcessId()) + L'_';
    for (const auto& entry : std::filesystem::directory_iterator(tessary::TemporaryFolder()))
        EXPECT_FALSE(entry.path().filename().wstring().starts_with(own)) << entry.path();
    EXPECT_EQ(OutcomeText(monitor_.counts), L"変換 0 個、対象外 125 個、失敗 50 個");
}

TEST_F(ConvertRunTest, NothingToDoIsNoRun) {
    EXPECT_FALSE(Run());
    monitor_.files = {L""};
    EXPECT_FALSE(Run());
    monitor_.files = {L"x"};
    EXPECT_FALSE(ConvertFiles(target_.Write(L"a file") + LR"(\out)", monitor_));
    EXPECT_TRUE(monitor_.lines.empty());
}

TEST_F(ConvertRunTest, ProgressIsRoundedHalvesToEven) {
    ConvertProgressCallback(1, 2, 0);  // nobody watches
    const ProgressWatch watch(monitor_);
    for (const auto& [numerator, denominator] :
         {std::pair{1, 8}, {3, 8}, {1, 3}, {2, 3}, {-1, 8}, {7, 7}, {5, 0}, {INT32_MAX, 1}}) {
        EXPECT_EQ(ConvertProgressCallback(numerator, denominator, 0), 0);
    }
    EXPECT_EQ(monitor_.percents, (std::vector<int32_t>{12, 38, 33, 67, -12, 100}));
}

// Small files need no further processes, and nothing of them is seen before their turn.
TEST_F(ConvertRunTest, WhatIsMadeBeforeItsTurnComesToTheSame) {
    Host().furtherConnector = [] {
        ADD_FAILURE() << "for small files";
        return PluginConnector();
    };
    const std::string bitmap = BitmapFileOf(20, 10, 0);
    Add(L"a.bmp", bitmap);
    Add(L"a.tst", "TST 6x6x24\n");
    Add(L"b.bmp", "TST 7x7x24\n");  // no bitmap: plug-ins have their turn before those behind it
    Add(L"b.tst", "TST 8x8x24\n");
    Add(L"c.bmp", bitmap.substr(0, bitmap.size() - 40));
    Add(L"blocked.bmp", bitmap);
    Add(L"bad.bmp", bitmap.substr(0, 30));
    Add(L"e.tst", "TST 9x9x24\nanswer:GetPicture:4\n");
    Add(L"x.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}}));
    monitor_.files.push_back(monitor_.files[0]);
    Add(L"small.bmp", BitmapFileOf(1, 1, 0));
    Add(L"f.bmp", BitmapFileOf(5, 5, 0));
    settings_.noDecodeSmall = 1;
    settings_.minDecodeSizeX = settings_.minDecodeSizeY = 4;
    const auto run = [&] {
        monitor_.lines.clear();
        Run();
        return std::pair(monitor_.lines, FilesBelow(Target()));
    };
    std::vector<std::pair<std::vector<std::wstring>, Files>> came[2];
    for (const int jobs : {1, 4}) {
        settings_.jobs = jobs;
        for (const int32_t policy : {kConflictFreeName, kConflictSkip, kConflictOverwrite}) {
            settings_.onConflict = policy;
            for (const int stop : {-1, 4}) {
                ForgetFailures(plugins_.Path() + L"iftst.spi");
                LoadSPI();
                std::filesystem::remove_all(Target());
                // What is in the way is waited for.
                if (policy == kConflictOverwrite && stop < 0)
                    std::filesystem::create_directories(Target() + L"blocked.png");
                monitor_.stepsLeft = stop;
                came[jobs / 4].push_back(run());
                monitor_.stepsLeft = -1;
                came[jobs / 4].push_back(run());
            }
        }
    }
    EXPECT_EQ(came[0], came[1]);
    EXPECT_TRUE(came[0][0].second.contains(L"f.png"));
    Host().furtherConnector = {};
}

TEST_F(ConvertRunTest, ResultsHaveTheDatesOfTheirSourcesWhereThatIsWanted) {
    Add(L"a.bmp", BitmapFileOf(20, 10, 0));
    Add(L"b.tst", "TST 6x6x24\n");
    Add(L"large.tst", "TST 6x6x24\n" + std::string(300'000, 'x'));
    for (const std::wstring& file : monitor_.files)
        std::filesystem::last_write_time(
            file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(50'000));
    const uint64_t old = StampOf(monitor_.files[0])->changed / kSecond;
    Add(L"x.tsa", ArchiveOf({{"m.tst", "TST 6x6x24\n"}}));
    const auto dates = [&] {
        std::vector<uint64_t> seconds;
        EXPECT_TRUE(RunAnew());
        for (const wchar_t* const name : {L"a.png", L"b.png", L"large.png", LR"(x.tsa\m.png)"})
            seconds.push_back(StampOf(Target() + name)->changed / kSecond);
        return seconds;
    };
    for (const int jobs : {1, 3}) {
        settings_.jobs = jobs;
        EXPECT_GT(std::ranges::min(dates()), old + 3600);
        Values().saveOptions.keepDates = 1;
        EXPECT_EQ(dates(), (std::vector<uint64_t>{old, old, old, 12'644'473'600}));
        Values().saveOptions.keepDates = 0;
    }
}

// Whatever plug-ins do, and whoever would be preferred for having accepted last.
TEST_F(ConvertRunTest, SeveralFilesAtATimeComeToTheSameAsOneAfterTheOther) {
    UnloadSPI();
    UseHosts();
    std::atomic<int> further = 0;
    Host().furtherConnector = [&] {
        ++further;
        return OwnHostConnector(HostWindows::kHidden, FinishedFolder() + kHostProgram);
    };
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), plugins_.Path() + L"aa.spi");
    plugins_.Write(L"aa.spi.script", "info:2:*.TST;*.OTH\n");
    // Files of a size that is worth the way to another process.
    const auto add = [&](const std::wstring& name, const std::string& directives) {
        Add(name, "TST 40x30x24\n" + directives + '\n' + std::string(300'000, 'x'));
    };
    // While the slow ones are read the threads begin, and come before the run.
    const char* const slow = "dirty:slow:GetPicture\n";
    for (const wchar_t* name :
         {L"s1.tst", L"s2.tst", L"s3.tst", L"s4.tst", L"s5.tst", L"first.oth"})
        add(name, slow);
    add(L"by the same.tst", {});
    Add(L"bitmap.bmp", BitmapFileOf(2, 2, 0));
    add(L"by the same too.tst", {});
    const char* const ends = "crash:exit-well:GetPicture\n";
    for (const char* directives : {"", "answer:GetPicture:4\n", "", "crash:av:GetPicture\n", "",
                                   "condition:3:half\n", ends, "", ends, ends, ""}) {
        add(std::to_wstring(monitor_.files.size()) + L".tst", directives);
    }
    Add(L"junk.tst", "junk");
    Add(L"archive.tsa", ArchiveOf({{"a.tst", "TST 40x30x24\n\n"}, {"b", "second"}}));
    add(L"0.tst", {});
    add(L"last.tst", {});
    std::vector<std::vector<std::wstring>> lines;
    std::vector<Files> files;
    for (const int jobs : {1, 3}) {
        ForgetFailures(plugins_.Path() + L"iftst.spi");
        ForgetFailures(plugins_.Path() + L"aa.spi");
        LoadSPI();
        settings_.jobs = jobs;
        EXPECT_TRUE(RunAnew());
        lines.push_back(monitor_.lines);
        files.push_back(FilesBelow(Target()));
        UnloadSPI();
    }
    EXPECT_EQ(lines[0], lines[1]);
    EXPECT_EQ(files[0], files[1]);
    EXPECT_TRUE(files[0].contains(L"last.png")) << "behind three that ended their processes";
    EXPECT_EQ(further, 3);
    Host().furtherConnector = {};
}

// A plug-in that hangs keeps nobody who wants to stop, nor do those that would be tried next.
TEST_F(ConvertRunTest, StopDoesNotWaitForAHang) {
    UnloadSPI();
    UseHosts();
    std::filesystem::copy_file(TestPluginPath(L"iftst.spi"), plugins_.Path() + L"other.spi");
    LoadSPI();
    Add(L"a.tst", "TST 4x3x24\ndirty:question:GetPicture\n");
    Add(L"b.tst", "TST 4x3x24\n");
    monitor_.onLine = [&](const std::wstring& line) {
        if (line.find(L"使用プラグイン") != line.npos) monitor_.stepsLeft = 0;
    };
    EXPECT_FALSE(Run());
    ASSERT_EQ(monitor_.reports.size(), 1u);
    EXPECT_EQ(monitor_.reports[0].outcome, FileOutcome::kStopped);
    EXPECT_EQ(ReadErrorCount(plugins_.Path() + L"iftst.spi", {}), 0);

    // Nobody is asked where nobody stops it.
    hosts_.FollowLimits([] { return HostLimits{.asking = 400, .working = 400}; });
    monitor_.reports.clear();
    monitor_.onLine = {};
    monitor_.stepsLeft = -1;
    monitor_.files.clear();
    Add(L"c.tst", "TST 4x3x24\nearly:sleep:GetPicture\n");
    Add(L"d.tsa", "TSA\nearly:sleep:GetArchiveInfo\n\n");
    Add(L"e.tst", "TST 4x3x24\n");
    EXPECT_TRUE(RunAnew());
    ASSERT_EQ(monitor_.reports.size(), 3u);
    for (const auto& [file, plugin] : {std::pair{0, L"iftst.spi"}, {1, L"axtsa.spi"}}) {
        const FileReport& report = monitor_.reports[static_cast<size_t>(file)];
        EXPECT_EQ(report.reason, FileReason::kPluginSilent) << file;
        EXPECT_EQ(ReasonTextOf(report), std::wstring(L"応答なし (") + plugin + L")");
    }
    EXPECT_EQ(Converted(), L"e.png ");
    EXPECT_TRUE(LogHolds(L"    エラーコード(255)応答なし"));
}

}  // namespace
}  // namespace tessary::test
