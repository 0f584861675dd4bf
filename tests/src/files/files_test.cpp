// What is done with files on the disk, with the system's own recycle bin.
#include <gtest/gtest.h>

#include "app/base/handles.h"
#include "files/at_target.h"
#include "files/file_step.h"
#include "files/move_file.h"
#include "tests/support/content_of.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

class FilesTest : public testing::Test {
  protected:
    test::TemporaryFolder folder_;
};

TEST_F(FilesTest, FilesComeBackFromTheBin) {
    const std::wstring file = folder_.Write(L"深い 名前 😀 & %1.bmp", "mine");
    const std::wstring other = folder_.Write(L"other.bmp", "yours");
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    ASSERT_TRUE(MayHaveBin(file));
    const BinResult first = PutIntoBin(file);
    ASSERT_EQ(first.outcome, Binning::kDone);
    const BinResult second = PutIntoBin(other);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(PutIntoBin(file).outcome, Binning::kGone);

    folder_.Write(L"other.bmp", "new");
    EXPECT_EQ(TakeOutOfBin(second.file), Unbinning::kOccupied);
    EXPECT_EQ(TakeOutOfBin(first.file), Unbinning::kDone);
    EXPECT_EQ(test::ContentOf(file), "mine");
    EXPECT_EQ(test::ContentOf(other), "new");
    EXPECT_EQ(TakeOutOfBin({folder_.Path() + L"never.bmp", {}}), Unbinning::kNotThere);
    std::filesystem::remove(other);
    EXPECT_EQ(TakeOutOfBin(second.file), Unbinning::kDone);
    EXPECT_EQ(test::ContentOf(other), "yours");
}

TEST_F(FilesTest, NamesArePutRightWithoutLosingAFile) {
    const std::wstring file = folder_.Write(L"a.bmp", "mine");
    const std::wstring other = folder_.Write(L"b.bmp", "yours");
    EXPECT_EQ(RenameFile(file, other), DWORD{ERROR_FILE_EXISTS});
    const std::wstring upper = folder_.Path() + L"A.bmp";
    EXPECT_EQ(RenameFile(file, upper), 0u);
    EXPECT_EQ(std::filesystem::directory_iterator(folder_.Path())->path().extension(), L".bmp");
    EXPECT_EQ(test::ContentOf(upper), "mine");
    EXPECT_EQ(Undo({.path = file, .now = upper}).outcome, Undone::kDone);
    EXPECT_EQ(Undo({.path = other, .now = file}).outcome, Undone::kOccupied);
    EXPECT_EQ(Undo({.path = upper + L"x", .now = upper + L"y"}).outcome, Undone::kNotThere);
    const UniqueFile held(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(RenameFile(file, folder_.Path() + L"c.bmp"), DWORD{ERROR_SHARING_VIOLATION});
}

TEST_F(FilesTest, CopiesAreWholeAndKeepTheirDates) {
    const std::wstring file = folder_.Write(L"a.bmp", "mine");
    const std::wstring target = folder_.Write(L"to/a.bmp", "old");
    const auto date = std::filesystem::last_write_time(file) - std::chrono::hours(1000);
    std::filesystem::last_write_time(file, date);
    EXPECT_EQ(CopyWhole(file, target, InTheWay::kStays, {}), DWORD{ERROR_FILE_EXISTS});
    const CopyNews stop = [](uint64_t, uint64_t) { return false; };
    EXPECT_EQ(CopyWhole(file, target, InTheWay::kIsReplaced, stop), DWORD{ERROR_CANCELLED});
    EXPECT_EQ(test::ContentOf(target), "old");
    EXPECT_EQ(CopyWhole(file, target, InTheWay::kIsReplaced, {}), 0u);
    EXPECT_EQ(test::ContentOf(target), "mine");
    EXPECT_EQ(std::filesystem::last_write_time(target), date);
    EXPECT_EQ(MoveWhole(file, target, InTheWay::kStays, {}), DWORD{ERROR_FILE_EXISTS});
    EXPECT_EQ(MoveWhole(file, target, InTheWay::kIsReplaced, {}), 0u);
    EXPECT_FALSE(std::filesystem::exists(file));
    const std::filesystem::directory_iterator begin(folder_.Path() + L"to");
    EXPECT_EQ(std::distance(begin, std::filesystem::directory_iterator()), 1);
}

TEST_F(FilesTest, WhatIsReplacedComesBackFromTheBin) {
    const std::wstring file = folder_.Write(L"a.bmp", "mine");
    const std::wstring target = folder_.Write(L"to/a.bmp", "old");
    EXPECT_EQ(LookAtTarget(file, target), AtTarget::kOther);
    EXPECT_EQ(LookAtTarget(file, folder_.Path() + L"TO\\..\\A.bmp"), AtTarget::kItself);
    EXPECT_EQ(LookAtTarget(file, folder_.Path() + L"to"), AtTarget::kFolder);
    FileStep copy{.path = file, .now = target};
    ASSERT_EQ(CopyWhole(file, target, InTheWay::kIsBinned, {}, &copy.replaced), 0u);
    copy.copy = StampOf(target);
    EXPECT_EQ(LookAtTarget(file, target), AtTarget::kSame);
    folder_.Write(L"to/a.bmp", "changed");
    EXPECT_EQ(Undo(copy).outcome, Undone::kChanged);
    EXPECT_EQ(test::ContentOf(target), "changed");
    copy.copy = StampOf(target);
    EXPECT_EQ(Undo(copy).outcome, Undone::kDone);
    EXPECT_EQ(test::ContentOf(target), "old");

    FileStep move{.path = file, .now = target};
    ASSERT_EQ(MoveWhole(file, target, InTheWay::kIsBinned, {}, &move.replaced), 0u);
    EXPECT_EQ(test::ContentOf(target), "mine");
    EXPECT_EQ(FreeName(target), folder_.Path() + L"to/a (2).bmp");
    EXPECT_EQ(Undo(move).outcome, Undone::kDone);
    EXPECT_EQ(test::ContentOf(file), "mine");
    EXPECT_EQ(test::ContentOf(target), "old");

    // Nothing is lost where the newcomer cannot take its place.
    const UniqueFile held(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    EXPECT_NE(MoveWhole(file, target, InTheWay::kIsBinned, {}), 0u);
    EXPECT_EQ(test::ContentOf(target), "old");
    EXPECT_EQ(test::ContentOf(file), "mine");
}

// The user is asked by nobody but the program.
TEST_F(FilesTest, WhatOthersHaveOpenStays) {
    const std::wstring file = folder_.Write(L"a.bmp", "mine");
    const UniqueFile held(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    const BinResult result = PutIntoBin(file);
    EXPECT_EQ(result.outcome, Binning::kFailed);
    EXPECT_EQ(result.error, DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST_F(FilesTest, TheBinTakesNothingFromElsewhere) {
    EXPECT_FALSE(MayHaveBin(LR"(\\server\share\a.bmp)"));
    EXPECT_FALSE(MayHaveBin(folder_.Deep() + L"a.bmp"));
}

}  // namespace
}  // namespace tessary
