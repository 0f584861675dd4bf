// The files being viewed, without a window: order and selection, where steps lead, and what is
// marked for deletion.
#include "sequence/file_sequence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <tuple>

#include "sequence/random_way.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using List = std::vector<std::wstring>;

// Knows pictures by their names, and has only so much patience.
class NamedKinds final : public KindSource {
  public:
    bool IsKnown(const std::wstring& path) override { return path.starts_with(L"p"); }
    bool IsArchive(const std::wstring& path) override { return path.ends_with(L".z"); }
    bool GoesOn(int index, int done, int total) override {
        told.push_back({index, done, total});
        return told.size() < patience;
    }

    std::vector<std::vector<int>> told;
    size_t patience = 100;
};

TEST(FileSequenceTest, TheCursorStaysWithItsEntry) {
    FileSequence::FileEntries files;
    int selections = 0;
    files.OnSelect([&] { ++selections; });
    for (const wchar_t* const name : {L"a", L"b", L"c", L"d", L"b"})
        files.Add({name});
    files.Select(2);
    EXPECT_EQ(files.IndexOf(files.Current()), 2);
    for (const auto& [removed, cursor, left] : {std::tuple{3, 2, List{L"a", L"b", L"c", L"b"}},
                                                {0, 1, {L"b", L"c", L"b"}},
                                                {1, -1, {L"b", L"b"}}}) {
        files.Remove(removed);
        EXPECT_EQ(files.Texts(), left);
        EXPECT_EQ(files.Cursor(), cursor);
    }
    files.SetCursor(7);  // what a search has found may be gone by its end
    EXPECT_EQ(files.Cursor(), -1);
    files.Select(1);
    files.Clear();
    EXPECT_EQ(files.Cursor(), -1);
    EXPECT_EQ(selections, 2);
}

TEST(FileSequenceTest, ChosenFilesStayChosenWhereverTheyGo) {
    FileSequence sequence;
    FileSequence::FileEntries& files = sequence.Files();
    for (int i = 0; i < 6; ++i)
        files.Add({LR"(C:\)" + std::wstring(1, L'a' + i), 10U - i, 1});
    EXPECT_EQ(sequence.Chosen(), List{});
    files.SetCursor(1);
    EXPECT_EQ(sequence.Chosen(), List{LR"(C:\b)"}) << "the one in view";
    sequence.ChooseForNow(std::vector{4, 2, 99});
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\c)", LR"(C:\e)"}));
    sequence.SortBy({.by = OrderBy::kSize});
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\e)", LR"(C:\c)"}));
    std::vector<ListedFile> now(files.All().begin() + 1, files.All().end());
    now[0].path = LR"(C:\new)";  // that was e
    now.push_back({LR"(C:\other)", 6, 2});
    sequence.Replace(now, 0);
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\new)", LR"(C:\c)"}));
    files.Remove(1);
    files.Add({LR"(C:\late)"});
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\new)", LR"(C:\c)"}));
    sequence.GoOn();
    EXPECT_EQ(files.ChosenCount(), 0);
    // What is marked stays, with what is chosen beside it.
    sequence.ToggleMark(2);
    sequence.ChooseForNow(std::vector{1, 2});
    sequence.GoOn();
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\c)", LR"(C:\b)"}));
    sequence.ToggleMark(1);
    EXPECT_EQ(sequence.Chosen(), (List{LR"(C:\b)"}));
    files.SetCursor(3);
    EXPECT_EQ(sequence.MarkFiles(std::vector{0, 2}), 2);
    EXPECT_EQ(files.Texts(), (List{LR"(C:\c)", LR"(C:\a)", LR"(C:\other)", LR"(C:\late)"}));
    EXPECT_EQ(files.Current(), LR"(C:\a)");
    EXPECT_EQ(files.ChosenCount(), 0);
    EXPECT_EQ(sequence.Marks().Texts(), (List{LR"(C:\new)", LR"(C:\b)"}));
}

TEST(FileSequenceTest, StepsGoThroughMembersAndKnownFiles) {
    FileSequence sequence;
    for (const wchar_t* const name : {L"x0", L"p1", L"x2", L"p3", L"x4"})
        sequence.Files().Add({name});
    const std::vector<ListedMember> members{{L"a", 3}, {L"b", 1}, {L"c", 2}};
    sequence.SetMembers(members);
    EXPECT_EQ(sequence.Members().At(1).position, 1);
    const std::optional<int> kNone;
    struct Case {
        int file, member, steps;  // member -2: not in the archive
        std::optional<int> toMember, toFile;
        bool isKnown;
    };
    for (const Case& c : {
             Case{-1, -2, 1, kNone, 1, true},  // the unknown one is left out
             {1, -2, 1, kNone, 3, true},
             {3, -2, 1, kNone, 4, false},  // the last, although unknown
             {4, -2, 1, kNone, kNone, false},
             {0, -2, 5, kNone, 3, true},  // no further than the last one of known kind
             {3, -2, -1, kNone, 1, true},
             {3, -2, -2, kNone, 1, true},
             {1, -2, -1, kNone, -1, false},  // the selection goes
             {-1, -2, -1, kNone, kNone, false},
             {1, -1, 1, 0, kNone, false},
             {1, 0, 2, 2, kNone, false},
             {1, 2, 1, kNone, 3, true},
             {1, 1, 2, 2, 3, true},
             {3, 1, 5, 2, kNone, false},  // there is no file behind the archive
             {3, 2, 1, kNone, 4, false},
             {1, 2, -1, 1, kNone, false},
             {1, 1, -3, 0, kNone, false},
         }) {
        sequence.Files().SetCursor(c.file);
        sequence.Members().SetCursor(c.member);
        NamedKinds kinds;
        const StepTarget target = sequence.Find(c.steps, c.member != -2, false, kinds);
        EXPECT_EQ(std::tie(target.member, target.file, target.isKnown),
                  std::tie(c.toMember, c.toFile, c.isKnown))
            << c.file << ", " << c.member << " by " << c.steps;
    }
    // Steps end at an archive, whose members nobody knows before it is open.
    NamedKinds kinds;
    sequence.Files().Add({L"p5.z"});
    sequence.Files().Add({L"p6"});
    sequence.Files().SetCursor(1);
    for (const auto& [steps, file, left] : {std::tuple{2, 5, 0}, {4, 5, 2}}) {
        const StepTarget target = sequence.Find(steps, false, false, kinds);
        EXPECT_EQ(std::tie(target.file, target.left), std::tuple(std::optional(file), left));
    }

    NamedKinds impatient;
    impatient.patience = 1;
    sequence.Files().SetCursor(3);
    EXPECT_EQ(sequence.Find(-1, false, false, impatient).file, kNone);
    EXPECT_EQ(impatient.told, (std::vector<std::vector<int>>{{2, 0, 3}}));
    sequence.LeaveArchive();
    EXPECT_TRUE(sequence.Members().IsEmpty());
}

TEST(FileSequenceTest, DeletedFilesGoInEverySpelling) {
    const test::TemporaryFolder folder;
    const auto path = [&](const wchar_t* name) { return folder.Path() + name; };
    const List files{path(L"1"), path(L"2"), path(L"a"), path(L"4"), path(LR"(x\a)")};
    const List deleted{path(L"1"), path(LR"(.\A)")};
    using Gap = std::optional<int>;
    for (const auto& [cursor, cursorThen, gap] :
         {std::tuple{2, -1, Gap{1}}, {0, -1, 0}, {3, 1, {}}, {-1, -1, {}}}) {
        FileSequence sequence;
        for (const std::wstring& file : files)
            sequence.Files().Add({file});
        sequence.Files().SetCursor(cursor);
        EXPECT_EQ(sequence.RemoveDeleted(deleted), gap) << cursor;
        EXPECT_EQ(sequence.Files().Texts(), (List{files[1], files[3], files[4]}));
        EXPECT_EQ(sequence.Files().Cursor(), cursorThen);
    }
}

TEST(RandomWayTest, EachFileComesOnceARoundAndBackGoesAsItCame) {
    FileSequence::FileEntries files;
    for (int i = 0; i < 30; ++i)
        files.Add({(i % 5 == 0 ? L"x" : L"p") + std::to_wstring(i)});
    files.Add({.path = L"p unwanted", .isWanted = false});
    RandomWay way(7);
    NamedKinds kinds;
    List came;
    const auto go = [&](std::optional<int> file) {
        if (!file) return false;
        files.SetCursor(*file);
        came.push_back(files.Current());
        return true;
    };
    files.SetCursor(1);
    for (int i = 0; i < 9; ++i)
        EXPECT_TRUE(go(way.Next(files, false, kinds)));
    const List forth = came;
    EXPECT_FALSE(std::ranges::is_sorted(
        forth, {}, [&](const std::wstring& path) { return files.IndexOf(path); }));
    while (way.LeadsBack(files))
        EXPECT_TRUE(go(way.Back(files)));
    EXPECT_EQ(files.Current(), L"p1");
    EXPECT_FALSE(way.Back(files));
    EXPECT_EQ(came[9], forth[7]);
    came.clear();
    for (int i = 0; i < 9; ++i)
        EXPECT_TRUE(go(way.Next(files, false, kinds)));
    EXPECT_EQ(came, forth);
    // The list changes: what is gone does not come, what is new does, and nothing twice.
    const auto gone = std::ranges::find_if(files.All(), [&](const ListedFile& file) {
        return file.path != L"p1" && kinds.IsKnown(file.path) &&
               std::ranges::find(forth, file.path) == forth.end();
    });
    const std::wstring lost = gone->path;
    files.Remove(static_cast<int>(gone - files.All().begin()));
    files.Add({L"p new"});
    while (go(way.Next(files, false, kinds))) {
    }
    EXPECT_EQ(came.size(), 23U);  // 24, but for the first and one lost, and one is new
    EXPECT_EQ(std::set<std::wstring>(came.begin(), came.end()).size(), came.size());
    EXPECT_EQ(std::ranges::find(came, lost), came.end());
    EXPECT_NE(std::ranges::find(came, L"p new"), came.end());
    const std::wstring last = files.Current();
    EXPECT_TRUE(go(way.Next(files, true, kinds)));
    EXPECT_NE(files.Current(), last) << "another round";
}

}  // namespace
}  // namespace tessary
