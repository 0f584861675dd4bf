// What a host process must stand, and what its program must not notice of its end.
#include <chrono>
#include <thread>

#include "app/base/handles.h"
#include "app/settings/modValue.h"
#include "host/metadata_host.h"
#include "picture/metadata/picture_metadata.h"
#include "plugin/CollectionSusie.h"
#include "plugin/call_watch.h"
#include "plugin/modSusie.h"
#include "plugin/plugin_notices.h"
#include "tests/src/host/host_test.h"
#include "tests/support/content_of.h"
#include "tests/support/process_resources.h"
#include "tests/support/seeds.h"
#include "tests/support/temporary_folder.h"

namespace tessary {
namespace {

using test::HostTest;
using test::kProgram;
using test::SeedFolder;

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
        for (const std::string kind : {"crash:exit-well:", "crash:terminate:", "dirty:question:"}) {
            // The last shows a box that nobody sees, which takes its time.
            const bool hangs = kind.starts_with("dirty");
            if (hangs &&
                !std::set<std::string>{"IsSupported", "GetPicture", "GetFile"}.contains(function))
                continue;
            const auto path = Plugin(L"picture_and_archive.spi", kind + function, NewName(L".spi"));
            HostConnection bad(path, pool_);
            if (std::string_view(function) != "DllMain") bad.Load();
            const PluginAnswer answer = operation(bad, Picture(), Archive());
            EXPECT_TRUE(answer.HasCrashed()) << kind << function;
            EXPECT_EQ(answer.fault.message,
                      hangs ? L"プラグインが応答しません" : kPluginCrashedText)
                << kind << function;
            EXPECT_EQ(Errors(path), 1) << kind << function;
            EXPECT_EQ(good->Supports(Picture()).code, 1) << "in a new host, loaded anew";
            EXPECT_TRUE(FindInterruptedCalls().empty());
        }
    }
}

TEST_F(HostTest, MetadataAreReadInAProcessOfTheirOwn) {
    const std::wstring path = SeedFolder() / "fuzz_metadata" / "jpeg";
    MetadataHost host(kProgram);
    const MetadataAnswer ofFile = host.Ask({.path = path});
    ASSERT_FALSE(ofFile.fields.empty());
    EXPECT_EQ(ofFile.fields.front().text, "2024:05:31 12:34:56");
    EXPECT_TRUE(ofFile.exif.empty()) << "nobody has asked for them";
    host.Rest();
    const auto bytes = test::ContentOf<std::vector<uint8_t>>(path);
    const MetadataAnswer ofBytes = host.Ask({.bytes = bytes, .saved = {480, 320}});
    EXPECT_EQ(ofBytes.fields, ofFile.fields);
    EXPECT_FALSE(ofBytes.exif.empty());
    EXPECT_TRUE(host.Ask({.path = path + L".not-there"}).fields.empty());
    EXPECT_TRUE(host.Ask({}).fields.empty());
    EXPECT_FALSE(host.Ask({.path = path}).fields.empty());
    EXPECT_TRUE(MetadataHost(path).Ask({.path = path}).fields.empty()) << "no program";
}

TEST_F(HostTest, APictureNeverGetsTheMetadataOfAnother) {
    const auto host = std::make_shared<MetadataHost>(kProgram);
    const test::TemporaryFolder folder;
    const auto photo = test::ContentOf(SeedFolder() / "fuzz_metadata" / "jpeg");
    PictureOrigin origin{.path = folder.Write(L"photo.jpg", photo)};
    origin.stamp = ExactStampOf(origin.path).value_or(FileStamp{});
    EXPECT_FALSE(MetadataOf(origin, {480, 320}, host).exif.empty());
    folder.Write(L"photo.jpg", photo + "!");
    EXPECT_TRUE(MetadataOf(origin, {480, 320}, host).exif.empty());
    EXPECT_TRUE(MetadataOf(origin, {}, host).fields.empty());
    // An archive's member is known by its own bytes.
    origin.member = L"a.jpg";
    EXPECT_TRUE(MetadataOf(origin, {}, host).fields.empty());
    origin.head.assign(photo.begin(), photo.end());
    EXPECT_FALSE(MetadataOf(origin, {}, host).fields.empty());
}

// One that does not listen is not held up to the user, and nobody blames it.
TEST_F(HostTest, OneThatIsToldToStopStops) {
    for (const char* script : {"dirty:question:GetPicture", "progress:9", "ignore-abort", "",
                               "progress:2000000000\nignore-abort"}) {
        const auto path = NewPlugin(script);
        HostConnection plugin(path, pool_);
        plugin.Load();
        const DecodedPicture decoded =
            plugin.Decode(Picture(), DecodeKind::kFull, [](int, int) { return false; });
        EXPECT_TRUE(decoded.wasStopped) << script;
        EXPECT_TRUE(!decoded.picture || !std::string_view(script).starts_with("progress"))
            << script;
        EXPECT_EQ(Errors(path), 0) << script;
        EXPECT_TRUE(FindInterruptedCalls().empty()) << script;
    }
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
    constexpr DWORD kLimit = 700;
    constexpr DWORD kBeat = 40;  // between two looks
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
        WaitedCall last;
        bool hasWorked = false;
        DWORD mostIdle = 0;
        const CallWatch watch([&](const WaitedCall& call) {
            EXPECT_EQ(call.plugin, path);
            last = call;
            mostIdle = std::max(mostIdle, call.idle);
            hasWorked = hasWorked || (call.age > 100 && call.idle == 0);
            return !call.isOverdue ? CallWish::kGoesOn : asked++ == 0 ? c.first : c.then;
        });
        const bool isListing = c.limits == 6;
        const PluginAnswer answer =
            isListing ? PluginAnswer(plugin.List(Archive()))
                      : PluginAnswer(plugin.Decode(Picture(), DecodeKind::kFull, {}));
        // By the host's clock, which knows nothing of other work of the machine's.
        EXPECT_GE(last.age, c.limits * kLimit - kBeat) << c.script << asked;
        EXPECT_LE(last.age, c.limits * kLimit + 3 * kBeat) << c.script << asked;
        EXPECT_EQ(answer.end, ProcessEnd::kSilent) << c.script << asked;
        EXPECT_EQ(Errors(path), 1) << c.script << asked;
        const bool sleeps = std::string_view(c.script).find("sleep") != std::string::npos;
        EXPECT_EQ(mostIdle > 200, sleeps) << c.script << asked;
        EXPECT_TRUE(sleeps || hasWorked) << c.script << asked;
    }
}

TEST_F(HostTest, APictureIsShownThoughItsPluginHangsOverFrames) {
    for (const char* function : {"OpenFrames", "CloseFrames"}) {
        const auto film =
            Connected(L"frames.spi", "frames:1:5:0\nearly:sleep:" + std::string(function));
        film->Load();
        for (int i = 0; i < 2; ++i) {  // the second time nothing is waited for
            const ULONGLONG begin = GetTickCount64();
            const DecodedPicture decoded = film->Decode(Picture(), DecodeKind::kFull, {});
            EXPECT_TRUE(decoded.HasSucceeded() && decoded.picture && !decoded.frames) << function;
            EXPECT_EQ(GetTickCount64() - begin < 1400, i == 1) << function;
        }
    }
}

TEST_F(HostTest, WhatTheUserChoosesHoldsForAllHosts) {
    const auto path = NewPlugin("early:sleep:GetPicture");
    const PluginConnector connector = OwnHostConnector(HostWindows::kShown, kProgram);
    const auto plugin = connector(path);  // there already
    plugin->Load();
    GeneralSettings chosen;
    chosen.workingSeconds = 1;
    SetHostLimits(chosen);
    const ULONGLONG begin = GetTickCount64();
    EXPECT_EQ(plugin->Decode(Picture(), DecodeKind::kFull, {}).end, ProcessEnd::kSilent);
    EXPECT_LT(GetTickCount64() - begin, 8000u);
    SetHostLimits({});
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

TEST_F(HostTest, ARememberedPluginNeedsNoHostBeforeItIsUsed) {
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
}

// The one that is loaded can be renamed, and another one put in its place.
TEST_F(HostTest, APluginThatWasReplacedIsUsedAnewOnceItIsWritten) {
    const auto path = Plugin(L"iftst.spi");
    HostConnection plugin(path, pool_);
    plugin.Load();
    EXPECT_TRUE(plugin.Decode(Picture(), DecodeKind::kFull, {}).picture);
    const DWORD former = pool_.For(path)->Id();
    const std::wstring other = Plugin(L"axtsa.spi", {}, NewName(L".spi"));
    const auto style = [&] {
        Sleep(400);  // it is looked at from time to time only
        return plugin.Describe().style;
    };
    EXPECT_EQ(style(), kStylePicture);
    EXPECT_EQ(pool_.For(path)->Id(), former);
    ASSERT_TRUE(MoveFileW(path.c_str(), (path + L".old").c_str()));
    EXPECT_EQ(style(), kStylePicture) << "there is no other";
    ASSERT_TRUE(MoveFileW(other.c_str(), path.c_str()));
    {
        const UniqueFile writer(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                            OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(style(), kStylePicture) << "it may not be whole";
    }
    EXPECT_EQ(style(), kStyleArchive);
    EXPECT_NE(pool_.For(path)->Id(), former);
    EXPECT_EQ(Errors(path), 0);
}

TEST_F(HostTest, KilledFromOutsideAtAnyMomentItIsReplaced) {
    const auto path = Plugin(L"iftst.spi", "early:slow:GetPicture");
    HostConnection plugin(path, pool_);
    plugin.Load();
    int decoded = 0;
    constexpr int kRounds = 60;
    constexpr int kSettled = 15;
    ULONG handles = 0;
    size_t bytes = 0;
    for (int round = 0; round < kRounds; ++round) {
        if (round == kSettled) {
            handles = test::HandleCount();
            bytes = test::PrivateBytes();
        }
        const DWORD id = pool_.For({})->Id();
        std::thread killer([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(round % 12 * 8));
            const UniqueProcess host(OpenProcess(PROCESS_TERMINATE, FALSE, id));
            TerminateProcess(host.Get(), 5);
        });
        const DecodedPicture result = plugin.Decode(Picture(), DecodeKind::kFull, {});
        killer.join();
        decoded += result.picture ? 1 : 0;
        EXPECT_TRUE(!result.picture || result.picture.Width() == 3) << "though its host is gone";
    }
    EXPECT_EQ(decoded, kRounds) << "a new host has done it";
    EXPECT_EQ(Errors(path), 0);
    EXPECT_LE(test::HandleCount(), handles);
    EXPECT_LE(test::PrivateBytes(), bytes + (256 << 10));
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
    HostConnection hoarder(NewPlugin("early:hoard:GetPicture"), pool);
    const DecodedPicture decoded = hoarder.Decode(picture, DecodeKind::kFull, {});
    // Where the system itself keeps it from more, it goes on with what it has.
    if (!decoded.picture) {
        EXPECT_EQ(decoded.fault.message, kPluginHoardedText);
        ASSERT_EQ(ends.size(), 1u);
        EXPECT_EQ(ends[0].kind, EndKind::kMemory);
    }
    ends.clear();
    HostConnection leaking(NewPlugin("early:leak:IsSupported"), pool);
    std::set<DWORD> hosts;
    for (int i = 0; i < 12; ++i) {
        EXPECT_EQ(leaking.Supports(picture).code, 1) << i;
        hosts.insert(pool.For({})->Id());
        Sleep(70);
    }
    EXPECT_GT(hosts.size(), 2u);
    EXPECT_TRUE(ends.empty());
}

// What has its name is not started to find that out.
TEST_F(HostTest, WithoutItsProgramThereIsOneClearNotice) {
    std::string program = test::ContentOf(kProgram);
    const auto replace = [&](std::string_view name, std::wstring_view text, wchar_t by) {
        const std::string old(reinterpret_cast<const char*>(text.data()), text.size() * 2);
        std::string other = program;
        for (size_t at = 0; (at = other.find(old, at)) != other.npos; ++at)
            other[at] = static_cast<char>(by);
        folder_.Write(std::wstring(name.begin(), name.end()), other);
    };
    replace("foreign.exe", L"tessary-host32", L'x');
    replace("other.exe", std::wstring_view(TESSARY_VERSION, std::size(TESSARY_VERSION)), L'9');
    folder_.Write(L"empty.exe", "");
    for (const wchar_t* name : {L"a.spi", L"b.spi"})
        Plugin(L"iftst.spi", {}, name);
    GeneralSettings& general = Values().general;
    const GeneralSettings before = general;
    general.spiFolder[0] = folder_.Path();
    general.useSPI = 1;
    general.loadSPI[0] = true;
    for (const auto& [name, why] : {std::pair{L"gone.exe", L"見つかりません"},
                                    {L"empty.exe", L"別のプログラム"},
                                    {L"foreign.exe", L"別のプログラム"},
                                    {L"other.exe", L"バージョン"}}) {
        HostPool none(folder_.Path() + name);
        SetPluginConnector([&](const std::wstring& plugin) {
            return std::make_unique<HostConnection>(plugin, none);
        });
        EXPECT_TRUE(LoadSPI());
        EXPECT_EQ(SusieCollection().LeftOut().size(), 2u);
        EXPECT_TRUE(SusieCollection().IsIncomplete() && general.loadSPI[0]);
        const std::vector<std::wstring> notices = LoadingNotices();
        ASSERT_EQ(notices.size(), 1u);
        EXPECT_NE(notices[0].find(L"tessary-host32.exe"), std::wstring::npos);
        EXPECT_NE(notices[0].find(why), std::wstring::npos) << name;
    }
    SetPluginConnector({});
    EXPECT_TRUE(LoadSPI());
    EXPECT_EQ(SusieCollection().Count(), 2);
    UnloadSPI();
    general = before;
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

}  // namespace
}  // namespace tessary
