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

TEST(FormTest, LivesFromLoadToTerminateAndAgain) {
    RecordingForm form;
    for (int round = 0; round < 2; ++round) {
        form.events.clear();
        ASSERT_TRUE(form.Load());
        const HWND window = form.Handle();
        EXPECT_TRUE(form.Load());  // is loaded already
        form.refuse = true;
        form.Unload();
        EXPECT_TRUE(IsWindow(window));
        form.refuse = false;
        form.Unload();
        EXPECT_FALSE(IsWindow(window));
        EXPECT_EQ(form.events, (Events{"load", "query", "query", "unload", "end"}));
    }
}

TEST(FormTest, HandlersThatThrowHarmNobody) {
    RecordingForm form;
    form.fail = true;
    ASSERT_TRUE(form.Load());
    SendMessageW(form.Handle(), WM_COMMAND, 7, 0);
    form.Unload();  // the question failed, so nothing closes
    EXPECT_TRUE(IsWindow(form.Handle()));
    DestroyWindow(form.Handle());
    EXPECT_EQ(form.events, (Events{"load", "command", "query", "unload", "end"}));
}

TEST(FormTest, FollowsTheScreensResolution) {
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    form.events.clear();
    const RECT suggested{40, 50, 840, 650};
    SendMessageW(form.Handle(), WM_DPICHANGED, MAKEWPARAM(192, 192),
                 reinterpret_cast<LPARAM>(&suggested));
    RECT now{};
    GetWindowRect(form.Handle(), &now);
    EXPECT_TRUE(EqualRect(&now, &suggested));
    // Most settings of the system are nothing to us.
    SendMessageW(form.Handle(), WM_SETTINGCHANGE, SPI_SETDESKWALLPAPER, 0);
    EXPECT_EQ(form.events, Events{"metrics"});

    const Metrics metrics(form.Handle());
    EXPECT_EQ(metrics.Scale(96), metrics.Dpi());
    EXPECT_TRUE(metrics.MessageFont());
    MINMAXINFO limits{};
    SendMessageW(form.Handle(), WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(limits.ptMinTrackSize.x, metrics.Scale(300));
    EXPECT_EQ(limits.ptMinTrackSize.y, metrics.Scale(200));
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

TEST(SessionHoldTest, KeepsTheSystemWaitingUntilWorkHasStopped) {
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    std::atomic<bool> isAnswered = false;
    std::thread system;
    {
        const SessionHold outer(form.Handle(), L"outer");
        { const SessionHold inner(form.Handle(), L"inner"); }
        EXPECT_TRUE(IsSessionHeld(form.Handle()));
        const HWND watch = SessionWatch();
        ASSERT_NE(watch, nullptr);
        SendMessageW(watch, WM_ENDSESSION, FALSE, 0);  // somebody else said no
        system = std::thread([&] {
            SendMessageW(watch, WM_ENDSESSION, TRUE, 0);
            isAnswered = true;
        });
        // The work hears of it before the answer, and goes on for a while.
        const ULONGLONG start = GetTickCount64();
        while (!form.sessionEnds && GetTickCount64() - start < 3000)
            DoEvents();
        EXPECT_TRUE(form.sessionEnds);
        Sleep(50);
        EXPECT_FALSE(isAnswered);
    }
    system.join();
    EXPECT_TRUE(isAnswered);
    EXPECT_FALSE(IsSessionHeld(form.Handle()));
    EXPECT_EQ(SessionWatch(), nullptr);
}

// A crash may leave what every new thread needs first with the thread that has crashed.
TEST(SessionHoldTest, WaitsForNoThreadThatCannotBegin) {
    using LockLoader = LONG(WINAPI*)(ULONG flags, ULONG * state, ULONG_PTR * cookie);
    using UnlockLoader = LONG(WINAPI*)(ULONG flags, ULONG_PTR cookie);
    const HMODULE system = GetModuleHandleW(L"ntdll.dll");
    const auto lock = reinterpret_cast<LockLoader>(
        reinterpret_cast<void*>(GetProcAddress(system, "LdrLockLoaderLock")));
    const auto unlock = reinterpret_cast<UnlockLoader>(
        reinterpret_cast<void*>(GetProcAddress(system, "LdrUnlockLoaderLock")));
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    ULONG_PTR cookie = 0;
    ASSERT_EQ(lock(0, nullptr, &cookie), 0);
    {
        const SessionHold hold(form.Handle(), L"held");
        EXPECT_TRUE(IsSessionHeld(form.Handle()));
        EXPECT_EQ(SessionWatch(), nullptr);
    }
    unlock(0, cookie);
    EXPECT_FALSE(IsSessionHeld(form.Handle()));
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

TEST(FormTest, LeavesInputMethodsToTextFields) {
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    const auto takesInputMethod = [](HWND window) {
        const HIMC context = ImmGetContext(window);
        if (context != nullptr) ImmReleaseContext(window, context);
        return context != nullptr;
    };
    const auto made = [](HWND parent, const wchar_t* className, DWORD style) {
        return CreateWindowExW(0, className, L"", WS_CHILD | style, 0, 0, 50, 50, parent, nullptr,
                               nullptr, nullptr);
    };
    EXPECT_FALSE(takesInputMethod(form.Handle()));
    EXPECT_FALSE(takesInputMethod(made(form.Handle(), L"LISTBOX", 0)));
    EXPECT_FALSE(takesInputMethod(made(form.Handle(), L"EDIT", ES_READONLY)));
    EXPECT_TRUE(takesInputMethod(made(form.Handle(), L"EDIT", 0)));
}

TEST(FormTest, PaintsBelowTheCornersOfControlsWithATheme) {
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    const HWND button = CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE, 30, 20, 50, 50,
                                        form.Handle(), nullptr, nullptr, nullptr);
    const UniqueModule themes(LoadLibraryW(L"uxtheme.dll"));
    const auto drawParent = reinterpret_cast<HRESULT(WINAPI*)(HWND, HDC, const RECT*)>(
        reinterpret_cast<void*>(GetProcAddress(themes.Get(), "DrawThemeParentBackground")));
    ASSERT_NE(drawParent, nullptr);
    const UniqueScreenDc screen(GetDC(nullptr));
    const auto cornerAfter = [&](const std::function<void(HDC)>& paint) {
        const UniqueBitmap bitmap(CreateCompatibleBitmap(screen.Get(), 50, 50));
        const UniqueMemoryDc memory(CreateCompatibleDC(screen.Get()));
        const HGDIOBJ former = SelectObject(memory.Get(), bitmap.Get());
        paint(memory.Get());
        const COLORREF corner = GetPixel(memory.Get(), 49, 49);
        SelectObject(memory.Get(), former);
        return corner;
    };
    const COLORREF face = GetSysColor(COLOR_BTNFACE);
    EXPECT_EQ(cornerAfter([&](HDC context) { drawParent(button, context, nullptr); }), face);
    for (const UINT message : {WM_ERASEBKGND, WM_PRINTCLIENT}) {
        EXPECT_EQ(cornerAfter([&](HDC context) {
                      SendMessageW(form.Handle(), message, reinterpret_cast<WPARAM>(context),
                                   PRF_CLIENT);
                  }),
                  face)
            << message;
    }
}

TEST(FormTest, KeepsTheKeyboardWhereItWasBehindATaskOfItsOwn) {
    RecordingForm form;
    ASSERT_TRUE(form.Load());
    form.Show();
    const HWND button = CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE, 0, 0, 50, 50,
                                        form.Handle(), nullptr, nullptr, nullptr);
    SetFocus(button);
    {
        const TaskModal task(nullptr);
        SetFocus(nullptr);  // as some systems do by themselves with what is disabled
    }
    EXPECT_EQ(GetFocus(), button);
}

// The user's hand at a message box, and what he sees of it.
struct Box {
    static void CALLBACK Look(HWND, UINT, UINT_PTR, DWORD) {
        EnumThreadWindows(GetCurrentThreadId(), Answer, 0);
    }
    static BOOL CALLBACK Answer(HWND window, LPARAM) {
        wchar_t name[16]{};
        GetClassNameW(window, name, 16);
        if (std::wstring(name) != L"#32770") return TRUE;
        owner = GetWindow(window, GW_OWNER);
        called = main->flashes > 0;
        EndDialog(window, IDOK);
        return FALSE;
    }
    static inline HWND owner;
    static inline bool called;
    static inline const RecordingForm* main;
};

TEST(MessageBoxTest, StaysWithTheWindowThatTheUserWasInAndCallsHim) {
    EXPECT_EQ(WindowForMessages(), nullptr);
    RecordingForm main;
    RecordingForm bar;
    ASSERT_TRUE(main.Load());
    main.Show();
    ASSERT_TRUE(bar.Load(main.Handle()));
    bar.Show();
    const HWND foreign =
        CreateWindowExW(0, L"STATIC", L"a plug-in's", WS_POPUP | WS_VISIBLE, 0, 0, 9, 9, nullptr,
                        nullptr, GetModuleHandleW(L"user32"), nullptr);
    SetActiveWindow(bar.Handle());
    EXPECT_EQ(WindowForMessages(), bar.Handle());
    SetForegroundWindow(GetDesktopWindow());  // another program's
    ASSERT_EQ(GetActiveWindow(), nullptr);
    EXPECT_EQ(WindowForMessages(), bar.Handle());
    main.flashes = 0;
    Box::main = &main;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, Box::Look);
    EXPECT_EQ(ShowMessageBox(L"text"), IDOK);
    EXPECT_EQ(Box::owner, bar.Handle());
    EXPECT_TRUE(Box::called);
    for (const auto take : {+[](HWND window) { EnableWindow(window, FALSE); },
                            +[](HWND window) { ShowWindow(window, SW_HIDE); }}) {
        SetForegroundWindow(GetDesktopWindow());
        EnableWindow(bar.Handle(), TRUE);
        take(bar.Handle());
        EXPECT_EQ(WindowForMessages(), main.Handle());
    }
    EnableWindow(main.Handle(), FALSE);  // while the program is at work
    EXPECT_EQ(ShowMessageBox(L"text"), IDOK);
    EXPECT_EQ(Box::owner, main.Handle());
    EXPECT_FALSE(IsWindowEnabled(main.Handle()));
    KillTimer(nullptr, timer);
    DestroyWindow(foreign);
}

TEST(TimerTest, TicksUntilStoppedAndNeverNests) {
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
    });
    ASSERT_TRUE(timer.Start(10));
    ASSERT_TRUE(test::RunUntil([&] { return ticks >= 3; }));
    EXPECT_FALSE(nested);
    timer.Stop();
    const int before = ticks;
    Sleep(30);
    DoEvents();
    EXPECT_EQ(ticks, before);
}

TEST(TimerTest, SurvivesItsOwnEndAndHandlersThatThrow) {
    int ticks = 0;
    std::unique_ptr<Timer> timer;
    timer = std::make_unique<Timer>([&] {
        if (++ticks == 2) timer.reset();
        throw std::runtime_error("tick");
    });
    ASSERT_TRUE(timer->Start(10));
    ASSERT_TRUE(test::RunUntil([&] { return timer == nullptr; }));
    EXPECT_EQ(ticks, 2);
}

}  // namespace
}  // namespace tessary
