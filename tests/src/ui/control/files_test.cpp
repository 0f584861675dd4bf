// Commands about files on the disk, in the real windows.
#include "files/recycle_bin.h"
#include "places/place_memory.h"
#include "places/target_folders.h"
#include "tests/src/ui/control/control_bar_test.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "ui/control/place_commands.h"
#include "ui/form/menu.h"

namespace tessary::test {
namespace {

class FileCommandTest : public ControlBarTest {
  protected:
    FileCommandTest() {
        Values().general.deleteFinally = kDeleteToBin;
        SetBinCalls({.mayHave = [](const std::wstring&) { return true; },
                     .put =
                         [this](const std::wstring& path) {
                             binned_.push_back(path);
                             std::filesystem::rename(path, InBin(path));
                             return BinResult{.outcome = Binning::kDone, .file = {path, {}}};
                         },
                     .takeOut =
                         [this](const BinnedFile& file) {
                             std::error_code error;
                             std::filesystem::rename(InBin(file.path), file.path, error);
                             return error ? Unbinning::kNotThere : Unbinning::kDone;
                         }});
        SetMessageBoxResponder([this](const std::wstring& text, unsigned style, const auto&) {
            asked_.emplace_back(text, style);
            return answer_;
        });
    }
    ~FileCommandTest() { SetBinCalls({}); }

    std::wstring InBin(const std::wstring& path) const {
        return bin_.Path() + std::filesystem::path(path).filename().wstring();
    }
    void Open(List files) {
        files_ = std::move(files);
        bar_.SetFileList(files_);
    }
    List Listed() const { return Items(bar_.listFileName()); }

    TemporaryFolder bin_;
    List files_;
    List binned_;
    int answer_ = IDNO;
    std::vector<std::pair<std::wstring, unsigned>> asked_;
};

TEST_F(FileCommandTest, DeleteLeadsToTheNextFileAndShiftAsks) {
    Open(Bitmaps(3));
    Click(bar_.listFileName(), 1);
    Choose(commandDelete);
    EXPECT_EQ(binned_, List{files_[1]});
    EXPECT_EQ(Listed(), (List{files_[0], files_[2]}));
    EXPECT_EQ(Info(), L"[画像] 3.bmp ( 8×6 24bit )");
    EXPECT_TRUE(asked_.empty());
    Choose(commandDelete);
    EXPECT_EQ(Selected(), 0);  // the last one was deleted
    Choose(commandDeleteForGood);
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_EQ(asked_[0].second, MB_YESNO | MB_ICONEXCLAMATION | MB_DEFBUTTON2);
    EXPECT_EQ(Listed(), List{files_[0]});
    answer_ = IDYES;
    Choose(commandDeleteForGood);
    EXPECT_TRUE(Listed().empty());
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_FALSE(std::filesystem::exists(files_[0]));
    EXPECT_EQ(binned_.size(), 2u);
    Choose(commandDelete);
    EXPECT_EQ(asked_.size(), 2u);
}

// Not the file that comes up next, which the user has not seen yet.
TEST_F(FileCommandTest, DeleteDuringALoadOrAShowTakesWhatIsSeen) {
    Open({Bitmap(L"0.bmp"), SlowPicture(L"1.tst"), Bitmap(L"2.bmp")});
    PostMessageW(window_.Handle(), WM_COMMAND, commandDelete, 0);
    LoadSlowly(1);
    EXPECT_TRUE(RunUntil([&] { return !binned_.empty(); }));
    EXPECT_EQ(binned_, List{files_[0]});
    EXPECT_EQ(Listed(), (List{files_[1], files_[2]}));
    EXPECT_EQ(Selected(), 0);
    Values().general.slideShowTime = 10000;
    bar_.Press(BarButton::kPlay);
    Choose(commandDelete);
    EXPECT_TRUE(RunUntil([&] { return binned_.size() == 2; }));
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");
    EXPECT_EQ(bar_.PlayMode(), BarButton::kPlay);
}

TEST_F(FileCommandTest, WhatWasDeletedComesBackToItsPlace) {
    Open(Bitmaps(4));
    const auto undo = [&] { return window_.Commands().Run(commandUndo); };
    EXPECT_FALSE(undo());
    Click(bar_.listFileName(), 1);
    Choose(commandDelete);
    Choose(commandDelete);
    EXPECT_EQ(Listed(), (List{files_[0], files_[3]}));
    const UniqueMenu menu = LoadMenuResource(menuMainWindow);
    window_.Commands().ShowState(menu.Get());
    EXPECT_EQ(MenuCaption(menu.Get(), commandUndo), L"元に戻す - 「3.bmp」の削除(&U)\tCtrl+Z");
    EXPECT_TRUE(undo());
    EXPECT_EQ(Listed(), (List{files_[0], files_[2], files_[3]}));
    EXPECT_EQ(Info(), L"[画像] 3.bmp ( 8×6 24bit )");
    EXPECT_TRUE(undo());
    EXPECT_EQ(Listed(), files_);
    EXPECT_EQ(Selected(), 1);

    // What cannot be undone any more is told; what is only in the way may be tried again.
    Choose(commandDelete);
    Choose(commandDelete);
    std::filesystem::remove(InBin(files_[2]));
    EXPECT_TRUE(undo());
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_TRUE(Has(asked_[0].first, L"「3.bmp」は、ごみ箱に見つかりません。"));
    Bitmap(L"2.bmp", 20);
    answer_ = IDYES;
    EXPECT_TRUE(undo());
    EXPECT_TRUE(Has(asked_[1].first, L"同じ名前のファイルがあります。"));
    std::filesystem::remove(files_[1]);
    EXPECT_TRUE(undo());
    EXPECT_EQ(Listed(), (List{files_[0], files_[1], files_[3]}));
    EXPECT_FALSE(undo());

    // Of a list that is not there any more only the file comes back.
    Choose(commandDelete);
    bar_.SetFileList(List{files_[0]});
    EXPECT_TRUE(undo());
    EXPECT_TRUE(std::filesystem::exists(files_[1]));
    EXPECT_EQ(Listed(), List{files_[0]});
}

TEST_F(FileCommandTest, RenamedFilesStayInViewAndInMemory) {
    PlaceCommands places(window_, bar_);
    Open({Archive(L"1.tsa"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp")});
    const auto rename = [&](std::deque<std::wstring> names) {
        std::deque<DrivenDialog::Step> steps;
        for (const std::wstring& name : names) {
            steps.push_back([name](HWND dialog) {
                Type(dialog, renameName, name);
                Press(dialog, IDOK);
            });
        }
        DrivenDialog user(std::move(steps));
        Choose(commandRename);
        EXPECT_TRUE(user.IsDone());
    };
    AddBookmark({.file = files_[0], .member = L"b9.tst"});
    Click(bar_.listArchiveFile(), 1);
    answer_ = IDYES;
    rename({L"con.tsa", L"a?b.tsa", L"2.bmp", L"９ & 😀.tsa"});
    ASSERT_EQ(asked_.size(), 4u);  // the last two about the extension and the name in use
    const std::wstring renamed = folder_.Path() + L"９ & 😀.tsa";
    EXPECT_TRUE(std::filesystem::exists(renamed));
    EXPECT_EQ(Listed()[Selected()], renamed);
    EXPECT_TRUE(Has(Info(), L"９ & 😀.tsa - [画像] b10.tst"));
    EXPECT_TRUE(IsBookmark({.file = renamed, .member = L"b9.tst"}));
    rename({L"９ & 😀.TSA"});
    EXPECT_TRUE(window_.Commands().Run(commandUndo));
    EXPECT_TRUE(window_.Commands().Run(commandUndo));
    EXPECT_EQ(Listed(), files_);
    EXPECT_EQ(Selected(), 0);
    EXPECT_TRUE(IsBookmark({.file = files_[0], .member = L"b9.tst"}));
}

TEST_F(FileCommandTest, FilesAreMovedAndCopiedToKeptFoldersAndComeBack) {
    Open({Bitmap(L"1.bmp"), Bitmap(L"2.bmp"), Bitmap(L"3.bmp"), Archive(L"4.tsa")});
    const std::wstring to = folder_.Path() + L"to\\";
    folder_.Write(L"to/2.bmp", "other");
    folder_.Write(L"to/3.bmp", BitmapFileOf(8, 6, RGB(1, 2, 3)));
    for (const std::wstring& folder : {folder_.Path() + L"gone", to})
        KeepTargetFolder(folder);
    const auto transfer = [&](int command, std::deque<DrivenDialog::Step> steps) {
        DrivenDialog user(std::move(steps));
        Choose(command);
        EXPECT_TRUE(user.IsDone());
    };
    const auto press = [](WPARAM key) {
        return [key](HWND dialog) { PressKey(dialog, transferFolders, key); };
    };
    const auto enter = [](HWND dialog) { Press(dialog, IDOK); };
    const auto undo = [&] { return window_.Commands().Run(commandUndo); };
    const auto isThere = [&](const wchar_t* name) { return std::filesystem::exists(to + name); };

    // What is gone is told, and may be taken out; the last one is repeated by Enter.
    transfer(commandMoveTo, {press('1'), press('2')});
    ASSERT_EQ(asked_.size(), 1u);
    EXPECT_TRUE(Has(asked_[0].first, L"フォルダが見つかりません。"));
    EXPECT_TRUE(isThere(L"1.bmp"));
    EXPECT_EQ(Listed(), (List{files_[1], files_[2], files_[3]}));
    EXPECT_EQ(Info(), L"[画像] 2.bmp ( 8×6 24bit )");
    transfer(commandMoveTo, {[](HWND dialog) {
                                 SendDlgItemMessageW(dialog, transferFolders, LB_SETCURSEL, 0, 0);
                                 PressKey(dialog, transferFolders, VK_DELETE);
                             },
                             enter, [](HWND dialog) { Press(dialog, conflictReplace); }});
    EXPECT_EQ(TargetFolders().size(), 1u);
    EXPECT_EQ(binned_, List{to + L"2.bmp"});
    transfer(commandMoveTo, {enter});  // the same is there
    EXPECT_EQ(Listed(), (List{files_[2], files_[3]}));
    EXPECT_TRUE(undo());
    EXPECT_EQ(std::filesystem::file_size(to + L"2.bmp"), 5u);
    EXPECT_TRUE(undo());
    EXPECT_EQ(Listed(), files_);
    EXPECT_EQ(Selected(), 0);
    EXPECT_FALSE(isThere(L"1.bmp"));

    // Several, of which one stays; undoing removes the copies.
    bar_.TakeFocus(BarFocus::kFirst);
    Choose(commandChooseAll);
    transfer(commandCopyTo, {enter, [](HWND dialog) { Press(dialog, conflictFreeName); }});
    EXPECT_TRUE(Has(asked_.back().first, L"4 個のファイルのうち、3 個をコピーしました。"));
    EXPECT_TRUE(isThere(L"2 (2).bmp") && isThere(L"4.tsa"));
    EXPECT_EQ(Listed(), files_);
    EXPECT_TRUE(undo());
    EXPECT_FALSE(isThere(L"1.bmp") || isThere(L"2 (2).bmp") || isThere(L"4.tsa"));

    // Of an archive only pictures are copied.
    Click(bar_.listFileName(), 3);
    Choose(commandMoveTo);
    EXPECT_TRUE(Has(Note(), L"移動できません"));
    transfer(commandCopyTo, {enter});
    EXPECT_TRUE(isThere(L"b9.tst"));
}

// Not the file that comes up next.
TEST_F(FileCommandTest, AMoveThatIsAskedForDuringALoadIsAboutWhatWasSeen) {
    Open({Bitmap(L"0.bmp"), SlowPicture(L"1.tst"), Bitmap(L"2.bmp")});
    const std::wstring to = folder_.Path() + L"to";
    std::filesystem::create_directory(to);
    KeepTargetFolder(to);
    std::wstring subject;
    DrivenDialog user({[&](HWND dialog) {
        subject = TextOf(dialog, transferSubject);
        Press(dialog, IDOK);
    }});
    PostMessageW(window_.Handle(), WM_COMMAND, commandMoveTo, 0);
    LoadSlowly(1);
    EXPECT_TRUE(RunUntil([&] { return std::filesystem::exists(to + L"\\0.bmp"); }));
    EXPECT_EQ(subject, L"移動するファイル: 0.bmp");
    EXPECT_EQ(Listed(), (List{files_[1], files_[2]}));
    EXPECT_EQ(Selected(), 0);
}

TEST_F(FileCommandTest, OfAnArchiveOnlyAPageIsSeen) {
    Open({Archive(L"1.tsa"), Bitmap(L"2.bmp")});
    answer_ = IDCANCEL;
    Choose(commandDelete);
    EXPECT_EQ(asked_.size(), 1u);
    EXPECT_TRUE(binned_.empty());
    answer_ = IDOK;
    Choose(commandDelete);
    EXPECT_EQ(binned_, List{files_[0]});
    EXPECT_EQ(Listed(), List{files_[1]});
}

}  // namespace
}  // namespace tessary::test
