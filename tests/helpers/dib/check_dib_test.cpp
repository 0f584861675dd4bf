#include "helpers/dib/check_dib.h"

#include <gtest/gtest.h>

#include "tests/helpers/dib/sample_bitmaps.h"

namespace tessary::dib::test {
namespace {

// The verdict on a pair, and the picture that a host then has.
struct Outcome {
    DibError error = DibError::kNone;
    bool keepsInfo = false;
    bool keepsBits = false;
    uint16_t bitCount = 0;
    std::string picture{};
};

Outcome Check(const TestBitmap& bitmap) {
    const Bytes info = bitmap.Info();
    const Bytes& bits = bitmap.pixels;
    const CheckedDib checked = CheckDib(info, bits);
    Outcome outcome{checked.Error(), checked.KeepsInfo(), checked.KeepsBits()};
    if (outcome.error != DibError::kNone) return outcome;
    const Bytes newInfo(checked.Info().begin(), checked.Info().end());
    Bytes newBits = JunkBlock(checked.BitsSize());
    if (!outcome.keepsBits) checked.WriteBits(newBits);
    const auto view =
        DibView::Of(outcome.keepsInfo ? info : newInfo, outcome.keepsBits ? bits : newBits);
    EXPECT_TRUE(view);
    if (view) {
        outcome.bitCount = view->Header().bitCount;
        outcome.picture = Show(*view);
    }
    return outcome;
}

TEST(CheckDib, MakesEveryKindPlainAndCopiesNoMoreThanItMust) {
    for (const Sample& sample : AllSamples()) {
        SCOPED_TRACE(sample.name);
        const Outcome outcome = Check(sample.bitmap);
        EXPECT_EQ(outcome.error, DibError::kNone);
        EXPECT_EQ(outcome.picture, sample.picture);
        EXPECT_EQ(outcome.bitCount, sample.plainBits);
        EXPECT_EQ(outcome.keepsBits, sample.keepsBits);
    }
}

TEST(CheckDib, KeepsTheInfoBlockOnlyOfPlainPairs) {
    for (const TestBitmap& plain :
         {TestBitmap{2, -2, 24, k24Bits}, TestBitmap{2, 2, 32, k32Bits}, TestBitmap{2, 2, 16, k555},
          TestBitmap{2, 2, 16, k565, {}, 40, 3, k565Masks}, TestBitmap{2, 2, 8, k8Bits, kRgbw},
          TestBitmap{2, 2, 4, k4Bits, kRgbw}, TestBitmap{2, 2, 1, k1Bit, {0xFF0000, 0xFF}}}) {
        SCOPED_TRACE(plain.bitCount);
        EXPECT_TRUE(Check(plain).keepsInfo);
        TestBitmap noPlanes = plain;
        noPlanes.planes = 0;
        TestBitmap badCount = plain;
        badCount.colorsUsed = 257;
        TestBitmap longer = plain;
        longer.headerSize = 108;
        for (const TestBitmap& changed : {noPlanes, badCount, longer}) {
            const Outcome outcome = Check(changed);
            EXPECT_FALSE(outcome.keepsInfo);
            EXPECT_TRUE(outcome.keepsBits);
            EXPECT_EQ(outcome.picture, Check(plain).picture);
        }
    }
}

TEST(CheckDib, TakesRowsAsTheyLie) {
    const Bytes tight = {255, 0, 0, 255, 255, 255, 0, 0, 255, 0, 255, 0};
    Bytes rounded = tight;
    rounded.push_back(99);
    const Bytes lastPaddingMissing(k24Bits.begin(), k24Bits.end() - 2);
    EXPECT_EQ(Check({2, 2, 24, tight}).picture, "RG/BW");
    EXPECT_EQ(Check({2, -2, 24, rounded}).picture, "BW/RG");
    EXPECT_EQ(Check({2, 2, 2, {0xB0, 0x10}, kRgbw}).picture, "RG/BW");
    EXPECT_EQ(Check({2, 2, 24, lastPaddingMissing}).picture, "RG/BW");
}

TEST(CheckDib, KeepsTheAlphaChannelOfReorderedMasks) {
    const Bytes info =
        TestBitmap{1, 1, 32, {}, {}, 56, 3, {0xFF00, 0xFF0000, 0xFF000000, 0xFF}}.Info();
    const Bytes bits = {1, 2, 3, 4};
    Bytes plain(4);
    CheckDib(info, bits).WriteBits(plain);
    EXPECT_EQ(plain, Bytes({4, 3, 2, 1}));
}

TEST(CheckDib, RefusesWithTheReason) {
    const Bytes shortBits(k24Bits.begin(), k24Bits.end() - 5);
    const struct {
        DibError error;
        TestBitmap bitmap;
    } cases[] = {
        {DibError::kBitsTooShort, {2, 2, 24, shortBits}},
        {DibError::kBitsTooShort, {2, 4, 24, k24Bits}},
        {DibError::kBitsTooShort, {2, 2, 24, {}}},
        {DibError::kBitsTooShort, {1, 8, 24, Bytes(28)}},
        {DibError::kBadDimensions, {0, 0, 24, k24Bits}},
        {DibError::kBitsTooShort, {0x8000, 0x4000, 8, k8Bits}},
        {DibError::kTooLarge, {0x10000, 0x10000, 8, k8Bits}},
        {DibError::kTooLarge, {INT32_MAX, INT32_MAX, 32, k32Bits}},
        {DibError::kTruncatedHeader, {2, 2, 16, k565, {}, 40, 3}},
        {DibError::kTruncatedHeader, {2, 2, 24, k24Bits, {}, 5000}},
        {DibError::kTooLarge, {10000, 10000, 8, k8Bits, {}, 40, 1}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Check(c.bitmap).error, c.error) << &c - cases;
}

}  // namespace
}  // namespace tessary::dib::test
