// Crashes inside windows of a plug-in's own: the system is between them and the guard.
#include <gtest/gtest.h>

#include <functional>

#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/plugins/test_plugins.h"
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

size_t WindowsOfThisThread() {
    size_t count = 0;
    EnumThreadWindows(GetCurrentThreadId(), Count, reinterpret_cast<LPARAM>(&count));
    return count;
}

// What the host does in the WM_CREATE of a window of its own.
struct InCreate {
    const std::function<void()>& action;
    bool isDone = false;
};

LRESULT CALLBACK HostProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE) {
        auto& in =
            *static_cast<InCreate*>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams);
        in.action();
        in.isDone = true;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// True when the system's functions came back to the host in their order.
bool RunInWindow(const std::function<void()>& action) {
    const wchar_t* const name = L"Host window";
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = HostProcedure;
    windowClass.lpszClassName = name;
    RegisterClassW(&windowClass);
    InCreate in{action};
    const HWND window =
        CreateWindowW(name, name, WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, &in);
    return in.isDone && IsWindow(window) && DestroyWindow(window);
}

class WindowCrashTest : public testing::Test {
  protected:
    void ExpectContained(const std::string& crash) {
        const int crashes = TestCallCount(plugin_.Module(), "window");
        const int returns = TestCallCount(plugin_.Module(), "window-came-back");
        EXPECT_EQ(plugin_.DecodeWith("crash:" + crash + ":GetPicture"), kCrashed) << crash;
        EXPECT_EQ(TestCallCount(plugin_.Module(), "window"), crashes + 1) << crash;
        EXPECT_EQ(TestCallCount(plugin_.Module(), "window-came-back"), returns) << crash;
    }

    LoadedPlugin plugin_{L"iftst.spi"};
};

// Also inside a window of the host's.
TEST_F(WindowCrashTest, IsContained) {
    for (const std::string place : kPlaces)
        for (const char* kind : kKinds) {
            const std::string crash = place + '/' + kind;
            ExpectContained(crash);
            EXPECT_TRUE(RunInWindow([&] {
                EXPECT_EQ(plugin_.DecodeWith(""), susie::kSuccess);
                ExpectContained(crash);
            })) << crash;
        }
}

// The system goes on destroying the window, and runs its procedure once more.
TEST_F(WindowCrashTest, TwiceInTheSameCallIsContained) {
    for (const std::string verb : {"crash:", "handled:"})
        for (const std::string kind : {"av", "wild-chain"})
            EXPECT_EQ(plugin_.DecodeWith(verb + "destroy-twice/" + kind + ":GetPicture"), kCrashed);
    EXPECT_EQ(TestCallCount(plugin_.Module(), "window-came-back"), 0);
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

TEST_F(WindowCrashTest, FiftyLeaveNothingBehind) {
    const auto crash = [&](size_t i) {
        const std::string place = kPlaces[i % std::size(kPlaces)];
        const std::string kind = kKinds[i % std::size(kKinds)];
        ASSERT_TRUE(RunInWindow([&] { ExpectContained(place + '/' + kind); }));
    };
    for (size_t i = 0; i < std::size(kPlaces); ++i)
        crash(i);
    const ULONG handles = HandleCount();
    const DWORD objects = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    const size_t windows = WindowsOfThisThread();
    for (size_t i = 0; i < 50; ++i)
        crash(i);
    EXPECT_EQ(WindowsOfThisThread(), windows);
    EXPECT_EQ(GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS), objects);
    EXPECT_EQ(HandleCount(), handles);
}

}  // namespace
}  // namespace tessary::test
