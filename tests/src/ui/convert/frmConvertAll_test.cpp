// The batch converter's window, driven as its user does, over the real engine.
#include "ui/convert/frmConvertAll.h"

#include "app/base/paths.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/src/ui/main/dropped_files.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/temporary_folder.h"
#include "ui/convert/convert_commands.h"
#include "ui/dialogs/ComDlg.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/form/session_hold.h"
#include "ui/form/show_in_folder.h"

namespace tessary::test {
namespace {

using Texts = std::vector<std::wstring>;

constexpr wchar_t kRefusal[] =
    L"16 画像の変換処理を行っています。\r\n変換処理を中止してからWindowを閉じてください。";

class ConverterTest : public MainWindowTest {
  protected:
    ConverterTest() {
        LoadHelperLibraries();
        SetMessageBoxResponder([this](const std::wstring& text, unsigned style, const auto&) {
            asked_.push_back(std::to_wstring(style) + L' ' + text);
            if (answers_.empty()) return IDOK;
            const int answer = answers_.front();
            answers_.pop_front();
            return answer;
        });
        for (const wchar_t* const name : {L"1.bmp", L"2.bmp", L"3.bmp"})
            files_.push_back(source_.Write(name, BitmapFileOf(4, 3, RGB(1, 2, 3))));
        Values().convert.saveType2 = 1;
        Values().general.useSPI = 0;
    }
    void TearDown() override {
        SetMessageBoxResponder({});
        SetFileDialogResponder({});
        SetFolderBrowserResponder({});
        MainWindowTest::TearDown();
    }

    std::wstring Target() const { return target_.Path() + L"出力\\"; }
    // How many pictures are there; none behind that.
    size_t Converted() const {
        const size_t count = FilesInFolder(Target(), L"*.png").size();
        std::filesystem::remove_all(Target());
        return count;
    }
    // Runs the conversion with what comes in the middle of it, and leaves the dialog.
    DrivenDialog::Step RunWith(std::function<void(HWND)> meanwhile) {
        return [this, meanwhile = std::move(meanwhile)](HWND dialog) {
            Type(dialog, textConvertFolder, Target());
            meanwhile(dialog);
            Press(dialog, cmdRunConvert);
        };
    }

    // Shows the dialog with these files to a user who does that.
    void Drive(const Texts& files, std::deque<DrivenDialog::Step> steps, int waits = 0) {
        DrivenDialog user(std::move(steps), waits);
        form_.ShowConvertDialog(nullptr, files);
        EXPECT_TRUE(user.IsDone());
    }

    std::deque<int> answers_;
    Texts asked_;
    TemporaryFolder source_;
    TemporaryFolder target_;
    Texts files_;
    frmConvertAll form_;
};

TEST_F(ConverterTest, GathersFilesAndChoices) {
    const std::wstring folder = RemoveBackslash(source_.Path());
    source_.Write(L"sub\\4.bmp");
    Values().convert.openPath = folder;
    Values().convert.savePath = target_.Path();
    Texts titles;
    SetFileDialogResponder([&](FileDialogRequest& request) {
        EXPECT_EQ(request.initDir, folder);
        request.fileName = folder + L'\0' + L"2.bmp" + L'\0' + L"3.bmp";
        return true;
    });
    SetFolderBrowserResponder(
        [&](const std::wstring& title, const auto&, const std::wstring& start) {
            titles.push_back(title + L' ' + start);
            return title == L"フォルダの参照" ? folder : RemoveBackslash(target_.Path());
        });
    Drive({files_[0]},
          {[&](HWND dialog) {
               EXPECT_TRUE(HasFocus(dialog, listConvertFiles));
               EXPECT_FALSE(IsUsable(dialog, Command3)) << "nobody has brought options";
               EXPECT_FALSE(IsUsable(dialog, cmdDelete));
               Press(dialog, cmdAddFile);
               EXPECT_EQ(Items(dialog, listConvertFiles), (Texts{files_[0], files_[1], files_[2]}));
               EXPECT_EQ(Values().convert.openPath, source_.Path());
               Values().convert.openPath = folder;
               Press(dialog, cmdAddFolder);
               EXPECT_EQ(Drop(dialog, {folder, files_[0]}), DROPEFFECT_COPY);
               DoEvents();
           },
           [&](HWND dialog) {
               EXPECT_EQ(Items(dialog, listConvertFiles).size(), 10U);
               const HWND list = GetDlgItem(dialog, listConvertFiles);
               for (const int index : {0, 3, 5})
                   SendMessageW(list, LB_SETSEL, TRUE, index);
               PressKey(dialog, listConvertFiles, VK_DELETE);
               EXPECT_EQ(Items(dialog, listConvertFiles).size(), 7U);
               EXPECT_EQ(Items(dialog, listConvertFiles)[0], files_[1]);
               EXPECT_NE(SendMessageW(list, LB_GETSEL, 0, 0), 0);  // the next one
               Press(dialog, cmdDelete);
               EXPECT_EQ(Items(dialog, listConvertFiles).size(), 6U);

               // Where the last ones went.
               EXPECT_EQ(TextOf(dialog, textConvertFolder), target_.Path());
               Type(dialog, textConvertFolder, L"");
               EXPECT_FALSE(IsUsable(dialog, cmdRunConvert));
               EXPECT_EQ(TextOf(dialog, labelConvertMissing),
                         L"保存先のフォルダを指定してください。");
               Press(dialog, cmdConvertFolder);
               EXPECT_TRUE(IsUsable(dialog, cmdRunConvert));
               Type(dialog, textConvertFolder, L"C:\\a*");
               EXPECT_FALSE(IsUsable(dialog, cmdRunConvert));
               Type(dialog, textConvertFolder, L"  ");
               Press(dialog, cmdRunConvert);
               EXPECT_TRUE(HasFocus(dialog, cmdConvertFolder));
               test::Choose(dialog, combConvertIndexcolor, 1);
               test::Choose(dialog, combConvertFullcolor, 2);
               answers_ = {IDCANCEL, IDOK};
               Press(dialog, cmdDeleteAll);
               EXPECT_EQ(Items(dialog, listConvertFiles).size(), 6U);
               Press(dialog, cmdDeleteAll);
               EXPECT_TRUE(Items(dialog, listConvertFiles).empty());
               Type(dialog, textConvertFolder, L"C:\\kept");
               Press(dialog, IDCANCEL);
           }});
    EXPECT_EQ(titles, (Texts{L"フォルダの参照 " + folder,
                             L"画像ファイルの保存フォルダ " + target_.Path()}));
    EXPECT_EQ(asked_, (Texts{L"48 画像ファイルを保存するフォルダを指定してください。",
                             L"65 すべてのファイルをリストから削除します",
                             L"65 すべてのファイルをリストから削除します"}));
    EXPECT_EQ(Values().convert.saveType1, 1);
    EXPECT_EQ(Values().convert.saveType2, 2);
    EXPECT_EQ(Values().convert.savePath, L"C:\\kept\\");
}

TEST_F(ConverterTest, ListsWhatNeedsALook) {
    files_ = {files_[0], source_.Write(L"2\\1.bmp", BitmapFileOf(5, 5, 0)),
              source_.Write(L"3\\1.bmp", BitmapFileOf(6, 6, 0)),
              source_.Write(L"cut.dat", "no picture"), source_.Write(L"note.txt", "no picture")};
    Texts opened;
    SetFolderOpener([&](const std::wstring& path) { opened.push_back(path); });
    Drive(files_,
          {[&](HWND dialog) {
               Type(dialog, textConvertFolder, Target());
               Press(dialog, cmdRunConvert);
               EXPECT_EQ(
                   TextOf(dialog, lblResult),
                   L"変換が終わりました。　変換 3 個、対象外 1 個、失敗 1 個（うち別名 2 個）");
               EXPECT_TRUE(IsUsable(dialog, listConvertProblems));
               EXPECT_FALSE(IsUsable(dialog, listConvertLog));
               EXPECT_EQ(Column(dialog, listConvertProblems, 0).size(), 3U);
               SetFocus(GetDlgItem(dialog, listConvertProblems));
               SelectRow(dialog, listConvertProblems, 0);
               Press(dialog, IDOK);  // Enter in the list
               EXPECT_EQ(opened, Texts{files_[3]});
               EXPECT_TRUE(IsUsable(dialog, listConvertProblems));
               Press(dialog, optionConvertLog);
               EXPECT_TRUE(IsUsable(dialog, listConvertLog));
               SetFocus(GetDlgItem(dialog, IDOK));
               Press(dialog, IDOK);
               EXPECT_FALSE(IsUsable(dialog, listConvertProblems));

               // Each conflict is asked about, until the user has had enough.
               Values().convert.onConflict = kConflictAsk;
               PressLater(dialog, cmdRunConvert);
           },
           [](HWND question) {
               EXPECT_TRUE(IsUsable(question, conflictReplace));
               Press(question, conflictReplace);
           },
           [](HWND question) {
               EXPECT_FALSE(IsUsable(question, conflictReplace)) << "the first one's result";
               Click(question, conflictForAll);
               Press(question, conflictSkip);
           },
           [](HWND dialog) {
               EXPECT_EQ(TextOf(dialog, lblResult),
                         L"変換が終わりました。　変換 1 個、スキップ 2 個、対象外 1 個、失敗 1 個"
                         L"（うち置き換え 1 個）");
           }},
          IDOK);  // disabled while files are converted
    SetFolderOpener({});
}

TEST_F(ConverterTest, ShowsARunAndComesBack) {
    files_.push_back(source_.Write(L"読めない.dat", "text"));
    Drive(files_, {[&](HWND dialog) {
              Type(dialog, textConvertFolder, L" \"" + RemoveBackslash(Target()) + L"\"");
              Press(dialog, cmdRunConvert);
              EXPECT_FALSE(IsReadUnderWay());
              EXPECT_EQ(Converted(), 3U);
              EXPECT_EQ(TextOf(dialog, textConvertFolder), Target());
              EXPECT_EQ(TextOf(dialog, lblResult),
                        L"変換が終わりました。　変換 3 個、対象外 0 個、失敗 1 個");
              const Texts log = Items(dialog, listConvertLog);
              ASSERT_FALSE(log.empty());
              EXPECT_EQ(log.back(), L"*** すべての変換処理が完了しました ***");
              EXPECT_TRUE(IsUsable(dialog, IDOK));
              EXPECT_TRUE(HasFocus(dialog, IDOK));
              for (const int gone : {int{cmdRunConvert}, IDCANCEL, listConvertFiles, cmdAddFile})
                  EXPECT_FALSE(IsUsable(dialog, gone));
              // Nothing is dropped onto a list that is not there.
              EXPECT_EQ(Drop(dialog, {files_[0]}), DROPEFFECT_NONE);

              Press(dialog, IDOK);
              EXPECT_TRUE(Items(dialog, listConvertLog).empty());
              for (const int back : {int{cmdRunConvert}, IDCANCEL, listConvertFiles, cmdAddFile})
                  EXPECT_TRUE(IsUsable(dialog, back));
              EXPECT_FALSE(IsUsable(dialog, IDOK));

              // A target that cannot be made is told where the counts stand.
              Type(dialog, textConvertFolder, files_[0] + L"\\x");
              Press(dialog, cmdRunConvert);
              EXPECT_NE(TextOf(dialog, lblResult).find(L"保存先"), std::wstring::npos);
          }});
    EXPECT_TRUE(asked_.empty());
}

TEST_F(ConverterTest, WritesNoLogOverAPicture) {
    Values().convert.outputErrorLog = 1;
    Drive(files_,
          {RunWith([&](HWND) { Values().convert.errorLogFileName = files_[1]; }), [&](HWND dialog) {
               EXPECT_EQ(asked_.size(), 1U);
               EXPECT_TRUE(IsUsable(dialog, cmdRunConvert));
               EXPECT_EQ(Converted(), 0U);
               Values().convert.errorLogFileName = source_.Write(L"old.log", "***");
               Press(dialog, cmdRunConvert);
               EXPECT_EQ(Converted(), 3U);
           }});
    EXPECT_EQ(std::filesystem::file_size(files_[1]), BitmapFileOf(4, 3, 0).size());
    EXPECT_EQ(asked_.size(), 1U);
}

TEST_F(ConverterTest, StopsWhenTheUserConfirmsOrTheSessionEnds) {
    const std::wstring stop = L"65 画像の変換処理を中止します。";
    Drive(files_, {RunWith([&](HWND dialog) {
                       answers_ = {IDCANCEL};
                       PressLater(dialog, IDCANCEL);
                       PostMessageW(dialog, WM_CLOSE, 0, 0);
                   }),
                   [&](HWND dialog) {
                       EXPECT_EQ(asked_, (Texts{stop, kRefusal}));
                       EXPECT_EQ(Converted(), 3U);
                       Press(dialog, IDOK);
                   },
                   RunWith([&](HWND dialog) { PressLater(dialog, IDCANCEL); }),
                   [&](HWND dialog) {
                       EXPECT_EQ(asked_, (Texts{stop, kRefusal, stop}));
                       EXPECT_EQ(Converted(), 1U);
                       EXPECT_EQ(TextOf(dialog, lblRateTotal), L"1 / 3");
                       EXPECT_NE(TextOf(dialog, lblResult).find(L"中止しました"),
                                 std::wstring::npos);
                       Press(dialog, IDOK);
                   },
                   RunWith([&](HWND dialog) {
                       EXPECT_TRUE(SendMessageW(dialog, WM_QUERYENDSESSION, 0, 0));
                       PostMessageW(dialog, WM_ENDSESSION, TRUE, 0);
                   }),
                   [&](HWND) {
                       EXPECT_EQ(asked_.size(), 3U);
                       EXPECT_EQ(Converted(), 1U);
                   }});
}

TEST_F(ConverterTest, CommandsHandOverTheListAndOnlyTheSessionEndsARun) {
    Load();
    ConvertCommands commands(window_, controlBar_);
    EXPECT_FALSE(window_.Commands().IsEnabled(menuFileSaveAll));
    controlBar_.files = files_;
    bool wasHeld = false;
    DrivenDialog user({[&](HWND dialog) {
                           EXPECT_TRUE(Items(dialog, listConvertFiles).empty());
                           EXPECT_FALSE(IsWindowEnabled(window_.Handle()));
                           Press(dialog, IDCANCEL);
                       },
                       [&](HWND dialog) {
                           EXPECT_EQ(Items(dialog, listConvertFiles), files_);
                           Type(dialog, textConvertFolder, Target());
                           PostMessageW(window_.Handle(), WM_CLOSE, 0, 0);
                           const MessageFilter run([&](MSG&) {
                               wasHeld |= IsSessionHeld(window_.Handle());
                               return false;
                           });
                           Press(dialog, cmdRunConvert);
                           EXPECT_EQ(asked_, Texts{kRefusal});
                           EXPECT_TRUE(wasHeld);
                           EXPECT_EQ(Converted(), 3U);
                           Press(dialog, IDOK);
                       },
                       [&](HWND dialog) {
                           PostMessageW(window_.Handle(), WM_ENDSESSION, TRUE, 0);
                           Press(dialog, cmdRunConvert);
                           EXPECT_EQ(Converted(), 1U);
                       }});
    Choose(menuFileConvertAll);
    Choose(menuFileSaveAll);
    EXPECT_TRUE(user.IsDone());
    DoEvents();
    EXPECT_EQ(window_.Handle(), nullptr);
    EXPECT_EQ(ended_, 1);
}

}  // namespace
}  // namespace tessary::test
