// Choosing a folder, as a user does it with keyboard and buttons.
#include "ui/dialogs/DOpenForm.h"

#include <gtest/gtest.h>

#include "app/base/paths.h"
#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/temporary_folder.h"
#include "ui/dialogs/DNewFolder.h"

namespace tessary::test {
namespace {

class DOpenFormTest : public testing::Test {
  protected:
    DOpenFormTest() {
        folder_.Write(LR"(1写真\夏\a.bmp)");
        folder_.Write(LR"(2絵\b.bmp)");
        root_ = RemoveBackslash(folder_.Path());
    }

    RecordedMessages messages_;
    TemporaryFolder folder_;
    std::wstring root_;
};

TEST_F(DOpenFormTest, TreeGoesDownByEnterAndUpByBackspace) {
    DOpenForm form(L"フォルダを開く");
    form.SetStartFolder(folder_.Path());
    std::vector<std::wstring> seen;
    const auto look = [&](HWND dialog) { seen.push_back(TextOf(dialog, openFolderPath)); };
    const auto key = [&](WPARAM pressed) {
        return [pressed](HWND dialog) { PressKey(dialog, openFolderList, pressed); };
    };
    DrivenDialog user({look, key(VK_DOWN), look,                  // 1写真, which is closed
                       [](HWND dialog) { Press(dialog, IDOK); },  // opens it
                       key(VK_DOWN), look,                        // 夏
                       key(VK_BACK), look, key(VK_DOWN),
                       [](HWND dialog) {
                           Type(dialog, openFolderExtensions, L"bmp jpg");
                           CheckDlgButton(dialog, openFolderSubFolders, BST_CHECKED);
                           Press(dialog, IDOK);
                       }});
    ASSERT_TRUE(form.Show(nullptr));
    EXPECT_TRUE(user.IsDone());
    EXPECT_EQ(seen, (std::vector<std::wstring>{root_, root_ + LR"(\1写真)", root_ + LR"(\1写真\夏)",
                                               root_ + LR"(\1写真)"}));
    EXPECT_EQ(form.GetFileName(), root_ + LR"(\1写真\夏)");
    EXPECT_EQ(form.GetFileExt(), L"bmp jpg");
    EXPECT_TRUE(form.GetSearchSubFolder());

    // The next one begins with the same choice; cancelling gives no folder.
    DOpenForm next(L"フォルダを開く");
    DrivenDialog other({[&](HWND dialog) {
        EXPECT_EQ(TextOf(dialog, openFolderExtensions), L"bmp jpg");
        EXPECT_TRUE(IsDlgButtonChecked(dialog, openFolderSubFolders));
    }});
    EXPECT_FALSE(next.Show(nullptr));
    EXPECT_EQ(next.GetFileName(), L"");
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(DOpenFormTest, TypedFolderIsTakenOrRefusedWithAMessage) {
    DOpenForm form(L"フォルダを開く");
    form.SetStartFolder(root_ + LR"(\2絵)");
    DrivenDialog user({[&](HWND dialog) {
                           Type(dialog, openFolderPath, root_ + LR"(\ない)");
                           Press(dialog, IDOK);
                       },
                       [&](HWND dialog) {
                           EXPECT_NE(messages_.Only().find(L"見つかりません"), std::wstring::npos);
                           Type(dialog, openFolderPath, L" \"" + root_ + L"/1写真/夏/a.bmp\" ");
                           Press(dialog, IDOK);
                       }});
    EXPECT_TRUE(form.Show(nullptr));
    EXPECT_EQ(form.GetFileName(), root_ + LR"(\1写真\夏)");  // of a file, its folder
    EXPECT_EQ(messages_.All().size(), 1U);
}

TEST_F(DOpenFormTest, VanishedFolderLeavesTheTreeAlone) {
    DOpenForm form(L"フォルダを開く");
    form.SetStartFolder(root_);
    DrivenDialog user({[&](HWND dialog) {
        // It vanishes after it was typed.
        std::wstring gone = folder_.Write(LR"(消える\x.bmp)");
        Type(dialog, openFolderPath, FolderOf(gone));
        RemoveTree(RemoveBackslash(FolderOf(gone)));
        Press(dialog, IDOK);
        EXPECT_EQ(messages_.All().size(), 1U);
        PressKey(dialog, openFolderList, VK_DOWN);
        EXPECT_EQ(TextOf(dialog, openFolderPath), root_ + LR"(\1写真)");
    }});
    EXPECT_FALSE(form.Show(nullptr));
}

TEST_F(DOpenFormTest, MakesFoldersAndRefusesBadNames) {
    DOpenForm form(L"フォルダを開く");
    form.SetStartFolder(root_);
    const auto make = [](const wchar_t* name) {
        return [name](HWND dialog) {
            Type(dialog, newFolderName, name);
            Press(dialog, IDOK);
        };
    };
    DrivenDialog user({[](HWND dialog) {
                           PostMessageW(
                               dialog, WM_COMMAND, openFolderMake,
                               reinterpret_cast<LPARAM>(GetDlgItem(dialog, openFolderMake)));
                       },
                       make(L"a*b"), make(L"aux.txt"), make(L"2絵"), make(L"新しい絵"),
                       [](HWND dialog) { Press(dialog, IDOK); }},
                      IDOK);
    ASSERT_TRUE(form.Show(nullptr));
    EXPECT_EQ(form.GetFileName(), root_ + LR"(\新しい絵)");
    EXPECT_TRUE(IsFolder(root_ + LR"(\新しい絵)"));
    EXPECT_EQ(messages_.All().size(), 3U);
}

}  // namespace
}  // namespace tessary::test
