// The menus and the life of their items.
#include "ui/form/menu.h"

#include <commctrl.h>

#include "tests/src/ui/main/main_window.h"
#include "ui/form/clipboard.h"

namespace tessary {
namespace {

// The captions of a menu as one text, submenus in brackets; `lastId` checks that the numbers rise
// from item to item.
std::wstring Describe(HMENU menu, UINT& lastId) {
    std::wstring text;
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        wchar_t caption[100]{};
        MENUITEMINFOW item{};
        item.cbSize = sizeof(item);
        item.fMask = MIIM_FTYPE | MIIM_ID | MIIM_SUBMENU | MIIM_STRING;
        item.dwTypeData = caption;
        item.cch = 100;
        GetMenuItemInfoW(menu, position, TRUE, &item);
        if (position > 0) text += L"|";
        if ((item.fType & MFT_SEPARATOR) != 0) continue;
        EXPECT_GT(item.wID, lastId) << position;
        lastId = item.wID;
        text += caption;
        if (item.hSubMenu != nullptr) text += L"[" + Describe(item.hSubMenu, lastId) + L"]";
    }
    return text;
}

// Keeps the caption that the file name's item has when the pop-up menu opens.
LRESULT CALLBACK KeepCaption(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                             UINT_PTR /*id*/, DWORD_PTR caption) {
    if (message == WM_INITMENUPOPUP) {
        *reinterpret_cast<std::wstring*>(caption) =
            MenuCaption(reinterpret_cast<HMENU>(wParam), menuPopupFileName);
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

class MenuTest : public test::MainWindowTest {
  protected:
    HMENU Menu() const { return GetMenu(window_.Handle()); }
    void Open() const {
        SendMessageW(window_.Handle(), WM_INITMENU, reinterpret_cast<WPARAM>(Menu()), 0);
    }
    std::vector<int> AliveItems() const {
        std::vector<int> alive;
        ForEachMenuCommand(Menu(), [&](int id) {
            if ((GetMenuState(Menu(), id, MF_BYCOMMAND) & MF_GRAYED) == 0) alive.push_back(id);
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

TEST_F(MenuTest, TreeIsComplete) {
    Load();
    UINT lastId = 0;
    EXPECT_EQ(Describe(Menu(), lastId),
              L"ファイル(&F)[ファイルを開く(&O)\tCtrl+O|フォルダを開く(&D)\tCtrl+D|"
              L"ファイルに名前を付けて保存(&S)\tCtrl+S|すべて保存(&A)\tCtrl+Shift+S||"
              L"画像一括コンバート(&C)\tCtrl+B|アプリケーションの終了(&X)]|"
              L"編集(&E)[コピー(&C)\tCtrl+C|貼り付け(&P)\tCtrl+V||表示イメージクリア(&L)\tCtrl+L||"
              L"削除リストに追加(&D)\tDelete|削除の取り消し(&U)]|"
              L"表示(&V)[コントロールバー(&C)[コントロールバー表示(&V)\tCtrl+T||巻き戻し(&Z)\tZ|"
              L"逆再生(&X)\tX|停止(&C)\tC|再生(&V)\tV|早送り((&B)\tB|折りたたみ\tF]||"
              L"壁紙に設定 - 中央に表示(&C)|壁紙に設定 - 並べて表示(&T)|壁紙を消去(&E)||"
              L"次へ(&N)\tEnter|前へ(&P)\tShift+Enter||"
              L"表示サイズ(&S)[サイズを調整しない||640×480|800×600|1024×768||画面サイズ||"
              L"次の表示サイズ(&N)\tS]|全画面表示(&F)\tF11]|"
              L"オプション(&O)[環境設定\tF8||プラグインフォルダ(1)|プラグインフォルダ(2)|"
              L"プラグインフォルダ(3)]|"
              L"ヘルプ(&H)[バージョン情報(&A)|Susie Plugin のバージョン情報(&S)]");
    EXPECT_EQ(Describe(LoadMenuResource(menuPopupWindow).Get(), lastId),
              L"ポップアップメニュー(1)[画像情報|ファイル名 <File Name>|"
              L"使用プラグイン <Plugin Name>|画像サイズ <Graphic Size>|色数 <Color Depth>]");
}

// The letters that several items of one menu underline.
std::wstring SharedMnemonics(HMENU menu) {
    std::wstring letters;
    std::wstring shared;
    for (int position = 0; position < GetMenuItemCount(menu); ++position) {
        wchar_t caption[100]{};
        GetMenuStringW(menu, position, caption, 100, MF_BYPOSITION);
        const std::wstring text = caption;
        const size_t mark = text.find(L'&');
        if (mark != std::wstring::npos) {
            if (letters.find(text[mark + 1]) != std::wstring::npos) shared += text[mark + 1];
            letters += text[mark + 1];
        }
        if (const HMENU below = GetSubMenu(menu, position)) shared += SharedMnemonics(below);
    }
    return shared;
}

TEST_F(MenuTest, MnemonicsAreSharedOnlyWhereCaptionsAreEstablished) {
    Load();
    EXPECT_EQ(SharedMnemonics(Menu()), L"VC");  // コントロールバー表示 and 再生; two of 表示
}

TEST_F(MenuTest, ItemsAreAliveWhenTheirCommandIs) {
    Load();
    EXPECT_EQ(AliveItems(), (std::vector<int>{menuFileExit, commandFullScreen}));
    int opened = 0;
    bool offered = true;
    window_.Commands().Register(menuFileOpen,
                                {.run = [&] { ++opened; }, .enabled = [&] { return offered; }});
    ShowPicture(10, 10);
    Open();
    EXPECT_EQ(AliveItems(),
              (std::vector<int>{menuFileOpen, menuFileExit, menuEditClear, commandFullScreen}));
    Choose(menuFileOpen);
    Choose(menuFileSaveAs);  // nobody's
    offered = false;
    Choose(menuFileOpen);
    offered = true;
    Values().readsUnderWay = 1;
    Choose(menuFileOpen);
    EXPECT_EQ(opened, 1);
    Open();
    EXPECT_EQ(AliveItems(), (std::vector<int>{menuFileExit, commandFullScreen}));
    // What the control bar can put off is offered, and so its keys arrive.
    window_.SetControlBar(controlBar_);
    const frmMain::Reading reading(window_, L"reading");
    Open();
    EXPECT_EQ(GetMenuState(Menu(), menuFileOpen, MF_BYCOMMAND) & MF_GRAYED, 0u);
    Choose(menuFileOpen);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(controlBar_.wishes, std::vector<int>{menuFileOpen});
}

TEST_F(MenuTest, ControlMenuPressesBarButtons) {
    window_.SetControlBar(controlBar_);
    Load();
    for (int item = menuControl_0; item <= menuControl_5; ++item)
        Choose(item);
    Values().readsUnderWay = 1;  // only what loads nothing: 停止 and 折りたたみ
    for (int item = menuControl_0; item <= menuControl_5; ++item)
        Choose(item);
    EXPECT_EQ(controlBar_.pressed, (std::vector<int>{1, 2, 4, 6, 7, 15, 4, 15}));
    for (const bool visible : {true, false}) {
        Choose(menuViewControlBar);
        EXPECT_EQ(controlBar_.visible, visible);
        Open();
        const UINT state = GetMenuState(Menu(), menuViewControlBar, MF_BYCOMMAND);
        EXPECT_EQ((state & MF_CHECKED) != 0, visible);
    }
}

TEST_F(MenuTest, ClearLeavesNoPicture) {
    Load();
    ShowPicture(30, 20);
    Choose(menuEditClear);
    EXPECT_EQ(CurrentPicture().info, nullptr);
    EXPECT_EQ(window_.pictureView().Picture(), nullptr);
    EXPECT_EQ(window_.statusInformation().PanelText(1), L"");
}

TEST_F(MenuTest, PopupItemsCopyWhatTheyShow) {
    Load();
    SetCurrentPicture(test::MakePair(31, 17));
    // Shown smaller than it is: the picture itself is described.
    window_.SetPicture(test::MakePicture(15, 8).Get(), 15, 8);
    window_.SetPictureSource({L"桜 & 山.jpg", L"iftessjpeg.spi"});
    for (const auto& [item, text] : std::initializer_list<std::pair<int, const wchar_t*>>{
             {menuPopupFileName, L"ファイル名 <桜 & 山.jpg>"},
             {menuPopupPluginName, L"使用プラグイン <iftessjpeg.spi>"},
             {menuPopupGraphicSize, L"画像サイズ <31×17>"},
             {menuPopupColorDepth, L"色数 <24bit>"},
             {menuPopupGraphicInfo,
              L"ファイル名 <桜 & 山.jpg>\r\n使用プラグイン <iftessjpeg.spi>\r\n"
              L"画像サイズ <31×17>\r\n色数 <24bit>"}}) {
        Choose(item);
        EXPECT_EQ(ClipboardText(), text);
    }
    EXPECT_TRUE(messages_.All().empty());
}

TEST_F(MenuTest, PopupOpensOnThePicture) {
    Load();
    window_.Show();
    DoEvents();
    CopyTextToClipboard(window_.Handle(), L"before");
    std::wstring shown;
    SetWindowSubclass(window_.Handle(), KeepCaption, 1, reinterpret_cast<DWORD_PTR>(&shown));
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_RETURN});  // no picture: everything is grey
    OpenPopupAndType({VK_ESCAPE});
    EXPECT_EQ(ClipboardText(), L"before");
    EXPECT_EQ(shown, L"ファイル名 <なし>");

    ShowPicture(40, 30);
    window_.SetPictureSource({L"a&b.bmp", L""});
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_DOWN, VK_RETURN});
    RemoveWindowSubclass(window_.Handle(), KeepCaption, 1);
    EXPECT_EQ(shown, L"ファイル名 <a&&b.bmp>");
    EXPECT_EQ(ClipboardText(), L"使用プラグイン <なし>");
    window_.ClearPicture();
    ShowPicture(40, 30);  // its source is unknown
    OpenPopupAndType({VK_DOWN, VK_DOWN, VK_RETURN});
    EXPECT_EQ(ClipboardText(), L"ファイル名 <不明>");
}

}  // namespace
}  // namespace tessary
