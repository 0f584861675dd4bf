// What the empty view says of how to begin.
#include "places/place_memory.h"
#include "tests/src/ui/main/main_window.h"
#include "tests/support/temporary_folder.h"

namespace tessary::test {
namespace {

class StartHintTest : public MainWindowTest {
  protected:
    void SetUp() override {
        for (int i = 0; i < 9; ++i) {
            files_.insert(files_.begin(),
                          folder_.Write(std::to_wstring(i) + L".bmp", "not decoded here"));
            AddRecent(files_.front());
        }
        files_.resize(8);
    }
    // Those that can be chosen.
    std::vector<std::wstring> Links() const {
        std::vector<std::wstring> texts;
        for (HWND link = GetWindow(window_.Hint().Handle(), GW_CHILD); link != nullptr;
             link = GetWindow(link, GW_HWNDNEXT)) {
            wchar_t text[MAX_PATH] = {};
            GetWindowTextW(link, text, MAX_PATH);
            if ((GetWindowLongW(link, GWL_STYLE) & WS_VISIBLE) != 0) texts.emplace_back(text);
        }
        return texts;
    }
    bool IsOpen() const {
        DoEvents();
        return window_.Hint().IsOpen();
    }
    void Press(int key) const {
        PostMessageW(GetFocus(), WM_KEYDOWN, static_cast<WPARAM>(key), 0);
        DoEvents();
    }

    TemporaryFolder folder_;
    std::vector<std::wstring> files_;
};

TEST_F(StartHintTest, StandsInTheEmptyViewAloneAndNamesWhatIsRemembered) {
    Load(500, 400);
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(Links(), files_);
    ShowPicture(20, 10);
    EXPECT_FALSE(window_.Hint().IsOpen());  // at once
    window_.ClearPicture();
    EXPECT_TRUE(IsOpen());
    window_.ShowReason(L"空です。");
    EXPECT_FALSE(IsOpen());
    window_.ClearPicture();
    controlBar_.files = {files_[0]};
    EXPECT_FALSE(IsOpen());
    controlBar_.files.clear();
    SetRemembering(false);
    window_.ClearPicture();
    EXPECT_TRUE(IsOpen());
    EXPECT_TRUE(Links().empty());
    window_.OpenLater({folder_.Path() + L"none"});
    EXPECT_FALSE(window_.Hint().IsOpen());
    EXPECT_TRUE(IsOpen());  // there was nothing to open
}

TEST_F(StartHintTest, KeyboardChoosesAndSmallViewsShowWhatFits) {
    Load(500, 400);
    window_.Show();
    ASSERT_TRUE(IsOpen());
    window_.TakeFocus();
    for (const int key : {VK_TAB, VK_DOWN, VK_UP, VK_UP})
        Press(key);
    Press(VK_ESCAPE);
    EXPECT_EQ(GetFocus(), window_.pictureView().Handle());
    for (const int key : {VK_DOWN, VK_DOWN, VK_RETURN})
        Press(key);
    EXPECT_EQ(controlBar_.lists, (std::vector<std::vector<std::wstring>>{{files_[1]}}));
    EXPECT_TRUE(controlBar_.pressed.empty());  // Enter is not the program's there
    SizeView(500, 180);
    window_.ClearPicture();
    EXPECT_TRUE(IsOpen());
    EXPECT_LT(Links().size(), files_.size());
    const RECT hint = FrameOf(window_.Hint().Handle());
    const RECT view = FrameOf(window_.pictureView().Handle());
    RECT beyond{};
    EXPECT_FALSE(SubtractRect(&beyond, &hint, &view));
}

}  // namespace
}  // namespace tessary::test
