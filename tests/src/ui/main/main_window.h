// The real main window in the test process, with recorders in place of what it works with.
#pragma once

#include <gtest/gtest.h>

#include "app/base/modScreenCaps.h"
#include "picture/current_picture.h"
#include "res/resource.h"
#include "tests/src/ui/main/recording_control_bar.h"
#include "tests/src/ui/test_picture.h"
#include "tests/support/helper_libraries.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"
#include "ui/form/activity.h"
#include "ui/form/message_loop.h"
#include "ui/main/frmMain.h"

namespace tessary::test {

class MainWindowTest : public testing::Test {
  protected:
    // Lists are as they are given. What users have is tested in order_test.cpp.
    MainWindowTest() {
        LoadHelperLibraries();  // files are opened by what plug-ins tell of their names
        Values().general.unclaimed = kUnclaimedListed;
        Values().general.atListEnd = kEndListed;
        Values().general.backToLast = 0;
        Values().general.shortList = 1;
        Values().general.deleteFinally = kDeleteListed;
    }

    // Loads the window with a client area that leaves the view exactly this size.
    void Load(int viewWidth = 320, int viewHeight = 240) {
        window_.SetControlBar(controlBar_);
        ASSERT_TRUE(window_.Load());
        SizeView(viewWidth, viewHeight);
    }
    void SizeView(int width, int height) {
        for (int pass = 0; pass < 2; ++pass) {  // the menu may need fewer lines the second time
            const RECT frame = FrameOf(window_.Handle());
            SetWindowPos(window_.Handle(), nullptr, 0, 0,
                         frame.right - frame.left + width - View().cx,
                         frame.bottom - frame.top + height - View().cy, SWP_NOMOVE | SWP_NOZORDER);
        }
        ASSERT_EQ(View().cx, width);
        ASSERT_EQ(View().cy, height);
    }

    // Makes a picture current and shows it.
    void ShowPicture(int width, int height) {
        SetCurrentPicture(TestPicture(width, height));
        window_.SetPicture(TestPicture(width, height), {});
    }

    void TearDown() override {
        window_.Unload();
        DoEvents();
        CurrentActivity() = {};
    }

    static RECT FrameOf(HWND window) {
        RECT frame{};
        GetWindowRect(window, &frame);
        return frame;
    }
    SIZE View() const { return window_.pictureView().AreaSize(); }
    POINT Position() const {
        const ViewPosition at = window_.Stage().Seen().Position();
        return {at.x, at.y};
    }
    LRESULT SendToView(UINT message, WPARAM wParam, LPARAM lParam) const {
        return SendMessageW(window_.pictureView().Handle(), message, wParam, lParam);
    }
    std::wstring Panel(int panel) const { return window_.statusInformation().PanelText(panel); }
    void Choose(int menuItem) const { SendMessageW(window_.Handle(), WM_COMMAND, menuItem, 0); }
    void ChooseDuringARead(int menuItem) const {
        const ReadUnderWay read;
        Choose(menuItem);
    }

    RedirectedSettings settings_;
    RecordedMessages messages_;
    RecordingControlBar controlBar_;
    int pluginCount_ = 3;
    int ended_ = 0;
    bool arePluginsComing_ = false;
    FrameReaderMaker readers_;  // of the animations that are shown
    frmMain window_{{.commandLine = {},
                     .pluginCount = [this] { return pluginCount_; },
                     .endProgram = [this] { ++ended_; },
                     .frameReaders = [this] { return readers_(); },
                     .pluginsAreComing = [this] { return arePluginsComing_; }}};
};

}  // namespace tessary::test
