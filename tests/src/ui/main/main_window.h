// The real main window in the test process, with recorders in place of what it works with.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/base/modScreenCaps.h"
#include "app/settings/modValue.h"
#include "picture/current_picture.h"
#include "res/resource.h"
#include "tests/src/ui/test_picture.h"
#include "tests/support/recorded_messages.h"
#include "tests/support/redirected_settings.h"
#include "ui/form/message_loop.h"
#include "ui/main/frmMain.h"

namespace tessary::test {

class RecordingControlBar final : public ControlBar {
  public:
    bool SetFileList(std::span<const std::wstring> files) override {
        lists.emplace_back(files.begin(), files.end());
        return !files.empty();
    }
    std::wstring Failure() const override { return failure; }
    bool IsPlaying() const override { return playing; }
    void WishCommand(int command) override { wishes.push_back(command); }
    void PictureReplaced(const std::wstring& text) override { info = text; }
    void FileSaved(const std::wstring&) override {}
    void ClearLists() override { ++clears; }
    std::vector<std::wstring> FileList() const override { return files; }
    bool HasFiles() const override { return !files.empty(); }
    void Press(BarButton button) override { pressed.push_back(static_cast<int>(button)); }
    bool IsVisible() const override { return visible; }
    void SetVisible(bool show) override { visible = show; }
    void TakeFocus(BarFocus focus) override { focuses.push_back(focus); }
    void Unload() override { ++unloads; }

    std::vector<std::vector<std::wstring>> lists;
    std::vector<std::wstring> files;
    std::vector<int> pressed;
    std::wstring failure;
    bool playing = false;
    std::vector<int> wishes;
    std::wstring info = L"a file";
    std::vector<BarFocus> focuses;
    bool visible = false;
    bool MayClose() override { return mayClose; }
    void SavePlace() override {}
    bool mayClose = true;
    int unloads = 0;
    int clears = 0;
};

class MainWindowTest : public testing::Test {
  protected:
    // Loads the window with a client area that leaves the view exactly this size.
    void Load(int viewWidth = 320, int viewHeight = 240) {
        Values().platformId = GetPlatformId();
        ASSERT_TRUE(window_.Load());
        for (int pass = 0; pass < 2; ++pass) {  // the menu may need fewer lines the second time
            RECT frame{};
            GetWindowRect(window_.Handle(), &frame);
            const SIZE view = window_.pictureView().AreaSize();
            SetWindowPos(
                window_.Handle(), nullptr, 0, 0, frame.right - frame.left + viewWidth - view.cx,
                frame.bottom - frame.top + viewHeight - view.cy, SWP_NOMOVE | SWP_NOZORDER);
        }
        ASSERT_EQ(View().cx, viewWidth);
        ASSERT_EQ(View().cy, viewHeight);
    }

    // Makes a picture current and shows it.
    void ShowPicture(int width, int height) {
        SetCurrentPicture(MakePair(width, height));
        window_.SetPicture(MakePicture(width, height).Get(), width, height);
    }

    void TearDown() override {
        Values().readsUnderWay = 0;
        window_.Unload();
        DoEvents();
    }

    SIZE View() const { return window_.pictureView().AreaSize(); }
    POINT Position() const { return window_.pictureView().PicturePosition(); }
    LRESULT SendToView(UINT message, WPARAM wParam, LPARAM lParam) const {
        return SendMessageW(window_.pictureView().Handle(), message, wParam, lParam);
    }
    void Choose(int menuItem) const { SendMessageW(window_.Handle(), WM_COMMAND, menuItem, 0); }

    RedirectedSettings settings_;
    RecordedMessages messages_;
    RecordingControlBar controlBar_;
    int pluginCount_ = 3;
    int ended_ = 0;
    frmMain window_{{.commandLine = {},
                     .pluginCount = [this] { return pluginCount_; },
                     .endProgram = [this] { ++ended_; }}};
};

}  // namespace tessary::test
