// What a plug-in does to its process beyond its own call, and how long one is waited for.
#include <optional>

#include "plugin/call_watch.h"
#include "tests/src/host/host_test.h"
#include "tests/support/process_resources.h"

namespace tessary {
namespace {

using test::HostTest;
using test::kProgram;

void HandleMessages() {
    MSG message;
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

TEST_F(HostTest, WhatAPluginDoesToItsProcessConcernsNobodyElse) {
    struct Case {
        const char* script;
        std::optional<EndKind> kind;  // nothing: it ends nothing
    };
    const Case cases[] = {
        {"early:priorities:IsSupported", {}},
        {"early:locale:IsSupported", {}},
        {"early:global-hook:DllMain\nearly:global-hook:IsSupported", {}},
        {"early:thread-hook:IsSupported", {}},
        {"early:close-handles:IsSupported", EndKind::kExit},
        {"early:go-on-at-once:GetPicture\ncrash:av:GetPicture", EndKind::kSilence},
        {"early:end-the-thread:GetPicture\ncrash:av:GetPicture", EndKind::kExit},
        {"early:free-again:IsSupported", {}},
    };
    const auto picture = Picture();
    const auto goodPath = Plugin(L"iftst.spi", "needs-plain-process");
    ULONG handles = 0;
    for (const auto& [script, kind] : cases) {
        std::vector<PluginEnd> ends;
        const auto path = Plugin(L"iftst.spi", script, NewName(L".spi"));
        {
            HostPool pool(kProgram, {.asking = 1500, .working = 1500}, {},
                          [&](const PluginEnd& end) { ends.push_back(end); });
            HostConnection good(goodPath, pool);
            EXPECT_EQ(good.Supports(picture).code, 1);
            HostConnection bad(path, pool);
            bad.Load();
            for (int i = 0; i < 2; ++i) {
                bad.Supports(picture);
                bad.Decode(picture, DecodeKind::kFull, {});
                Sleep(30);
            }
            HandleMessages();
            EXPECT_FALSE(IsLoaded(path)) << script;
            EXPECT_EQ(good.Supports(picture).code, 1) << script;
            EXPECT_EQ(good.Decode(picture, DecodeKind::kFull, {}).picture.Width(), 3) << script;
        }
        EXPECT_EQ(!ends.empty(), kind.has_value()) << script;
        for (const PluginEnd& end : ends) {
            EXPECT_EQ(end.call.plugin, path) << script;
            EXPECT_EQ(end.kind, kind) << script;
        }
        if (&script == &cases[2].script) handles = test::HandleCount();
    }
    EXPECT_LE(test::HandleCount(), handles);
}

// One that waits in its start for ever, for nobody, is not waited for as long as one that works.
TEST_F(HostTest, AStartInWhichNothingHappensIsGivenUpSooner) {
    constexpr DWORD kLimit = 2000;
    const HostLimits limits{.asking = kLimit, .working = kLimit, .starting = 400};
    for (const auto& [script, isSooner] : {std::pair{"early:sleep:DllMain", true},
                                           {"early:loop:DllMain", false},
                                           {"early:question:DllMain", false}}) {
        HostPool pool{kProgram, limits};
        const auto path = Plugin(L"iftst.spi", script, NewName(L".spi"));
        DWORD age = 0;
        const CallWatch watch([&](const WaitedCall& call) {
            age = call.age;
            return CallWish::kGoesOn;
        });
        const LoadedPlugin loaded = HostConnection(path, pool).Load();
        EXPECT_EQ(loaded.end, ProcessEnd::kSilent) << script;
        EXPECT_EQ(age < kLimit - 100, isSooner) << script << age;
        EXPECT_EQ(Errors(path), 1) << script;
    }
}

TEST_F(HostTest, OneThatEndsHostsIsGivenUpThoughTheStoreTakesNoNote) {
    RedirectSettingsStore(std::wstring(300, L'x'));  // no key has such a name
    HostConnection bad(Plugin(L"iftst.spi", "crash:terminate:IsSupported"), pool_);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(bad.Supports(Picture()).code, kResultCrashed) << i;
    EXPECT_EQ(bad.Supports(Picture()).code, kResultStopped);
    RedirectSettingsStore(store_.KeyPath());
}

}  // namespace
}  // namespace tessary
