// Pictures in the clipboard's form: what other programs put there, and what they are given.
#include "picture/clipboard_picture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "helpers/dib/dib_view.h"
#include "picture/current_picture.h"

namespace tessary {
namespace {

dib::BitmapInfoHeader Header(int32_t width, int32_t height, uint16_t bitCount,
                             uint32_t compression = BI_RGB, uint32_t colorsUsed = 0,
                             uint32_t size = 40) {
    return {size, width, height, 1, bitCount, compression, 0, 0, 0, colorsUsed, 0};
}

// Header and what follows it as one text.
std::string Block(const dib::BitmapInfoHeader& header, const std::string& rest) {
    return std::string(reinterpret_cast<const char*>(&header), sizeof(header)) + rest;
}

std::string Numbers(std::initializer_list<uint32_t> numbers) {
    std::string bytes;
    for (const uint32_t number : numbers)
        bytes.append(reinterpret_cast<const char*>(&number), sizeof(number));
    return bytes;
}

const std::string kUsualMasks = Numbers({0xFF0000, 0xFF00, 0xFF});

class ClipboardPictureTest : public testing::Test {
  protected:
    ~ClipboardPictureTest() override { SetCurrentPicture({}); }

    // Pastes a block. The pixels' bytes, top row first; "-" when there is none.
    std::string Paste(const std::string& block) {
        const UniqueGlobal global(GlobalAlloc(GMEM_MOVEABLE, block.size()));
        std::memcpy(GlobalLock(global.Get()), block.data(), block.size());
        GlobalUnlock(global.Get());
        SetCurrentPicture({});
        EXPECT_EQ(PictureFromClipboardDIB(global.Get()), 0);
        if (!CurrentPicture()) return "-";
        infoSize_ = CurrentPicture().Info().size();
        const dib::DibView& view = CurrentPicture().View();
        std::string rows;
        for (int32_t y = 0; y < view.Height(); ++y) {
            rows.append(reinterpret_cast<const char*>(view.Row(y).data()), view.Stride());
        }
        return rows;
    }

    size_t infoSize_ = 0;
};

TEST_F(ClipboardPictureTest, FindsThePixelsBehindWhateverPrecedesThem) {
    const std::string row8("ab\0\0", 4);
    EXPECT_EQ(Paste(Block(Header(2, 1, 8), std::string(1024, 'c') + row8)), row8);
    EXPECT_EQ(infoSize_, 1064u);
    EXPECT_EQ(Paste(Block(Header(2, 1, 8, BI_RGB, 3), std::string(12, 'c') + row8)), row8);
    EXPECT_EQ(infoSize_, 52u);
    // More colours than the depth can index are there all the same.
    EXPECT_EQ(Paste(Block(Header(2, 1, 8, BI_RGB, 300), std::string(1200, 'c') + row8)), row8);
    EXPECT_EQ(Paste(Block(Header(4, 2, 8, BI_RLE8),
                          std::string(1024, 'c') + std::string("\4a\0\0\4b\0\1", 8))),
              "bbbbaaaa");

    EXPECT_EQ(Paste(Block(Header(1, 2, 32, BI_BITFIELDS), kUsualMasks + "lowrtopr")), "toprlowr");
    EXPECT_EQ(infoSize_, 52u);
    EXPECT_EQ(Paste(Block(Header(1, -2, 32), "toprlowr")), "toprlowr");
    EXPECT_EQ(
        Paste(Block(Header(1, 1, 32, BI_BITFIELDS), Numbers({0xFF, 0xFF00, 0xFF0000}) + "RGBx"))
            .substr(0, 3),
        "BGR");
    EXPECT_EQ(Paste(Block(Header(1, 1, 16, BI_BITFIELDS), Numbers({0xF800, 0x7E0, 0x1F}) + "ab12")),
              "ab12");
    EXPECT_EQ(infoSize_, 52u);

    // A hint for palette displays, there and only announced.
    EXPECT_EQ(Paste(Block(Header(1, 1, 24, BI_RGB, 2), "colrcolrBGR_")), "BGR_");
    EXPECT_EQ(Paste(Block(Header(1, 1, 24, BI_RGB, 2), "BGR_")), "BGR_");
    // A long header, with the masks once and twice.
    const std::string longTail = kUsualMasks + std::string(72, '\0');
    EXPECT_EQ(Paste(Block(Header(1, 1, 32, BI_BITFIELDS, 0, 124), longTail + "BGRx")), "BGRx");
    EXPECT_EQ(Paste(Block(Header(1, 1, 32, BI_BITFIELDS, 0, 124), longTail + kUsualMasks + "BGRx")),
              "BGRx");
}

TEST_F(ClipboardPictureTest, RefusesWhatTheBlockDoesNotHold) {
    EXPECT_EQ(Paste(Block(Header(1, 1, 24), "BGR")), "-");
    EXPECT_EQ(Paste(Block(Header(1, 1, 32, BI_BITFIELDS), "mask")), "-");
    EXPECT_EQ(Paste(Block(Header(2, 1, 8), std::string(1024, 'c'))), "-");
    EXPECT_EQ(Paste(Block(Header(1, 1, 8, BI_RGB, 0xFFFFFFFF), std::string(4096, 'c'))), "-");
    EXPECT_EQ(Paste(Block(Header(0x7FFFFFFF, 0x7FFFFFFF, 32), "BGRx")), "-");
    EXPECT_EQ(Paste(Block(Header(0x40000000, 4, 32), "BGRx")), "-");  // 0 bytes in 32 bits
    EXPECT_EQ(Paste(Block(Header(1, INT32_MIN, 32), "BGRx")), "-");
    EXPECT_EQ(Paste(Block(Header(0x7FFF, 0x7FFF, 8, BI_RLE8), std::string(1030, '\1'))), "-");
    EXPECT_EQ(Paste(Block(Header(1, 1, 2), std::string(64, '\0'))), "-");
    EXPECT_EQ(Paste("head"), "-");

    // The former picture stays.
    ASSERT_EQ(Paste(Block(Header(1, 1, 24), "BGR_")), "BGR_");
    EXPECT_EQ(PictureFromClipboardDIB(nullptr), 0);
    EXPECT_TRUE(CurrentPicture());
}

TEST_F(ClipboardPictureTest, OthersGetBottomUpRowsWithoutTransparency) {
    ASSERT_EQ(Paste(Block(Header(1, -2, 32), std::string("top\0low\x7F", 8))).size(), 8u);
    const UniqueGlobal made = MakeClipboardDIB(CurrentPicture());
    ASSERT_TRUE(made);
    const std::string block(static_cast<const char*>(GlobalLock(made.Get())),
                            GlobalSize(made.Get()));
    GlobalUnlock(made.Get());
    EXPECT_EQ(block.substr(40), "low\xFFtop\xFF");
    EXPECT_EQ(Paste(block), "top\xFFlow\xFF");
    EXPECT_FALSE(MakeClipboardDIB({}));

    // What a mask declares to be alpha stays with the picture, and shows white below for others.
    const std::string masks = Numbers({0xFF0000, 0xFF00, 0xFF, 0xFF000000});
    const std::string pixels("BGR\xFF\0\0\0\x80", 8);
    EXPECT_EQ(Paste(Block(Header(2, 1, 32, BI_BITFIELDS, 0, 108),
                          masks + std::string(52, '\0') + pixels)),
              pixels);
    EXPECT_EQ(infoSize_, 56u);
    // Alpha that hides all was not meant.
    EXPECT_EQ(Paste(Block(Header(1, 1, 32, BI_BITFIELDS, 0, 108),
                          masks + std::string(52, '\0') + std::string("BGR\0", 4))),
              std::string("BGR\0", 4));
    EXPECT_EQ(infoSize_, 40u);
    Paste(Block(Header(2, 1, 32, BI_BITFIELDS, 0, 108), masks + std::string(52, '\0') + pixels));
    const UniqueGlobal flat = MakeClipboardDIB(CurrentPicture());
    EXPECT_EQ(Paste({static_cast<const char*>(GlobalLock(flat.Get())), GlobalSize(flat.Get())}),
              std::string("BGR\x7F\x7F\x7F\0\0", 8));
    GlobalUnlock(flat.Get());
}

}  // namespace
}  // namespace tessary
