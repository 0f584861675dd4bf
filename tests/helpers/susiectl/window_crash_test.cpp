// Crashes inside windows of a plug-in's own: the system is between them and the guard.
#include <gtest/gtest.h>

#include <array>
#include <functional>

#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/support/process_resources.h"

namespace tessary::test {
namespace {

using susiectl::kCrashed;

const char* const kPlaces[] = {"create", "create-in-create", "init", "command", "posted",
                               "timer",  "destroy"};
const char* const kKinds[] = {"av", "wild-chain", "stack-overflow"};

BOOL CALLBACK Count(HWND, LPARAM counted) {
    ++*reinterpret_cast<size_t*>(counted);
    return TRUE;
}

// The windows of this thread, the objects of the user interface and the handles of this process.
std::array<size_t, 3> Held() {
    size_t windows = 0;
    EnumThreadWindows(GetCurrentThreadId(), Count, reinterpret_cast<LPARAM>(&windows));
    return {windows, GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), HandleCount()};
}

using Action = std::function<void()>;

// Does what is asked for once, in the WM_CREATE of a window of the host's.
LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        const void* const asked = reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams;
        (*static_cast<const Action*>(asked))();
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// True when the system's functions came back to the host in their order.
bool RunInWindow(const Action& action) {
    const wchar_t* const name = L"Host window";
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = HostProcedure;
    windowClass.lpszClassName = name;
    RegisterClassW(&windowClass);
    bool isDone = false;
    Action marked = [&] {
        action();
        isDone = true;
    };
    const HWND window =
        CreateWindowW(name, name, WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, &marked);
    return isDone && IsWindow(window) && DestroyWindow(window);
}

class WindowCrashTest : public testing::Test {
  protected:
    void ExpectContained(const std::string& crash) {
        const int crashes = plugin_.Calls("window");
        const int returns = plugin_.Calls("window-came-back");
        EXPECT_EQ(plugin_.DecodeWith("crash:" + crash + ":GetPicture"), kCrashed) << crash;
        EXPECT_EQ(plugin_.Calls("window"), crashes + 1) << crash;
        EXPECT_EQ(plugin_.Calls("window-came-back"), returns) << crash;
    }

    LoadedPlugin plugin_{L"iftst.spi"};
};

// Also inside a window of the host's.
TEST_F(WindowCrashTest, IsContainedAndLeavesNothingBehind) {
    for (int turn = 0; turn < 3; ++turn) {
        const auto before = Held();
        for (const std::string place : kPlaces)
            for (const char* kind : kKinds) {
                const std::string crash = place + '/' + kind;
                ExpectContained(crash);
                EXPECT_TRUE(RunInWindow([&] {
                    EXPECT_EQ(plugin_.DecodeWith(""), susie::kSuccess);
                    ExpectContained(crash);
                })) << crash;
            }
        EXPECT_TRUE(turn == 0 || Held() == before);  // the first one brings up what stays
    }
}

// The system goes on destroying the window, and runs its procedure once more.
TEST_F(WindowCrashTest, TwiceInTheSameCallIsContained) {
    for (const std::string verb : {"crash:", "handled:"})
        for (const std::string kind : {"av", "wild-chain"})
            EXPECT_EQ(plugin_.DecodeWith(verb + "destroy-twice/" + kind + ":GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.Calls("window-came-back"), 0);
}

// What was there of the system's callback is gone, and one of the host's is open: nothing tells
// which of them would end.
TEST_F(WindowCrashTest, ThatNothingLeadsOutOfEndsTheProcess) {
    EXPECT_EXIT(RunInWindow([&] { plugin_.DecodeWith("crash:create/smash:GetPicture"); }),
                testing::ExitedWithCode(static_cast<int>(0xC0000374)), "");
    EXPECT_TRUE(RunInWindow([&] {
        EXPECT_EQ(plugin_.DecodeWith("crash:smash:GetPicture"), kCrashed) << "there is no window";
    }));
    ExpectContained("create/smash");
}

// DispatchMessage keeps them to itself.
TEST_F(WindowCrashTest, CountsAlsoWhereTheSystemSwallowsIt) {
    for (const std::string kind : {"av", "wild-chain", "illegal"})
        EXPECT_EQ(plugin_.DecodeWith("crash:timer-procedure/" + kind + ":GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.DecodeWith("handled:timer-procedure/none:GetPicture"), susie::kSuccess);
    EXPECT_EQ(plugin_.DecodeWith("handled:timer-procedure/debug-print:GetPicture"),
              susie::kSuccess);
}

}  // namespace
}  // namespace tessary::test
