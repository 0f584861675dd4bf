// Copying, pasting, and the wallpaper.
#include "app/settings/RegKeys.h"
#include "picture/bitmap_file.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/temporary_folder.h"
#include "ui/form/clipboard.h"
#include "ui/form/file_block.h"
#include "ui/form/window.h"
#include "ui/main/clipboard_commands.h"
#include "ui/main/wallpaper_commands.h"

#include <array>
#include <atomic>
#include <cstring>
#include <thread>

namespace tessary {
namespace {

// A picture of two pixels behind a header of so many bytes, as a program puts it there.
UniqueGlobal BlockOf(std::span<const DWORD> header) {
    UniqueGlobal block(GlobalAlloc(GHND, header.size_bytes() + 8));
    auto* const bytes = static_cast<uint8_t*>(GlobalLock(block.Get()));
    std::memcpy(bytes, header.data(), header.size_bytes());
    std::memcpy(bytes + header.size_bytes(), "lowXtopX", 8);
    GlobalUnlock(block.Get());
    return block;
}

// Another program, which does one thing with the clipboard; a thread with a window of its own.
class OtherProgram final : private Window {
  public:
    enum Deed { kKeeps, kPromises };

    // Keeps it open for so many milliseconds, or puts a picture there that takes so long to make
    // once somebody asks for it.
    OtherProgram(HWND viewer, Deed deed, DWORD milliseconds)
        : viewer_(viewer), milliseconds_(milliseconds), thread_([this, deed] { Run(deed); }) {
        isReady_.wait(false);
    }
    ~OtherProgram() {
        PostMessageW(Handle(), WM_QUIT, 0, 0);
        thread_.join();
    }

    // Whether the viewer has answered in the last moment of keeping.
    bool WasAnswered() const { return wasAnswered_; }

  private:
    void Run(Deed deed) {
        Create({.className = L"TessaryOtherProgram", .parent = HWND_MESSAGE});
        OpenClipboard(Handle());
        if (deed == kKeeps) {
            SetTimer(Handle(), 1, milliseconds_, nullptr);
        } else {
            EmptyClipboard();
            SetClipboardData(CF_DIB, nullptr);
            CloseClipboard();
        }
        isReady_ = true;
        isReady_.notify_one();
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        CloseClipboard();
        DestroyWindow(Handle());
    }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        DWORD_PTR result = 0;
        switch (message) {
            case WM_TIMER:
                wasAnswered_ =
                    SendMessageTimeoutW(viewer_, WM_NULL, 0, 0, SMTO_NORMAL, 100, &result) != 0;
                CloseClipboard();
                return 0;
            case WM_RENDERFORMAT:
                Sleep(milliseconds_);
                SetClipboardData(CF_DIB,
                                 BlockOf(std::array<DWORD, 10>{40, 1, 2, 32 << 16 | 1}).Release());
                return 0;
            default:
                return Default(message, wParam, lParam);
        }
    }

    HWND viewer_;
    DWORD milliseconds_;
    std::atomic<bool> isReady_ = false;
    std::atomic<bool> wasAnswered_ = false;
    std::thread thread_;
};

class ClipboardTest : public test::MainWindowTest {
  protected:
    void SetUp() override {
        Load();
        EmptyTheClipboard();
    }

    void EmptyTheClipboard() const {
        const ClipboardSession clipboard(window_.Handle());
        EmptyClipboard();
    }
    // Puts a block there, and pastes.
    void Paste(UINT format, UniqueGlobal block) const {
        std::vector<ClipboardItem> items;
        items.push_back({format, std::move(block)});
        EXPECT_TRUE(PutOnClipboard(window_.Handle(), std::move(items)));
        Choose(menuEditPaste);
    }
    // Makes a picture current that is shown smaller than it is.
    void ShowSmaller() {
        SetCurrentPicture(test::TestPicture(30, 16));
        window_.SetPicture(test::TestPicture(15, 8), {});
    }

    ClipboardCommands clipboard_{window_};
};

TEST_F(ClipboardTest, WhatIsCopiedComesBackInItsOwnSize) {
    const CommandTable& commands = window_.Commands();
    EXPECT_FALSE(commands.IsEnabled(menuEditCopy));
    EXPECT_FALSE(commands.IsEnabled(menuEditPaste));
    ShowSmaller();
    Choose(menuEditCopy);
    {
        const ClipboardSession clipboard(window_.Handle());
        const HANDLE png = GetClipboardData(RegisterClipboardFormatW(L"PNG"));
        ASSERT_NE(png, nullptr);
        EXPECT_EQ(std::memcmp(GlobalLock(png), "\x89PNG", 4), 0);
        GlobalUnlock(png);
    }

    const uint8_t* const former = CurrentPicture().Bits().data();
    ChooseDuringARead(menuEditPaste);
    EXPECT_EQ(CurrentPicture().Bits().data(), former);
    Choose(menuEditPaste);
    EXPECT_NE(CurrentPicture().Bits().data(), former);
    EXPECT_EQ(window_.Stage().Seen().Shown().cx, 30);
    EXPECT_EQ(CurrentPicture().Bits()[5 * 3 + 2], 5);  // red is x
    EXPECT_EQ(Panel(kPluginCountPanel), L"[表示中] クリップボード内の画像 ( 24bit )");
    EXPECT_EQ(Panel(kShownFilePanel), L"( 30×16 24bit ) 3個のプラグイン");
    EXPECT_EQ(controlBar_.info, L"クリップボード内の画像 ( 30×16 24bit )");
    EXPECT_EQ(window_.Source().fileName, L"クリップボード");
    window_.SetPictureSource({L"b.bmp", L""});  // the next file
    EXPECT_EQ(Panel(kPluginCountPanel), L"3個のプラグイン");
    EXPECT_TRUE(messages_.All().empty());
}

UniqueGlobal BlockOf(const std::string& bytes) {
    UniqueGlobal block(GlobalAlloc(GHND, bytes.size()));
    std::memcpy(GlobalLock(block.Get()), bytes.data(), bytes.size());
    GlobalUnlock(block.Get());
    return block;
}

// Nobody decodes PNG here: what is taken is what stands beside it.
TEST_F(ClipboardTest, AlphaGoesThereAndBack) {
    Paste(CF_DIBV5, BlockOf(std::array<DWORD, 31>{124, 1, 2, 32 << 16 | 1, BI_BITFIELDS, 0, 0, 0, 0,
                                                  0, 0xFF0000, 0xFF00, 0xFF, 0xFF000000}));
    ASSERT_TRUE(CurrentPicture().HasAlpha());
    Choose(menuEditCopy);
    SetCurrentPicture({});
    Choose(menuEditPaste);
    ASSERT_TRUE(CurrentPicture().HasAlpha());
    EXPECT_EQ(std::memcmp(CurrentPicture().Bits().data(), "lowXtopX", 8), 0);
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(ClipboardTest, TakesTheFileBeforeTheBitmapUnlessItIsBroken) {
    const UINT png = RegisterClipboardFormatW(L"PNG");
    for (const bool isBroken : {false, true}) {
        std::vector<ClipboardItem> items;
        items.push_back({CF_DIB, BlockOf(std::array<DWORD, 10>{40, 1, 2, 32 << 16 | 1})});
        // Whatever is decoded without plug-ins stands for it.
        items.push_back(
            {png, BlockOf(isBroken ? "\x89PNG broken" : test::BitmapFileOf(7, 3, RGB(1, 2, 3)))});
        ASSERT_TRUE(PutOnClipboard(window_.Handle(), std::move(items)));
        Choose(menuEditPaste);
        EXPECT_EQ(CurrentPicture().Width(), isBroken ? 1 : 7);
    }
    Paste(png, BlockOf("\x89PNG broken"));
    EXPECT_EQ(CurrentPicture().Width(), 1);
    EXPECT_TRUE(test::Has(messages_.Only(), L"壊れているか"));
}

TEST_F(ClipboardTest, FilesGoThereAndBack) {
    const test::TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.png");
    ShowPicture(8, 8);
    window_.SetPictureSource({L"a.png", {}, path});
    Choose(menuEditCopy);
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_HDROP));
    Choose(commandTurnRight);
    Choose(menuEditCopy);
    EXPECT_FALSE(IsClipboardFormatAvailable(CF_HDROP)) << "the file lies otherwise";
    EmptyTheClipboard();
    Paste(CF_HDROP, MakeFileBlock({folder.Path(), path}));
    DoEvents();
    ASSERT_EQ(controlBar_.lists.size(), 1u);
    EXPECT_EQ(controlBar_.lists[0], (std::vector{path, path}));
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(ClipboardTest, LeavesAPictureForWhatIsNone) {
    // What browsers offer: the system makes the older form of it.
    Paste(CF_DIBV5, BlockOf(std::array<DWORD, 31>{124, 1, 2, 32 << 16 | 1}));
    EXPECT_EQ(window_.Stage().Seen().Shown().cy, 2);
    window_.SetPanelText(kShownFilePanel, L"a.bmp");
    Paste(CF_DIB, UniqueGlobal(GlobalAlloc(GHND, 40)));
    EXPECT_EQ(window_.Stage().Seen().Shown().cy, 2);
    EXPECT_EQ(Panel(kShownFilePanel), L"a.bmp");
    SetCurrentPicture({});
    Choose(menuEditCopy);
    ASSERT_EQ(messages_.All().size(), 2u);
    EXPECT_TRUE(test::Has(messages_.All()[0].text, L"壊れているか"));
    EXPECT_EQ(messages_.All()[1].text, L"クリップボードにデータをコピーできません");
}

TEST_F(ClipboardTest, WaitsForWhoeverHasItAndNamesHim) {
    ShowPicture(8, 8);
    for (const int item : {menuEditCopy, menuEditPaste}) {
        const OtherProgram other(window_.Handle(), OtherProgram::kKeeps, 400);
        Choose(item);
        EXPECT_TRUE(other.WasAnswered());
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    }
    EXPECT_TRUE(messages_.All().empty());
    const OtherProgram other(window_.Handle(), OtherProgram::kKeeps, 60000);
    Choose(menuEditCopy);
    Choose(menuEditPaste);
    ASSERT_EQ(messages_.All().size(), 2u);
    for (const auto& message : messages_.All())
        EXPECT_TRUE(
            test::Has(message.text, L"\nmain_window_test.exe がクリップボードを使っています"));
}

TEST_F(ClipboardTest, APictureThatIsMadeOnlyNowHoldsNothingUp) {
    {
        const OtherProgram other(window_.Handle(), OtherProgram::kPromises, 500);
        PostMessageW(window_.Handle(), WM_COMMAND, menuEditPaste, 0);  // too early
        Choose(menuEditPaste);
        EXPECT_EQ(window_.Stage().Seen().Shown().cy, 2);
        MSG message{};
        EXPECT_FALSE(PeekMessageW(&message, window_.Handle(), WM_COMMAND, WM_COMMAND, PM_NOREMOVE));
    }
    // The user does not want to wait.
    window_.ClearPicture();
    const OtherProgram other(window_.Handle(), OtherProgram::kPromises, 1500);
    const DWORD start = GetTickCount();
    EnableWindow(window_.Handle(), FALSE);  // else the control bar is told of the key
    PostMessageW(window_.pictureView().Handle(), WM_KEYDOWN, VK_ESCAPE, 0);
    Choose(menuEditPaste);
    EnableWindow(window_.Handle(), TRUE);
    EXPECT_LT(GetTickCount() - start, 1400u);
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_TRUE(messages_.All().empty());
}

// Types a key with Ctrl held into a control of the window.
bool TypeWithCtrl(HWND control, int key) {
    BYTE former[256];
    GetKeyboardState(former);
    BYTE keys[256]{};
    keys[VK_CONTROL] = 0x80;
    SetKeyboardState(keys);
    MSG message{control, WM_KEYDOWN, static_cast<WPARAM>(key), 0, 0, {}};
    const bool taken = MessageFilter::AnyTakes(message);
    SetKeyboardState(former);
    return taken;
}

TEST_F(ClipboardTest, KeysAreLeftToTextFields) {
    ShowPicture(8, 8);
    const HWND view = window_.pictureView().Handle();
    const HWND field = CreateWindowExW(0, L"EDIT", L"", WS_CHILD, 0, 0, 9, 9, window_.Handle(),
                                       nullptr, nullptr, nullptr);
    EXPECT_FALSE(TypeWithCtrl(field, 'C'));
    EXPECT_FALSE(TypeWithCtrl(field, 'V'));
    EXPECT_EQ(window_.pictureView().Note(), L"");
    // The grey menu item takes no key.
    EXPECT_TRUE(TypeWithCtrl(view, 'V'));
    EXPECT_EQ(window_.pictureView().Note(), L"クリップボードに画像がありません。");
    EXPECT_TRUE(TypeWithCtrl(view, 'C'));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    EXPECT_TRUE(controlBar_.pressed.empty());  // C alone is the player's
}

class WallpaperTest : public ClipboardTest {
  protected:
    std::wstring Style(const wchar_t* value) const {
        return GetRegistryString(HKEY_CURRENT_USER, settings_.KeyPath(), value);
    }

    test::TemporaryFolder folder_;
    std::vector<std::wstring> shown_;
    // The first folder takes no file: one of its name is in the way.
    WallpaperCommands wallpaper_{window_,
                                 {{folder_.Write(L"taken") + L'\\', folder_.Path() + L"own\\"},
                                  settings_.KeyPath(),
                                  [this](const std::wstring& file) {
                                      shown_.push_back(file);
                                      return !isFixed_;
                                  }}};
    bool isFixed_ = false;
};

TEST_F(WallpaperTest, IsThePictureAsItIsShownInTheFirstFolderThatTakesIt) {
    EXPECT_FALSE(window_.Commands().IsEnabled(menuViewWallpaperTile));
    Values().fixSizeValue = kSizeMode640;
    SetCurrentPicture(test::TestPicture(1280, 320));
    window_.SetPicture(CurrentPicture().Another(), {});
    Values().saveOptions.bmp = {1, 1};  // how the user saves his own files
    Choose(menuViewWallpaperCenter);
    EXPECT_EQ(Style(L"TileWallpaper"), L"0");
    EXPECT_EQ(Style(L"WallpaperStyle"), L"0");
    Choose(menuViewWallpaperTile);
    EXPECT_EQ(Style(L"TileWallpaper"), L"1");
    Choose(menuViewWallpaperEsc);
    const std::wstring file = folder_.Path() + L"own\\tessary_viewer_wall_paper.bmp";
    EXPECT_EQ(shown_, (std::vector<std::wstring>{file, file, L""}));
    Picture saved;
    ASSERT_TRUE(ReadBitmapFile(file, saved));
    EXPECT_EQ(saved.Width(), 640);
    EXPECT_NEAR(saved.View().Row(80)[1], 160.5, 1);                   // green is y
    EXPECT_EQ(std::filesystem::file_size(file), 54u + 1920u * 160u);  // a Windows bitmap

    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
    Choose(menuViewWallpaperCenter);
    EXPECT_EQ(messages_.Only(), L"壁紙のファイルを保存できません。\r\n" + file +
                                    L"\r\n\r\n書き込む権限がないか、読み取り専用です。");
    EXPECT_EQ(shown_.size(), 3u);
    EXPECT_EQ(Style(L"TileWallpaper"), L"1");

    isFixed_ = true;
    Choose(menuViewWallpaperEsc);
    EXPECT_EQ(messages_.All().size(), 2u);
}

}  // namespace
}  // namespace tessary
