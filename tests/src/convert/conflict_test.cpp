// What becomes of names that are in use: no source and no result of a run is lost, and runs that
// are repeated, in whatever order, come to the same files.
#include <set>
#include <tuple>

#include "convert/work_list.h"
#include "tests/src/convert/convert_test.h"
#include "tests/support/links.h"

namespace tessary::test {
namespace {

// Not what our writer makes of it.
std::string ForeignBitmap(int size) {
    return BitmapFileOf(size, size, RGB(1, 2, 3)) + "behind the picture";
}

class ConflictTest : public ConvertTest {
  protected:
    static std::multiset<std::string> ContentsOf(const Files& files) {
        std::multiset<std::string> contents;
        for (const auto& [name, content] : files)
            contents.insert(content);
        return contents;
    }

    // The list is all that lies in the source folder, in order or the other way round.
    ConvertEnd RunOverAll(bool isReversed = false) { return RunOverAll(isReversed, Target()); }
    ConvertEnd RunOverAll(bool isReversed, const std::wstring& target) {
        monitor_.files.clear();
        for (const auto& [name, content] : FilesBelow(source_.Path()))
            monitor_.files.push_back(source_.Path() + name);
        if (isReversed) std::ranges::reverse(monitor_.files);
        monitor_.reports.clear();
        return ConvertFiles(target, monitor_);
    }
};

TEST_F(ConflictTest, SourcesInTheTargetFolderStayAndResultsDoNotMultiply) {
    source_.Write(L"a.bmp", ForeignBitmap(4));
    source_.Write(L"A (2).bmp", ForeignBitmap(5));
    source_.Write(L"a.tst", "TST 6x6x24\n");
    source_.Write(L"b.tst", "TST 7x7x24\n");
    source_.Write(LR"(sub\b.tst)", "TST 8x8x24\n");
    source_.Write(L"p.tsa", ArchiveOf({{"b.tst", "TST 9x9x24\n"}, {"a.bmp", ForeignBitmap(3)}}));
    const Files before = FilesBelow(source_.Path());
    EXPECT_TRUE(RunOverAll(false, source_.Path()));
    const Files after = FilesBelow(source_.Path());
    EXPECT_EQ(NamesOf(after),
              LR"(A (2) (2).bmp A (2).bmp a (3).bmp a (4).bmp a.bmp a.tst b (2).bmp b.bmp b.tst )"
              LR"(p.tsa p.tsa(0)\a.bmp p.tsa(0)\b.bmp sub\b.tst )");
    for (const auto& [name, content] : before)
        EXPECT_EQ(after.at(name), content) << name;
    EXPECT_EQ(CountOf(&FileReport::isRenamed, true), 4);
    // Also in another order, and with the results of the first run as sources.
    for (const bool isReversed : {true, false}) {
        EXPECT_TRUE(RunOverAll(isReversed, source_.Path()));
        EXPECT_EQ(FilesBelow(source_.Path()), after) << isReversed;
    }
}

TEST_F(ConflictTest, WhatHasOneNameStaysApartInAnyOrderAndAfterAnyStop) {
    settings_.decodeUnknownFile = 1;
    const std::wstring mine = target_.Write(LR"(out\q.tsa\read.me)", "mine");
    source_.Write(L"q.tsa", ArchiveOf({{"read.me", "no picture"}}));
    for (const char folder : {'1', '2'}) {
        const std::wstring path = {static_cast<wchar_t>(folder), L'\\'};
        const std::string picture = std::string("TST ") + folder + "x4x24\n";
        source_.Write(path + L"img.tst", picture);
        source_.Write(path + L"p.tsa", ArchiveOf({{"m.tst", picture},
                                                  {"M.TST", "TST 9x4x24\n"},
                                                  {"m.bmp", ForeignBitmap(6)},
                                                  {std::string(1, folder), picture}}));
    }
    // The first becomes what the second is called; an empty entry stands for the folder of the
    // last.
    source_.Write(L"r.tsa", ArchiveOf({{"a.tst", "TST 6x6x24\n"},
                                       {"a.bmp", "TST 9x9x24\n"},
                                       {"B.bmp", "TST 6x6x24\n"},
                                       {"b.bmp", "TST 8x8x24\n"},
                                       {"empty", ""},
                                       {"sub", ""},
                                       {"sub/b.tst", "TST 6x6x24\n"}}));
    EXPECT_TRUE(RunOverAll());
    const Files all = FilesBelow(Target());
    EXPECT_EQ(all.size(), 18U) << NamesOf(all);
    EXPECT_EQ(CountOf(&FileReport::isRenamed, true), 7);
    EXPECT_EQ(ContentOf(mine), "mine");
    // Stopped in the other order after each step, over what the run before has left.
    int step = 0;
    do
        monitor_.stepsLeft = ++step;
    while (!RunOverAll(true) && step < 80);
    EXPECT_LT(step, 80);
    EXPECT_EQ(NamesOf(FilesBelow(Target())), NamesOf(all));
    EXPECT_EQ(ContentsOf(FilesBelow(Target())), ContentsOf(all));
    // Skipping resumes such a run, and does nothing where nothing is missing.
    settings_.onConflict = kConflictSkip;
    std::filesystem::remove(Target() + L"img (2).bmp");
    monitor_.stepsLeft = -1;
    for (const bool isReversed : {true, false}) {
        EXPECT_TRUE(RunOverAll(isReversed));
        EXPECT_EQ(ContentsOf(FilesBelow(Target())), ContentsOf(all)) << isReversed;
    }
    // What is there stays, whatever it is.
    for (const wchar_t* const name : {L"img.bmp", L"img (2).bmp"})
        target_.Write(std::wstring(L"out\\") + name, "made with other settings");
    EXPECT_TRUE(RunOverAll());
    EXPECT_EQ(NamesOf(FilesBelow(Target())), NamesOf(all));
}

// The members of an archive, and who comes first, may change between two runs.
TEST_F(ConflictTest, MembersOfOneNameAllSurvive) {
    const ArchiveEntry first{"a.tst", "TST 4x4x24\n"};
    const ArchiveEntry second{"a.bmp", ForeignBitmap(5)};
    const ArchiveEntry third{"A.gif", "TST 6x6x24\n"};
    std::multiset<std::string> contents;
    for (const std::string& archive :
         {ArchiveOf({first, second, third}), ArchiveOf({third, second, first})}) {
        source_.Write(L"x.tsa", archive);
        EXPECT_TRUE(RunOverAll());
        const Files files = FilesBelow(Target());
        EXPECT_EQ(files.size(), 3U) << NamesOf(files);
        if (contents.empty()) contents = ContentsOf(files);
        EXPECT_EQ(ContentsOf(files), contents);
    }
}

// Also when it is what the members are, byte for byte.
TEST_F(ConflictTest, WhatStandsWhereAnArchiveIsExpandedIsSomebodys) {
    const std::pair<std::wstring, std::string> mine[] = {
        {L"m.tst", "TST 4x4x24\n"}, {LR"(d\n.tst)", "TST 5x4x24\n"}, {L"t.xyz", "text"}};
    source_.Write(L"x.tsa", ArchiveOf({{"m.tst", mine[0].second},
                                       {"d/n.tst", mine[1].second},
                                       {"t.xyz", mine[2].second}}));
    for (const int32_t policy : {kConflictFreeName, kConflictSkip, kConflictOverwrite}) {
        for (const int32_t keepsUnknown : {0, 1}) {
            std::filesystem::remove_all(Target());
            for (const auto& [name, content] : mine)
                target_.Write(LR"(out\x.tsa\)" + name, content);
            settings_.onConflict = policy;
            settings_.decodeUnknownFile = keepsUnknown;
            for (int run = 0; run < 2; ++run) {
                EXPECT_TRUE(RunOverAll());
                EXPECT_EQ(Converted(),
                          LR"(x.tsa\d\n.bmp x.tsa\d\n.tst x.tsa\m.bmp x.tsa\m.tst )"
                          LR"(x.tsa\t.xyz )")
                    << policy << keepsUnknown;
            }
        }
    }
}

// At whatever moment: what it has extracted goes, whatever has become of it, and nothing else.
TEST_F(ConflictTest, RunsThatWereKilledAreRepeated) {
    source_.Write(L"x.tsa", ArchiveOf({{"m.tst", "TST 4x4x24\n"},
                                       {"m.bmp", ForeignBitmap(3)},
                                       {"~tessary.rec", "not ours"},
                                       {"t.xyz", "text"}}));
    const std::wstring mine = target_.Write(LR"(out\x.tsa\mine.tst)", "TST 4x4x24\n");
    EXPECT_TRUE(RunOverAll());
    const Files all = FilesBelow(Target());
    EXPECT_EQ(NamesOf(all), LR"(x.tsa\m (2).bmp x.tsa\m.bmp x.tsa\mine.tst )");
    const std::wstring atDeath = target_.Path() + L"dead\\";
    for (int line = 1, lines = line; line <= lines; line += 2) {
        for (const std::wstring& folder : {Target(), atDeath})
            std::filesystem::remove_all(folder);
        target_.Write(LR"(out\x.tsa\mine.tst)", "TST 4x4x24\n");
        lines = 0;
        monitor_.onLine = [&](const std::wstring&) {
            if (++lines != line) return;
            for (const auto& [name, content] : FilesBelow(Target())) {
                std::filesystem::create_directories(FolderOf(atDeath + name));
                EXPECT_TRUE(CopyFileW((Target() + name).c_str(), (atDeath + name).c_str(), TRUE));
            }
        };
        EXPECT_TRUE(RunOverAll());
        monitor_.onLine = nullptr;
        for (const wchar_t* const name : {L"m.tst", L"t.xyz"}) {
            const std::filesystem::path copy = atDeath + L"x.tsa\\" + name;
            if (std::filesystem::exists(copy)) std::filesystem::resize_file(copy, 1);
        }
        EXPECT_TRUE(RunOverAll(false, atDeath));
        EXPECT_EQ(FilesBelow(atDeath), all) << line;
    }
}

TEST_F(ConflictTest, WhatIsNoneOfTheRunIsTreatedAsTheUserWants) {
    source_.Write(L"a.tst", "TST 4x4x24\n");
    const std::wstring target = Target() + L"a.bmp";
    // The setting, the answer where it asks, what is there then, and whether "mine" is.
    const std::tuple<int32_t, ConflictAnswer, const wchar_t*, bool> table[] = {
        {kConflictFreeName, {}, L"a.bmp ", false},
        {kConflictSkip, {}, L"a.bmp ", true},
        {kConflictOverwrite, {}, L"a.bmp ", false},
        {kConflictAsk, ConflictAnswer::kReplace, L"a.bmp ", false},
        {kConflictAsk, ConflictAnswer::kFreeName, L"a (2).bmp a.bmp ", true},
        {kConflictAsk, ConflictAnswer::kSkip, L"a.bmp ", true},
    };
    for (const auto& [policy, answer, names, stays] : table) {
        std::filesystem::remove_all(Target());
        target_.Write(L"out\\a.bmp", "mine");
        settings_.onConflict = policy;
        monitor_.answer = answer;
        EXPECT_TRUE(RunOverAll());
        EXPECT_EQ(Converted(), names);
        EXPECT_EQ(ContentOf(target) == "mine", stays) << policy;
        const FileReport& report = monitor_.reports.back();
        EXPECT_EQ(report.isReplaced, !stays);
        EXPECT_EQ(report.outcome == FileOutcome::kSkipped, stays && !report.isRenamed);
        EXPECT_EQ(report.reason == FileReason::kTargetExists, stays);
    }
    // What lies beside a source is likely to be a picture of his, although it is not in the list.
    settings_.onConflict = kConflictFreeName;
    const std::wstring beside = source_.Write(L"a.bmp", "mine");
    monitor_.files = {source_.Path() + L"a.tst"};
    for (int run = 0; run < 2; ++run)
        EXPECT_TRUE(ConvertFiles(source_.Path(), monitor_));
    EXPECT_EQ(ContentOf(beside), "mine");
    EXPECT_EQ(NamesOf(FilesBelow(source_.Path())), L"a (2).bmp a.bmp a.tst ");
    std::filesystem::remove(source_.Path() + L"a (2).bmp");
    // Not even when he says so: the second is still to be read.
    source_.Write(L"a.bmp", ForeignBitmap(5));
    settings_.onConflict = kConflictAsk;
    monitor_.answer = ConflictAnswer::kReplace;
    EXPECT_TRUE(RunOverAll(true, source_.Path()));
    EXPECT_EQ(ContentOf(source_.Path() + L"a (2).bmp").size(), BitmapFileOf(4, 4, 0).size());
    // The engine's plain rule: whoever comes last stays.
    settings_.onConflict = kConflictOverwrite;
    std::filesystem::remove_all(Target());
    EXPECT_TRUE(RunOverAll(true));
    EXPECT_EQ(Converted(), L"a (2).bmp a.bmp ");
    // A source that was overwritten before its turn is no success.
    EXPECT_TRUE(RunOverAll(true, source_.Path()));
    EXPECT_EQ(CountOf(&FileReport::reason, FileReason::kOverwritten), 1);
    EXPECT_EQ(CountOf(&FileReport::outcome, FileOutcome::kFailed), 1);
}

// A name that is given because another is in use replaces nothing, and names fit into a folder.
TEST_F(ConflictTest, OtherNamesAreFreeOnes) {
    source_.Write(L"a.tst", "TST 4x4x24\n");
    source_.Write(L"a.bmp", ForeignBitmap(5));
    const std::wstring mine = target_.Write(L"out\\a (2).bmp", "mine");
    std::filesystem::create_directories(Target() + L"b.bmp");
    source_.Write(L"b.tst", "TST 4x4x24\n");
    const std::wstring longName(250, L'n');
    source_.Write(longName + L".bmp", ForeignBitmap(5));
    source_.Write(longName + L".tst", "TST 4x4x24\n");
    for (int run = 0; run < 2; ++run) {
        EXPECT_TRUE(RunOverAll(run == 1));
        EXPECT_EQ(Converted(), L"a (2).bmp a (3).bmp a.bmp b (2).bmp " + longName.substr(0, 247) +
                                   L" (2).bmp " + longName + L".bmp ");
        EXPECT_EQ(ContentOf(mine), "mine");
    }
}

TEST_F(ConflictTest, TheSameFileByAnotherPathIsTheSame) {
    std::filesystem::create_directories(Target());
    const std::wstring own = target_.Write(L"out\\a.bmp", ForeignBitmap(5));
    const std::string content = ContentOf(own);
    const std::wstring link = target_.Path() + L"link";
    ASSERT_TRUE(MakeFolderLink(link, RemoveBackslash(Target())));
    monitor_.files = {own, source_.Write(L"A.tst", "TST 4x4x24\n"), own};
    EXPECT_TRUE(ConvertFiles(link, monitor_));
    EXPECT_EQ(Converted(), L"A (2).bmp a (3).bmp a.bmp ");
    EXPECT_EQ(ContentOf(own), content);
    EXPECT_EQ(monitor_.reports.back().reason, FileReason::kListedTwice);
}

TEST_F(ConflictTest, FoldersAreKept) {
    settings_.keepFolders = true;
    for (const wchar_t* const name : {LR"(1\img.tst)", LR"(2\img.tst)", LR"(2\sub\img.tst)"})
        monitor_.files.push_back(source_.Write(name, "TST 4x4x24\n"));
    monitor_.files.push_back(
        source_.Write(LR"(2\p.tsa)", ArchiveOf({{"d/m.tst", "TST 4x4x24\n"}})));
    EXPECT_TRUE(Run());
    EXPECT_EQ(Converted(), LR"(1\img.bmp 2\img.bmp 2\p.tsa\d\m.bmp 2\sub\img.bmp )");
    const std::vector<WorkEntry> apart = EntriesOf(
        {{LR"(C:\a\b\1.x)", LR"(C:\a)"}, {LR"(D:\a\1.x)"}, {LR"(\\s\t\u\1.x)", LR"(\\s\t)"}},
        L"T\\", true);
    EXPECT_EQ(apart[0].folder, LR"(T\a\b\)");
    EXPECT_EQ(apart[1].folder, LR"(T\a\)");
    EXPECT_EQ(apart[2].folder, LR"(T\u\)");
}

TEST_F(ConflictTest, ArchivesInArchivesComeToAnEnd) {
    std::string inner = ArchiveOf({{"deep.tst", "TST 4x4x24\n"}});
    for (const char* const name : {"3.tsa", "2.tsa"})
        inner = ArchiveOf({{name, inner}, {"again.tsa", inner}});
    Add(L"x.tsa", inner);
    for (const int32_t depth : {1, 2, 3}) {
        settings_.archiveDepth = depth;
        EXPECT_TRUE(RunAnew());
        EXPECT_EQ(Converted().find(L"deep.bmp") != std::wstring::npos, depth == 3);
        EXPECT_EQ(CountOf(&FileReport::reason, FileReason::kTooDeep), depth < 3 ? 2 : 0) << depth;
        EXPECT_EQ(CountOf(&FileReport::reason, FileReason::kSameArchive), depth - 1) << depth;
    }
}

}  // namespace
}  // namespace tessary::test
