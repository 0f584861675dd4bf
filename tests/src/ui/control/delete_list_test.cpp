// The delete list without its windows: what becomes of the files, and what the user is asked.
#include "ui/control/delete_list.h"

#include <gtest/gtest.h>

#include <tuple>

#include "app/base/message_box.h"
#include "app/settings/modValue.h"
#include "files/delete_file.h"
#include "helpers/files/refusal.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using List = std::vector<std::wstring>;

class DeleteListTest : public testing::Test, protected DeleteListHost {
  protected:
    void SetUp() override {
        Values().general.deleteFinally = kDeleteListed;
        for (const wchar_t* const name : {L"1", L"2", L"3", L"4"}) {
            files_.push_back(folder_.Write(name, "mine"));
            Files().Add({files_.back()});
        }
        Files().SetCursor(0);
        SetMessageBoxResponder([this](const std::wstring& text, unsigned style, const auto&) {
            asked_.push_back({text, style});
            if (onQuestion_) onQuestion_();
            return asked_.size() <= answers_.size() ? answers_[asked_.size() - 1] : 0;
        });
    }
    void TearDown() override {
        SetMessageBoxResponder({});
        SetBinCalls({});
        Values() = {};
    }

    void SetPanelOpen(bool open) override { isOpen_ = open; }
    bool IsPanelInSight() const override { return isInSight_; }
    void ShowNote(const std::wstring& note) override { note_ = note; }
    void ShowInPlaceOf(int index) override { shown_ = index; }
    void ForgetDeletion() override {}
    void Remember(const std::vector<BinnedFile>& binned) override { remembered_ += binned.size(); }
    void WhileDeleting(const std::function<void(const DeletionNews&)>& deletion) override {
        deletion([this](const std::wstring&, int32_t done, int32_t) { return done < patience_; });
    }

    FileSequence::FileEntries& Files() { return sequence_.Files(); }
    size_t Marked() const { return sequence_.Marks().Texts().size(); }
    List Listed() const { return sequence_.Files().Texts(); }
    void MarkThree() {
        for (int i = 0; i < 3; ++i)
            list_.Mark(0);
    }
    // From now on these answers, in turn.
    void Answer(std::vector<int> answers) {
        answers_ = std::move(answers);
        asked_.clear();
    }
    // It cannot be deleted meanwhile.
    static UniqueFile Lock(const std::wstring& file) {
        return UniqueFile(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    }
    // Which of the files are on the disk.
    std::wstring There() const {
        std::wstring there;
        for (const std::wstring& file : files_)
            if (std::filesystem::exists(file)) there += file.back();
        return there;
    }

    test::TemporaryFolder folder_;
    List files_;
    FileSequence sequence_;
    DeleteList list_{sequence_, *this};
    bool isOpen_ = false;
    bool isInSight_ = true;
    int shown_ = -2;
    int patience_ = 100;
    size_t remembered_ = 0;
    std::wstring note_;
    std::vector<int> answers_;
    std::vector<std::pair<std::wstring, unsigned>> asked_;
    std::function<void()> onQuestion_;
};

TEST_F(DeleteListTest, MovesFilesOutAndBack) {
    Files().Add({folder_.Path() + LR"(.\1)"});
    list_.Mark(-1);
    EXPECT_FALSE(isOpen_);
    list_.Mark(0);
    EXPECT_TRUE(isOpen_);
    EXPECT_EQ(shown_, 0);  // the next one comes up
    EXPECT_EQ(note_, L"");
    shown_ = -2;
    isInSight_ = false;
    list_.Mark(1);
    EXPECT_EQ(note_, L"削除リストに追加しました（2 個）: 3");
    list_.Mark(2);
    EXPECT_EQ(note_, L"1 は、もう削除リストにあります。");
    EXPECT_EQ(shown_, -2);  // another one was selected
    list_.FileSaved(folder_.Path() + LR"(.\1)");
    EXPECT_EQ(note_, L"保存したので、削除リストから一覧に戻しました: 1");
    EXPECT_TRUE(isOpen_);
    list_.PutBack(files_[2]);
    EXPECT_FALSE(isOpen_);
    EXPECT_EQ(Listed(), (List{files_[1], files_[3], files_[0], files_[2]}));
    MarkThree();
    list_.DropAll();
    EXPECT_EQ(Listed(), List{files_[2]});
    EXPECT_FALSE(isOpen_);
}

TEST_F(DeleteListTest, DeletesAndLetsTheUserDecideAboutFailures) {
    SetFileAttributesW(files_[2].c_str(), FILE_ATTRIBUTE_READONLY);
    UniqueFile locked = Lock(files_[1]);
    MarkThree();
    onQuestion_ = [&] {
        if (asked_.size() == 3) locked.Reset();
    };
    // The patience lasts for so many files.
    for (const auto& [answers, patience, left] : {std::tuple{std::vector{IDCANCEL}, 9, 3u},
                                                  {{IDOK, IDABORT}, 9, 2u},
                                                  {{IDOK, IDIGNORE}, 1, 2u},
                                                  {{IDOK, IDIGNORE}, 9, 1u},
                                                  {{IDOK, IDRETRY, IDRETRY}, 9, 0u}}) {
        Answer(answers);
        patience_ = patience;
        list_.AskToDeleteAll();
        ASSERT_EQ(asked_.size(), answers.size());
        EXPECT_EQ(asked_[0].second, 65u | MB_DEFBUTTON2);
        EXPECT_EQ(asked_.back().second, asked_.size() > 1 ? 18u : asked_[0].second);
        EXPECT_EQ(Marked(), left);
        EXPECT_EQ(isOpen_, left > 0);
    }
    EXPECT_EQ(asked_[0].first, L"リスト内の 1個のファイルをディスクから削除します。");
    EXPECT_EQ(There(), L"4");
}

// Nothing is deleted for good that the user has not said so of, and each question has its No first.
TEST_F(DeleteListTest, PutsIntoTheBinAndAsksWhereThereIsNone) {
    Values().general.deleteFinally = kDeleteToBin;
    Binning answer = Binning::kDone;
    std::wstring binned;
    SetBinCalls({.mayHave = [&](const std::wstring& path) { return path.back() != L'1'; },
                 .put =
                     [&](const std::wstring& path) {
                         const bool goes = answer == Binning::kDone && path.back() != L'2';
                         if (!goes) return BinResult{.outcome = Binning::kNoBin};
                         std::filesystem::remove(path);
                         binned += path.back();
                         return BinResult{.outcome = Binning::kDone, .file = {path, {}}};
                     }});
    MarkThree();
    Answer({IDOK, IDNO, IDNO});
    list_.AskToDeleteAll();
    ASSERT_EQ(asked_.size(), 3u);
    EXPECT_EQ(asked_[0].first, L"リスト内の 3 個のファイルをごみ箱に移動します。");
    EXPECT_EQ(asked_[1].second, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    EXPECT_NE(asked_[1].first.find(files_[0]), std::wstring::npos);
    EXPECT_EQ(asked_[2].second, MB_YESNOCANCEL | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    EXPECT_NE(asked_[2].first.find(L"このファイルはごみ箱に入れられません。"), std::wstring::npos);
    EXPECT_EQ(binned, L"3");
    EXPECT_EQ(There(), L"124");
    EXPECT_EQ(Marked(), 2u);
    Answer({IDOK, IDYES, IDYES});
    list_.AskToDeleteAll();
    EXPECT_EQ(There(), L"4");
    EXPECT_EQ(binned, L"3");
    EXPECT_EQ(remembered_, 1u);  // of what can be undone
    Values().general.deleteFinally = kDeleteForGood;
    list_.Mark(0);
    Answer({IDNO});
    list_.AskToDeleteAll();
    EXPECT_EQ(asked_[0].second, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    EXPECT_NE(asked_[0].first.find(L"を完全に削除しますか"), std::wstring::npos);
    EXPECT_EQ(There(), L"4");
}

// What has become of a file since it was marked counts, not what it is called.
TEST_F(DeleteListTest, DeletesOnlyWhatWasMarked) {
    Files().Add({folder_.Path() + LR"(.\3)"});
    MarkThree();
    Files().SetCursor(1);
    folder_.Write(L"1", "yours by now");
    std::filesystem::remove(files_[1]);
    Answer({IDOK, IDNO});
    list_.AskToDeleteAll();
    ASSERT_EQ(asked_.size(), 2u);
    EXPECT_NE(asked_[1].first.find(L"1 は、削除リストに入れた後に変更"), std::wstring::npos);
    EXPECT_EQ(There(), L"14");
    EXPECT_FALSE(isOpen_);
    EXPECT_EQ(Listed(), (List{files_[3], files_[0]}));
    EXPECT_EQ(shown_, 1);  // in the place of the one that was shown
}

TEST_F(DeleteListTest, NothingIsDroppedUnasked) {
    EXPECT_TRUE(list_.MayClose());
    MarkThree();
    for (const auto& [answer, closes] : {std::pair{IDNO, true}, {IDCANCEL, false}}) {
        Answer({answer});
        EXPECT_EQ(list_.MayClose(), closes);
        EXPECT_NE(asked_[0].first.find(L" 3 個"), std::wstring::npos);
        list_.AskToPutAllBack();
        EXPECT_EQ(Marked(), 3u);
    }
    // Another attempt while what cannot be deleted is being told.
    UniqueFile locked = Lock(files_[2]);
    onQuestion_ = [&] { EXPECT_FALSE(list_.MayClose()); };
    Answer({IDYES, IDABORT});
    EXPECT_FALSE(list_.MayClose());
    EXPECT_EQ(asked_.size(), 2u);
    onQuestion_ = {};
    locked.Reset();
    Answer({IDYES});
    list_.AskToPutAllBack();
    EXPECT_EQ(Listed(), (List{files_[3], files_[0], files_[1], files_[2]}));
    list_.Mark(0);
    Answer({IDYES});
    EXPECT_TRUE(list_.MayClose());
    EXPECT_EQ(There(), L"123");
}

// Whatever the system says of a file that is still there, it is not deleted.
TEST_F(DeleteListTest, OnlyWhatIsGoneCountsAsDeleted) {
    EXPECT_EQ(DeletionError(ERROR_FILE_NOT_FOUND, files_[0]), files::kErrorProtectedFolder);
    EXPECT_EQ(DeletionError(ERROR_SHARING_VIOLATION, files_[0]), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(DeletionError(ERROR_FILE_NOT_FOUND, files_[0] + L"b"), 0u);
    EXPECT_EQ(DeletionError(ERROR_PATH_NOT_FOUND, LR"(Q:\away\a)"), DWORD{ERROR_PATH_NOT_FOUND});
}

}  // namespace
}  // namespace tessary
