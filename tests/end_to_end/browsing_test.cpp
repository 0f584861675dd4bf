// A folder of all sorts, gone through in the finished program with keys and buttons.
#include <windows.h>

#include <commctrl.h>  // needs windows.h before it
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/end_to_end/running_viewer.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/redirected_settings.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/zip_image.h"

namespace tessary {
namespace {

using test::RunningViewer;
using test::WaitUntil;

std::wstring EntryOf(HWND list, int index) {
    wchar_t text[1024] = {};
    SendMessageW(list, LB_GETTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
    return text;
}

TEST(BrowsingTest, StepsThroughPicturesArchivesAndWhatIsNeither) {
    const test::RedirectedSettings store;
    test::TemporaryFolder folder;
    folder.Write(L"1 山.bmp", test::BitmapFileOf(10, 4, RGB(9, 9, 9)));
    folder.Write(L"2.zip", test::ZipFileOf({{"sub/b.bmp", test::BitmapFileOf(22, 4, RGB(1, 1, 1))},
                                            {"sub/a.bmp", test::BitmapFileOf(21, 4, RGB(1, 1, 1))},
                                            {"..\\..\\note.txt", "no picture"}}));
    folder.Write(L"3.txt", "neither");
    const std::wstring vanishing = folder.Write(L"4.bmp", test::BitmapFileOf(40, 4, RGB(4, 4, 4)));
    folder.Write(L"5.bmp", test::BitmapFileOf(50, 4, RGB(5, 5, 5)));

    const std::wstring root = folder.Path().substr(0, folder.Path().size() - 1);
    const RunningViewer viewer(test::FinishedFolder(), L'"' + root + L'"', store.KeyPath());
    const HWND main = viewer.WindowOfCaption(L"てっさりビューア");
    ASSERT_NE(main, nullptr);
    const HWND bar = viewer.WindowOfCaption(L"コントロールバー");
    ASSERT_NE(bar, nullptr);
    const HWND files = FindWindowExW(bar, nullptr, L"LISTBOX", nullptr);
    const HWND members = FindWindowExW(bar, files, L"LISTBOX", nullptr);
    const HWND info = FindWindowExW(bar, nullptr, L"EDIT", nullptr);
    const HWND status = FindWindowExW(main, nullptr, STATUSCLASSNAMEW, nullptr);
    const auto shows = [&](const std::wstring& text) {
        return WaitUntil([&] { return RunningViewer::TextOf(info) == text; });
    };
    const auto step = [&] {
        PostMessageW(FindWindowExW(main, nullptr, L"TessaryPictureBox", nullptr), WM_KEYDOWN,
                     VK_RETURN, 0);
    };

    EXPECT_TRUE(shows(L"[画像] 1 山.bmp ( 10×4 24bit )"));
    EXPECT_EQ(SendMessageW(files, LB_GETCOUNT, 0, 0), 5);
    EXPECT_EQ(EntryOf(files, 1), folder.Path() + L"2.zip");
    EXPECT_EQ(EntryOf(members, 0), L"Not Archive File.");
    std::filesystem::remove(vanishing);

    step();
    EXPECT_TRUE(shows(L"[圧縮] 2.zip - [未知] note.txt"));
    EXPECT_EQ(SendMessageW(members, LB_GETCOUNT, 0, 0), 3);
    step();
    EXPECT_TRUE(shows(L"[圧縮] 2.zip - [画像] a.bmp ( 21×4 24bit )"));
    EXPECT_EQ(viewer.StatusText(status, 1), L"[表示中] 2.zip - a.bmp2.zip ( 21×4 24bit )");
    EXPECT_EQ(EntryOf(members, 1), L"sub\\a.bmp");
    step();
    EXPECT_TRUE(shows(L"[圧縮] 2.zip - [画像] b.bmp ( 22×4 24bit )"));
    step();  // over the text and the vanished file
    EXPECT_TRUE(shows(L"[画像] 5.bmp ( 50×4 24bit )"));
    EXPECT_EQ(SendMessageW(files, LB_GETCURSEL, 0, 0), 4);
    EXPECT_FALSE(IsWindowEnabled(members));

    PostMessageW(main, WM_CLOSE, 0, 0);
    EXPECT_EQ(viewer.ExitCode(), 0);
    EXPECT_EQ(GetSetting(L"Window", L"ControlBarRollUP"), L"False");
}

}  // namespace
}  // namespace tessary
