// What the guarded call contains, and what it leaves to the plug-in.
#include <gtest/gtest.h>
#include <windows.h>
#include <winternl.h>

#include <array>
#include <atomic>
#include <csetjmp>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/plugins/test_plugins.h"
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
        return plugin_.Decode("TST 4x3x24\nprogress:1\n", RunFromProgress,
                              reinterpret_cast<LONG_PTR>(&action));
    }

    // How deep in the stack a plug-in is called.
    ULONG_PTR CallbackDepth() {
        ULONG_PTR depth = 0;
        DecodeDoing([&] { depth = reinterpret_cast<ULONG_PTR>(__builtin_frame_address(0)); });
        return depth;
    }

    LoadedPlugin plugin_{L"iftst.spi"};
};

TEST_F(GuardTest, EveryKindOfCrashIsAnswered255) {
    for (const std::string kind : kCrashKinds) {
        EXPECT_EQ(plugin_.DecodeWith("crash:" + kind + ":GetPicture"), kCrashed) << kind;
        EXPECT_EQ(plugin_.DecodeWith(""), susie::kSuccess) << "after " << kind;
        EXPECT_EQ(Susiectl().isMemoryDamaged(), 0) << kind;
    }
}

TEST_F(GuardTest, EveryFunctionIsGuarded) {
    const LoadedPlugin all(L"picture_and_archive.spi");
    const auto run = [&](const char* name, const auto& call) {
        const std::string script =
            "TST 1x1x24\ncrash:av:" + std::string(name) + std::string(2050, '\n');
        EXPECT_EQ(call(all[name], script.c_str()), kCrashed) << name;
    };
    char block[512];
    const auto& susiectl = Susiectl();
    run("IsSupported", [&](auto f, auto text) { return susiectl.isSupported(f, "x.tst", text); });
    run("GetPictureInfo", [&](auto f, auto text) {
        return susiectl.getPictureInfo(f, text, 100, 1,
                                       reinterpret_cast<susie::PictureInfo*>(block));
    });
    run("GetPreview", [&](auto f, auto text) {
        return susiectl.getPreview(f, text, 100, 1, nullptr, nullptr, nullptr, 0);
    });
    run("GetArchiveInfo",
        [&](auto f, auto text) { return susiectl.getArchiveInfo(f, text, 100, 1, nullptr); });
    run("GetFileInfo", [&](auto f, auto text) {
        return susiectl.getFileInfo(f, text, 100, "a", 1,
                                    reinterpret_cast<susie::FileInfo*>(block));
    });
    run("GetFile",
        [&](auto f, auto text) { return susiectl.getFile(f, text, 0, block, 1, nullptr, 0); });
    const LoadedPlugin info(L"info_crash.spi");
    EXPECT_EQ(susiectl.getPluginInfo(info["GetPluginInfo"], 0, block, 256), kCrashed);
    // An address that is no function's.
    EXPECT_EQ(susiectl.getPluginInfo(reinterpret_cast<FARPROC>(16), 0, block, 256), kCrashed);
}

TEST_F(GuardTest, ExceptionsThatThePluginHandlesAreItsOwn) {
    for (const std::string kind : {"av", "av-write", "av-jump", "div-zero", "illegal", "cpp",
                                   "delphi", "raise", "stack-overflow"})
        for (const std::string verb : {"handled:", "handled-in-data:"})
            EXPECT_EQ(plugin_.DecodeWith(verb + kind + ":GetPicture"), susie::kSuccess)
                << verb << kind;
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
    const TemporaryFolder folder;
    const LoadedPlugin without(folder, [](IMAGE_OPTIONAL_HEADER32& header) {
        header.DllCharacteristics |= IMAGE_DLLCHARACTERISTICS_NO_SEH;
    });
    EXPECT_EQ(without.DecodeWith("handled:av:GetPicture"), kCrashed);
    EXPECT_EQ(without.DecodeWith("crash:av:GetPicture"), kCrashed);

    const TemporaryFolder otherFolder;
    const LoadedPlugin listing(otherFolder, [this](IMAGE_OPTIONAL_HEADER32& header) {
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
    EXPECT_EQ(TestCallCount(listing.Module(), "finally"), 0);

    EXPECT_EQ(plugin_.DecodeWith("finally:cut-chain:GetPicture"), kCrashed);
    EXPECT_EQ(TestCallCount(plugin_.Module(), "finally"), SystemChecksChains() ? 0 : 2)
        << "a chain without its end";
}

TEST_F(GuardTest, MessagesToDebuggersAreNoCrashes) {
    for (const std::string kind : {"name-thread", "debug-print"})
        EXPECT_EQ(plugin_.DecodeWith("crash:" + kind + ":GetPicture"), susie::kSuccess) << kind;
}

TEST_F(GuardTest, CleanUpCodeOfThePluginRuns) {
    EXPECT_EQ(plugin_.DecodeWith("finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(TestCallCount(plugin_.Module(), "finally"), 2);
    EXPECT_EQ(plugin_.DecodeWith("bad-finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(TestCallCount(plugin_.Module(), "finally"), 3) << "no more after it has crashed too";
    EXPECT_EQ(plugin_.DecodeWith("jumping-finally:av:GetPicture"), kCrashed);
    EXPECT_EQ(plugin_.DecodeWith("jumping-finally:av:GetPicture\nfinally:av:GetPicture"), kCrashed);
    EXPECT_EQ(TestCallCount(plugin_.Module(), "finally"), 5) << "a new crash, a new clean-up";
}

// A thread's first overflow leaves the least room.
TEST_F(GuardTest, HandlersAreNotAskedWhereTheyHaveNoRoom) {
    int crashes = 0;
    std::thread([&] {
        for (int i = 0; i < 3; ++i)
            crashes += plugin_.DecodeWith("hungry:stack-overflow:GetPicture") == kCrashed;
    }).join();
    EXPECT_EQ(crashes, 3);
}

TEST_F(GuardTest, AThousandCrashesLeaveNothingBehind) {
    const ULONG_PTR depth = CallbackDepth();
    const ULONG handles = HandleCount();
    for (int i = 0; i < 1000; ++i) {
        const std::string kind = kCrashKinds[static_cast<size_t>(i) % std::size(kCrashKinds)];
        ASSERT_EQ(plugin_.DecodeWith("crash:" + kind + ":GetPicture"), kCrashed) << kind;
    }
    EXPECT_EQ(HandleCount(), handles);
    EXPECT_EQ(CallbackDepth(), depth);
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
    EXPECT_EQ(plugin_.DecodeWith("crash:av:GetPicture"), kCrashed);
    EXPECT_EQ(Susiectl().isMemoryDamaged(), damaged);
    EXPECT_FALSE(EndsInThread([=] { HeapUnlock((HeapLock(heap), heap)); }, 300));
    SetEvent(over);
    other.join();
}

TEST_F(GuardTest, WorksInManyThreadsAtOnce) {
    std::atomic<size_t> crashes = 0;
    const auto crash = [&] {
        for (const std::string kind : {"stack-overflow", "wild-chain", "av", "stack-overflow"})
            crashes += plugin_.DecodeWith("crash:" + kind + ":GetPicture") == kCrashed;
        const std::string locking = "early:heap-lock:GetPicture\ncrash:av:GetPicture";
        crashes += plugin_.DecodeWith(locking) == kCrashed;
    };
    std::array<std::thread, 4> threads;
    for (std::thread& each : threads)
        each = std::thread(crash);
    for (std::thread& each : threads)
        each.join();
    EXPECT_EQ(crashes, 5 * threads.size());
}

TEST_F(GuardTest, CallsNestInTheCallback) {
    std::function<void()> nest;
    int depth = 0;
    int crashes = 0;
    nest = [&] {
        for (const std::string kind : kCrashKinds)
            crashes += plugin_.DecodeWith("crash:" + kind + ":GetPicture") == kCrashed;
        if (++depth == 5) return;
        EXPECT_EQ(DecodeDoing(nest), susie::kSuccess);
    };
    EXPECT_EQ(DecodeDoing(nest), susie::kSuccess);
    EXPECT_EQ(crashes, 5 * static_cast<int>(std::size(kCrashKinds)));
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

}  // namespace
}  // namespace tessary::test
