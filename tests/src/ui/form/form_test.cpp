// A form's life, and the message loop that forms and timers live in.
#include "ui/form/form.h"

#include <gtest/gtest.h>
#include <imm.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

#include "app/base/call_user.h"
#include "app/base/message_box.h"
#include "app/base/quit.h"
#include "app/base/task_modal.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/src/ui/message_spy.h"
#include "tests/src/ui/run_until.h"
#include "ui/form/grid_layout.h"
#include "ui/form/session_hold.h"
#include "ui/form/timer.h"

// The system's, and in no header of its.
extern "C" {
LONG WINAPI LdrLockLoaderLock(ULONG flags, ULONG* state, ULONG_PTR* cookie);
LONG WINAPI LdrUnlockLoaderLock(ULONG flags, ULONG_PTR cookie);
}

namespace tessary {
namespace {

class RecordingForm final : public Form {
  public:
    RecordingForm() : Form({.className = L"TessaryRecordingForm", .caption = L"記録"}) {}

    HWND Add(const wchar_t* className, DWORD style = 0) const {
        return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 50, 50,
                               Handle(), nullptr, nullptr, nullptr);
    }

    std::string events;
    bool refuse = false;
    bool fail = false;  // every handler throws

  private:
    void Record(const std::string& event) {
        events += event + ' ';
        if (fail) throw std::runtime_error(event);
    }
    void Form_Load() override { Record("load"); }
    void Form_QueryUnload(bool& cancel) override {
        cancel = refuse;
        Record("query");
    }
    void Form_Unload() override { Record(IsWindow(Handle()) ? "unload" : "unload too late"); }
    void Form_Terminate() override { Record(Handle() == nullptr ? "end" : "end too early"); }
    void Form_Command(int id) override { Record(id == 7 ? "command" : "?"); }
    void Form_MetricsChanged() override { Record("metrics"); }
    SIZE MinimumSize() const override { return {300, 200}; }
};

class FormTest : public testing::Test {
  protected:
    FormTest() {
        EXPECT_TRUE(form_.Load());
        form_.events.clear();
    }
    RecordingForm form_;
};
using SessionHoldTest = FormTest;

TEST_F(FormTest, LivesFromLoadToTerminateAndAgainWhateverItsHandlersDo) {
    form_.refuse = true;
    form_.Unload();
    form_.refuse = false;
    form_.fail = true;
    form_.Unload();  // the question fails, so nothing closes
    EXPECT_TRUE(IsWindow(form_.Handle()));
    SendMessageW(form_.Handle(), WM_COMMAND, 7, 0);
    form_.fail = false;
    form_.Unload();
    EXPECT_EQ(form_.Handle(), nullptr);
    form_.fail = true;
    EXPECT_TRUE(form_.Load());
    EXPECT_TRUE(form_.Load());  // is loaded already
    DestroyWindow(form_.Handle());
    EXPECT_EQ(form_.events, "query query command query unload end load unload end ");
}

TEST_F(FormTest, FollowsTheScreensResolution) {
    const RECT suggested{40, 50, 840, 650};
    SendMessageW(form_.Handle(), WM_DPICHANGED, MAKEWPARAM(192, 192),
                 reinterpret_cast<LPARAM>(&suggested));
    RECT now{};
    GetWindowRect(form_.Handle(), &now);
    EXPECT_TRUE(EqualRect(&now, &suggested));
    // Most settings of the system are nothing to us.
    SendMessageW(form_.Handle(), WM_SETTINGCHANGE, SPI_SETDESKWALLPAPER, 0);
    EXPECT_EQ(form_.events, "metrics ");
    MINMAXINFO limits{};
    SendMessageW(form_.Handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(limits.ptMinTrackSize.x, MulDiv(300, Metrics(form_.Handle()).Dpi(), 96));
}

// The window that keeps the system waiting, of this process.
HWND SessionWatch() {
    HWND found = nullptr;
    DWORD process = 0;
    do {
        found = FindWindowExW(nullptr, found, L"TessarySessionWatch", nullptr);
        GetWindowThreadProcessId(found, &process);
    } while (found != nullptr && process != GetCurrentProcessId());
    return found;
}

TEST_F(SessionHoldTest, KeepsTheSystemWaitingUntilWorkHasStopped) {
    bool isTold = false;
    const test::MessageSpy spy(
        form_.Handle(), [&](UINT message, WPARAM, LPARAM) { isTold |= message == WM_ENDSESSION; });
    std::atomic<bool> isAnswered = false;
    std::thread system;
    {
        const SessionHold outer(form_.Handle(), L"outer");
        { const SessionHold inner(form_.Handle(), L"inner"); }
        EXPECT_TRUE(IsSessionHeld(form_.Handle()));
        const HWND watch = SessionWatch();
        ASSERT_NE(watch, nullptr);
        SendMessageW(watch, WM_ENDSESSION, FALSE, 0);  // somebody else said no
        system = std::thread([&] {
            SendMessageW(watch, WM_ENDSESSION, TRUE, 0);
            isAnswered = true;
        });
        // The work hears of it before the answer, and goes on for a while.
        EXPECT_TRUE(test::RunUntil([&] { return isTold; }));
        Sleep(50);
        EXPECT_FALSE(isAnswered);
    }
    system.join();
    EXPECT_FALSE(IsSessionHeld(form_.Handle()));
    EXPECT_EQ(SessionWatch(), nullptr);
}

// A crash may leave what every new thread needs first with the thread that has crashed.
TEST_F(SessionHoldTest, WaitsForNoThreadThatCannotBegin) {
    ULONG_PTR cookie = 0;
    ASSERT_EQ(LdrLockLoaderLock(0, nullptr, &cookie), 0);
    {
        const SessionHold hold(form_.Handle(), L"held");
        EXPECT_TRUE(IsSessionHeld(form_.Handle()));
        EXPECT_EQ(SessionWatch(), nullptr);
    }
    LdrUnlockLoaderLock(0, cookie);
    EXPECT_FALSE(IsSessionHeld(form_.Handle()));
}

void PostTwo() {
    for (const WPARAM post : {1, 2})
        PostThreadMessageW(GetCurrentThreadId(), WM_APP + 77, post, 0);
}

TEST(MessageLoopTest, DoEventsLeavesQuittingToTheOuterLoop) {
    PostQuitMessage(7);  // not ours
    EXPECT_TRUE(DoEvents());
    // What was posted beside it stays, in its order.
    PostTwo();
    PostQuitMessage(7);
    DropForeignQuit();
    MSG taken{};
    for (const WPARAM post : {1, 2}) {
        EXPECT_TRUE(PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(taken.wParam, post);
    }
    EXPECT_FALSE(PeekMessageW(&taken, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    RequestQuit(42);
    PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE);
    DropForeignQuit();  // ours comes back
    EXPECT_FALSE(DoEvents());
    EXPECT_EQ(RunMessageLoop(), 42);
    EXPECT_TRUE(DoEvents());
}

// As the system's loop does it that moves windows.
TEST(MessageLoopTest, ARequestThatANestedLoopTakesEndsItAllTheSame) {
    // Another request, so that the loop ends in any case.
    Timer late([] { PostQuitMessage(99); });
    late.Start(5000);
    const MessageFilter nested([&](const MSG& message) {
        if (message.message != WM_APP) return false;
        RequestQuit(7);
        MSG taken{};
        while (GetMessageW(&taken, nullptr, 0, 0) > 0) {
        }
        return true;
    });
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
    EXPECT_EQ(RunMessageLoop(), 7);
}

TEST(MessageLoopTest, LatestFilterTakesFirstAndMayEndItself) {
    std::string taken;
    const MessageFilter first([&](MSG&) {
        taken += "outer ";
        return true;
    });
    std::unique_ptr<MessageFilter> second;
    second = std::make_unique<MessageFilter>([&](MSG&) {
        taken += "inner ";
        second.reset();
        return true;
    });
    const MessageFilter failing([](MSG&) -> bool { throw std::runtime_error("filter"); });
    PostTwo();
    DoEvents();
    EXPECT_EQ(taken, "inner outer ");
}

TEST_F(FormTest, LeavesInputMethodsToTextFields) {
    const std::pair<HWND, bool> table[] = {{form_.Handle(), false},
                                           {form_.Add(L"LISTBOX"), false},
                                           {form_.Add(L"EDIT", ES_READONLY), false},
                                           {form_.Add(L"EDIT"), true}};
    for (const auto& [window, takes] : table) {
        const HIMC context = ImmGetContext(window);
        EXPECT_EQ(context != nullptr, takes);
        if (context != nullptr) ImmReleaseContext(window, context);
    }
}

TEST_F(FormTest, KeepsTheKeyboardWhereItWasBehindATaskOfItsOwn) {
    ShowWindow(form_.Handle(), SW_SHOWNORMAL);
    const HWND button = form_.Add(L"BUTTON");
    SetFocus(button);
    {
        const TaskModal task(nullptr);
        SetFocus(nullptr);  // as some systems do by themselves with what is disabled
    }
    EXPECT_EQ(GetFocus(), button);
}

TEST_F(FormTest, MessagesStayWithTheWindowThatTheUserWasInAndCallHim) {
    EXPECT_EQ(WindowForMessages(), nullptr);
    RecordingForm bar;
    ASSERT_TRUE(bar.Load(form_.Handle()));
    for (const Form* const form : {&form_, &bar})
        ShowWindow(form->Handle(), SW_SHOWNORMAL);
    const HWND foreign =
        CreateWindowExW(0, L"STATIC", L"a plug-in's", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                        nullptr, GetModuleHandleW(L"user32"), nullptr);
    SetActiveWindow(bar.Handle());
    EXPECT_EQ(WindowForMessages(), bar.Handle());
    SetForegroundWindow(GetDesktopWindow());  // another program's
    ASSERT_EQ(GetActiveWindow(), nullptr);
    int flashes = 0;
    const test::MessageSpy spy(
        form_.Handle(), [&](UINT message, WPARAM, LPARAM) { flashes += message == WM_NCACTIVATE; });
    std::vector<HWND> owners;
    const auto answer = [&](HWND box) {
        owners.push_back(GetWindow(box, GW_OWNER));
        EXPECT_GT(flashes, 0);
        EndDialog(box, IDOK);
    };
    test::DrivenDialog user({answer, answer});
    EXPECT_EQ(ShowMessageBox(L"text"), IDOK);
    for (const auto take : {+[](HWND window) { EnableWindow(window, FALSE); },
                            +[](HWND window) { ShowWindow(window, SW_HIDE); }}) {
        SetForegroundWindow(GetDesktopWindow());
        EnableWindow(bar.Handle(), TRUE);
        take(bar.Handle());
        EXPECT_EQ(WindowForMessages(), form_.Handle());
    }
    EnableWindow(form_.Handle(), FALSE);  // while the program is at work
    EXPECT_EQ(ShowMessageBox(L"text"), IDOK);
    EXPECT_EQ(owners, (std::vector{bar.Handle(), form_.Handle()}));
    EXPECT_FALSE(IsWindowEnabled(form_.Handle()));
    DestroyWindow(foreign);
}

TEST(TimerTest, TicksUntilStoppedNeverNestsAndSurvivesWhatItsHandlerDoes) {
    int ticks = 0;
    int depth = 0;
    Timer timer([&] {
        EXPECT_EQ(depth++, 0) << "nested";
        ++ticks;
        Sleep(30);  // the next tick is due
        DoEvents();
        --depth;
        throw std::runtime_error("tick");
    });
    ASSERT_TRUE(timer.Start(10));
    ASSERT_TRUE(test::RunUntil([&] { return ticks >= 3; }));
    timer.Stop();
    EXPECT_FALSE(test::RunUntil([&, before = ticks] { return ticks != before; }, 30));

    std::unique_ptr<Timer> ending;
    ending = std::make_unique<Timer>([&] { ending.reset(); });
    ASSERT_TRUE(ending->Start(10));
    EXPECT_TRUE(test::RunUntil([&] { return ending == nullptr; }));
}

TEST(GridLayoutTest, CellsLieInRowsOfAsManyAsFit) {
    constexpr int64_t kFar = 3'000'000'000;
    const GridLayout grid(2'000'000'000, {100, 120}, {330, 400});
    EXPECT_EQ(grid.Columns(), 3);
    EXPECT_GT(grid.MostScrolled(), kFar);
    for (const int64_t scrolled : {int64_t{0}, kFar}) {
        const int first = grid.FirstIn(0, scrolled);
        for (int i = first; i < first + 9; ++i) {
            const RECT cell = grid.Cell(i, scrolled);
            EXPECT_EQ(grid.At({cell.left, cell.top}, scrolled), i);
            EXPECT_EQ(grid.At({cell.right - 1, cell.bottom - 1}, scrolled), i);
        }
    }
    const GridLayout few(8, {100, 120}, {330, 200});
    EXPECT_EQ(few.At({320, 250}, 0), -1);
    EXPECT_EQ(few.ScrolledTo(7, 0), 160);
    EXPECT_EQ(few.ScrolledTo(0, 160), 0);
    const auto moved = [&](int key) {
        std::vector<int> all;
        for (const int from : {0, 4, 5, 7})
            all.push_back(few.Moved(from, key));
        return all;
    };
    EXPECT_EQ(moved(VK_UP), (std::vector{0, 1, 2, 4}));
    EXPECT_EQ(moved(VK_DOWN), (std::vector{3, 7, 7, 7}));
    EXPECT_EQ(moved(VK_LEFT), (std::vector{0, 3, 4, 6}));
    EXPECT_EQ(moved(VK_NEXT), (std::vector{3, 7, 7, 7}));
    EXPECT_EQ(moved(VK_PRIOR), (std::vector{0, 1, 2, 4}));
    EXPECT_EQ(GridLayout(3, {100, 100}, {40, 50}).Columns(), 1);
}

}  // namespace
}  // namespace tessary
