// Choosing a folder, as a user does it with keyboard and buttons.
#include "ui/dialogs/DOpenForm.h"

#include <gtest/gtest.h>

#include "app/base/paths.h"
#include "res/resource.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {
namespace {

class DOpenFormTest : public testing::Test {
  protected:
    DOpenFormTest() {
        folder_.Write(LR"(1写真\夏\a.bmp)");
        folder_.Write(LR"(2絵\b.bmp)");
        root_ = RemoveBackslash(folder_.Path());
        form_.SetStartFolder(root_);
    }
    static void Accept(HWND dialog) { Press(dialog, IDOK); }

    RecordedMessages messages_;
    TemporaryFolder folder_;
    std::wstring root_;
    DOpenForm form_{L"フォルダを開く"};
};

TEST_F(DOpenFormTest, TreeGoesDownByEnterAndUpByBackspace) {
    std::vector<std::wstring> seen;
    const auto key = [&](WPARAM pressed) {
        return [&seen, pressed](HWND dialog) {
            seen.push_back(TextOf(dialog, openFolderPath));
            PressKey(dialog, openFolderList, pressed);
        };
    };
    DrivenDialog user({key(VK_DOWN), Accept,  // 1写真, which is closed, is opened
                       key(VK_DOWN),          // 夏
                       key(VK_BACK), key(VK_DOWN),
                       [](HWND dialog) {
                           Type(dialog, openFolderExtensions, L"bmp jpg");
                           Click(dialog, openFolderSubFolders);
                           Press(dialog, IDOK);
                       },
                       // The next one begins with the same choice; cancelling gives no folder.
                       [](HWND dialog) {
                           EXPECT_EQ(TextOf(dialog, openFolderExtensions), L"bmp jpg");
                           EXPECT_TRUE(IsDlgButtonChecked(dialog, openFolderSubFolders));
                       }});
    ASSERT_TRUE(form_.Show(nullptr));
    EXPECT_EQ(seen, (std::vector<std::wstring>{root_, root_ + LR"(\1写真)", root_ + LR"(\1写真\夏)",
                                               root_ + LR"(\1写真)"}));
    EXPECT_EQ(form_.GetFileName(), root_ + LR"(\1写真\夏)");
    EXPECT_EQ(form_.GetFileExt(), L"bmp jpg");
    EXPECT_TRUE(form_.GetSearchSubFolder());
    EXPECT_FALSE(form_.Show(nullptr));
    EXPECT_TRUE(user.IsDone());
    EXPECT_EQ(form_.GetFileName(), L"");
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(DOpenFormTest, TypedFolderIsTakenOrRefusedWithAMessage) {
    DrivenDialog user({[&](HWND dialog) {
        // It vanishes after it was typed; the tree stays as it was.
        const std::wstring gone = root_ + L"\\消える";
        CreateDirectoryW(gone.c_str(), nullptr);
        Type(dialog, openFolderPath, gone);
        RemoveDirectoryW(gone.c_str());
        Press(dialog, IDOK);
        EXPECT_NE(messages_.Only().find(L"見つかりません"), std::wstring::npos);
        PressKey(dialog, openFolderList, VK_DOWN);
        EXPECT_EQ(TextOf(dialog, openFolderPath), root_ + LR"(\1写真)");
        Type(dialog, openFolderPath, L" \"" + root_ + L"/1写真/夏/a.bmp\" ");
        Press(dialog, IDOK);
    }});
    EXPECT_TRUE(form_.Show(nullptr));
    EXPECT_EQ(form_.GetFileName(), root_ + LR"(\1写真\夏)");  // of a file, its folder
    EXPECT_EQ(messages_.All().size(), 1U);
}

TEST_F(DOpenFormTest, MakesFoldersAndRefusesBadNames) {
    std::deque<DrivenDialog::Step> steps{[](HWND dialog) { PressLater(dialog, openFolderMake); }};
    for (const wchar_t* const name : {L"a*b", L"aux.txt", L"2絵", L"新しい絵"})
        steps.push_back([name](HWND dialog) {
            Type(dialog, newFolderName, name);
            Press(dialog, IDOK);
        });
    steps.push_back(Accept);
    DrivenDialog user(steps, IDOK);
    ASSERT_TRUE(form_.Show(nullptr));
    EXPECT_EQ(form_.GetFileName(), root_ + LR"(\新しい絵)");
    EXPECT_TRUE(IsFolder(root_ + LR"(\新しい絵)"));
    EXPECT_EQ(messages_.All().size(), 3U);
}

}  // namespace
}  // namespace tessary::test
