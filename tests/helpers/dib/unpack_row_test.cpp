#include "helpers/dib/unpack_row.h"

#include <gtest/gtest.h>

#include "tests/helpers/dib/sample_bitmaps.h"

namespace tessary::dib::test {
namespace {

// Rows that end within a byte, middle tones, indexes beyond the table; 24 bits show in every test.
TEST(RowReader, UnpacksEveryFormatWithAndWithoutAlpha) {
    const struct {
        const char* picture;
        uint8_t alpha;
        TestBitmap bitmap;
    } cases[] = {
        {"RBRRRRRRBRB", 255, {11, -1, 1, {0x40, 0xBF, 9, 9}, {0xFF0000, 0x0000FF}}},
        {"RGBW.", 255, {5, -1, 4, {0x01, 0x23, 0xF9, 9}, kRgbw}},
        {"R.W", 255, {3, -1, 8, {0, 4, 3, 9}, kRgbw}},
        {"[84104A][7BEFB5]", 255, {2, -1, 16, {0x49, 0x40, 0xB6, 0xBF}}},
        {"[84824A][7B7DB5]", 255, {2, -1, 16, {0x09, 0x84, 0xF6, 0x7B}, {}, 40, 3, k565Masks}},
        {"[030201][060504]", 255, {2, -1, 24, {1, 2, 3, 4, 5, 6, 9, 9}}},
        {"[030201][060504]", 77, {2, -1, 32, {1, 2, 3, 77, 4, 5, 6, 77}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.picture);
        const Bytes info = c.bitmap.Info();
        const auto view = DibView::Of(info, c.bitmap.pixels);
        ASSERT_TRUE(view);
        EXPECT_EQ(Show(*view), c.picture);
        Bytes bgr = JunkBlock(static_cast<size_t>(view->Width()) * 3);
        Bytes bgra = JunkBlock(static_cast<size_t>(view->Width()) * 4);
        RowReader(*view).Row(view->Row(0), bgr);
        RowReader(*view).RowBgra(view->Row(0), bgra);
        for (size_t x = 0; x < bgr.size() / 3; ++x) {
            EXPECT_EQ(0, std::memcmp(&bgra[x * 4], &bgr[x * 3], 3));
            EXPECT_EQ(bgra[x * 4 + 3], c.alpha);
        }
    }
}

}  // namespace
}  // namespace tessary::dib::test
