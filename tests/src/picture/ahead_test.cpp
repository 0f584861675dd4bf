// Reading ahead: with real plug-ins in real host processes, as the viewer does it.
#include "picture/ahead/pictures_ahead.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "host/host_connection.h"
#include "picture/frames/plugin_frames.h"
#include "plugin/call_watch.h"
#include "plugin/modSusie.h"
#include "tests/src/plugin/plugin_test.h"

namespace tessary {
namespace {

const std::wstring kProgram = test::FinishedFolder() + L"tessary-host32.exe";

bool Comes(const std::function<bool()>& condition) {
    const ULONGLONG begin = GetTickCount64();
    while (GetTickCount64() - begin < 10'000) {
        if (condition()) return true;
        Sleep(5);
    }
    return false;
}

class AheadTest : public test::PluginTest {
  protected:
    AheadTest() {
        Values().general.readAhead = 1;
        SetPluginConnector([this](const std::wstring& path) {
            return std::make_unique<HostConnection>(path, pool_);
        });
        plugin_ = Plugin(L"iftst.spi");
        SusieCollection().AddSPI(plugin_);
        SusieCollection().AddSPI(Plugin(L"axtsa.spi"));
        Ahead().Begin(2, [] { return OwnHostConnector(HostWindows::kHidden, kProgram); });
    }
    ~AheadTest() override {
        Ahead().End();
        UnloadSPI();
        SetPluginConnector({});
    }

    void Plan(std::vector<AheadEntry> next, PreparePicture prepare = {}) {
        Ahead().Plan(std::move(next), {}, std::move(prepare));
    }
    static bool IsRead(const AheadEntry& entry) {
        return Comes([&] { return Ahead().Has(entry); });
    }
    // Without waiting for anything.
    static std::optional<AheadPicture> Taken(const AheadEntry& entry) {
        const CallWatch watch([](const WaitedCall&) { return CallWish::kStops; });
        return Ahead().Take(entry);
    }

    HostPool pool_{kProgram};
    std::wstring plugin_;
};

TEST_F(AheadTest, WhatIsPlannedIsThereUntilItsFileChanges) {
    const std::wstring kept = PictureFile();
    const std::wstring changed = PictureFile();
    Plan({{kept}, {changed}}, [](const Picture& picture) { return picture.Another(); });
    ASSERT_TRUE(IsRead({kept}) && IsRead({changed}));
    folder_.Write(FileNameOf(changed), "TST 30x20x24\n\n");
    EXPECT_FALSE(Taken({changed}));
    for (int again = 0; again < 2; ++again) {
        const std::optional<AheadPicture> picture = Taken({kept});
        ASSERT_TRUE(picture) << "it stays for the way back";
        EXPECT_EQ(picture->read.picture.Width(), 3);
        EXPECT_EQ(picture->prepared.Bits().data(), picture->read.picture.Bits().data());
        EXPECT_EQ(picture->read.plugin, plugin_);
    }
    // Settings of plug-ins may have changed.
    Ahead().Forget();
    EXPECT_FALSE(Taken({kept}));
}

TEST_F(AheadTest, WhatAPluginHasReadIsNotShownOnceItWasReplaced) {
    const std::wstring picture = PictureFile();
    Plan({{picture}});
    ASSERT_TRUE(IsRead({picture}));
    Plan({});
    EXPECT_TRUE(Taken({picture}));
    ASSERT_TRUE(MoveFileW(plugin_.c_str(), (plugin_ + L".old").c_str()));
    folder_.Write(FileNameOf(plugin_), "another");
    Plan({});
    EXPECT_FALSE(Taken({picture}));
}

TEST_F(AheadTest, OfAnArchiveThePageComesThatItOpensWith) {
    const std::wstring archive = folder_.Write(
        L"book.tsa", test::ArchiveOf({{"10.tst", "TST 10x1x24\n\n"}, {"2.tst", "TST 2x1x24\n\n"}}));
    Plan({{archive}});
    ASSERT_TRUE(IsRead({archive, 2}));
    EXPECT_EQ(Taken({archive, 2})->read.picture.Width(), 2);
    Plan({{archive, 1}});
    EXPECT_TRUE(IsRead({archive, 1})) << "of the archive that is bound by now";
}

TEST_F(AheadTest, NoEndOfAPluginIsFeltOrCountedBeforeItIsAskedFor) {
    const std::wstring crashing = PictureFile("crash:av:GetPicture\n");
    const std::wstring ending = PictureFile("crash:exit-well:GetPicture\n");
    const std::wstring hanging = PictureFile("early:sleep:GetPicture\n");
    const std::wstring good = PictureFile();
    Plan({{hanging}, {crashing}, {ending}, {good}});
    ASSERT_TRUE(IsRead({good}));
    EXPECT_FALSE(Ahead().Has({crashing}) || Ahead().Has({ending}));
    // Who is asked for what hangs there is not left waiting without a say, and both threads are
    // soon free again.
    const std::wstring next = PictureFile();
    const std::wstring other = PictureFile("dirty:slow:GetPicture\n");
    int asked = 0;
    {
        const CallWatch watch(
            [&](const WaitedCall&) { return ++asked < 3 ? CallWish::kGoesOn : CallWish::kStops; });
        EXPECT_FALSE(Ahead().Take({hanging}));
    }
    EXPECT_EQ(asked, 3);
    Plan({{next}, {other}});
    EXPECT_TRUE(IsRead({next}) && IsRead({other}));
    EXPECT_EQ(ReadErrorCount(plugin_, {}), 0);
    EXPECT_TRUE(ReadPicture(LookAtFile(ending), {}).failure);
    EXPECT_EQ(ReadErrorCount(plugin_, {}), 1) << "by the one who asks";
}

TEST_F(AheadTest, FramesComeFromAHostOfTheirOwnWhileTheFileIsTheSame) {
    const std::wstring plugin = Plugin(L"frames.spi");
    SusieCollection().AddSPI(plugin);
    const auto known = std::make_shared<const KnownPlugins>(KnownOf(SusieCollection()));
    const std::unique_ptr<FrameReader> reader =
        PluginFrameReaders([] { return OwnHostConnector(HostWindows::kHidden, kProgram); })();
    const auto animationOf = [&](const AheadEntry& entry) {
        Animation animation;
        animation.entry = entry;
        animation.stamp = *ExactStampOf(entry.path);
        animation.plugin = plugin;
        animation.plugins = known;
        return animation;
    };
    const auto width = [&](const Animation& animation, uint32_t index) {
        const std::optional<Frame> frame = reader->Read(animation, index, [] { return true; });
        EXPECT_TRUE(!frame || frame->milliseconds == 10 * index);
        return frame ? frame->picture.Width() : 0;
    };
    const Animation good = animationOf({PictureFile("frames:1:4:0\n")});
    const Animation bad = animationOf({PictureFile("frames:1:4:0\ncrash:exit-well:GetFrame\n")});
    const Animation member = animationOf(
        {folder_.Write(L"book.tsa", test::ArchiveOf({{"a.tst", "TST 1x1x24\n\n"},
                                                     {"b.tst", "TST 7x1x24\nframes:1:3:0\n"}})),
         2});
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(width(good, 0), 3);
        EXPECT_EQ(width(good, 2), 5);
        EXPECT_EQ(width(bad, 1), 0);
        EXPECT_EQ(width(member, 1), 8) << "behind a host that has ended";
    }
    EXPECT_EQ(ReadErrorCount(plugin, {}), 0) << "nobody has asked for it";
    folder_.Write(FileNameOf(good.entry.path), "TST 30x2x24\nframes:1:4:0\n");
    EXPECT_EQ(width(good, 1), 0) << "another file is another animation";
}

TEST_F(AheadTest, OnceAtRestOrSwitchedOffNothingIsUnderWay) {
    const std::wstring hanging = PictureFile("early:sleep:GetPicture\n");
    Plan({{hanging}, {PictureFile("early:sleep:GetPicture\n")}});
    Sleep(300);
    const ULONGLONG begin = GetTickCount64();
    Ahead().Rest();
    EXPECT_LT(GetTickCount64() - begin, 2000U);
    const std::wstring next = PictureFile();
    Plan({{next}});
    EXPECT_TRUE(IsRead({next}));
    Values().general.readAhead = 0;
    const std::wstring good = PictureFile();
    Plan({{good}});
    Sleep(300);
    EXPECT_FALSE(Ahead().Has({good}));
}

TEST_F(AheadTest, NobodySeesAQuestionAboutWhatHeHasNotAskedFor) {
    const PluginConnector connect = OwnHostConnector(HostWindows::kHidden, kProgram);
    const auto plugin = connect(plugin_);
    plugin->Load();
    const std::string question = ToAnsi(PictureFile("dirty:question:GetPicture\n"));
    const ULONGLONG begin = GetTickCount64();
    EXPECT_EQ(plugin->Decode({.name = question}, DecodeKind::kFull, {}).code, susie::kAborted);
    EXPECT_LT(GetTickCount64() - begin, 5000U);
}

AheadPicture PictureOf(const std::wstring& path, int32_t width) {
    dib::BitmapInfoHeader header{};
    header.size = sizeof(header);
    header.width = width;
    header.height = 1;
    header.planes = 1;
    header.bitCount = 32;
    const std::span info(reinterpret_cast<const uint8_t*>(&header), sizeof(header));
    AheadPicture picture{.entry = {path}};
    picture.read = {.kind = kFilePicture,
                    .picture = Picture::Make(info, [](std::span<uint8_t>) { return true; })};
    return picture;
}

TEST(AheadCacheTest, WhatIsLeastWantedMakesRoom) {
    const AheadPicture shown = PictureOf(L"shown", 1000);
    const size_t size = shown.Size();
    AheadCache cache;
    cache.SetBudget(3 * size);
    cache.SetWanted({{L"shown"}, {L"next"}, {L"second"}});
    const auto has = [&](const wchar_t* path) { return cache.Find({path}, {}).has_value(); };
    for (const wchar_t* path : {L"older", L"old", L"shown"})
        cache.Put(PictureOf(path, 1000));
    cache.Put(PictureOf(L"next", 1000));
    EXPECT_TRUE(!has(L"older") && has(L"old") && has(L"shown") && has(L"next"));
    cache.Put(PictureOf(L"second", 1000));
    EXPECT_TRUE(!has(L"old") && has(L"second"));
    cache.SetBudget(2 * size);
    EXPECT_TRUE(!has(L"second") && has(L"shown") && has(L"next"));
    cache.Put(PictureOf(L"huge", 5000));
    EXPECT_TRUE(!has(L"huge") && has(L"shown") && has(L"next")) << "nor for what has none itself";
    cache.SetBudget(100 * size);
    for (const wchar_t* path : {L"a", L"b", L"c"})
        cache.Put(PictureOf(path, 1000));
    EXPECT_TRUE(!has(L"a") && has(L"b") && has(L"c")) << "in whose memory others come";
    EXPECT_FALSE(cache.Find({L"next"}, {.size = 1}));
    EXPECT_FALSE(cache.Has({L"next"})) << "a file that has changed";
}

// --- Small pictures ---

class ThumbnailTest : public AheadTest {
  protected:
    ThumbnailTest() { CreateDirectoryW(kept_.c_str(), nullptr); }

    // By a run of the program; without plug-ins only what is kept on the disk can come.
    std::vector<Thumb> Made(const std::vector<ThumbEntry>& entries, bool hasPlugins = true,
                            bool mayKeep = true) {
        Thumbnails thumbs;
        thumbs.Begin(
            2,
            [&] {
                return OwnHostConnector(HostWindows::kHidden, hasPlugins ? kProgram : L"none.exe");
            },
            kept_);
        std::vector<Thumb> made(entries.size());
        thumbs.Want(entries, 64, mayKeep);
        EXPECT_TRUE(Comes([&] {
            std::ranges::transform(entries, made.begin(),
                                   [&](const auto& entry) { return thumbs.Find(entry); });
            return std::ranges::count(made, ThumbState::kComing, &Thumb::state) == 0;
        }));
        return made;
    }
    std::vector<std::wstring> Packs() const { return FilesInFolder(kept_ + LR"(Thumbnails\)"); }

    const std::wstring kept_ = folder_.Path() + LR"(kept\)";
};

TEST_F(ThumbnailTest, ComeFromTheDiskNextTimeUnlessThatIsDamaged) {
    const ThumbEntry large{{folder_.Write(L"large.tst", "TST 256x32x24\n")}};
    const ThumbEntry bad{{folder_.Write(L"bad.tst", "TST 8x8x24\ncrash:av:GetPicture\n")}};
    const ThumbEntry archive{
        {folder_.Write(L"a.tsa", "TSA\nmember\t12\t\tb.tst\n\nTST 9x4x24\n\n")}};
    std::vector<Thumb> made = Made({large, bad, archive});
    ASSERT_EQ(made[0].state, ThumbState::kThere);
    EXPECT_EQ(made[0].picture->Width(), 64);
    EXPECT_EQ(made[0].picture->Height(), 8);
    EXPECT_EQ(made[1].state, ThumbState::kFailed);
    EXPECT_EQ(ReadErrorCount(plugin_, {}), 0) << "nobody is blamed";
    ASSERT_EQ(made[2].state, ThumbState::kThere);
    EXPECT_EQ(made[2].picture->Width(), 9);
    const std::vector<uint8_t> rows(made[0].picture->Bits().begin(), made[0].picture->Bits().end());
    ASSERT_EQ(Packs().size(), 1U);

    made = Made({large, archive}, false);
    ASSERT_EQ(made[0].state, ThumbState::kThere);
    EXPECT_TRUE(std::ranges::equal(made[0].picture->Bits(), rows));
    EXPECT_EQ(made[1].state, ThumbState::kThere);
    EXPECT_EQ(Made({large}, false, false)[0].state, ThumbState::kFailed) << "nothing is remembered";

    // Torn within the second record, with one byte of the first changed.
    std::ifstream file{std::filesystem::path(Packs()[0]), std::ios::binary};
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    file.close();
    for (const size_t at : {size_t{200}, whole.size() - 1}) {
        std::string damaged = whole.substr(0, whole.size() - 20);
        if (at < damaged.size()) ++damaged[at];
        std::ofstream(std::filesystem::path(Packs()[0]), std::ios::binary) << damaged;
        made = Made({large, archive}, false);
        EXPECT_EQ(std::ranges::count(made, ThumbState::kThere, &Thumb::state), at == 200 ? 0 : 1);
    }
    folder_.Write(LR"(kept\Thumbnails\0.thumbs)", "somebody else's");
    EXPECT_EQ(Made({large})[0].state, ThumbState::kThere);
    folder_.Write(L"large.tst", "TST 16x16x24\n");
    EXPECT_EQ(Made({large})[0].picture->Width(), 16) << "it has changed";
    ThumbPacks(kept_ + LR"(Thumbnails\)").Clear();
    EXPECT_TRUE(Packs().empty());
}

// What the user waits for, and what he is likely to ask for next, come first.
TEST(ThumbBoardTest, WaitsWhileAnythingElseIsReadAndStaysWanted) {
    const test::TemporaryFolder folder;
    const ThumbEntry entry{{folder.Write(L"a.tst", "TST 4x4x24\n")}};
    ThumbBoard board(
        L"", [](const std::wstring&) { return true; }, [] {});
    AheadBoard ahead(1 << 20, [&](bool busy) { board.Hold(ThumbBoard::kReadsAhead, busy); });
    const AheadPicture large = PictureOf(L"large", 1'000'000);
    ahead.SetPlan({.next = {{L"large"}}, .budget = 1000});
    board.Want({entry}, {.side = 64});
    EXPECT_FALSE(board.TakeTask(0));
    const auto task = ahead.TakeTask(0);
    ASSERT_TRUE(task);
    ahead.Finish(*task, large.Another());
    EXPECT_FALSE(ahead.TakeTask(0)) << "too large to be kept, it is not read for ever";
    board.Hold(ThumbBoard::kUserWaits, true);
    EXPECT_FALSE(board.TakeTask(0));
    board.Hold(ThumbBoard::kUserWaits, false);
    const auto given = board.TakeTask(0);
    ASSERT_TRUE(given);
    EXPECT_EQ(given->enough, 128U);
    board.GiveUp();
    board.Finish(*given, std::nullopt);
    EXPECT_EQ(board.Find(entry).state, ThumbState::kComing)
        << "it was given up, and has not failed";
    const auto again = board.TakeTask(0);
    ASSERT_TRUE(again);
    AheadPicture made = PictureOf(L"a", 4);
    made.prepared = PictureOf(L"b", 4).read.picture;
    board.Want({entry}, {.side = 128});
    board.Finish(*again, std::move(made));
    EXPECT_EQ(board.Find(entry).state, ThumbState::kComing) << "that was of another size";
}

TEST(ThumbPacksTest, AllCopiesOfTheProgramKeepTheBoundTogether) {
    const test::TemporaryFolder folder;
    const std::wstring place = folder.Path() + LR"(kept\Thumbnails\)";
    const auto picture = [](int32_t width) {
        return ShrunkPicture(PictureOf(L"", width).read.picture, width, {});
    };
    constexpr uint64_t kBound = 1 << 20;
    ThumbPacks one(place), other(place);
    for (ThumbPacks* const packs : {&one, &other})
        packs->SetBudget(kBound);
    for (int i = 0; i < 200; ++i)
        (i % 2 == 0 ? one : other).Put(std::to_wstring(i), picture(4096));
    uint64_t size = 0;
    for (const auto& file : std::filesystem::directory_iterator(std::filesystem::path(place)))
        size += file.file_size();
    EXPECT_LE(size, kBound + kBound / 4) << "but for what the other has begun";
    EXPECT_TRUE(one.Find(L"198"));
    folder.Write(L"file", "");
    ThumbPacks nowhere(folder.Path() + LR"(file\Thumbnails\)");
    nowhere.SetBudget(kBound);
    nowhere.Put(L"a", picture(4));
    EXPECT_FALSE(nowhere.Find(L"a"));
}

TEST(ShrunkPictureTest, EachPixelIsTheAverageOfThoseItStandsFor) {
    dib::BitmapInfoHeader header{sizeof(header), 600, 300, 1, 24, 0, 0, 0, 0, 0, 0};
    uint8_t info[sizeof(header)];
    std::memcpy(info, &header, sizeof(header));
    const Picture fine = Picture::Make(info, [](std::span<uint8_t> rows) {
        for (size_t i = 0; i < rows.size(); ++i)
            rows[i] = (i % 1800 / 3 + i / 1800) % 2 != 0 ? 255 : 0;
        return true;
    });
    const Picture small = ShrunkPicture(fine, 100, {});
    ASSERT_EQ(small.Width(), 100);
    EXPECT_EQ(small.Height(), 50);
    for (const uint8_t level : small.View().Row(7).first(300))
        EXPECT_EQ(level, 127);
    const Picture wave = ShrunkPicture(fine, 250, {});  // 2.4 pixels each
    for (const uint8_t level : wave.View().Row(7).first(750))
        EXPECT_NEAR(level, 127, 24) << "parts of pixels count";
    EXPECT_EQ(ShrunkPicture(fine, 1000, {}).Width(), 600) << "small ones stay";
    const SIZE thin = SizeInSquare(5000, 3, 100);
    EXPECT_TRUE(thin.cx == 100 && thin.cy == 1);
}

}  // namespace
}  // namespace tessary
