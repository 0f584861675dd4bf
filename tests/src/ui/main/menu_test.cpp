// The menus and the life of their items.
#include "ui/form/menu.h"

#include <cwchar>
#include <set>

#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/message_spy.h"
#include "ui/form/activity.h"
#include "ui/form/clipboard.h"

namespace tessary {
namespace {

// The letters that several items of one menu underline.
std::wstring SharedMnemonics(HMENU menu) {
    std::wstring letters;
    std::wstring shared;
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        wchar_t caption[100]{};
        GetMenuStringW(menu, position, caption, 100, MF_BYPOSITION);
        if (const wchar_t* const mark = std::wcschr(caption, L'&'))
            (letters.find(mark[1]) == std::wstring::npos ? letters : shared) += mark[1];
        if (const HMENU below = GetSubMenu(menu, position)) shared += SharedMnemonics(below);
    }
    return shared;
}

const std::set<int> kAlways{menuFileExit,  menuViewControlBar, menuControl_0,
                            menuControl_1, menuControl_2,      menuControl_3,
                            menuControl_4, menuControl_5,      commandFullScreen};

class MenuTest : public test::MainWindowTest {
  protected:
    HMENU Menu() const { return GetMenu(window_.Handle()); }
    void Open() const {
        SendMessageW(window_.Handle(), WM_INITMENU, reinterpret_cast<WPARAM>(Menu()), 0);
    }
    std::set<int> AliveItems() const {
        std::set<int> alive;
        ForEachMenuCommand(Menu(), [&](int id) {
            if ((GetMenuState(Menu(), id, MF_BYCOMMAND) & MF_GRAYED) == 0) alive.insert(id);
        });
        return alive;
    }

    std::wstring ClipboardText() const {
        const ClipboardSession clipboard(window_.Handle());
        const HANDLE block = GetClipboardData(CF_UNICODETEXT);
        if (block == nullptr) return L"(no text)";
        std::wstring text = static_cast<const wchar_t*>(GlobalLock(block));
        GlobalUnlock(block);
        return text;
    }
    // Opens the pop-up menu by the keyboard's key for it and types into it.
    void OpenPopupAndType(std::initializer_list<int> keys) {
        for (const int key : keys)
            PostMessageW(window_.Handle(), WM_KEYDOWN, key, 0);
        SendToView(WM_CONTEXTMENU, 0, -1);
        DoEvents();
    }
};

TEST_F(MenuTest, CaptionsHaveTheKeysOfTheAcceleratorsAndMnemonicsOfTheirOwn) {
    Load();
    for (const auto& [item, caption] : std::initializer_list<std::pair<int, const wchar_t*>>{
             {menuFileOpen, L"ファイルを開く(&O)\tCtrl+O"},
             {menuFileSaveAll, L"すべて保存(&A)\tCtrl+Shift+S"},
             {commandAddToDeleteList, L"削除リストに追加(&D)\tDelete"},
             {commandStepBack, L"前へ(&P)\tShift+Enter"},
             {commandFullScreen, L"全画面表示(&F)\tF11"},
             {menuOptionSPIFolder_2, L"プラグインフォルダ(3)"}}) {
        EXPECT_EQ(MenuCaption(Menu(), item), caption);
    }
    // コントロールバー表示 and 再生, and two of 表示, are established.
    EXPECT_EQ(SharedMnemonics(Menu()), L"VC");
}

TEST_F(MenuTest, ItemsAreAliveWhenTheirCommandIs) {
    Load();
    EXPECT_EQ(AliveItems(), kAlways);
    int opened = 0;
    bool offered = true;
    window_.Commands().Register(menuFileOpen,
                                {.run = [&] { ++opened; }, .enabled = [&] { return offered; }});
    ShowPicture(10, 10);
    Open();
    std::set<int> alive = kAlways;
    alive.insert({menuFileOpen, menuEditClear});
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
        Open();
        EXPECT_EQ(AliveItems(), (std::set<int>{menuFileExit, menuViewControlBar, menuControl_2,
                                               menuControl_5, commandFullScreen}));
        // Only what loads nothing: 停止 and 折りたたみ.
        for (int item = menuControl_0; item <= menuControl_5; ++item)
            Choose(item);
        EXPECT_EQ(controlBar_.pressed, (std::vector<int>{4, 15}));
    }
    // What the control bar can put off is offered, and so its keys arrive.
    const frmMain::Reading reading(window_, L"reading");
    Open();
    EXPECT_TRUE(AliveItems().contains(menuFileOpen));
    Choose(menuFileOpen);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(controlBar_.wishes, std::vector<int>{menuFileOpen});
}

TEST_F(MenuTest, ControlMenuPressesBarButtons) {
    Load();
    for (int item = menuControl_0; item <= menuControl_5; ++item)
        Choose(item);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{1, 2, 4, 6, 7, 15}));
    for (const bool visible : {true, false}) {
        Choose(menuViewControlBar);
        EXPECT_EQ(controlBar_.visible, visible);
        Open();
        const UINT state = GetMenuState(Menu(), menuViewControlBar, MF_BYCOMMAND);
        EXPECT_EQ((state & MF_CHECKED) != 0, visible);
    }
}

TEST_F(MenuTest, PopupItemsCopyWhatTheyShow) {
    Load();
    SetCurrentPicture(test::TestPicture(31, 17));
    // Shown smaller than it is: the picture itself is described.
    window_.SetPicture(test::MakePicture(15, 8).Get(), 15, 8);
    window_.SetPictureSource({L"桜 & 山.jpg", L"iftessjpeg.spi"});
    std::wstring all;
    for (const auto& [item, text] : std::initializer_list<std::pair<int, std::wstring>>{
             {menuPopupFileName, L"ファイル名 <桜 & 山.jpg>"},
             {menuPopupPluginName, L"使用プラグイン <iftessjpeg.spi>"},
             {menuPopupGraphicSize, L"画像サイズ <31×17>"},
             {menuPopupColorDepth, L"色数 <24bit>"}}) {
        Choose(item);
        EXPECT_EQ(ClipboardText(), text);
        all += all.empty() ? text : L"\r\n" + text;
    }
    Choose(menuPopupGraphicInfo);
    EXPECT_EQ(ClipboardText(), all);
    EXPECT_TRUE(messages_.All().empty());
    Choose(menuEditClear);
    EXPECT_FALSE(CurrentPicture());
    EXPECT_FALSE(window_.PictureShown());
    EXPECT_EQ(window_.statusInformation().PanelText(kPluginCountPanel), L"");
}

TEST_F(MenuTest, PopupOpensOnThePicture) {
    Load();
    window_.Show();
    DoEvents();
    std::wstring shown;
    const test::MessageSpy spy(window_.Handle(), [&](UINT message, WPARAM menu, LPARAM) {
        if (message == WM_INITMENUPOPUP)
            shown = MenuCaption(reinterpret_cast<HMENU>(menu), menuPopupFileName);
    });
    CopyTextToClipboard(window_.Handle(), L"before");
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_RETURN});  // no picture: everything is grey
    OpenPopupAndType({VK_ESCAPE});
    EXPECT_EQ(ClipboardText(), L"before");
    EXPECT_EQ(shown, L"ファイル名 <なし>");

    ShowPicture(40, 30);
    window_.SetPictureSource({L"a&b.bmp", L""});
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(shown, L"ファイル名 <a&&b.bmp>");
    EXPECT_EQ(ClipboardText(), L"使用プラグイン <なし>");
    window_.ClearPicture();
    ShowPicture(40, 30);  // its source is unknown
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(ClipboardText(), L"ファイル名 <不明>");
}

}  // namespace
}  // namespace tessary
