// What every connection to a plug-in has to do, whatever the plug-in does.
#include <algorithm>
#include <fstream>
#include <set>

#include "app/base/quit.h"
#include "helpers/color/color_profile.h"
#include "host/host_connection.h"
#include "plugin/susie_calls.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

enum class Way { kLocal, kHosted };

class ConnectionTest : public test::PluginTest, public testing::WithParamInterface<Way> {
  protected:
    // To a copy of a test plug-in, which is loaded.
    PluginConnection& Connected(const std::wstring& original, std::string_view script = {}) {
        path_ = Plugin(original, script, NewName(L".spi"));
        connection_ = IsLocal() ? ConnectTo(path_) : std::make_unique<HostConnection>(path_, pool_);
        style_ = connection_->Load().style;
        return *connection_;
    }
    PluginSource File(const std::string& content) {
        return {.name = ToAnsi(folder_.Write(NewName(L".x"), content))};
    }
    static PluginSource Bytes(const std::string& content) {
        return {"a.x", {reinterpret_cast<const uint8_t*>(content.data()), content.size()}, false};
    }
    PluginSource Picture(const std::string& directives = {}) {
        return File("TST 3x2x24\n" + directives + "\n");
    }
    PluginSource Archive(const std::string& directives = {}) {
        return File(test::ArchiveOf({{"dir/a", "first"}, {"\x83\x5C", "second"}}, directives));
    }
    DecodedPicture Decoded(const std::string& directives, const SusieProgress& progress = {}) {
        return connection_->Decode(Picture(directives), DecodeKind::kFull, progress);
    }
    int32_t Errors(std::wstring_view function = {}) { return ReadErrorCount(path_, function); }

    // In this process the test sees more of the plug-in than through the connection.
    bool IsLocal() const { return GetParam() == Way::kLocal; }

    HostPool pool_{test::FinishedFolder() + L"tessary-host32.exe"};
    std::unique_ptr<PluginConnection> connection_;
    std::wstring path_;
    int32_t style_ = kStyleNone;
};

INSTANTIATE_TEST_SUITE_P(Plugin, ConnectionTest, testing::Values(Way::kLocal, Way::kHosted),
                         [](const auto& way) {
                             return way.param == Way::kLocal ? "here" : "hosted";
                         });

TEST_P(ConnectionTest, ExportsDecideTheKind) {
    const std::pair<const wchar_t*, int32_t> kinds[] = {
        {L"minimal.spi", kStylePicture},      {L"picture_and_archive.spi", kStylePicture},
        {L"axtsa.spi", kStyleArchive},        {L"no_get_file_info.spi", kStyleNone},
        {L"no_is_supported.spi", kStyleNone}, {L"config_only.spi", kStyleNone}};
    for (const auto& [plugin, style] : kinds) {
        const int32_t supported = Connected(plugin).Supports(Bytes("TST 1x1x1\n")).code;
        EXPECT_EQ(style_, style) << plugin;
        EXPECT_EQ(supported == kResultNotExported, style == kStyleNone) << plugin;
    }
    EXPECT_TRUE(connection_->IsLoaded());
    EXPECT_EQ(connection_->Configure(nullptr).code, 0);  // left as it was found
    EXPECT_FALSE(CallIsLogged());
}

TEST_P(ConnectionTest, AnEmbeddedProfileComesAlong) {
    const std::vector<uint8_t> icc = color::Profile::AdobeRgb().Icc();
    const std::string digits = test::HexOf(icc);
    for (const wchar_t* plugin : {L"iftst.spi", L"into_room.spi"}) {
        Connected(plugin);
        const DecodedPicture good = Decoded("header:124\nprofile:" + digits);
        ASSERT_TRUE(good.picture);
        EXPECT_TRUE(std::ranges::equal(good.picture.Profile(), icc));
        EXPECT_TRUE(std::ranges::equal(good.picture.Another().Profile(), icc));
        EXPECT_EQ(good.picture.Info().size(), 40u);
        const DecodedPicture plain = Decoded("");
        EXPECT_TRUE(std::ranges::equal(good.picture.Bits(), plain.picture.Bits()));
        EXPECT_TRUE(plain.picture.Profile().empty());
        // It would reach beyond the block.
        const DecodedPicture cut = Decoded("header:124\ninfo-size:300\nprofile:" + digits);
        ASSERT_TRUE(cut.picture);
        EXPECT_TRUE(cut.picture.Profile().empty());
    }
}

TEST_P(ConnectionTest, DescribesItOutOfEveryKindOfText) {
    const std::pair<const char*, const wchar_t*> texts[] = {
        {"info-none", L"*.*"},
        {"crash:av:GetPluginInfo", L"*.*"},
        {"info-fill", L"*.*"},
        {"info:2: *.abc", L"*.*"},
        {"info-longer:1000", L"*.TST"},
        {"info-overrun:4000", L"*.TST"},
        {"info-counts-nul", L"*.TST"},
        {"info:2:*.jpg;.jpeg; JFIF \ninfo:4:*.TST; *.ts2\ninfo:5:more\ninfo:6:tst",
         L"*.JPG;*.JPEG;*.JFIF;*.TST;*.TS2;*.TST"}};
    for (const auto& [script, patterns] : texts) {
        const PluginDescription told = Connected(L"iftst.spi", script).Describe();
        std::wstring joined;
        for (const std::wstring& pattern : told.patterns)
            joined += (joined.empty() ? L"" : L";") + pattern;
        EXPECT_EQ(joined, patterns) << script;
        EXPECT_TRUE(told.hasSettings);
    }
    EXPECT_EQ(connection_->Describe().productName, L"Test plug-in");
    for (const char* many : {"patterns:64", "patterns:80", "info-endless"})
        EXPECT_EQ(Connected(L"iftst.spi", many).Describe().patterns.size(), kMaxPatterns) << many;
    EXPECT_FALSE(Connected(L"minimal.spi").Describe().hasSettings);
}

TEST_P(ConnectionTest, CrashesAreCountedUnderTheKeysOfTheStore) {
    std::string script;
    for (const char* function : {"GetPluginInfo", "IsSupported", "GetPictureInfo", "GetPicture",
                                 "GetArchiveInfo", "GetFileInfo", "GetFile", "ConfigurationDlg"})
        script += std::string("crash:av:") + function + "\n";
    PluginConnection& bad = Connected(L"picture_and_archive.spi", script);
    const PluginSource file = Picture();
    const PluginSource bytes = Bytes("TSA\n");
    const std::pair<const wchar_t*, PluginAnswer> answers[] = {
        {L"IsSupported", bad.Supports(bytes)},
        {L"GetPictureInfo", bad.Measure(file)},
        {L"GetPicture", bad.Decode(file, DecodeKind::kFull, {})},
        {L"GetPrevew", bad.Decode(file, DecodeKind::kPreview, {})},
        {L"GetArchiveInfo", bad.List(file)},
        {L"GetFileMM", bad.Extract(bytes, {}, {}, {})},
        {L"GetFileSM", bad.Extract(file, {}, {}, {})},
        {L"GetFileMS", bad.Extract(bytes, {}, "y", {})},
        {L"GetFileSS", bad.Extract(file, {}, "y", {})},
    };
    std::wstring section = path_ + L"_SPI_ERRORLOG";
    std::ranges::replace(section, L'\\', L'/');
    for (const auto& [key, answer] : answers) {
        EXPECT_TRUE(answer.HasCrashed()) << key;
        EXPECT_EQ(answer.fault.message, kPluginCrashedText);
        EXPECT_EQ(GetSetting(section, key), L"1") << key;
    }
    EXPECT_EQ(answers[8].second.fault.function, L"GetFile");
    EXPECT_TRUE(bad.Configure(nullptr).HasCrashed());
    EXPECT_EQ(Errors(L"GetFileSS"), 2);
    EXPECT_EQ(bad.Describe().fault.message, kPluginCrashedText);
    EXPECT_EQ(GetSetting(section, L"Total"), L"10");
    EXPECT_FALSE(CallIsLogged());

    if (!IsLocal()) return;
    SusieCalls calls(path_);  // has one call more, which no operation makes
    calls.BindAddresses(GetModuleHandleW(path_.c_str()));
    susie::FileInfo info;
    EXPECT_EQ(calls.GetFileInfo({"C:\\x", 0, susie::kSourceFile}, "m", info), kResultCrashed);
    EXPECT_EQ(Errors(L"GetFileInfo"), 1);
}

TEST_P(ConnectionTest, OtherFailuresAreTold) {
    PluginConnection& plugin = Connected(L"minimal.spi", "answer:IsSupported:8\n");
    const PluginAnswer other = plugin.Supports(Bytes("x"));
    EXPECT_EQ(other.code, 8);
    EXPECT_EQ(other.fault.message, L"");
    const PluginAnswer missing = plugin.Measure(Picture());
    EXPECT_EQ(missing.code, kResultNotExported);
    EXPECT_EQ(missing.fault.message, L"呼び出そうとした関数はSPIファイルでサポートされていません");
    EXPECT_EQ(Errors(), 0);
    // A store that takes nothing disables no plug-in.
    EXPECT_FALSE(CallsGoUnlogged());
    RedirectSettingsStore(std::wstring(300, L'x'));  // longer than a key can be
    EXPECT_EQ(plugin.Supports(Bytes("x")).code, 8);
    RedirectSettingsStore(store_.KeyPath());
    EXPECT_EQ(CallsGoUnlogged(), IsLocal()) << "of this process";
}

TEST_P(ConnectionTest, SizesAreNotBelievedThatCannotBe) {
    Connected(L"iftst.spi");
    const std::pair<const char*, int32_t> sizes[] = {
        {"flag128\ntext:comment", 3},    {"info-record:40x30x0", -1},
        {"info-record:0x30x24", -1},     {"info-record:40x-1x8", -1},
        {"answer:GetPictureInfo:3", -1}, {"crash:av:GetPictureInfo", -1}};
    for (const auto& [directives, width] : sizes) {
        const PictureSize size = connection_->Measure(Picture(directives)).size;
        EXPECT_EQ(size.width, width) << directives;
        EXPECT_EQ(size.height, width < 0 ? -1 : 2) << directives;
        EXPECT_EQ(size.colorDepth, width < 0 ? -1 : 24) << directives;
    }
    EXPECT_EQ(Calls(path_, "GetPictureInfo"), IsLocal() ? 8 : -1) << "twice where it may help";
}

TEST_P(ConnectionTest, OnlyPlainPicturesAreHandedOn) {
    Connected(L"iftst.spi");
    const DecodedPicture plain = Decoded("header:108");
    ASSERT_TRUE(plain.HasSucceeded() && plain.picture);
    const auto pixel = plain.picture.View().Row(1).subspan(2 * 3);
    EXPECT_TRUE(pixel[0] == 14 && pixel[1] == 11 && pixel[2] == 11);
    for (const char* lie :
         {"bits-size:10", "info-size:20", "no-handles", "no-bits", "no-info", "same-handle",
          "wild-handles", "biWidth:100000", "biHeight:0", "biBitCount:7", "biSize:400",
          "foreign:malloc", "foreign:heap", "foreign:odd", "foreign:inside"}) {
        const DecodedPicture decoded = Decoded(lie);
        EXPECT_TRUE(decoded.HasSucceeded() && !decoded.picture) << lie;
    }
    EXPECT_TRUE(Decoded("foreign:closed\nbits-size:20000").HasCrashed());  // it cannot be read
    EXPECT_EQ(Errors(L"GetPicture"), 1);
    EXPECT_FALSE(PluginsAreStopped());
}

// Only a host has it; here the plug-in hands out blocks.
TEST_P(ConnectionTest, WhoCanPutsItsPictureIntoTheHostsRoom) {
    Connected(L"iftst.spi");
    const auto bytes = [](const DecodedPicture& decoded) {
        const auto info = decoded.picture.Info();
        const auto bits = decoded.picture.Bits();
        return std::pair(std::vector(info.begin(), info.end()),
                         std::vector(bits.begin(), bits.end()));
    };
    const std::string kinds[] = {"", "header:108", "biHeight:-2", "twice", "bits-size:20"};
    std::vector<DecodedPicture> wanted;
    for (const std::string& kind : kinds)
        wanted.push_back(Decoded(kind));
    const auto own = std::exchange(connection_, nullptr);
    Connected(L"into_room.spi");
    for (int round = 0; round < 2; ++round) {  // the second time the room has been used
        for (size_t i = 0; i < wanted.size(); ++i) {
            const DecodedPicture decoded = Decoded(kinds[i]);
            ASSERT_EQ(decoded.HasSucceeded() && decoded.picture,
                      static_cast<bool>(wanted[i].picture))
                << kinds[i];
            if (!decoded.picture) continue;
            EXPECT_EQ(bytes(decoded), bytes(wanted[i])) << kinds[i];
        }
    }
    const auto there = GetProcAddress(GetModuleHandleW(path_.c_str()), "GetPictureInto");
    EXPECT_EQ(there != nullptr, IsLocal());
    EXPECT_TRUE(Decoded("no-handles").HasSucceeded());
    EXPECT_FALSE(Decoded("no-handles").picture);
    if (IsLocal()) return;
    const auto reduced = connection_->Decode(Picture("reduces"), {DecodeKind::kFull, 5}, {});
    ASSERT_TRUE(reduced.picture);
    EXPECT_EQ(reduced.picture.Width(), 5);
    EXPECT_NE(Decoded("reduces").picture.Width(), 5) << "who has not asked for it";
    // What fails keeps no room: all of these would be more than a process can have.
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(Decoded("asks-only:100000000").code, 6) << i;
    EXPECT_TRUE(Decoded("crash:av:GetPictureInto").HasCrashed());
    EXPECT_EQ(Errors(L"GetPicture"), 1);
    EXPECT_TRUE(Decoded("").picture);
}

// The handles that the next movable blocks get are others than before when some have leaked.
TEST_P(ConnectionTest, NothingOfAPluginsBlocksStays) {
    const auto freeHandles = [] {
        std::set<HLOCAL> handles;
        for (int i = 0; i < 8; ++i)
            handles.insert(LocalAlloc(LMEM_MOVEABLE, 1));
        std::ranges::for_each(handles, LocalFree);
        return handles;
    };
    Connected(L"picture_and_archive.spi");
    const auto before = freeHandles();
    for (const std::string kind :
         {"", "bits-size:0", "info-size:0\nbits-size:0", "no-bits\ninfo-size:0", "no-info",
          "same-handle", "text:comment", "answer-after:GetPictureInfo:6\ntext:x",
          "answer-after:GetPicture:6", "answer-after:GetPicture:6\nbits-size:0",
          "answer-after:GetPicture:6\nsame-handle", "answer-after:GetPicture:6\nwild-handles",
          "answer-after:GetPicture:6\nfixed", "answer-after:GetArchiveInfo:2",
          "answer-after:GetFile:6", "answer-after:GetArchiveInfo:2\nfixed", "crash:av:GetFile"}) {
        connection_->Measure(Picture(kind));
        Decoded(kind);
        connection_->List(Archive(kind + "\n"));
        connection_->Extract(Archive(kind + "\n"), {}, {}, {});
        EXPECT_EQ(freeHandles(), before) << kind;
    }
}

TEST_P(ConnectionTest, ListsEndAndAreBelievedAsPluginsMeanThem) {
    Connected(L"axtsa.spi");
    // The names; "-" when there is no list.
    const auto listed = [&](const PluginSource& archive) {
        const auto members = connection_->List(archive).members;
        std::wstring names(members ? 0 : 1, L'-');
        for (const susie::FileInfo& member : members.value_or(ArchiveMembers()))
            names += ArchiveMemberName(member) + L'|';
        return names;
    };
    const std::string failed = "answer-after:GetArchiveInfo:2\n";
    for (const std::string kind :
         {"", "path-in-name\n", "no-end\n", "tail:427\n", "no-end\ntail:300\n", "dirty-end\n",
          "zero-fields\n", "answer-after:GetArchiveInfo:2\n",
          "answer-after:GetArchiveInfo:2\nfixed\n"})
        EXPECT_EQ(listed(Archive(kind)), L"dir\\a|ソ|") << kind;
    EXPECT_EQ(listed(Archive(failed + "unterminated\n")).find(L'|'), 401U);
    for (const std::string name : {"\x01.jpg", ""})
        for (const char* fixed : {"", "fixed\n"})
            EXPECT_EQ(listed(File(test::ArchiveOf({{name, "x"}}, failed + fixed))), L"-") << name;
    for (const char* bad : {"crash:av:GetArchiveInfo\n", "answer:GetArchiveInfo:0\n"})
        EXPECT_EQ(listed(Archive(bad)), L"-") << bad;
}

TEST_P(ConnectionTest, WhatThePluginTellsBesideItsResultIsChecked) {
    Connected(L"iftst.spi");
    const std::tuple<const char*, int32_t, std::wstring> told[] = {
        {"condition:1:cut\tshort ", 1, L"cut short"},
        {"", 0, L""},  // nothing of the one before is left
        {"condition:1:endless", 1, std::wstring(256, L'x')},
        {"condition:1:", 1, L"データが壊れているか、途中で切れています"},
        {"condition:6:x", 0, L""},
        {"condition:-1:x", 0, L""},
        {"condition:0:x", 0, L""},
        {"condition:5:BC7\nanswer-after:GetPicture:2", 5, L"BC7"},
        {"condition:1:x\ncrash:av:GetPicture", 0, L""}};  // not asked about
    for (const auto& [directives, kind, text] : told) {
        const DecodedPicture decoded = Decoded(directives);
        EXPECT_EQ(decoded.condition.kind, kind) << directives;
        EXPECT_EQ(decoded.condition.text, text) << directives;
        // A failure has the plug-in's reason.
        EXPECT_TRUE(decoded.code != 2 || decoded.fault.message == text) << directives;
    }

    // One that crashes when it is to tell is not asked again, and its picture stands.
    Connected(L"iftst.spi", "condition:1:x\ncrash:av:GetLastCondition\n");
    for (int i = 0; i < 2; ++i) {
        const DecodedPicture decoded = Decoded("");
        EXPECT_TRUE(decoded.HasSucceeded() && decoded.picture);
        EXPECT_EQ(decoded.condition.kind, susie::kConditionNone);
    }
    EXPECT_EQ(Errors(L"GetLastCondition"), 1);

    Connected(L"axtsa.spi");
    const PluginSource torn = Archive("condition:3:volume\nanswer-after:GetFile:2\n");
    EXPECT_EQ(connection_->List(torn).condition.text, L"volume");
    EXPECT_EQ(connection_->Extract(torn, {}, {}, {}).condition.text, L"volume");
}

TEST_P(ConnectionTest, FramesComeInAnyOrderAndOfWhatTheFileIsNow) {
    const auto width = [&](const PluginSource& source, uint32_t index) {
        const DecodedFrame frame = connection_->DecodeFrame(source, index, {});
        EXPECT_TRUE(!frame.picture || frame.duration == 10 * index);
        return frame.picture ? frame.picture.Width() : -frame.code;
    };
    Connected(L"frames.spi");
    const PluginSource file = Picture("frames:1:4:2");
    EXPECT_EQ(connection_->Decode(file, DecodeKind::kFull, {}).frames,
              (PictureFrames{FrameKind::kAnimation, 4, 2}));
    EXPECT_FALSE(connection_->Decode(file, DecodeKind::kPreview, {}).frames);
    for (const uint32_t index : {0U, 1U, 3U, 0U})
        EXPECT_EQ(width(file, index), static_cast<int>(3 + index));
    EXPECT_EQ(width(file, 4), -susie::kBrokenData);

    // The bytes that it has open are not those of the call.
    const std::string content = "TST 5x2x24\nframes:2:3:7\n";
    for (int i = 0; i < 2; ++i) {
        const std::string copy = content;
        EXPECT_EQ(width(Bytes(copy), 2), 7);
    }
    EXPECT_EQ(connection_->Decode(Bytes(content), DecodeKind::kFull, {}).frames,
              (PictureFrames{FrameKind::kPages, 3, 0}));
    EXPECT_EQ(width(Bytes("TST 9x2x24\nframes:2:3:7\n"), 2), 11);
    if (IsLocal()) {
        EXPECT_EQ(Calls(path_, "OpenFrames"), 5);  // once for each decode and each source
        EXPECT_EQ(Calls(path_, "CloseFrames"), 4);
    }

    EXPECT_EQ(width(file, 1), 4);
    std::ofstream(file.name, std::ios::binary) << "TST 50x2x24\nframes:1:2:2\n";
    EXPECT_EQ(width(file, 1), 51);
    EXPECT_EQ(width(file, 3), -susie::kBrokenData);
    if (IsLocal()) {
        const UniqueModule kept(LoadLibraryW(path_.c_str()));
        connection_->Unload();
        EXPECT_EQ(Calls(path_, "CloseFrames"), Calls(path_, "OpenFrames"));
    } else {
        // Of a host that has gone another one is asked.
        const HostProcess* const host = pool_.RunningFor(path_);
        const UniqueProcess process(
            OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, host->Id()));
        TerminateProcess(process.Get(), 1);
        WaitForSingleObject(process.Get(), INFINITE);
        EXPECT_EQ(width(file, 1), 51);
        EXPECT_EQ(Errors(), 0);
    }
}

TEST_P(ConnectionTest, APictureIsNotLostWithItsFrames) {
    for (const char* lie :
         {"frames:1:1:0", "frames:3:5:0", "frames:1:99999999:0", "frames:1:-1:0",
          "frames:1:5:0\nnull-frames", "frames:1:5:0\nanswer-after:OpenFrames:3"}) {
        Connected(L"frames.spi");
        const DecodedPicture decoded = Decoded(lie);
        EXPECT_TRUE(decoded.picture && !decoded.frames && decoded.fault.message.empty()) << lie;
        EXPECT_EQ(connection_->DecodeFrame(Picture(lie), 1, {}).code == 0, false) << lie;
    }
    for (const char* function : {"OpenFrames", "CloseFrames"}) {
        for (const std::string crash : {"av", "exit"}) {
            if (IsLocal() && crash == "exit") continue;
            Connected(L"frames.spi", "frames:1:5:0\ncrash:" + crash + ":" + function + "\n");
            for (int i = 0; i < 2; ++i) {
                const DecodedPicture decoded = Decoded("");
                EXPECT_TRUE(decoded.HasSucceeded() && decoded.picture) << function << crash;
                EXPECT_FALSE(decoded.frames);
            }
            EXPECT_EQ(Errors(FromAnsi(function)), 1) << crash;
        }
    }
    Connected(L"frames.spi");
    EXPECT_TRUE(
        connection_->DecodeFrame(Picture("frames:1:5:0\ncrash:av:GetFrame"), 1, {}).HasCrashed());
    EXPECT_EQ(Errors(L"GetFrame"), 1);
    EXPECT_EQ(connection_->DecodeFrame(Picture("frames:1:5:0"), 1, {}).picture.Width(), 4);
    const DecodedFrame damaged =
        connection_->DecodeFrame(Picture("frames:1:5:0\ncondition:1:cut"), 1, {});
    EXPECT_EQ(damaged.condition.text, L"cut");
}

TEST_P(ConnectionTest, ProgressCanStopAndMayThrow) {
    Connected(L"iftst.spi");
    const SusieProgress stops[] = {[](int, int) { return false; },
                                   [](int, int) -> bool { throw std::bad_alloc(); }};
    for (const SusieProgress& stop : stops) {
        const DecodedPicture decoded = Decoded("", stop);
        EXPECT_TRUE(decoded.wasStopped && decoded.code == susie::kAborted);
    }
    int last = -1;
    EXPECT_FALSE(Decoded("", [&](int done, int) { return (last = done) >= 0; }).wasStopped);
    EXPECT_EQ(last, 2);
}

TEST_P(ConnectionTest, ARequestToQuitIsNotThePluginsToMake) {
    const auto posted = [](MSG message = {}) {
        return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) ? message.wParam : 0;
    };
    Connected(L"iftst.spi",
              "dirty:quit:DllMain\ndirty:quit:GetPluginInfo\ndirty:quit:ConfigurationDlg\n");
    EXPECT_EQ(posted(), 0U);
    connection_->Describe();
    EXPECT_EQ(posted(), 0U);
    RequestQuit(3);
    connection_->Configure(nullptr);  // the program is to end all the same, with its own status
    EXPECT_EQ(posted(), 3U);
    QuitIsDone();
}

TEST_P(ConnectionTest, TheLogSaysWhoIsCalledWithWhat) {
    Connected(L"iftst_preview.spi").SetBoundFile(L"C:\\a.tst");
    for (const DecodeKind kind : {DecodeKind::kPreview, DecodeKind::kFull}) {
        std::wstring logged;
        const auto readLog = [&](int, int) {
            for (const wchar_t* key : {L"Function", L"SPI", L"File"})
                logged += GetSetting(L"SPI_CALLLOG", key) + L'|';
            return false;
        };
        connection_->Decode(Picture(), kind, readLog);
        const std::wstring called = kind == DecodeKind::kFull ? L"GetPicture|" : L"GetPreview|";
        // A host keeps it to itself.
        EXPECT_EQ(logged, IsLocal() ? called + FileNameOf(path_) + L"|C:\\a.tst|" : L"|||");
    }
    // The preview is the full call under another name.
    EXPECT_FALSE(CallIsLogged());
    if (!IsLocal()) return;
    EXPECT_EQ(Calls(path_, "GetPreview"), 0);
    EXPECT_EQ(Calls(path_, "GetPicture"), 2);
}

}  // namespace
}  // namespace tessary
