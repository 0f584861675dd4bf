// What a plug-in changes and must not leave changed.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>

#include "tests/helpers/susiectl/susiectl_library.h"
#include "tests/support/finished_folder.h"

namespace tessary::test {
namespace {

using susiectl::kCrashed;

// Everything that a call has to leave as it was.
struct State {
    uint16_t controlWord;
    uint16_t x87Tags;  // which of the eight registers are in use
    uint32_t mxcsr;
    uint32_t direction;
    void* exceptionChain;
    UINT processErrorMode;
    DWORD threadErrorMode;
    std::wstring folder;

    bool operator==(const State&) const = default;
};

State CurrentState() {
    std::array<uint32_t, 7> environment{};
    asm volatile("fnstenv %0; fldenv %0" : "+m"(environment));
    uint32_t mxcsr = 0;
    asm volatile("stmxcsr %0" : "=m"(mxcsr));
    uint32_t flags = 0;
    asm volatile("pushfl; popl %0" : "=r"(flags));
    void* chain = nullptr;
    asm volatile("movl %%fs:0, %0" : "=r"(chain));
    wchar_t folder[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, folder);
    constexpr uint32_t kSettings = 0xFFC0;  // the lower bits are what has happened
    return {static_cast<uint16_t>(environment[0]),
            static_cast<uint16_t>(environment[2]),
            mxcsr & kSettings,
            flags & 0x400,
            chain,
            GetErrorMode(),
            GetThreadErrorMode(),
            folder};
}

const char* const kStates[] = {"fpu-unmasked",    "fpu-single", "fpu-full", "sse-unmasked",
                               "sse-rounding",    "direction",  "folder",   "error-mode",
                               "exception-chain", "registers"};

class StateTest : public testing::Test {
  protected:
    void SetUp() override {
        SetCurrentDirectoryW(folder_.Path().c_str());
        SetErrorMode(SEM_NOALIGNMENTFAULTEXCEPT);
        SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, nullptr);
        asm volatile("fldcw %0" : : "m"(kControlWord));
        before_ = CurrentState();
    }
    void TearDown() override {
        asm volatile("fninit");
        SetCurrentDirectoryW(TestProgramFolder().c_str());
    }

    void ExpectUnchanged(const std::string& after) {
        EXPECT_TRUE(CurrentState() == before_) << after;
        asm volatile("fldcw %0; cld" : : "m"(kControlWord));
    }

    // Neither the processor's default nor what plug-ins are told to set.
    static constexpr uint16_t kControlWord = 0x0A7F;
    const LoadedPlugin plugin_{L"iftst.spi"};
    TemporaryFolder folder_;
    State before_;
};

TEST_F(StateTest, IsTheSameAfterEveryCall) {
    for (const std::string state : kStates) {
        EXPECT_EQ(plugin_.DecodeWith("dirty:" + state + ":GetPicture"), susie::kSuccess) << state;
        ExpectUnchanged(state);
    }
}

TEST_F(StateTest, IsTheSameAfterACrash) {
    for (const std::string state :
         {"fpu-unmasked", "fpu-full", "sse-unmasked", "folder", "error-mode"})
        for (const std::string kind : {"av", "stack-overflow", "wild-chain", "smash"}) {
            const std::string script = "early:" + state + ":GetPicture\ncrash:" + kind;
            EXPECT_EQ(plugin_.DecodeWith(script + ":GetPicture"), kCrashed);
            ExpectUnchanged(script);
        }
}

// The system raises an exception for who takes off a context that is not the innermost.
TEST_F(StateTest, ActivationContextsOfACrashedPluginAreTakenOff) {
    const auto deactivate = reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&DeactivateActCtx));
    for (const std::string kind : {"av", "wild-chain"}) {
        ULONG_PTR cookie = 0;
        ASSERT_TRUE(ActivateActCtx(nullptr, &cookie));
        const std::string script = "early:activation-context:GetPicture\ncrash:";
        EXPECT_EQ(plugin_.DecodeWith(script + kind + ":GetPicture"), kCrashed);
        EXPECT_EQ(Susiectl().configurationDlg(deactivate, nullptr, static_cast<int>(cookie)), TRUE);
    }
}

TEST_F(StateTest, IsTheSameAfterLoadingAndFreeing) {
    {
        const LoadedPlugin plugin(L"iftst.spi",
                                  "dirty:folder:DllMain\ndirty:error-mode:DllMain\n"
                                  "dirty:fpu-unmasked:DllMain\ndirty:fpu-single:DllUnload");
        EXPECT_TRUE(plugin.Module());
        ExpectUnchanged("loading");
    }
    ExpectUnchanged("freeing");
}

// Calls GetPluginInfo with known values in the registers that a function has to keep.
bool KeepsRegisters(FARPROC pluginFunction) {
    char buffer[256];
    struct {
        susiectl::GetPluginInfoEntry entry;
        FARPROC function;
        char* buffer;
        std::array<uint32_t, 4> kept;
    } call{Susiectl().getPluginInfo, pluginFunction, buffer, {}};
    asm volatile(
        "pushl %%ebp; pushl %%ebx; pushl %%esi; pushl %%edi; pushl %%ecx;"
        "movl $1, %%ebx; movl $2, %%esi; movl $3, %%edi; movl $4, %%ebp;"
        "pushl $256; pushl 8(%%ecx); pushl $1; pushl 4(%%ecx); call *(%%ecx);"
        "popl %%ecx; movl %%ebx, 12(%%ecx); movl %%esi, 16(%%ecx); movl %%edi, 20(%%ecx);"
        "movl %%ebp, 24(%%ecx); popl %%edi; popl %%esi; popl %%ebx; popl %%ebp"
        :
        : "c"(&call)
        : "eax", "edx", "memory", "cc");
    return call.kept == std::array<uint32_t, 4>{1, 2, 3, 4};
}

TEST_F(StateTest, CallingConventionsAreForgiven) {
    for (const wchar_t* name : {L"cdecl.spi", L"extra_argument.spi"}) {
        const LoadedPlugin plugin(name);
        for (int i = 0; i < 100; ++i) {
            ASSERT_TRUE(KeepsRegisters(plugin["GetPluginInfo"])) << name;
            ASSERT_EQ(plugin.DecodeWith(""), susie::kSuccess) << name;
        }
        EXPECT_EQ(Susiectl().isSupported(plugin["IsSupported"], "a.tst",
                                         ("TST 1x1x1\n" + std::string(2048, '\0')).c_str()),
                  1);
    }
}

int __stdcall StoreState(int, int, LONG_PTR state) {
    *reinterpret_cast<State*>(state) = CurrentState();
    return 0;
}

TEST_F(StateTest, TheCallbackRunsUnderTheHostsFloatingPointState) {
    for (const std::string state : {"fpu-unmasked", "fpu-full", "sse-unmasked"}) {
        State inside{};
        EXPECT_EQ(plugin_.DecodeWith("early:" + state + ":GetPicture", StoreState,
                                     reinterpret_cast<LONG_PTR>(&inside)),
                  susie::kSuccess);
        EXPECT_EQ(inside.controlWord, before_.controlWord) << state;
        EXPECT_EQ(inside.x87Tags, before_.x87Tags) << state;
        EXPECT_EQ(inside.mxcsr, before_.mxcsr) << state;
    }
}

TEST_F(StateTest, ADialogThatCrashedIsTakenAway) {
    std::array<HWND, 3> windows{};
    for (HWND& window : windows)
        window = CreateWindowW(L"STATIC", L"program", WS_POPUP | WS_VISIBLE, 0, 0, 90, 90, nullptr,
                               nullptr, nullptr, nullptr);
    EnableWindow(windows[2], FALSE);
    const auto isReleased = [&] {
        return IsWindowEnabled(windows[0]) && IsWindowEnabled(windows[1]) &&
               !IsWindowEnabled(windows[2]);  // which was so before
    };
    const auto theirs = [] { return FindWindowW(nullptr, L"Test plug-in window"); };
    const LoadedPlugin plugin(L"iftst.spi",
                              "early:window:ConfigurationDlg\ncrash:av:ConfigurationDlg");
    EXPECT_EQ(Susiectl().configurationDlg(plugin["ConfigurationDlg"], windows[0], 1), kCrashed);
    EXPECT_TRUE(isReleased() && !theirs());
    EXPECT_EQ(plugin_.DecodeWith("early:window:GetPicture\ncrash:av:GetPicture"), kCrashed);
    EXPECT_TRUE(isReleased() && !theirs());
    // One that goes well has no business with our windows either, nor has loading.
    EXPECT_EQ(plugin_.DecodeWith("dirty:window:GetPicture"), susie::kSuccess);
    EXPECT_TRUE(isReleased());
    const LoadedPlugin dirty(L"iftst.spi", "dirty:window:DllMain");
    EXPECT_TRUE(isReleased());
    DestroyWindow(theirs());
    for (HWND window : windows)
        DestroyWindow(window);
}

}  // namespace
}  // namespace tessary::test
