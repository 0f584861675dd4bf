#include "picture/turn/turn_jpeg_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string_view>
#include <utility>

#include "tests/helpers/jpeg_turn/made_jpeg.h"
#include "tests/support/content_of.h"
#include "tests/support/finished_folder.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using Outcome = TurnedFile::Outcome;
using test::Bytes;

class TurnJpegFileTest : public testing::Test {
  protected:
    void Put(const Bytes& bytes) {
        before_.assign(bytes.begin(), bytes.end());
        path_ = folder_.Write(L"写真.jpg", before_);
    }
    JpegFileToTurn Wish(uint32_t width, uint32_t height) const {
        return {path_, StampOf(path_), {exif::kTurnedRight, width, height, true}};
    }
    // What came of it; the file is as it was but for kDone.
    TurnedFile Turned(const JpegFileToTurn& file, int goOn = 1000) {
        const TurnedFile turned = TurnJpegFile(
            file, [&] { return goOn-- > 0; }, program_);
        EXPECT_EQ(test::ContentOf(path_) == before_, turned.outcome != Outcome::kDone);
        const std::filesystem::directory_iterator files(folder_.Path());
        EXPECT_EQ(std::distance(files, {}), 1);
        return turned;
    }

    test::TemporaryFolder folder_;
    std::wstring path_;
    std::wstring program_ = test::FinishedFolder() + L"tessary-host32.exe";
    std::string before_;
};

TEST_F(TurnJpegFileTest, TurnsTheFileInItsPlace) {
    Put(test::MadeJpeg({3, 2, 2}, 64, 32, {}, true));
    EXPECT_EQ(Turned(Wish(64, 32)).outcome, Outcome::kDone);
    const std::string made = test::ContentOf(path_);
    EXPECT_EQ(test::DecodedJpeg(Bytes(made.begin(), made.end())).width, 32u);
}

TEST_F(TurnJpegFileTest, LeavesTheFileAsItWasWhenAnythingIsWrong) {
    Put(test::MadeJpeg({3, 2, 2}, 60, 30, {}, true));
    const TurnedFile trimmed = Turned(Wish(60, 30));
    EXPECT_EQ(trimmed.why, jpeg::TurnResult::kWouldTrim);
    EXPECT_EQ(trimmed.left, 14u);
    EXPECT_EQ(Turned(Wish(64, 30)).why, jpeg::TurnResult::kNotThis);
    JpegFileToTurn wish = Wish(60, 30);
    wish.wish.trims = true;
    for (const int moments : {0, 1})
        EXPECT_EQ(Turned(wish, moments).outcome, Outcome::kStopped) << moments;
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Turned(wish).error, DWORD{ERROR_ACCESS_DENIED});
    SetFileAttributesW(path_.c_str(), FILE_ATTRIBUTE_NORMAL);
    const std::wstring program = std::exchange(program_, L"C:\\none.exe");
    EXPECT_EQ(Turned(wish).outcome, Outcome::kFailed);
    program_ = program;
    // Another program has written it meanwhile.
    Put(test::MadeJpeg({3, 2, 2}, 60, 30, {}, false));
    EXPECT_EQ(Turned(wish).outcome, Outcome::kChanged);
    Bytes cut = test::MadeJpeg({3, 2, 2}, 64, 64, {}, true);
    cut.resize(cut.size() / 2);
    Put(cut);
    EXPECT_EQ(Turned(Wish(64, 64)).why, jpeg::TurnResult::kDamaged);
}

}  // namespace
}  // namespace tessary
