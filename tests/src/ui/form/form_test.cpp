// A form's life, and the message loop that forms and timers live in.
#include "ui/form/form.h"

#include <gtest/gtest.h>
#include <imm.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "app/base/call_user.h"
#include "app/base/message_box.h"
#include "app/base/quit.h"
#include "app/base/task_modal.h"
#include "tests/src/ui/dialogs/driven_dialog.h"
#include "tests/src/ui/run_until.h"
#include "ui/form/message_loop.h"
#include "ui/form/session_hold.h"
#include "ui/form/timer.h"

namespace tessary {
namespace {

using Events = std::vector<std::string>;

class RecordingForm final : public Form {
  public:
    RecordingForm() : Form({.className = L"TessaryRecordingForm", .caption = L"記録"}) {}
    ~RecordingForm() = default;

    HWND Add(const wchar_t* className, DWORD style = 0) const {
        return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 50, 50,
                               Handle(), nullptr, nullptr, nullptr);
    }

    Events events;
    bool refuse = false;
    bool fail = false;  // every handler throws
    int flashes = 0;    // of its caption, and others of its looks
    bool sessionEnds = false;

  private:
    void Record(const char* event) {
        events.push_back(event);
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
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override {
        flashes += message == WM_NCACTIVATE ? 1 : 0;
        sessionEnds |= message == WM_ENDSESSION;
        return Form::OnMessage(message, wParam, lParam);
    }
};

class FormTest : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(form_.Load());
        form_.events.clear();
    }
    RecordingForm form_;
};
using SessionHoldTest = FormTest;

TEST_F(FormTest, LivesFromLoadToTerminateAndAgain) {
    form_.Unload();
    form_.events.clear();
    ASSERT_TRUE(form_.Load());
    EXPECT_TRUE(form_.Load());  // is loaded already
    const HWND window = form_.Handle();
    form_.refuse = true;
    form_.Unload();
    EXPECT_TRUE(IsWindow(window));
    form_.refuse = false;
    form_.Unload();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(form_.events, (Events{"load", "query", "query", "unload", "end"}));
}

TEST_F(FormTest, HandlersThatThrowHarmNobody) {
    RecordingForm form;
    form.fail = true;
    ASSERT_TRUE(form.Load());
    SendMessageW(form.Handle(), WM_COMMAND, 7, 0);
    form.Unload();  // the question failed, so nothing closes
    EXPECT_TRUE(IsWindow(form.Handle()));
    DestroyWindow(form.Handle());
    EXPECT_EQ(form.events, (Events{"load", "command", "query", "unload", "end"}));
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
    EXPECT_EQ(form_.events, Events{"metrics"});
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
        EXPECT_TRUE(test::RunUntil([&] { return form_.sessionEnds; }));
        Sleep(50);
        EXPECT_FALSE(isAnswered);
    }
    system.join();
    EXPECT_TRUE(isAnswered);
    EXPECT_FALSE(IsSessionHeld(form_.Handle()));
    EXPECT_EQ(SessionWatch(), nullptr);
}

// A crash may leave what every new thread needs first with the thread that has crashed.
TEST_F(SessionHoldTest, WaitsForNoThreadThatCannotBegin) {
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    const auto call = [&]<typename... Arguments>(const char* function, Arguments... arguments) {
        return reinterpret_cast<LONG(WINAPI*)(Arguments...)>(
            reinterpret_cast<void*>(GetProcAddress(system, function)))(arguments...);
    };
    ULONG_PTR cookie = 0;
    ULONG* const noState = nullptr;
    ASSERT_EQ(call("LdrLockLoaderLock", ULONG{0}, noState, &cookie), 0);
    {
        const SessionHold hold(form_.Handle(), L"held");
        EXPECT_TRUE(IsSessionHeld(form_.Handle()));
        EXPECT_EQ(SessionWatch(), nullptr);
    }
    call("LdrUnlockLoaderLock", ULONG{0}, cookie);
    EXPECT_FALSE(IsSessionHeld(form_.Handle()));
}

constexpr UINT kMessage = WM_APP + 77;

void PostTwo() {
    for (int post = 0; post < 2; ++post)
        PostThreadMessageW(GetCurrentThreadId(), kMessage, 0, 0);
}

TEST(MessageLoopTest, DoEventsLeavesQuittingToTheOuterLoop) {
    int seen = 0;
    const MessageFilter count([&](MSG& message) { return message.message == kMessage && ++seen; });
    PostTwo();
    EXPECT_TRUE(DoEvents());
    EXPECT_EQ(seen, 2);
    PostQuitMessage(7);  // not ours
    EXPECT_TRUE(DoEvents());
    // What was posted beside it stays, in its order.
    for (WPARAM post = 1; post <= 2; ++post)
        PostThreadMessageW(GetCurrentThreadId(), kMessage, post, 0);
    PostQuitMessage(7);
    DropForeignQuit();
    MSG taken{};
    for (WPARAM post = 1; post <= 2; ++post) {
        EXPECT_TRUE(PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE));
        EXPECT_EQ(taken.wParam, post);
    }
    EXPECT_FALSE(PeekMessageW(&taken, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    RequestQuit(42);
    PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE);
    DropForeignQuit();  // ours comes back
    EXPECT_FALSE(DoEvents());
    EXPECT_FALSE(DoEvents());
    EXPECT_EQ(RunMessageLoop(), 42);
    EXPECT_TRUE(DoEvents());
}

TEST(MessageLoopTest, LatestFilterTakesFirstAndMayEndItself) {
    int outer = 0;
    int inner = 0;
    const MessageFilter first([&](MSG& message) { return message.message == kMessage && ++outer; });
    std::unique_ptr<MessageFilter> second;
    second = std::make_unique<MessageFilter>([&](MSG& message) {
        if (message.message != kMessage) return false;
        ++inner;
        second.reset();
        return true;
    });
    const MessageFilter failing([](MSG&) -> bool { throw std::runtime_error("filter"); });
    PostTwo();
    DoEvents();
    EXPECT_EQ(inner, 1);
    EXPECT_EQ(outer, 1);
}

TEST_F(FormTest, LeavesInputMethodsToTextFields) {
    const auto takesInputMethod = [](HWND window) {
        const HIMC context = ImmGetContext(window);
        if (context != nullptr) ImmReleaseContext(window, context);
        return context != nullptr;
    };
    EXPECT_FALSE(takesInputMethod(form_.Handle()));
    EXPECT_FALSE(takesInputMethod(form_.Add(L"LISTBOX")));
    EXPECT_FALSE(takesInputMethod(form_.Add(L"EDIT", ES_READONLY)));
    EXPECT_TRUE(takesInputMethod(form_.Add(L"EDIT")));
}

// Controls with a theme ask their parent for what is below their corners.
TEST_F(FormTest, PaintsBelowTheCornersOfControls) {
    const UniqueScreenDc screen(GetDC(nullptr));
    for (const UINT message : {WM_ERASEBKGND, WM_PRINTCLIENT}) {
        const UniqueBitmap bitmap(CreateCompatibleBitmap(screen.Get(), 50, 50));
        const UniqueMemoryDc memory(CreateCompatibleDC(screen.Get()));
        const HGDIOBJ former = SelectObject(memory.Get(), bitmap.Get());
        SendMessageW(form_.Handle(), message, reinterpret_cast<WPARAM>(memory.Get()), PRF_CLIENT);
        EXPECT_EQ(GetPixel(memory.Get(), 49, 49), GetSysColor(COLOR_BTNFACE)) << message;
        SelectObject(memory.Get(), former);
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
    ShowWindow(form_.Handle(), SW_SHOWNORMAL);
    ASSERT_TRUE(bar.Load(form_.Handle()));
    ShowWindow(bar.Handle(), SW_SHOWNORMAL);
    const HWND foreign =
        CreateWindowExW(0, L"STATIC", L"a plug-in's", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                        nullptr, GetModuleHandleW(L"user32"), nullptr);
    SetActiveWindow(bar.Handle());
    EXPECT_EQ(WindowForMessages(), bar.Handle());
    SetForegroundWindow(GetDesktopWindow());  // another program's
    ASSERT_EQ(GetActiveWindow(), nullptr);
    EXPECT_EQ(WindowForMessages(), bar.Handle());
    form_.flashes = 0;
    test::DrivenDialog user({[&](HWND box) {
                                 EXPECT_EQ(GetWindow(box, GW_OWNER), bar.Handle());
                                 EXPECT_GT(form_.flashes, 0);
                                 EndDialog(box, IDOK);
                             },
                             [&](HWND box) {
                                 EXPECT_EQ(GetWindow(box, GW_OWNER), form_.Handle());
                                 EndDialog(box, IDOK);
                             }});
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
    EXPECT_TRUE(user.IsDone());
    EXPECT_FALSE(IsWindowEnabled(form_.Handle()));
    DestroyWindow(foreign);
}

TEST(TimerTest, TicksUntilStoppedNeverNestsAndSurvivesWhatItsHandlerDoes) {
    int ticks = 0;
    int depth = 0;
    bool nested = false;
    Timer timer([&] {
        nested = nested || depth > 0;
        ++depth;
        ++ticks;
        Sleep(30);  // the next tick is due
        DoEvents();
        --depth;
        throw std::runtime_error("tick");
    });
    ASSERT_TRUE(timer.Start(10));
    ASSERT_TRUE(test::RunUntil([&] { return ticks >= 3; }));
    EXPECT_FALSE(nested);
    timer.Stop();
    EXPECT_FALSE(test::RunUntil([&, before = ticks] { return ticks != before; }, 30));

    std::unique_ptr<Timer> ending;
    ending = std::make_unique<Timer>([&] { ending.reset(); });
    ASSERT_TRUE(ending->Start(10));
    EXPECT_TRUE(test::RunUntil([&] { return ending == nullptr; }));
}

}  // namespace
}  // namespace tessary
