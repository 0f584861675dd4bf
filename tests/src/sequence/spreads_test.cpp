#include "sequence/spreads.h"

#include <gtest/gtest.h>

#include <vector>

namespace tessary::test {
namespace {

// All spreads from the one of `index` on.
std::vector<Spread> From(const Spreads& spreads, int index, int count) {
    std::vector<Spread> all;
    while (index < count) {
        all.push_back(spreads.At(index));
        index = all.back().Last() + 1;
    }
    return all;
}

using All = std::vector<Spread>;

TEST(Spreads, PagesLieByTwosAroundWhatStandsAlone) {
    Spreads spreads;
    spreads.Follow(1, 8, true);
    EXPECT_EQ(From(spreads, 0, 8), (All{{0, 1}, {1, 2}, {3, 2}, {5, 2}, {7, 1}}));
    EXPECT_EQ(spreads.At(6), (Spread{5, 2})) << "the same from both of its pages";
    spreads.Tell(4, true);
    EXPECT_EQ(From(spreads, 0, 8), (All{{0, 1}, {1, 2}, {3, 1}, {4, 1}, {5, 2}, {7, 1}}));
    spreads.Tell(4, false);
    EXPECT_EQ(spreads.At(4), (Spread{3, 2}));
    spreads.Follow(1, 8, false);
    EXPECT_EQ(From(spreads, 0, 8), (All{{0, 2}, {2, 2}, {4, 2}, {6, 2}}));
    spreads.Tell(1, true);
    spreads.Follow(2, 3, false);
    EXPECT_EQ(From(spreads, 0, 3), (All{{0, 2}, {2, 1}})) << "what was told was of another list";
}

TEST(Spreads, TheWayBackIsThatOfTheWayThereWhateverTurnsUpOnIt) {
    Spreads spreads;
    spreads.Follow(1, 20, true);
    spreads.Keep(spreads.At(9));
    spreads.Tell(7, true);  // seen on the way back
    EXPECT_EQ(spreads.At(8), (Spread{8, 1})) << "9 was seen already";
    EXPECT_EQ(spreads.At(10), (Spread{9, 2}));
    EXPECT_EQ(spreads.At(6), (Spread{5, 2}));
}

TEST(Spreads, AShiftMovesAllThatFollowsByOnePage) {
    Spreads spreads;
    spreads.Follow(1, 9, true);
    for (int at = 0; at < 9; at = spreads.At(at).Last() + 1)
        spreads.Keep(spreads.At(at));
    EXPECT_TRUE(spreads.Shift(3));
    EXPECT_EQ(From(spreads, 0, 9), (All{{0, 1}, {1, 2}, {3, 1}, {4, 2}, {6, 2}, {8, 1}}));
    EXPECT_TRUE(spreads.Shift(3)) << "back: the page left over finds the one before it";
    EXPECT_EQ(spreads.At(3), (Spread{2, 2}));
    EXPECT_FALSE(spreads.Shift(0)) << "the cover";
    spreads.Tell(5, true);
    EXPECT_FALSE(spreads.Shift(5));
}

}  // namespace
}  // namespace tessary::test
