// The menus and the life of their items.
#include "ui/form/menu.h"

#include <set>

#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/message_spy.h"
#include "ui/form/activity.h"
#include "ui/form/appearance.h"
#include "ui/form/clipboard.h"

namespace tessary {
namespace {

const std::set<int> kAlways{
    menuFileExit,      menuViewControlBar,  menuControl_0,       menuControl_1,
    menuControl_2,     menuControl_3,       menuControl_4,       menuControl_5,
    commandFullScreen, commandEnlargeSmall, commandBackdrop_0,   commandBackdrop_1,
    commandBackdrop_2, commandBackdrop_3,   commandBackdrop,     commandPlayAnimations,
    commandShowInfo,   commandAppearance_0, commandAppearance_1, commandAppearance_2};

class MenuTest : public test::MainWindowTest {
  protected:
    HMENU Menu() const { return GetMenu(window_.Handle()); }
    // As the user finds them when he opens the menu.
    std::set<int> AliveItems() const {
        SendMessageW(window_.Handle(), WM_INITMENU, reinterpret_cast<WPARAM>(Menu()), 0);
        std::set<int> alive;
        ForEachMenuCommand(Menu(), [&](int id) {
            if ((GetMenuState(Menu(), id, MF_BYCOMMAND) & MF_GRAYED) == 0) alive.insert(id);
        });
        return alive;
    }
    void PressControlMenu() const {
        for (int item = menuControl_0; item <= menuControl_5; ++item)
            Choose(item);
    }
    std::wstring ClipboardText() const {
        const ClipboardSession clipboard(window_.Handle());
        const HANDLE block = GetClipboardData(CF_UNICODETEXT);
        if (block == nullptr) return L"(no text)";
        std::wstring text = static_cast<const wchar_t*>(GlobalLock(block));
        GlobalUnlock(block);
        return text;
    }
};

TEST_F(MenuTest, ItemsAreAliveWhenTheirCommandIs) {
    Load();
    EXPECT_EQ(AliveItems(), kAlways);
    int opened = 0;
    bool offered = true;
    window_.Commands().Register(menuFileOpen,
                                {.run = [&] { ++opened; }, .enabled = [&] { return offered; }});
    ShowPicture(10, 10);
    std::set<int> alive = kAlways;
    alive.insert({menuFileOpen, menuEditClear, commandZoomIn, commandZoomOut, commandToggleFit,
                  commandTurnRight, commandTurnLeft, commandTurnHalf, commandMirror, commandFlip,
                  commandReadOn, commandReadBack});
    EXPECT_EQ(AliveItems(), alive);
    Choose(menuFileOpen);
    Choose(menuFileSaveAs);  // nobody's
    offered = false;
    Choose(menuFileOpen);
    offered = true;
    {
        const ReadUnderWay read;
        Choose(menuFileOpen);
        EXPECT_EQ(opened, 1);
        // Only what loads nothing: 停止, 折りたたみ and what moves the picture.
        alive = kAlways;
        alive.insert(
            {commandZoomIn, commandZoomOut, commandToggleFit, commandReadOn, commandReadBack});
        for (const int loads : {menuControl_0, menuControl_1, menuControl_3, menuControl_4})
            alive.erase(loads);
        EXPECT_EQ(AliveItems(), alive);
        PressControlMenu();
        EXPECT_EQ(controlBar_.pressed, (std::vector<int>{4, 15}));
    }
    // What the control bar can put off is offered, and so its keys arrive.
    const frmMain::Reading reading(window_, L"reading");
    EXPECT_TRUE(AliveItems().contains(menuFileOpen));
    Choose(menuFileOpen);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(controlBar_.wishes, std::vector<int>{menuFileOpen});
}

TEST_F(MenuTest, ControlMenuPressesBarButtons) {
    Load();
    PressControlMenu();
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{1, 2, 4, 6, 7, 15}));
    for (const UINT visible : {MF_CHECKED, MF_UNCHECKED}) {
        Choose(menuViewControlBar);
        EXPECT_EQ(controlBar_.visible, visible != 0);
        AliveItems();
        EXPECT_EQ(GetMenuState(Menu(), menuViewControlBar, MF_BYCOMMAND), visible);
    }
}

TEST_F(MenuTest, PopupShowsAndCopiesWhatIsKnownOfThePicture) {
    Load();
    window_.Show();
    DoEvents();
    std::wstring shown;
    const test::MessageSpy spy(window_.Handle(), [&](UINT message, WPARAM menu, LPARAM) {
        if (message == WM_INITMENUPOPUP)
            shown = MenuCaption(reinterpret_cast<HMENU>(menu), menuPopupFileName);
    });
    CopyTextToClipboard(window_.Handle(), L"before");
    // By the keyboard's key for it, and the second item.
    const auto expect = [&](const wchar_t* caption, const wchar_t* copied) {
        for (const int key : {VK_DOWN, VK_DOWN, window_.PictureShown() ? VK_RETURN : VK_ESCAPE})
            PostMessageW(window_.Handle(), WM_KEYDOWN, key, 0);
        SendToView(WM_CONTEXTMENU, 0, -1);
        DoEvents();
        EXPECT_EQ(shown, caption);
        EXPECT_EQ(ClipboardText(), copied);
    };
    expect(L"ファイル名 <なし>", L"before");
    // Shown smaller than it is: the picture itself is described.
    SetCurrentPicture(test::TestPicture(31, 17));
    window_.SetPicture(test::TestPicture(15, 8), {});
    expect(L"ファイル名 <不明>", L"ファイル名 <不明>");
    window_.SetPictureSource({L"桜 & 山.jpg", L""});
    expect(L"ファイル名 <桜 && 山.jpg>", L"ファイル名 <桜 & 山.jpg>");
    window_.SetPictureSource({L"a.jpg", L"iftessjpeg.spi"});
    for (const auto& [item, text] :
         {std::pair{menuPopupPluginName, L"使用プラグイン <iftessjpeg.spi>"},
          {menuPopupGraphicSize, L"画像サイズ <31×17>"},
          {menuPopupColorDepth, L"色数 <24bit>"},
          {menuPopupGraphicInfo,
           L"ファイル名 <a.jpg>\r\n使用プラグイン <iftessjpeg.spi>\r\n"
           L"画像サイズ <31×17>\r\n色数 <24bit>"}}) {
        Choose(item);
        EXPECT_EQ(ClipboardText(), text);
    }
    Choose(menuEditClear);
    EXPECT_FALSE(CurrentPicture());
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_EQ(Panel(kPluginCountPanel), L"");
}

TEST_F(MenuTest, AppearanceHoldsAtOnce) {
    Load();
    const HWND view = FindWindowExW(window_.Handle(), nullptr, L"TessaryPictureBox", nullptr);
    ASSERT_NE(view, nullptr);
    const auto isDarkView = [&] {
        const UniqueScreenDc screen(GetDC(nullptr));
        const UniqueMemoryDc memory(CreateCompatibleDC(screen.Get()));
        const UniqueBitmap bitmap(CreateCompatibleBitmap(screen.Get(), 4, 4));
        const HGDIOBJ former = SelectObject(memory.Get(), bitmap.Get());
        SendMessageW(view, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory.Get()), PRF_CLIENT);
        const COLORREF ground = GetPixel(memory.Get(), 2, 2);
        SelectObject(memory.Get(), former);
        return ground == kDark.view;
    };
    for (const int choice : {commandAppearance_1, commandAppearance_2, commandAppearance_1}) {
        const bool isDark = choice == commandAppearance_2;
        Choose(choice);
        EXPECT_EQ(Values().general.appearance, choice - commandAppearance_0);
        EXPECT_EQ(isDarkView(), isDark);
        SendMessageW(window_.Handle(), WM_SYSCOLORCHANGE, 0, 0);  // which changes nothing of it
        EXPECT_EQ(isDarkView(), isDark);
        AliveItems();
        EXPECT_EQ((GetMenuState(Menu(), choice, MF_BYCOMMAND) & MF_CHECKED) != 0, true);
    }
}

}  // namespace
}  // namespace tessary
