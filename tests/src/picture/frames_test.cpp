// Playing: when frames are seen, which are kept, and the threads between the two.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

#include "picture/frames/frame_player.h"
#include "picture/frames/frame_store.h"
#include "tests/src/ui/test_picture.h"

namespace tessary {
namespace {

using namespace std::chrono_literals;

constexpr SIZE kSize{40, 30};
constexpr size_t kCostOfSmall = size_t{64} << 10;

Frame FrameOf(uint32_t milliseconds) {
    return {test::TestPicture(kSize.cx, kSize.cy), milliseconds};
}

TEST(FrameClockTest, AddsTimesUpPassesByWhatIsOverAndHasNoHaste) {
    const FrameTime start{1h};
    std::vector<std::optional<uint32_t>> told{40, 40, 5, 40};  // 5 counts as 100
    const auto find = [&](uint32_t index) { return told[index]; };
    FrameClock clock;
    clock.Begin(4, 2);
    clock.GoTo(0, start, 40);
    struct Look {
        FrameTime at;
        uint32_t index;
        FrameTime end;
    };
    const auto expect = [&](const std::vector<Look>& looks) {
        for (const Look& look : looks) {
            clock.MoveOn(look.at, find);
            EXPECT_EQ(clock.Index(), look.index) << (look.at - start) / 1ms;
            EXPECT_EQ(clock.End(), look.end) << (look.at - start) / 1ms;
        }
    };
    expect({{start + 39ms, 0, start + 40ms},
            {start + 55ms, 1, start + 80ms},    // late, and the next is not
            {start + 190ms, 3, start + 220ms},  // one is passed by
            {start + 225ms, 0, start + 260ms}});
    told[1] = told[2] = std::nullopt;
    expect({{start + 290ms, 0, start + 260ms}});
    // It comes when its time is over: what is behind it keeps its own.
    told[1] = 40;
    expect({{start + 350ms, 1, start + 390ms}});
    told[2] = 5;
    expect({{start + 395ms, 2, start + 490ms}});
    EXPECT_FALSE(clock.IsAtEnd());
    expect({{start + 500ms, 3, start + 530ms}, {start + 2000ms, 3, start + 530ms}});
    EXPECT_TRUE(clock.IsAtEnd());
}

TEST(FrameStoreTest, KeepsAllThatFitAndElseThoseThatComeNext) {
    FrameStore store(5 * kCostOfSmall);
    const auto fill = [&](uint32_t shown) {
        std::vector<uint32_t> got;
        while (const std::optional<uint32_t> wanted = store.Wanted(shown)) {
            store.Put(*wanted, FrameOf(40), shown);
            got.push_back(*wanted);
            if (got.size() > 20) break;
        }
        EXPECT_LE(store.Bytes(), 5 * kCostOfSmall);
        return got;
    };
    store.Begin(5);
    EXPECT_EQ(fill(3), (std::vector<uint32_t>{3, 4, 0, 1, 2}));
    EXPECT_TRUE(fill(1).empty()) << "a round costs nothing";
    store.Begin(9);
    EXPECT_EQ(fill(6), (std::vector<uint32_t>{6, 7, 8, 0, 1}));
    EXPECT_EQ(fill(8), (std::vector<uint32_t>{2, 3}));
    EXPECT_TRUE(store.Find(8) && store.Find(0) && !store.Find(7));
    EXPECT_EQ(fill(5), (std::vector<uint32_t>{5, 6, 7}));
    FrameStore tiny(1);
    tiny.Begin(3);
    tiny.Put(0, FrameOf(40), 0);
    EXPECT_EQ(tiny.Wanted(0), 1U) << "the next one always has room";
    tiny.Put(1, FrameOf(40), 0);
    EXPECT_FALSE(tiny.Wanted(0));
}

class FramePlayerTest : public testing::Test {
  protected:
    // What the readers know and have done.
    struct Script {
        std::mutex mutex;
        std::vector<uint32_t> reads;
        uint32_t milliseconds = 20;
        uint32_t broken = ~0U;
        uint32_t otherSize = ~0U;
        int readers = 0;
    };
    class Reader final : public FrameReader {
      public:
        explicit Reader(Script& script) : script_(script) {}
        std::optional<Frame> Read(const Animation&, uint32_t index,
                                  const std::function<bool()>&) override {
            const std::lock_guard lock(script_.mutex);
            script_.reads.push_back(index);
            if (index == script_.broken) return std::nullopt;
            return Frame{index == script_.otherSize ? test::TestPicture(3, 2)
                                                    : test::TestPicture(kSize.cx, kSize.cy),
                         script_.milliseconds};
        }

      private:
        Script& script_;
    };

    FramePlayerTest() = default;
    ~FramePlayerTest() override { player_.End(); }

    void Play(uint32_t count, uint32_t rounds) {
        player_.SetAnimation({.size = kSize, .count = count, .rounds = rounds});
        player_.Play();
    }
    // Takes frames until `ends` answers true.
    template <typename Ends>
    std::vector<uint32_t> Taken(Ends ends) {
        std::vector<uint32_t> indexes;
        const auto begin = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - begin < 10s) {
            if (std::optional<PlayedFrame> frame = player_.Take()) {
                indexes.push_back(frame->index);
                last_ = *std::move(frame);
            }
            if (ends(indexes)) return indexes;
            Sleep(1);
        }
        ADD_FAILURE() << "it goes on, or nothing comes";
        return indexes;
    }
    std::vector<uint32_t> TakenToTheEnd() {
        return Taken([this](const auto&) { return player_.IsOver(); });
    }
    std::vector<uint32_t> Reads() {
        const std::lock_guard lock(script_.mutex);
        return std::exchange(script_.reads, {});
    }

    Script script_;
    std::optional<PlayedFrame> last_;
    FramePlayer player_{[this] { return std::make_unique<Reader>(script_); }, [] {},
                        6 * kCostOfSmall};
};

TEST_F(FramePlayerTest, PlaysItsRoundsStaysAtTheLastFrameAndPlaysThemAgain) {
    for (int times = 0; times < 2; ++times) {
        times == 0 ? Play(4, 2) : player_.Play();
        const std::vector<uint32_t> seen = TakenToTheEnd();
        ASSERT_FALSE(seen.empty());
        EXPECT_EQ(seen.front(), 0U);
        EXPECT_EQ(seen.back(), 3U);
        // A frame whose time is over may be passed by.
        const auto turn = std::ranges::adjacent_find(seen, std::ranges::greater());
        ASSERT_NE(turn, seen.end()) << "a second round";
        EXPECT_TRUE(std::ranges::is_sorted(turn + 1, seen.end())) << "and no third";
        EXPECT_EQ(Reads().size(), times == 0 ? 4U : 0U) << "all are kept";
    }
}

TEST_F(FramePlayerTest, EndsAtTheLastGoodFrameBehindOneMoreTry) {
    script_.broken = 3;
    Play(1000, 0);
    EXPECT_EQ(TakenToTheEnd().back(), 2U);
    EXPECT_EQ(Reads(), (std::vector<uint32_t>{0, 1, 2, 3, 3}));
    // Who wants to see more gets it when it is there.
    script_.broken = ~0U;
    script_.otherSize = 5;
    player_.Play();
    EXPECT_EQ(TakenToTheEnd().back(), 4U) << "a frame of another size is none";
}

TEST_F(FramePlayerTest, StepsAddUpGoRoundAndPauseIt) {
    script_.milliseconds = 10000;
    Play(9, 1);
    Taken([](const auto& seen) { return !seen.empty(); });
    // As many as there is room for, and no more.
    Taken([&](const auto&) { return player_.WaitForRest(), script_.reads.size() >= 6; });
    Sleep(50);
    EXPECT_EQ(Reads().size(), 6U);
    player_.Step(-1);
    player_.Step(-1);
    player_.Step(1);
    EXPECT_EQ(Taken([](const auto& seen) { return !seen.empty() && seen.back() == 8; }).back(), 8U);
    EXPECT_FALSE(player_.IsPlaying());
    player_.GoTo(0);
    Taken([](const auto& seen) { return !seen.empty() && seen.back() == 0; });
    player_.Step(2);
    EXPECT_EQ(Taken([](const auto& seen) { return !seen.empty(); }).back(), 2U);
    EXPECT_EQ(last_->picture.Width(), kSize.cx);
    // As it is turned by then, and so once more when it was about to be seen.
    player_.SetLook({.orientation = exif::kTurnedRight});
    player_.Step(1);
    EXPECT_EQ(Taken([](const auto& seen) { return !seen.empty(); }).back(), 3U);
    EXPECT_EQ(last_->picture.Width(), kSize.cy);
    player_.Step(1);
    Sleep(50);
    player_.SetLook({.orientation = exif::kMirrored});
    Taken([&](const auto& seen) { return !seen.empty() && last_->picture.Width() == kSize.cx; });
    EXPECT_EQ(last_->index, 4U);
}

}  // namespace
}  // namespace tessary
