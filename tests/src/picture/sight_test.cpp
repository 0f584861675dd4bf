// How large a picture is shown, and what of it is seen.
#include "picture/view/sight.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "app/settings/modValue.h"
#include "helpers/dib/unpack_row.h"
#include "picture/view/sight_pixels.h"
#include "picture/view/turned_picture.h"
#include "tests/helpers/dib/sample_picture.h"
#include "tests/src/ui/test_picture.h"

namespace tessary {
namespace {

constexpr FitRoom kRoom{{900, 500}, {1920, 1040}};

TEST(FitTest, KeepsProportionsInsideTheBox) {
    struct Case {
        SIZE picture, box, fitted;
    };
    for (const Case& c :
         {Case{{4000, 3000}, {800, 600}, {800, 600}}, Case{{3000, 4000}, {800, 600}, {450, 600}},
          Case{{10, 10}, {640, 480}, {480, 480}}, Case{{30000, 1}, {640, 480}, {640, 1}},
          Case{{1, 30000}, {640, 480}, {1, 480}}, Case{{333, 250}, {640, 480}, {639, 480}},
          Case{{7, 5}, {0, 0}, {7, 5}}, Case{{2000000000, 2000000000}, {1024, 768}, {768, 768}}}) {
        const SIZE fitted = FitIntoBox(c.picture, c.box);
        EXPECT_EQ(fitted.cx, c.fitted.cx) << c.picture.cx << "x" << c.picture.cy;
        EXPECT_EQ(fitted.cy, c.fitted.cy) << c.picture.cx << "x" << c.picture.cy;
    }
}

TEST(FitTest, EveryModeHasItsBox) {
    struct Case {
        FitRule rule;
        SIZE picture, shown;
    };
    for (const Case& c : {Case{{kSizeModeOriginal, true, true}, {5000, 20}, {5000, 20}},
                          Case{{kSizeMode1024}, {2048, 1000}, {1024, 500}},
                          Case{{kSizeMode1024}, {100, 50}, {100, 50}},
                          Case{{kSizeMode1024, true}, {100, 50}, {1024, 512}},
                          Case{{kSizeMode1024, true, true}, {100, 50}, {900, 450}},
                          Case{{kSizeModeScreen}, {3840, 1000}, {1920, 500}},
                          Case{{kSizeModeScreen, false, true}, {3840, 1000}, {900, 234}},
                          Case{{kSizeModeWindow}, {1800, 1000}, {900, 500}},
                          Case{{kSizeModeWindow}, {900, 500}, {900, 500}},
                          Case{{kSizeModeWindow}, {10, 1000}, {5, 500}},
                          Case{{kSizeModeWindow, true}, {90, 25}, {900, 250}},
                          Case{{kSizeModeWidth}, {1800, 90000}, {900, 45000}},
                          Case{{kSizeModeWidth}, {800, 90000}, {800, 90000}},
                          Case{{kSizeModeWidth, true}, {450, 7000}, {900, 14000}},
                          Case{{99, true}, {30, 20}, {30, 20}}}) {
        const SIZE shown = FittedSize(c.picture, c.rule, kRoom);
        EXPECT_TRUE(shown.cx == c.shown.cx && shown.cy == c.shown.cy)
            << "mode " << c.rule.sizeMode << ": " << shown.cx << 'x' << shown.cy;
    }
}

// The pixels of a picture, from the top, as 32-bit colours.
std::vector<std::vector<uint32_t>> PixelsOf(const Picture& picture) {
    const dib::RowReader reader(picture.View());
    std::vector<std::vector<uint32_t>> rows;
    for (int32_t y = 0; y < picture.Height(); ++y) {
        std::vector<uint32_t>& row = rows.emplace_back(static_cast<size_t>(picture.Width()));
        reader.RowBgra(picture.View().Row(y),
                       {reinterpret_cast<uint8_t*>(row.data()), 4 * row.size()});
    }
    return rows;
}

TEST(TurnTest, EveryPixelOfEveryDepthGoesWhereItBelongs) {
    for (const dib::PixelFormat format : dib::test::kAllFormats) {
        for (const int32_t height : {37, -37}) {
            const dib::test::SamplePicture sample(format, 101, height);
            const Picture picture = Picture::Make(sample.info, [&](std::span<uint8_t> rows) {
                std::ranges::copy(sample.bits, rows.begin());
                return true;
            });
            ASSERT_TRUE(picture);
            const auto before = PixelsOf(picture);
            const auto expect = [&](Turn turn, int32_t width, auto source) {
                const Picture turned = TurnedPicture(picture, turn);
                ASSERT_TRUE(turned && turned.Width() == width);
                EXPECT_EQ(turned.View().Format(), format);
                EXPECT_EQ(turned.View().IsTopDown(), height < 0);
                const auto after = PixelsOf(turned);
                for (size_t y = 0; y < after.size(); ++y) {
                    for (size_t x = 0; x < after[y].size(); ++x) {
                        const auto [fromX, fromY] = source(x, y);
                        ASSERT_EQ(after[y][x], before[fromY][fromX])
                            << static_cast<int>(turn) << ": " << x << ", " << y;
                    }
                }
            };
            using Place = std::pair<size_t, size_t>;
            expect(Turn::kRight, 37, [](size_t x, size_t y) { return Place(y, 36 - x); });
            expect(Turn::kLeft, 37, [](size_t x, size_t y) { return Place(100 - y, x); });
            expect(Turn::kHalf, 101, [](size_t x, size_t y) { return Place(100 - x, 36 - y); });
            expect(Turn::kMirror, 101, [](size_t x, size_t y) { return Place(100 - x, y); });
            expect(Turn::kFlip, 101, [](size_t x, size_t y) { return Place(x, 36 - y); });
        }
    }
}

class SightTest : public testing::Test {
  protected:
    SightTest() {
        sight_.SetRoom({.whole = {900, 500}, .bars = {}, .workArea = {1920, 1040}});
        sight_.SetRule({kSizeModeWindow});
        sight_.SetPicture({6000, 4000}, false);
    }
    int Percent() const { return static_cast<int>(std::lround(sight_.Scale() * 100)); }
    // Which point of the picture lies at that place, in thousandths of it.
    std::pair<long, long> PointAt(POINT at) const {
        const auto along = [](int place, int position, LONG shown) {
            return std::lround((place - position + 0.5) * 1000 / static_cast<double>(shown));
        };
        return {along(at.x, sight_.Position().x, sight_.Shown().cx),
                along(at.y, sight_.Position().y, sight_.Shown().cy)};
    }

    Sight sight_;
};

TEST_F(SightTest, WhatIsUnderThePointerStaysThereWhileZooming) {
    sight_.ZoomTo(0.5, {450, 250});
    const POINT pointer{700, 130};
    const auto before = PointAt(pointer);
    for (const double scale : {0.7, 3.0, 16.0, 1.0, 0.5}) {
        sight_.ZoomTo(scale, pointer);
        const auto after = PointAt(pointer);
        EXPECT_LE(std::abs(after.first - before.first), 1) << scale;
        EXPECT_LE(std::abs(after.second - before.second), 1) << scale;
    }
}

TEST_F(SightTest, StepsStopAtFitAndOwnSizeWithinTheLimits) {
    EXPECT_EQ(sight_.Shown().cx, 750);
    std::vector<int> up;
    for (int i = 0; i < 25; ++i) {
        sight_.ZoomBySteps(1, {});
        if (up.empty() || up.back() != Percent()) up.push_back(Percent());
    }
    EXPECT_TRUE(std::ranges::count(up, 100) == 1 && up.back() == 1600) << up.size();
    sight_.ZoomBySteps(-100, {});
    EXPECT_EQ(Percent(), 5);
    sight_.ZoomBySteps(5, {});  // 5, 6.25, 7.8, 9.8, 12.2: the whole picture comes before
    EXPECT_EQ(sight_.Shown().cx, 750);
    sight_.SetRoom({.whole = {600, 400}, .bars = {}, .workArea = {1920, 1040}});
    EXPECT_EQ(sight_.Shown().cx, 600) << "it follows the window again";
    // A picture that fits only below the least scale may be seen so.
    sight_.SetPicture({60000, 40000}, false);
    EXPECT_EQ(sight_.Shown().cx, 600);
    sight_.ZoomBySteps(-1, {});
    EXPECT_EQ(sight_.Shown().cx, 600);
}

TEST_F(SightTest, ZoomsWhatIsOnePixelWideOrEnlargedFar) {
    sight_.SetPicture({1, 30000}, false);
    EXPECT_EQ(Percent(), 2) << "it tells what the long side is";
    sight_.ZoomBySteps(-1, {});
    EXPECT_EQ(sight_.Shown().cy, 500);
    sight_.ZoomBySteps(1, {});
    EXPECT_EQ(sight_.Shown().cy, 625);
    sight_.SetRule({kSizeModeWindow, true});
    sight_.SetPicture({1, 1}, false);
    for (const auto& [steps, shown] : {std::pair(1, 500), {-1, 400}, {2, 500}}) {
        sight_.ZoomBySteps(steps, {});
        EXPECT_EQ(sight_.Shown().cx, shown);
    }
}

TEST_F(SightTest, TogglesBetweenOwnSizeAndTheWhole) {
    sight_.ToggleFit({450, 250});
    EXPECT_EQ(Percent(), 100);
    EXPECT_EQ(sight_.Position(), (ViewPosition{450 - 3004, 250 - 2004}));
    sight_.ToggleFit({});
    EXPECT_EQ(sight_.Shown().cx, 750);
    sight_.SetRoom({.whole = {300, 300}, .bars = {}, .workArea = {1920, 1040}});
    EXPECT_EQ(sight_.Shown().cx, 300);
    // In a mode of its own size too, and enlarged.
    sight_.SetRule({kSizeModeOriginal});
    sight_.SetPicture({30, 15}, false);
    sight_.ToggleFit({});
    EXPECT_EQ(sight_.Shown().cx, 300);
    // The next picture comes as the mode wants it, unless the zoom is kept.
    sight_.SetPicture({600, 600}, true);
    EXPECT_EQ(sight_.Shown().cx, 300);
    sight_.SetPicture({600, 600}, false);
    EXPECT_EQ(sight_.Shown().cx, 600);
    sight_.SetPicture({}, false);
    sight_.ToggleFit({});
    sight_.ZoomBySteps(3, {});
    EXPECT_EQ(sight_.Shown().cx, 0);
}

TEST(SightPixelsTest, EveryDepthIsSeenInItsOwnSizeAndInAverages) {
    constexpr SIZE kOwn{101, 37}, kSmall{67, 24};
    Drafts drafts;
    for (const dib::PixelFormat format : dib::test::kAllFormats) {
        const dib::test::SamplePicture sample(format, kOwn.cx, kOwn.cy);
        const dib::RowReader reader(sample.View());
        const auto pixelAt = [&](int32_t x, int32_t y) {
            uint32_t pixel = 0;
            reader.Pick(sample.View().Row(y), {&x, 1}, &pixel);
            return pixel;
        };
        const SightPixels pixels(Picture::Make(sample.info, [&](std::span<uint8_t> rows) {
            std::ranges::copy(sample.bits, rows.begin());
            return true;
        }));
        SharpPart own({kOwn, {3, 2, 98, 35}});
        pixels.DrawNearest(own.Sight(), own.Rows());
        for (int i = 0; i < 95 * 33; ++i)
            ASSERT_EQ(own.Row(i / 95)[i % 95], pixelAt(3 + i % 95, 2 + i / 95)) << i;
        const auto small = drafts.Of({kSmall, {5, 3, 64, 22}}, pixels);
        for (int i = 0; i < 59 * 19; ++i) {
            for (int shift = 0; shift < 32; shift += 8) {
                uint32_t sum = 0;
                for (int of = 0; of < 4; ++of) {
                    const int x = 2 * (5 + i % 59) + of % 2, y = 2 * (3 + i / 59) + of / 2;
                    sum += pixelAt((2 * x + 1) * kOwn.cx / (4 * kSmall.cx),
                                   (2 * y + 1) * kOwn.cy / (4 * kSmall.cy)) >>
                               shift &
                           255;
                }
                ASSERT_NEAR(small->Row(i / 59)[i % 59] >> shift & 255, sum / 4.0, 1) << i;
            }
        }
        EXPECT_NE(drafts.Of(small->Sight(), pixels)->Row(0), small->Row(0)) << "it is in use";
    }
}

TEST(SightPixelsTest, AveragesAreOfFourPixelsWhereverThePartBegins) {
    const Picture stripes = test::PictureOf(80, 60, [](std::span<uint8_t> rows) {
        for (size_t i = 0; i < rows.size(); ++i)
            rows[i] = i / 3 % 2 == 0 ? 0 : 200;
    });
    const SightPixels pixels(stripes.Another());
    for (const RECT& part : {RECT{0, 0, 40, 30}, RECT{7, 5, 23, 30}}) {
        const auto draft = Drafts().Of({{40, 30}, part}, pixels);
        EXPECT_TRUE(draft->IsDraft());
        for (int y = 0; y < draft->Sight().Height(); ++y) {
            for (int x = 0; x < draft->Sight().Width(); ++x)
                ASSERT_EQ(draft->Row(y)[x] & 0xFFFFFF, 0x646464U) << x << ' ' << y;
        }
    }
}

}  // namespace
}  // namespace tessary
