// What a plug-in does to its host process beyond its own call, who has to answer for the end of
// one, and what becomes of him.
#include <cstring>
#include <optional>
#include <thread>

#include "plugin/CollectionSusie.h"
#include "plugin/call_watch.h"
#include "plugin/host_state.h"
#include "plugin/plugin_log.h"
#include "tests/src/host/host_test.h"
#include "tests/support/process_resources.h"

namespace tessary {
namespace {

using test::HostTest;
using test::kProgram;

TEST_F(HostTest, OneThatEndsEachHostThatLoadsItIsBarred) {
    for (const char* script : {"crash:terminate:DllMain", "crash:exit-well:GetPluginInfo"}) {
        const auto path = NewPlugin(script);
        for (int start = 1; start <= 3; ++start) {
            CollectionSusie plugins;
            plugins.AddSPI(path);
            ASSERT_EQ(plugins.LeftOut().size(), 1u) << script;
            EXPECT_EQ(plugins.LeftOut()[0].reason == LeftOutReason::kBarred, start == 3) << script;
        }
    }
}

// With the kind of end, the function and the file; nobody else's, though two threads have hosts
// that end.
TEST_F(HostTest, ThoseWhoAreToldOfEndsHearOfTheCulpritsAlone) {
    const std::pair<const char*, EndKind> cases[2][3] = {
        {{"av", EndKind::kCaught}, {"exit-well", EndKind::kExit}, {"scribble", EndKind::kExit}},
        {{"heap-ruin", EndKind::kCrash}, {"terminate", EndKind::kExit}, {"av", EndKind::kCaught}}};
    const auto picture = Picture();
    std::wstring paths[2][3];
    for (int i = 0; i < 6; ++i) {
        const std::string function = i < 3 ? ":GetPicture" : ":IsSupported";
        paths[i / 3][i % 3] = NewPlugin("crash:" + (cases[i / 3][i % 3].first + function));
    }
    const auto good = NewPlugin();
    std::vector<PluginEnd> ends[2];
    const auto run = [&](int side) {
        HostPool pool(kProgram, {.asking = 5000}, {},
                      [&, side](const PluginEnd& end) { ends[side].push_back(end); });
        HostConnection beside(good, pool);
        beside.Load();
        for (const std::wstring& path : paths[side]) {
            HostConnection bad(path, pool);
            bad.Load();
            bad.SetBoundFile(path + L".tst");
            side == 0 ? static_cast<void>(bad.Decode(picture, DecodeKind::kFull, {}))
                      : static_cast<void>(bad.Supports(picture));
            EXPECT_EQ(beside.Supports(picture).code, 1);
        }
    };
    std::thread other([&] {
        PluginCaller caller;
        const OwnCaller own(caller);
        run(1);
    });
    run(0);
    other.join();
    for (int side = 0; side < 2; ++side) {
        ASSERT_EQ(ends[side].size(), 3u);
        for (size_t i = 0; i < 3; ++i) {
            EXPECT_EQ(ends[side][i].call.plugin, paths[side][i]);
            EXPECT_EQ(ends[side][i].call.file, paths[side][i] + L".tst");
            EXPECT_EQ(ends[side][i].call.function, side == 0 ? L"GetPicture" : L"IsSupported");
            EXPECT_EQ(ends[side][i].kind, cases[side][i].second) << side << i;
            EXPECT_EQ(Errors(paths[side][i]), 0) << "who counts is told";
        }
    }
    EXPECT_EQ(Errors(good), 0);
}

// Two ends: it takes nobody along any more. Three: it is not called any more, until it is forgiven.
TEST_F(HostTest, OneThatEndsHostsGoesOnAloneAndIsGivenUpAtLast) {
    const auto picture = Picture();
    const auto path = NewPlugin("crash:terminate:GetPicture");
    const auto goodPath = NewPlugin();
    HostConnection good(goodPath, pool_);
    CollectionSusie plugins;
    plugins.AddSPI(path);
    HostConnection bad(path, pool_);
    for (int end = 1; end <= 3; ++end) {
        EXPECT_EQ(good.Supports(picture).code, 1);
        const DWORD others = pool_.For(goodPath)->Id();
        EXPECT_EQ(pool_.For(path)->Id() == others, end < 3) << end;
        bad.SetBoundFile(std::to_wstring(end) + L".tst");
        EXPECT_TRUE(bad.Decode(picture, DecodeKind::kFull, {}).HasCrashed());
        const HostProcess* const left = pool_.RunningFor(goodPath);
        EXPECT_EQ(left != nullptr && left->Id() == others, end == 3) << end;
    }
    EXPECT_EQ(TextOf(ReadEnds(path)), L"プロセス終了 3 回（最後: 3.tst）");
    const DecodedPicture refused = bad.Decode(picture, DecodeKind::kFull, {});
    EXPECT_TRUE(refused.code == kResultStopped && refused.fault.message == kPluginGivenUpText);
    EXPECT_EQ(plugins.FileSupported(PictureFile()), 0);
    EXPECT_EQ(Errors(path), 3);
    // The next start, and every one from there on.
    for (int start = 0; start < 3; ++start) {
        CollectionSusie later;
        later.AddSPI(path);
        ASSERT_EQ(later.LeftOut().size(), 1u);
        EXPECT_EQ(later.LeftOut()[0].reason, LeftOutReason::kGivenUp);
        EXPECT_EQ(later.Compact(), 0);
    }
    CollectionSusie later;
    later.AddSPI(path);
    later.ForgetErrorsOfLeftOut(path);
    EXPECT_EQ(later.LeftOut()[0].reason, LeftOutReason::kWaiting);
    EXPECT_EQ(TextOf(ReadEnds(path)), L"");
    EXPECT_EQ(bad.Supports(picture).code, 1);

    // One that is alone comes back to the others as well, and leaves no host behind.
    const auto lonelyPath = NewPlugin();
    HostConnection lonely(lonelyPath, pool_);
    for (int end = 0; end < 2; ++end)
        pool_.Tell({{L"GetPicture", lonelyPath, {}}, EndKind::kCaught});
    EXPECT_EQ(lonely.Supports(picture).code, 1);
    const HANDLE own = OpenProcess(SYNCHRONIZE, FALSE, pool_.For(lonelyPath)->Id());
    EXPECT_NE(pool_.For(lonelyPath), pool_.For(goodPath));
    ForgetFailures(lonelyPath);
    EXPECT_EQ(lonely.Decode(picture, DecodeKind::kFull, {}).code, 0);
    EXPECT_EQ(pool_.For(lonelyPath), pool_.For(goodPath));
    EXPECT_EQ(WaitForSingleObject(own, 5000), WAIT_OBJECT_0);
    CloseHandle(own);
}

// Whoever collects ends has his own hosts spared of the plug-in, and nobody else's.
TEST_F(HostTest, EndsThatAreNotCountedGiveUpAPluginForTheirPoolOnly) {
    const auto picture = Picture();
    const auto path = NewPlugin("crash:heap-ruin:GetPicture");
    std::vector<PluginEnd> ends;
    HostPool pool(kProgram, {}, {}, [&](const PluginEnd& end) { ends.push_back(end); });
    HostConnection ahead(path, pool);
    for (int i = 0; i < 5; ++i)
        ahead.Decode(picture, DecodeKind::kFull, {});
    EXPECT_EQ(ends.size(), 3u);
    EXPECT_EQ(HostConnection(path, pool_).Supports(picture).code, 1);
    EXPECT_EQ(Errors(path), 0);
}

// In a window's procedure, when nothing is asked of anybody, or of another one.
TEST_F(HostTest, WhatAPluginDoesBetweenTwoRequestsIsHeldAgainstItAlone) {
    for (const auto& [state, kind] :
         {std::pair{"late-exit", EndKind::kExit}, {"late-sleep", EndKind::kSilence}}) {
        std::vector<PluginEnd> ends;
        HostPool pool(kProgram, {.asking = 1500, .working = 1500}, {},
                      [&](const PluginEnd& end) { ends.push_back(end); });
        HostConnection good(NewPlugin(), pool);
        const auto path = NewPlugin(std::string("early:") + state + ":GetPicture");
        HostConnection bad(path, pool);
        EXPECT_EQ(good.Supports(Picture()).code, 1);
        const DWORD first = pool.For({})->Id();
        EXPECT_TRUE(bad.Decode(Picture(), DecodeKind::kFull, {}).picture);
        for (int i = 0; i < 200 && pool.For({})->Id() == first; ++i) {
            EXPECT_EQ(good.Supports(Picture()).code, 1) << state;
            Sleep(20);
        }
        ASSERT_EQ(ends.size(), 1u) << state;
        EXPECT_EQ(ends[0].call.plugin, path);
        EXPECT_EQ(ends[0].call.function, kWindowCall);
        EXPECT_EQ(ends[0].kind, kind);
    }
}

TEST(HostChild, DISABLED_LosesAHostAtTheSessionsEnd) {
    test::LoadHelperLibraries();
    ExcuseLastCall();
    HostPool pool(kProgram);
    HostConnection plugin(test::FileOfParent(), pool);
    EXPECT_TRUE(plugin.Load().HasCrashed());
    TerminateProcess(GetCurrentProcess(), 7);
}

TEST_F(HostTest, TheEndOfTheSessionIsNobodysFault) {
    const auto path = Plugin(L"iftst.spi", "crash:terminate:DllMain");
    EXPECT_EQ(RunAsChild(L"HostChild.DISABLED_LosesAHostAtTheSessionsEnd", path), 7u);
    EXPECT_EQ(Errors(path), 0);
}

TEST_F(HostTest, NotesThatCannotBeBlameWhoWasAsked) {
    const PluginCall asked{L"GetPicture", L"C:\\asked.spi", L"C:\\a.tst"};
    const std::set<std::wstring> served{L"C:\\ASKED.SPI", L"C:\\OTHER.SPI"};
    const auto culprit = [&](const HostNotes& notes, const PluginCall& now) {
        const auto call = CulpritOf(notes, now, served);
        return call ? call->plugin + L'|' + call->function + L'|' + call->file : L"nobody";
    };
    const auto notes = std::make_unique<HostNotes>();
    EXPECT_EQ(culprit(*notes, asked), L"nobody");
    notes->call.Write(L"FreeLibrary", L"C:\\other.spi");
    EXPECT_EQ(culprit(*notes, {}), L"C:\\other.spi|FreeLibrary|");
    notes->thread.Write(L"Thread", L"");
    EXPECT_EQ(culprit(*notes, asked), L"nobody") << "what others' threads need was being freed";
    notes->thread.Write(L"Thread", L"C:\\asked.spi");
    EXPECT_EQ(culprit(*notes, asked), L"C:\\asked.spi|Thread|C:\\a.tst");
    const std::wstring lies[][2] = {{L"GetPicture", L"C:\\never loaded.spi"},
                                    {L"Total", L"C:\\other.spi"},
                                    {L"GetPicture", std::wstring(5000, L'x')},
                                    {std::wstring(5000, L'x'), L"C:\\other.spi"}};
    for (const auto& [function, plugin] : lies) {
        notes->thread.Clear();
        notes->call.Write(function, plugin);
        EXPECT_EQ(culprit(*notes, asked), L"C:\\asked.spi|GetPicture|C:\\a.tst");
        EXPECT_EQ(culprit(*notes, {}), L"nobody");
    }
    std::memset(static_cast<void*>(notes.get()), 0x41, sizeof(HostNotes));
    EXPECT_EQ(culprit(*notes, asked), L"C:\\asked.spi|GetPicture|C:\\a.tst");
}

void HandleMessages() {
    MSG message;
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

TEST_F(HostTest, WhatAPluginDoesToItsProcessConcernsNobodyElse) {
    // What ends the process, if anything does.
    const std::pair<const char*, std::optional<EndKind>> cases[] = {
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
        const auto path = NewPlugin(script);
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
        if (&script == &cases[2].first) handles = test::HandleCount();
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
        const auto path = NewPlugin(script);
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
