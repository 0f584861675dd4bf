// Opening files and folders: which files, in which order, and the window meanwhile.
#include <algorithm>
#include <tuple>
#include <vector>

#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "ui/control/folder_scan.h"
#include "ui/control/frmDirList.h"
#include "ui/control/open_commands.h"
#include "ui/dialogs/ComDlg.h"
#include "ui/dialogs/folder_browser.h"

namespace tessary::test {
namespace {

using Texts = std::vector<std::wstring>;

// A tree of the shape A\B\D, A\C.
class OpenTest : public MainWindowTest {
  protected:
    OpenTest() {
        for (const wchar_t* const name : {LR"(B\b.jpg)", LR"(B\D\d.bmp)", LR"(C\c.bmp)", L"a.bmp",
                                          L"readme", LR"(hidden\h.bmp)", L"system.bmp"}) {
            folder_.Write(name);
        }
        SetFileAttributesW((folder_.Path() + L"hidden").c_str(), FILE_ATTRIBUTE_HIDDEN);
        SetFileAttributesW((folder_.Path() + L"system.bmp").c_str(), FILE_ATTRIBUTE_SYSTEM);
    }

    void SetUp() override {
        Load();
        Values().general.openFolderType = 1;
        SetFolderBrowserResponder([this](const auto&, const auto&, const std::wstring& start) {
            asked_ = start;
            return RemoveBackslash(folder_.Path());
        });
    }

    void TearDown() override {
        SetFileDialogResponder({});
        SetFolderBrowserResponder({});
        MainWindowTest::TearDown();
    }

    Texts Full(Texts names) const {
        for (std::wstring& name : names)
            name.insert(0, folder_.Path());
        return names;
    }

    TemporaryFolder folder_;
    std::wstring asked_;  // the folder to start with
    OpenCommands commands_{window_, controlBar_};
};

TEST_F(OpenTest, WalksLevelByLevelAndListsNothingTwice) {
    ASSERT_TRUE(MakeFolderLink(folder_.Path() + LR"(C\loop)", RemoveBackslash(folder_.Path())));
    ASSERT_TRUE(MakeFolderLink(folder_.Path() + LR"(C\other)", folder_.Path() + L"B"));
    const auto scan = [&](bool subFolders, const wchar_t* extensions) {
        FolderScan running({folder_.Path(), subFolders, extensions});
        while (!running.HasEnded())
            running.Wait(1000);
        std::vector<FoundFile> files;
        running.Take(files);
        EXPECT_EQ(running.Error(), 0U);
        return PathsOf(files);
    };
    // Within one folder the order is the system's.
    Texts all = scan(true, L"");
    ASSERT_EQ(all.size(), 5U);
    std::sort(all.begin(), all.begin() + 2);
    EXPECT_EQ(all, Full({L"a.bmp", L"readme", LR"(B\b.jpg)", LR"(C\c.bmp)", LR"(B\D\d.bmp)"}));
    EXPECT_EQ(scan(true, L"BMP"), Full({L"a.bmp", LR"(C\c.bmp)", LR"(B\D\d.bmp)"}));
    EXPECT_EQ(scan(false, L"bmp"), Full({L"a.bmp"}));

    const auto ignore = [](ScanNews&&) { return true; };
    EXPECT_NE(ScanFolders({folder_.Path() + L"vanished", true, {}}, ignore), 0U);
    // One that goes before its turn stands for all that cannot be read.
    const std::wstring away = folder_.Path() + L"away\\";
    CreateDirectoryW(away.c_str(), nullptr);
    Texts unreadable;
    ScanFolders({folder_.Path(), true, {}}, [&](ScanNews&& news) {
        if (news.folder == away) RemoveDirectoryW(away.c_str());
        unreadable.insert(unreadable.end(), news.unreadable.begin(), news.unreadable.end());
        return true;
    });
    EXPECT_EQ(unreadable, Texts{away});
    for (const wchar_t* const link : {LR"(C\loop)", LR"(C\other)"})
        RemoveDirectoryW((folder_.Path() + link).c_str());
}

TEST_F(OpenTest, StoppedScanEndsAtOnceAndKeepsWhatItHas) {
    constexpr size_t kFiles = 1500;
    const std::wstring many = FolderOf(folder_.Write(LR"(many\0)"));
    for (size_t file = 1; file < kFiles; ++file) {
        UniqueFile(CreateFileW((many + std::to_wstring(file)).c_str(), GENERIC_WRITE, 0, nullptr,
                               CREATE_NEW, 0, nullptr));
    }
    size_t told = 0;
    ScanFolders({many, false, {}}, [&](ScanNews&& news) {
        told += news.files.size();
        return news.looked < 3 * kScanStep;
    });
    EXPECT_EQ(told, 3 * kScanStep);

    FolderScan scan({many, false, {}});
    scan.Stop();
    EXPECT_TRUE(scan.HasEnded());
    std::vector<FoundFile> files;
    scan.Take(files);
    EXPECT_LT(files.size(), kFiles);
    EXPECT_EQ(files.size() % kScanStep, 0U);

    // The user closes the window meanwhile: it goes, at the latest behind the scan.
    SetFolderBrowserResponder([&](auto&&...) { return many; });
    PostMessageW(window_.Handle(), WM_CLOSE, 0, 0);
    Choose(menuOpenFolder);
    DoEvents();
    EXPECT_EQ(window_.Handle(), nullptr);

    frmDirList progress(nullptr);
    progress.ShowProgress(L"a", 1);
    EXPECT_EQ(progress.Handle(), nullptr);  // a short search shows nothing
    Sleep(ProgressDialog::kDelay + ProgressDialog::kInterval);
    progress.ShowProgress(L"a", 2);
    PostMessageW(progress.Handle(), WM_KEYDOWN, VK_ESCAPE, 0);
    DoEvents();
    EXPECT_TRUE(progress.IsStopped());
}

TEST_F(OpenTest, FolderFillsTheListWhileTheWindowIsBusy) {
    const auto state = [&] {
        wchar_t caption[256]{};
        GetWindowTextW(window_.Handle(), caption, 256);
        return std::tuple(std::wstring(caption), IsWindowEnabled(window_.Handle()) != FALSE,
                          IsReadUnderWay());
    };
    auto during = state();
    // What goes wrong is reported, and the window is back all the same.
    controlBar_.onSetFileList = [&] {
        during = state();
        if (controlBar_.lists.size() > 1) throw RaisedError(7, L"メモリ");
    };
    window_.Show();
    const auto before = state();
    for (const size_t turn : {1, 2}) {
        EXPECT_TRUE(messages_.All().empty());
        Choose(menuOpenFolder);
        EXPECT_EQ(controlBar_.lists.size(), turn);
        // A read would keep the list from being filled.
        EXPECT_EQ(during, std::tuple(L"ファイル一覧を作成しています", false, false));
        EXPECT_EQ(state(), before);
        EXPECT_EQ(GetActiveWindow(), window_.Handle());
    }
    EXPECT_TRUE(Has(messages_.Only(), L"menuOpenFolder_Click"));
    EXPECT_EQ(controlBar_.lists[0].size(), 2U);
    EXPECT_TRUE(controlBar_.visible);
    EXPECT_EQ(AddBackslash(asked_), folder_.Path());  // where it was the last time
    ChooseDuringARead(menuOpenFolder);
    EXPECT_EQ(controlBar_.lists.size(), 2U);
}

TEST_F(OpenTest, FilesOfTheDialogBecomeTheList) {
    std::wstring answer;
    FileDialogRequest asked;
    SetFileDialogResponder([&](FileDialogRequest& request) {
        asked = request;
        request.fileName = answer;
        return !answer.empty();
    });
    Values().general.openPath = RemoveBackslash(AppFolder());  // a first run's
    Choose(menuFileOpen);
    EXPECT_TRUE(controlBar_.lists.empty());
    EXPECT_EQ(asked.initDir, L"");
    EXPECT_TRUE(asked.filter.starts_with(L"すべてのファイル(*.*)|*.*|"));

    answer = LR"(C:\絵\一枚.bmp)";
    Choose(menuFileOpen);
    // From a search or a library files come with folders of their own.
    answer = std::wstring(L"D:\\\0b.bmp\0C:\\a b.jpg", 20);
    Choose(menuFileOpen);
    EXPECT_EQ(asked.initDir, LR"(C:\絵\)");
    EXPECT_EQ(Values().general.openPath, LR"(D:\)");
    EXPECT_EQ(controlBar_.lists,
              (std::vector<Texts>{{LR"(C:\絵\一枚.bmp)"}, {LR"(C:\a b.jpg)", LR"(D:\b.bmp)"}}));
}

}  // namespace
}  // namespace tessary::test
