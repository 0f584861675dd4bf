// The real control bar and main window over real files, decoded by the finished program's helper
// libraries and by test plug-ins.
#pragma once

#include <string>
#include <vector>

#include "app/settings/settings_store.h"
#include "plugin/modSusie.h"
#include "tests/plugins/test_plugins.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/src/ui/run_until.h"
#include "tests/support/bitmap_image.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/temporary_folder.h"
#include "ui/control/frmControl.h"

namespace tessary::test {

using List = std::vector<std::wstring>;

template <class ListControl>
List Items(const ListControl& list) {
    List items;
    for (int i = 0; i < list.Count(); ++i)
        items.push_back(list.Item(i));
    return items;
}

class ControlBarTest : public MainWindowTest {
  protected:
    void SetUp() override {
        Values().general.useSPI = 1;
        Values().general.listText = kListPaths;
        SusieCollection().AddSPI(TestPluginPath(L"iftst.spi"));
        SusieCollection().AddSPI(TestPluginPath(L"axtsa.spi"));
        SaveSetting(L"Window", L"ControlBar_X", L"0");
        window_.SetControlBar(bar_);
        ASSERT_TRUE(window_.Load());
        ASSERT_TRUE(bar_.Load(window_.Handle()));
    }

    void TearDown() override {
        CurrentActivity() = {};
        MainWindowTest::TearDown();
        UnloadSPI();
    }

    std::wstring Bitmap(const std::wstring& name, int width = 8) const {
        return folder_.Write(name, BitmapFileOf(width, 6, RGB(1, 2, 3)));
    }
    // 1.bmp to so many.
    List Bitmaps(int count) const {
        List files;
        for (int i = 1; i <= count; ++i)
            files.push_back(Bitmap(std::to_wstring(i) + L".bmp"));
        return files;
    }
    // Takes so long to be decoded that messages are let through.
    std::wstring SlowPicture(const std::wstring& name) const {
        return folder_.Write(name, "TST 8x50x24\nprogress:9\n");
    }
    std::wstring Archive(const std::wstring& name) const {
        return folder_.Write(name,
                             "TSA\n"
                             "member\t13\t\tb10.tst\nmember\t12\t\tb9.tst\n"
                             "member\t6\t\treadme.txt\n\n"
                             "TST 10x4x24\n\nTST 9x4x24\n\nhello\n");
    }

    std::wstring Panel() const { return MainWindowTest::Panel(kShownFilePanel); }
    std::wstring Notice() const { return MainWindowTest::Panel(kNoticePanel); }
    std::wstring Note() const { return window_.pictureView().Note(); }
    std::wstring Info() const { return bar_.textFileInfo().Text(); }
    int Selected() const { return bar_.listFileName().Selected(); }
    bool IsEnabled(BarButton button) const {
        return bar_.CoolBar().IsButtonEnabled(static_cast<int>(button));
    }
    RECT Frame() const { return FrameOf(bar_.Handle()); }
    int HeightAt96Dpi() const {
        return MulDiv(Frame().bottom - Frame().top, 96, Metrics(bar_.Handle()).Dpi());
    }

    // What the user does.
    static void Click(const ListBox& list, int index, WORD event = LBN_SELCHANGE) {
        SendMessageW(list.Handle(), LB_SETCURSEL, static_cast<WPARAM>(index), 0);
        SendMessageW(GetParent(list.Handle()), WM_COMMAND, MAKEWPARAM(0, event),
                     reinterpret_cast<LPARAM>(list.Handle()));
    }
    // As screen readers do it, and then the pointer passes over the list.
    template <class Send>
    static void Click(const VirtualList& list, int index, Send send) {
        static LVITEMW none{}, one{};  // they are read when a posted message comes
        none.stateMask = LVIS_SELECTED;
        one.stateMask = one.state = LVIS_SELECTED | LVIS_FOCUSED;
        send(list.Handle(), LVM_SETITEMSTATE, static_cast<WPARAM>(-1),
             reinterpret_cast<LPARAM>(&none));
        send(list.Handle(), LVM_SETITEMSTATE, static_cast<WPARAM>(index),
             reinterpret_cast<LPARAM>(&one));
        send(list.Handle(), WM_MOUSEMOVE, 0, -1);
    }
    static void Click(const VirtualList& list, int index) { Click(list, index, SendMessageW); }
    // So long a load keeps the messages waiting.
    void LoadSlowly(int index) const {
        Sleep(25);
        Click(bar_.listFileName(), index);
    }
    HWND PanelButton(const wchar_t* caption = L"ディスクから削除(&D)") const {
        return FindWindowExW(bar_.Handle(), nullptr, L"BUTTON", caption);
    }
    bool StopsByItself() {
        return RunUntil([&] { return bar_.PlayMode() == BarButton::kStop; });
    }

    TemporaryFolder folder_;
    frmControl bar_{window_};
};

}  // namespace tessary::test
