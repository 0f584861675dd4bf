// What a host process must stand, and what its program must not notice of its end.
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "app/base/handles.h"
#include "app/settings/modValue.h"
#include "host/host_connection.h"
#include "plugin/CollectionSusie.h"
#include "plugin/call_watch.h"
#include "plugin/host_state.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"
#include "tests/src/plugin/plugin_test.h"
#include "tests/support/content_of.h"

namespace tessary {
namespace {

const std::wstring kProgram = test::FinishedFolder() + L"tessary-host32.exe";

class HostTest : public test::PluginTest {
  protected:
    // A way to a copy of a test plug-in of its own.
    std::unique_ptr<HostConnection> Connected(const std::wstring& original,
                                              std::string_view script) {
        return std::make_unique<HostConnection>(Plugin(original, script, NewName(L".spi")), pool_);
    }
    PluginSource Picture() { return {.name = ToAnsi(PictureFile())}; }
    PluginSource Archive() { return {.name = ToAnsi(ArchiveFile())}; }
    static int32_t Errors(const std::wstring& path) { return ReadErrorCount(path, {}); }

    HostPool pool_{kProgram, {.asking = 1500, .working = 1500}};
};

// One operation, on a loaded plug-in.
using Operation = PluginAnswer (*)(HostConnection& plugin, const PluginSource& picture,
                                   const PluginSource& archive);
constexpr std::pair<const char*, Operation> kOperations[] = {
    {"DllMain", [](auto& plugin, auto&, auto&) -> PluginAnswer { return plugin.Load(); }},
    {"GetPluginInfo", [](auto& plugin, auto&, auto&) -> PluginAnswer { return plugin.Describe(); }},
    {"IsSupported",
     [](auto& plugin, auto& picture, auto&) -> PluginAnswer { return plugin.Supports(picture); }},
    {"GetPictureInfo",
     [](auto& plugin, auto& picture, auto&) -> PluginAnswer { return plugin.Measure(picture); }},
    {"GetPicture",
     [](auto& plugin, auto& picture, auto&) -> PluginAnswer {
         return plugin.Decode(picture, DecodeKind::kFull, {});
     }},
    {"GetArchiveInfo",
     [](auto& plugin, auto&, auto& archive) -> PluginAnswer { return plugin.List(archive); }},
    {"GetFile",
     [](auto& plugin, auto&, auto& archive) -> PluginAnswer {
         return plugin.Extract(archive, {}, {}, {});
     }},
    {"ConfigurationDlg",
     [](auto& plugin, auto&, auto&) -> PluginAnswer { return plugin.Configure(nullptr); }},
};

TEST_F(HostTest, AnEndInAnyFunctionIsThatPluginsFailureAndNobodyElsesTrouble) {
    const auto good = Connected(L"iftst.spi", {});
    good->Load();
    for (const auto& [function, operation] : kOperations) {
        for (const char* kind : {"exit-well", "terminate"}) {
            const std::wstring path =
                Plugin(L"picture_and_archive.spi", std::string("crash:") + kind + ":" + function,
                       NewName(L".spi"));
            HostConnection bad(path, pool_);
            if (std::string_view(function) != "DllMain") bad.Load();
            const PluginAnswer answer = operation(bad, Picture(), Archive());
            EXPECT_TRUE(answer.HasCrashed()) << kind << function;
            EXPECT_EQ(answer.fault.message, kPluginCrashedText) << kind << function;
            EXPECT_EQ(Errors(path), 1) << kind << function;
            EXPECT_EQ(good->Supports(Picture()).code, 1) << "in a new host, loaded anew";
            EXPECT_TRUE(FindInterruptedCalls().empty());
        }
    }
}

// It shows a box that nobody sees.
TEST_F(HostTest, OneThatHangsIsEndedAndTold) {
    for (const char* function : {"IsSupported", "GetPicture", "GetFile"}) {
        const auto path = Plugin(L"picture_and_archive.spi",
                                 std::string("dirty:question:") + function, NewName(L".spi"));
        HostConnection bad(path, pool_);
        bad.Load();
        for (const auto& [name, operation] : kOperations) {
            if (std::string_view(name) != function) continue;
            const PluginAnswer answer = operation(bad, Picture(), Archive());
            EXPECT_EQ(answer.fault.message, L"プラグインが応答しません") << function;
            EXPECT_EQ(Errors(path), 1) << function;
        }
    }
    EXPECT_EQ(Connected(L"iftst.spi", {})->Supports(Picture()).code, 1);
}

// One that does not listen is not held up to the user, and nobody blames it.
TEST_F(HostTest, OneThatIsToldToStopStops) {
    for (const char* script : {"dirty:question:GetPicture", "progress:9", "ignore-abort", ""}) {
        const auto path = Plugin(L"iftst.spi", script, NewName(L".spi"));
        HostConnection plugin(path, pool_);
        plugin.Load();
        const DecodedPicture decoded =
            plugin.Decode(Picture(), DecodeKind::kFull, [](int, int) { return false; });
        EXPECT_TRUE(decoded.wasStopped) << script;
        EXPECT_EQ(Errors(path), 0) << script;
        EXPECT_TRUE(FindInterruptedCalls().empty()) << script;
    }
}

// One that tells how far it is, and does not care for the answer.
TEST_F(HostTest, ProgressIsNoReasonToGoOnForOneThatWasToldToStop) {
    const auto plugin = Connected(L"iftst.spi", "progress:2000000000\nignore-abort");
    plugin->Load();
    const DecodedPicture decoded =
        plugin->Decode(Picture(), DecodeKind::kFull, [](int, int) { return false; });
    EXPECT_TRUE(decoded.wasStopped && !decoded.picture);
}

// Listing has no progress of its own.
TEST_F(HostTest, WhatNobodyWantsAnyMoreIsGivenUp) {
    const auto path = Plugin(L"axtsa.spi", "dirty:question:GetArchiveInfo");
    HostConnection plugin(path, pool_);
    plugin.Load();
    const CallWatch nobody([](const WaitedCall&) { return CallWish::kStops; });
    EXPECT_EQ(plugin.List(Archive()).code, susie::kAborted);
    EXPECT_EQ(Errors(path), 0);
    const auto undecided = Connected(L"iftst.spi", "early:sleep:IsSupported");
    undecided->Load();
    EXPECT_NE(undecided->Supports(Picture()).code, 1) << "nobody takes what was given up";
}

// What is said of a plug-in that is overdue, how many limits that leaves it, and whether it counts.
TEST_F(HostTest, WhoeverWaitsSaysWhatBecomesOfOneThatIsOverdue) {
    constexpr DWORD kLimit = 400;
    HostPool pool{kProgram, {.asking = kLimit, .working = kLimit}};
    struct Case {
        const char* script;
        CallWish first, then;
        DWORD limits;
    };
    for (const Case& c : {Case{"early:sleep:GetPicture", CallWish::kGoesOn, CallWish::kGoesOn, 1},
                          {"early:sleep:GetPicture", CallWish::kAsksUser, CallWish::kAsksUser, 2},
                          {"early:loop:GetPicture", CallWish::kAsksUser, CallWish::kGivenUp, 1},
                          {"early:loop:GetPicture", CallWish::kMoreTime, CallWish::kStops, 2},
                          {"early:loop:GetArchiveInfo", CallWish::kGoesOn, CallWish::kGoesOn, 6}}) {
        const auto path = Plugin(L"picture_and_archive.spi", c.script, NewName(L".spi"));
        HostConnection plugin(path, pool);
        plugin.Load();
        int asked = 0;
        DWORD idle = 0;
        const CallWatch watch([&](const WaitedCall& call) {
            EXPECT_EQ(call.plugin, path);
            idle = call.idle;
            return !call.isOverdue ? CallWish::kGoesOn : asked++ == 0 ? c.first : c.then;
        });
        const bool isListing = c.limits == 6;
        const ULONGLONG begin = GetTickCount64();
        const PluginAnswer answer =
            isListing ? PluginAnswer(plugin.List(Archive()))
                      : PluginAnswer(plugin.Decode(Picture(), DecodeKind::kFull, {}));
        const auto limits = (GetTickCount64() - begin) / kLimit;
        EXPECT_EQ(limits, c.limits) << c.script << asked;
        EXPECT_EQ(answer.end, ProcessEnd::kSilent) << c.script << asked;
        EXPECT_EQ(Errors(path), 1) << c.script << asked;
        EXPECT_EQ(idle > 200, std::string_view(c.script).find("sleep") != std::string::npos);
    }
}

// A menu that stays open, a question that waits for its answer.
TEST_F(HostTest, TheUsersTimeIsNotThePluginsSilence) {
    const auto plugin = Connected(L"iftst.spi", "early:slow:GetPicture");
    plugin->Load();
    int asked = 0;
    const DecodedPicture decoded = plugin->Decode(Picture(), DecodeKind::kFull, [&](int, int) {
        if (asked++ == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2000));
        return true;
    });
    EXPECT_TRUE(decoded.picture);
}

TEST_F(HostTest, OneThatEndsEachHostThatLoadsItIsBarred) {
    SetPluginConnector([this](const std::wstring& plugin) {
        return std::make_unique<HostConnection>(plugin, pool_);
    });
    for (const char* script : {"crash:terminate:DllMain", "crash:exit-well:GetPluginInfo"}) {
        const auto path = Plugin(L"iftst.spi", script, NewName(L".spi"));
        for (int start = 1; start <= 3; ++start) {
            CollectionSusie plugins;
            plugins.AddSPI(path);
            ASSERT_EQ(plugins.LeftOut().size(), 1u) << script;
            EXPECT_EQ(plugins.LeftOut()[0].reason == LeftOutReason::kBarred, start == 3) << script;
        }
    }
    SetPluginConnector({});
}

TEST_F(HostTest, ARememberedPluginNeedsNoHostBeforeItIsUsed) {
    SetPluginConnector([this](const std::wstring& plugin) {
        return std::make_unique<HostConnection>(plugin, pool_);
    });
    Values().general.useSPI = 1;
    Values().general.spiFolder[0] = folder_.Path();
    const std::wstring path = Plugin(L"iftst.spi");
    const auto leftOut = [] {
        const auto& all = SusieCollection().LeftOut();
        return all.empty() ? std::nullopt : std::optional(all[0].reason);
    };
    const auto start = [&](const LoadingProgress& progress = {}) {
        UnloadSPI();
        SusieCollection().RememberPlugins();
        LoadSPI({}, Asking::kNobody);
        const bool asks = leftOut() == LeftOutReason::kWaiting;
        if (asks) LoadWaitingSPI(progress);
        return asks;
    };
    const auto inMemory = [] { return SusieCollection().GetInMemorySPICount(); };
    const auto fatalLoads = [&] { return GetSetting(L"SPI_FATALLOADS", path, L"0"); };
    const auto endHost = [&] { pool_.For({})->End(); };
    EXPECT_TRUE(start());
    EXPECT_EQ(inMemory(), 1);
    endHost();
    EXPECT_EQ(inMemory(), 0);
    EXPECT_FALSE(start());
    EXPECT_EQ(pool_.RunningFor({}), nullptr);
    EXPECT_EQ(SusieCollection().FileSupported(PictureFile()), 1);
    EXPECT_EQ(inMemory(), 1);

    // One that ends its host when it is loaded first counts like one that does so at a start.
    endHost();
    folder_.Write(L"iftst.spi.script", "crash:terminate:DllMain");
    EXPECT_FALSE(start());
    EXPECT_EQ(fatalLoads(), L"0");
    Search search = SusieCollection().SearchFor(PictureFile());
    EXPECT_EQ(search.Next(), nullptr);
    EXPECT_TRUE(search.LastRefusal() && search.LastRefusal()->hasCrashed);
    EXPECT_EQ(fatalLoads(), L"1");
    EXPECT_EQ(SusieCollection().FileSupported(PictureFile()), 0);
    EXPECT_EQ(fatalLoads(), L"1") << "it is not tried again";
    EXPECT_TRUE(start());
    EXPECT_EQ(leftOut(), LeftOutReason::kCrashed);
    EXPECT_TRUE(start());
    EXPECT_EQ(leftOut(), LeftOutReason::kBarred);

    // The user does not want to wait any more.
    ForgetFailures(path);
    folder_.Write(L"iftst.spi.script", "dirty:question:DllMain");
    int told = 0;
    EXPECT_TRUE(start([&](const std::wstring&, int32_t, int32_t) { return ++told < 3; }));
    EXPECT_EQ(leftOut(), LeftOutReason::kWaiting);
    EXPECT_EQ(told, 3);
    EXPECT_TRUE(fatalLoads() == L"0" && Errors(path) == 0) << "and blames nobody";
    UnloadSPI();
    SetPluginConnector({});
}

TEST_F(HostTest, KilledFromOutsideAtAnyMomentItIsReplaced) {
    const auto path = Plugin(L"iftst.spi", "early:slow:GetPicture");
    HostConnection plugin(path, pool_);
    plugin.Load();
    int decoded = 0;
    for (int round = 0; round < 12; ++round) {
        const DWORD id = pool_.For({})->Id();
        std::thread killer([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(round * 8));
            const UniqueProcess host(OpenProcess(PROCESS_TERMINATE, FALSE, id));
            TerminateProcess(host.Get(), 5);
        });
        const DecodedPicture result = plugin.Decode(Picture(), DecodeKind::kFull, {});
        killer.join();
        decoded += result.picture ? 1 : 0;
        EXPECT_TRUE(!result.picture || result.picture.Width() == 3) << "though its host is gone";
    }
    EXPECT_EQ(decoded, 12) << "a new host has done it";
    EXPECT_EQ(Errors(path), 0);
}

// With the kind of end, the function and the file; nobody else's, though two threads have hosts
// that end.
TEST_F(HostTest, ThoseWhoAreToldOfEndsHearOfTheCulpritsAlone) {
    struct Case {
        const char* crash;
        EndKind kind;
    };
    const Case cases[2][3] = {
        {{"av", EndKind::kCaught}, {"exit-well", EndKind::kExit}, {"scribble", EndKind::kExit}},
        {{"heap-ruin", EndKind::kCrash}, {"terminate", EndKind::kExit}, {"av", EndKind::kCaught}}};
    const auto picture = Picture();
    std::wstring paths[2][3];
    for (int i = 0; i < 6; ++i) {
        const std::string function = i < 3 ? ":GetPicture" : ":IsSupported";
        paths[i / 3][i % 3] = Plugin(
            L"iftst.spi", "crash:" + (cases[i / 3][i % 3].crash + function), NewName(L".spi"));
    }
    const auto good = Plugin(L"iftst.spi", {}, NewName(L".spi"));
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
            EXPECT_EQ(ends[side][i].kind, cases[side][i].kind) << side << i;
            EXPECT_EQ(Errors(paths[side][i]), 0) << "who counts is told";
        }
    }
    EXPECT_EQ(Errors(good), 0);
}

// Two ends: it takes nobody along any more. Three: it is not called any more, until it is forgiven.
TEST_F(HostTest, OneThatEndsHostsGoesOnAloneAndIsGivenUpAtLast) {
    const auto picture = Picture();
    const auto path = Plugin(L"iftst.spi", "crash:terminate:GetPicture", NewName(L".spi"));
    const auto goodPath = Plugin(L"iftst.spi", {}, NewName(L".spi"));
    HostConnection good(goodPath, pool_);
    SetPluginConnector([&](const std::wstring& plugin) {
        return std::make_unique<HostConnection>(plugin, pool_);
    });
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
    SetPluginConnector({});
}

// Whoever collects ends has his own hosts spared of the plug-in, and nobody else's.
TEST_F(HostTest, EndsThatAreNotCountedGiveUpAPluginForTheirPoolOnly) {
    const auto picture = Picture();
    const auto path = Plugin(L"iftst.spi", "crash:heap-ruin:GetPicture", NewName(L".spi"));
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
        HostConnection good(Plugin(L"iftst.spi", {}, NewName(L".spi")), pool);
        const auto path =
            Plugin(L"iftst.spi", std::string("early:") + state + ":GetPicture", NewName(L".spi"));
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

// Bytes that are asked about again are the same copy, and never what was there before.
TEST_F(HostTest, SourcesInMemoryAreCopiedOnceAndReadAsTheyAreNow) {
    const auto one = Connected(L"iftst.spi", {});
    const auto other = Connected(L"iftst.spi", {});
    std::string content = "TST 3x2x24\n";
    const auto width = [&](HostConnection& plugin) {
        return plugin
            .Measure(
                {"a.x", {reinterpret_cast<const uint8_t*>(content.data()), content.size()}, false})
            .size.width;
    };
    for (const char digit : {'3', '7'}) {
        content[4] = digit;
        EXPECT_TRUE(width(*one) == digit - '0' && width(*other) == digit - '0');
        EXPECT_EQ(one->Measure(Picture()).size.width, 3);
        EXPECT_EQ(width(*one), digit - '0');
    }
    LentBytes lent;
    std::vector<uint8_t> bytes(200'000, 1);
    const auto first = lent.Of(bytes);
    EXPECT_EQ(lent.Of(std::vector<uint8_t>(bytes))->id, first->id);
    bytes.back() = 2;
    EXPECT_NE(lent.Of(bytes)->id, first->id);
}

TEST_F(HostTest, MemoryHasABoundAndWhatIsLeftBehindGoesWithAHost) {
    const auto picture = Picture();
    constexpr uint64_t kBound = 300 << 20;
    std::vector<PluginEnd> ends;
    HostPool pool(kProgram, {.working = 5000, .memory = kBound}, {},
                  [&](const PluginEnd& end) { ends.push_back(end); });
    HostConnection hoarder(Plugin(L"iftst.spi", "early:hoard:GetPicture", NewName(L".spi")), pool);
    const DecodedPicture decoded = hoarder.Decode(picture, DecodeKind::kFull, {});
    // Where the system itself keeps it from more, it goes on with what it has.
    if (!decoded.picture) {
        EXPECT_EQ(decoded.fault.message, kPluginHoardedText);
        ASSERT_EQ(ends.size(), 1u);
        EXPECT_EQ(ends[0].kind, EndKind::kMemory);
    }
    ends.clear();
    HostConnection leaking(Plugin(L"iftst.spi", "early:leak:IsSupported", NewName(L".spi")), pool);
    std::set<DWORD> hosts;
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(leaking.Supports(picture).code, 1) << i;
        hosts.insert(pool.For({})->Id());
        Sleep(70);
    }
    EXPECT_GT(hosts.size(), 2u);
    EXPECT_TRUE(ends.empty());
}

TEST_F(HostTest, WithoutItsProgramThereIsOneClearNotice) {
    HostPool none(folder_.Path() + L"gone.exe");
    SetPluginConnector(
        [&](const std::wstring& plugin) { return std::make_unique<HostConnection>(plugin, none); });
    GeneralSettings& general = Values().general;
    const GeneralSettings before = general;
    general.spiFolder[0] = folder_.Path();
    general.useSPI = 1;
    general.loadSPI[0] = true;
    for (const wchar_t* name : {L"a.spi", L"b.spi"})
        Plugin(L"iftst.spi", {}, name);
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().LeftOut().size(), 2u);
    EXPECT_TRUE(SusieCollection().IsIncomplete() && general.loadSPI[0]);
    const std::vector<std::wstring> notices = LoadingNotices();
    ASSERT_EQ(notices.size(), 1u);
    EXPECT_NE(notices[0].find(L"tessary-host32.exe"), std::wstring::npos);
    SetPluginConnector({});
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().Count(), 2);
    UnloadSPI();
    general = before;
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

TEST_F(HostTest, ItEndsWithItsProgram) {
    const std::wstring idFile = folder_.Path() + L"id";
    EXPECT_EQ(RunAsChild(L"HostChild.DISABLED_LeavesAHostBehind", idFile), 7u);
    const DWORD id = std::stoul(test::ContentOf(idFile));
    const UniqueProcess host(OpenProcess(SYNCHRONIZE, FALSE, id));
    EXPECT_TRUE(!host || WaitForSingleObject(host.Get(), 5000) == WAIT_OBJECT_0);
}

TEST(HostChild, DISABLED_LeavesAHostBehind) {
    static HostPool pool(kProgram);
    const std::string id = std::to_string(pool.For({})->Id());
    wchar_t file[MAX_PATH]{};
    GetEnvironmentVariableW(L"TESSARY_TEST_FILE", file, MAX_PATH);
    std::ofstream(std::filesystem::path(file)) << id;
    TerminateProcess(GetCurrentProcess(), 7);
}

TEST(HostMessages, NothingButAWholeMessageIsOne) {
    HostReply reply;
    reply.conditionText = L"cut short";
    reply.patterns = {L"*.A", L"*.B"};
    reply.members.emplace().resize(2);
    reply.members->at(1).fileSize = 12345;
    reply.bytes = {7, 1u << 20};
    const std::vector<uint8_t> bytes = BytesOf(reply);
    const std::optional<HostReply> same = ReplyOf(bytes);
    ASSERT_TRUE(same && same->members && same->members->size() == 2);
    EXPECT_EQ(same->members->at(1).fileSize, 12345u);
    EXPECT_EQ(BytesOf(*same), bytes);
    for (size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(ReplyOf(std::span(bytes).first(size))) << size;
    // Counts and sizes that lie: nothing is made room for that is not there.
    for (size_t at = 0; at + 4 <= bytes.size(); ++at) {
        std::vector<uint8_t> lying = bytes;
        std::fill_n(lying.begin() + static_cast<ptrdiff_t>(at), 4, uint8_t{0xFF});
        const std::optional<HostReply> read = ReplyOf(lying);
        EXPECT_TRUE(!read || BytesOf(*read).size() == bytes.size()) << at;
    }
    HostRequest request{.operation = static_cast<HostOperation>(99)};
    EXPECT_FALSE(RequestOf(BytesOf(request)));
}

TEST(SectionTest, IsNoLargerThanItIs) {
    const std::optional<Section> section = Section::Make(10);
    ASSERT_TRUE(section);
    const auto opened = [&](HANDLE object, uint64_t size) {
        HANDLE handle = nullptr;
        DuplicateHandle(GetCurrentProcess(), object, GetCurrentProcess(), &handle, 0, FALSE,
                        DUPLICATE_SAME_ACCESS);
        return Section::Open(UniqueSection(handle), size, Section::Access::kRead).has_value();
    };
    EXPECT_TRUE(opened(section->Handle(), 10));
    EXPECT_FALSE(opened(section->Handle(), 1 << 20));
    EXPECT_FALSE(opened(section->Handle(), 0));
    const UniqueEvent event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_FALSE(opened(event.Get(), 10));
}

}  // namespace
}  // namespace tessary
