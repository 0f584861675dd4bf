// What the guarded call contains, also inside windows of a plug-in's own, and what it leaves to the
// plug-in.
#include <gtest/gtest.h>
#include <windows.h>
#include <winternl.h>

#include <array>
#include <atomic>
#include <csetjmp>
#include <cstdlib>
#include <thread>

#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/support/process_resources.h"

namespace tessary::test {
namespace {

using susiectl::kCrashed;

const char* const kCrashKinds[] = {
    "av",     "av-write", "av-jump",     "div-zero", "div-overflow",   "fpu",
    "sse",    "illegal",  "privileged",  "int3",     "stack-overflow", "cpp",
    "delphi", "raise",    "raise-final", "smash",    "wild-chain",     "lost-chain"};

int __stdcall RunFromProgress(int, int, LONG_PTR action) {
    (*reinterpret_cast<const std::function<void()>*>(action))();
    return 0;
}

class GuardTest : public testing::Test {
  protected:
    // Decodes a good picture, and does `action` once in the progress callback.
    int DecodeDoing(const std::function<void()>& action) {
        return plugin_.DecodeWith("progress:1", RunFromProgress,
                                  reinterpret_cast<LONG_PTR>(&action));
    }
    int Crash(const std::string& kind) {
        return plugin_.DecodeWith("crash:" + kind + ":GetPicture");
    }

    // How deep in the stack a plug-in is called.
    ULONG_PTR CallbackDepth() {
        ULONG_PTR depth = 0;
        DecodeDoing([&] { depth = reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)); });
        return depth;
    }

    LoadedPlugin plugin_{L"iftst.spi"};
};

TEST_F(GuardTest, AThousandCrashesOfEveryKindLeaveNothingBehind) {
    const ULONG_PTR depth = CallbackDepth();
    const ULONG handles = HandleCount();
    for (int i = 0; i < 1000; ++i) {
        const std::string kind = kCrashKinds[static_cast<size_t>(i) % std::size(kCrashKinds)];
        ASSERT_EQ(Crash(kind), kCrashed) << kind;
        ASSERT_EQ(plugin_.DecodeWith(""), susie::kSuccess) << "after " << kind;
        ASSERT_EQ(Susiectl().isMemoryDamaged(), 0) << kind;
    }
    // An address that is no function's.
    const auto nothing = reinterpret_cast<FARPROC>(16);
    EXPECT_EQ(Susiectl().getPreview(nothing, "", 0, 0, nullptr, nullptr, nullptr, 0), kCrashed);
    EXPECT_EQ(HandleCount(), handles);
    EXPECT_EQ(CallbackDepth(), depth);
}

TEST_F(GuardTest, ExceptionsThatThePluginHandlesAreItsOwn) {
    for (const std::string kind : {"av", "av-write", "av-jump", "div-zero", "illegal", "cpp",
                                   "delphi", "raise", "stack-overflow"})
        for (const std::string verb : {"handled:", "handled-in-data:"})
            EXPECT_EQ(plugin_.DecodeWith(verb + kind + ":GetPicture"), susie::kSuccess)
                << verb << kind;
    // What debuggers listen to is no crash.
    EXPECT_EQ(Crash("name-thread"), susie::kSuccess);
    EXPECT_EQ(Crash("debug-print"), susie::kSuccess);
}

// Whether the system looks for the chain's end before it asks the first handler: the user's choice,
// and off by itself in many versions.
bool SystemChecksChains() {
    constexpr auto kExecuteFlags = static_cast<PROCESSINFOCLASS>(0x22);
    constexpr ULONG kNotChecked = 0x40;
    ULONG flags = 0;
    NtQueryInformationProcess(GetCurrentProcess(), kExecuteFlags, &flags, sizeof flags, nullptr);
    return (flags & kNotChecked) == 0;
}

// The system ends the process then.
TEST_F(GuardTest, HandlersThatTheSystemDoesNotCallAreNotAsked) {
    const LoadedPlugin without(L"iftst.spi", {}, [](IMAGE_OPTIONAL_HEADER32& header) {
        header.DllCharacteristics |= IMAGE_DLLCHARACTERISTICS_NO_SEH;
    });
    EXPECT_EQ(without.DecodeWith("handled:av:GetPicture"), kCrashed);
    EXPECT_EQ(without.DecodeWith("crash:av:GetPicture"), kCrashed);

    const LoadedPlugin listing(L"iftst.spi", {}, [this](IMAGE_OPTIONAL_HEADER32& header) {
        const auto* const image = reinterpret_cast<const char*>(plugin_.Module());
        const DWORD mark[] = {72, 0x5AFE5E48};
        const std::string_view bytes(image, header.SizeOfImage);
        const size_t at = bytes.find({reinterpret_cast<const char*>(mark), sizeof mark});
        ASSERT_NE(at, bytes.npos);
        header.DataDirectory[IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG] = {static_cast<DWORD>(at), 72};
    });
    EXPECT_EQ(listing.DecodeWith("handled:av:GetPicture"), susie::kSuccess) << "listed";
    EXPECT_EQ(listing.DecodeWith("handled-in-data:av:GetPicture"), susie::kSuccess) << "no image's";
    EXPECT_EQ(listing.DecodeWith("finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(listing.Calls("finally"), 0);

    EXPECT_EQ(plugin_.DecodeWith("finally:cut-chain:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.Calls("finally"), SystemChecksChains() ? 0 : 2) << "a chain without its end";
}

TEST_F(GuardTest, CleanUpCodeOfThePluginRuns) {
    EXPECT_EQ(plugin_.DecodeWith("finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.Calls("finally"), 2);
    EXPECT_EQ(plugin_.DecodeWith("bad-finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.Calls("finally"), 3) << "no more after it has crashed too";
    EXPECT_EQ(plugin_.DecodeWith("jumping-finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.DecodeWith("jumping-finally:av:GetPicture\nfinally:av:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.Calls("finally"), 5) << "a new crash, a new clean-up";
}

// As a plug-in does that has overrun a block and notices it when it frees the next one; the last
// one takes its crash itself.
TEST_F(GuardTest, ACrashInsideAHeapHoldsUpNoOtherThread) {
    for (const std::string last : {"crash:av:GetPicture", "dirty:heap-lock:GetPicture"}) {
        const DWORD before = GetTickCount();
        const int result =
            plugin_.DecodeWith("early:heap-lock:GetPicture\nearly:heap-lock:GetPicture\n" + last);
        EXPECT_EQ(result == kCrashed, last.starts_with("crash")) << last;
        EXPECT_TRUE(Susiectl().isMemoryDamaged());
        EXPECT_LT(GetTickCount() - before, 2000U) << "it waits for nothing to give them back";
        EXPECT_TRUE(EndsInThread(
            [] {
                HANDLE heaps[64];
                for (DWORD i = GetProcessHeaps(64, heaps); i-- > 0;)
                    HeapFree(heaps[i], 0, HeapAlloc(heaps[i], 0, 100));
                std::free(std::malloc(100));
            },
            5000))
            << last;
    }
}

TEST_F(GuardTest, ALockOfAnotherThreadIsLeftToIt) {
    const HANDLE heap = HeapCreate(0, 0, 0);
    const HANDLE locked = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE over = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([=] {
        HeapLock(heap);
        SetEvent(locked);
        WaitForSingleObject(over, 15'000);
        HeapUnlock(heap);
    });
    WaitForSingleObject(locked, INFINITE);
    const int damaged = Susiectl().isMemoryDamaged();
    EXPECT_EQ(Crash("av"), kCrashed);
    EXPECT_EQ(Susiectl().isMemoryDamaged(), damaged);
    EXPECT_FALSE(EndsInThread([=] { HeapUnlock((HeapLock(heap), heap)); }, 300));
    SetEvent(over);
    other.join();
}

// A thread's first overflow leaves the least room: handlers are not asked where they have none.
TEST_F(GuardTest, WorksInManyThreadsAtOnce) {
    std::atomic<size_t> crashes = 0;
    std::array<std::thread, 4> threads;
    for (std::thread& each : threads)
        each = std::thread([&] {
            for (const std::string crash :
                 {"hungry:stack-overflow", "crash:wild-chain", "crash:av", "crash:stack-overflow",
                  "hungry:stack-overflow", "early:heap-lock:GetPicture\ncrash:av"})
                crashes += plugin_.DecodeWith(crash + ":GetPicture") == kCrashed;
        });
    for (std::thread& each : threads)
        each.join();
    EXPECT_EQ(crashes, 6 * threads.size());
}

TEST_F(GuardTest, CallsNestInTheCallback) {
    int depth = 0;
    int crashes = 0;
    const std::function<void()> nest = [&] {
        for (const std::string kind : kCrashKinds)
            crashes += Crash(kind) == kCrashed;
        if (++depth == 6) return;
        EXPECT_EQ(DecodeDoing(nest), susie::kSuccess);
    };
    nest();
    EXPECT_EQ(crashes, 6 * static_cast<int>(std::size(kCrashKinds)));
}

jmp_buf outerCall;

int __stdcall JumpOut(int, char*, int) {
    std::longjmp(outerCall, 1);
}

int __stdcall CallAndBeJumpedTo(const char*, LONG_PTR, uint32_t, HLOCAL*, HLOCAL*,
                                susie::ProgressCallback progress, LONG_PTR userData) {
    if (setjmp(outerCall) == 0)
        Susiectl().getPluginInfo(reinterpret_cast<FARPROC>(reinterpret_cast<void*>(JumpOut)), 0,
                                 nullptr, 0);
    return progress(0, 0, userData);
}

int __stdcall Answer7(int, int, LONG_PTR) {
    return 7;
}

TEST_F(GuardTest, AJumpOverANestedCallEndsIt) {
    const auto function = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(CallAndBeJumpedTo));
    EXPECT_EQ(Susiectl().getPicture(function, "", 0, 0, nullptr, nullptr, Answer7, 0), 7);
}

TEST_F(GuardTest, ACrashInTheCallbackEndsTheOuterCallOnly) {
    int inner = -1;
    EXPECT_EQ(DecodeDoing([&] {
                  inner = plugin_.DecodeWith("");
                  *reinterpret_cast<volatile int*>(inner) = 0;
              }),
              kCrashed);
    EXPECT_EQ(inner, susie::kSuccess);
    EXPECT_EQ(plugin_.DecodeWith(""), susie::kSuccess);
}

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
