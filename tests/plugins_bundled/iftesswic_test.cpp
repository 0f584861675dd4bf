// What iftesswic.spi makes of the system's decoders.
#include <objbase.h>

#include <initializer_list>

#include "plugins/iftesswic/source_stream.h"
#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::spi::test {
namespace {

using namespace codec::test;

constexpr uint32_t kWhite = 0xFFFFFF;

// Appends little-endian numbers of `size` bytes.
void Put(Bytes& file, unsigned size, std::initializer_list<uint32_t> values) {
    for (const uint32_t value : values) {
        for (unsigned i = 0; i < size; ++i)
            file.push_back(static_cast<uint8_t>(value >> (8 * i)));
    }
}

// Pictures of 16, 32 and 24 pixels in red, half transparent 0x204060 and green.
Bytes MakeIcon(uint32_t type) {
    const uint32_t sides[] = {16, 32, 24}, colors[] = {0xFFFF0000, 0x80204060, 0xFF00FF00};
    Bytes directory, pictures;
    Put(directory, 2, {0, type, 3});
    for (size_t i = 0; i < 3; ++i) {
        const uint32_t side = sides[i], size = 40 + side * side * 4 + side * 4;
        Put(directory, 1, {side, side, 0, 0});
        Put(directory, 2, {1, 32});
        Put(directory, 4, {size, 6 + 3 * 16 + static_cast<uint32_t>(pictures.size())});
        Put(pictures, 4, {40, side, side * 2});
        Put(pictures, 2, {1, 32});
        Put(pictures, 4, {0, 0, 0, 0, 0, 0});
        for (uint32_t pixel = 0; pixel < side * side; ++pixel)
            Put(pictures, 4, {colors[i]});
        pictures.resize(pictures.size() + side * 4);  // the mask, one word per row
    }
    directory.insert(directory.end(), pictures.begin(), pictures.end());
    return directory;
}

// A grey picture of one uncompressed strip of 4 bytes.
Bytes MakeTiff(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric,
               uint32_t orientation, uint32_t strip) {
    Bytes file{'I', 'I', '*', 0};
    Put(file, 4, {12, strip});
    Put(file, 2, {10});
    const uint32_t entries[][2] = {
        {0x0100, width},       {0x0101, height}, {0x0102, bits},        {0x0103, 1},
        {0x0106, photometric}, {0x0111, 8},      {0x0112, orientation}, {0x0115, 1},
        {0x0116, height},      {0x0117, 4}};
    for (const auto& [tag, value] : entries) {
        Put(file, 2, {tag, 3});
        Put(file, 4, {1, value});
    }
    Put(file, 4, {0});
    return file;
}

class Iftesswic : public testing::Test {
  protected:
    const LoadedPlugin plugin{"iftesswic"};
};

TEST_F(Iftesswic, PutsTheFirstGifFrameOnItsScreen) {
    const HandedPicture whole(plugin, MakeGif());
    ASSERT_EQ(whole.result, susie::kSuccess);
    EXPECT_EQ(whole.Header().bitCount, 8);
    for (uint32_t x = 0; x < kGifWidth; ++x) {
        EXPECT_EQ(whole.Pixels().At(x, 7), kGifColors[GifIndex(x, 7)]);
    }

    Bytes file = MakeGif();
    file[kGifScreen] = 30;
    file[kGifScreen + 2] = 8;
    file[kGifFrame] = 4;
    file[kGifFrame + 2] = 3;
    file[kGifHasClear] = 1;
    file[kGifClearIndex] = 2;
    const HandedPicture placed(plugin, file);
    ASSERT_EQ(placed.result, susie::kSuccess);
    const Colors screen = placed.Pixels();
    ASSERT_EQ(screen.width, 30u);
    ASSERT_EQ(screen.height, 13u);  // the frame reaches below its screen
    for (uint32_t y = 0; y < screen.height; ++y) {
        for (uint32_t x = 0; x < screen.width; ++x) {
            const bool inFrame = x >= 4 && x < 16 && y >= 3;
            const unsigned index = inFrame ? GifIndex(x - 4, y - 3) : 2;
            ASSERT_EQ(screen.At(x, y), index == 2 ? kWhite : kGifColors[index]) << x << ',' << y;
        }
    }
}

TEST_F(Iftesswic, ShowsWhatADamagedGifHolds) {
    Bytes file = MakeGif();
    std::fill(file.end() - 60, file.end(), uint8_t{0xEE});  // within the second frame
    const HandedPicture first(plugin, file);
    ASSERT_EQ(first.result, susie::kSuccess);
    EXPECT_EQ(first.Pixels().At(11, 9), kGifColors[GifIndex(11, 9)]);

    file.resize(kGifFirstPixels + 40);
    const HandedPicture cut(plugin, file);
    ASSERT_EQ(cut.result, susie::kSuccess);
    EXPECT_EQ(cut.Pixels().At(11, 2), kGifColors[GifIndex(11, 2)]);
    EXPECT_EQ(cut.Pixels().At(11, 9), kGifColors[0]);
}

TEST_F(Iftesswic, ShowsTheLargestIconOnWhite) {
    for (const uint32_t type : {1u, 2u}) {  // icon, cursor
        const HandedPicture icon(plugin, MakeIcon(type));
        ASSERT_EQ(icon.result, susie::kSuccess) << type;
        const Colors colors = icon.Pixels();
        EXPECT_EQ(colors.width, 32u);
        for (unsigned c = 0; c < 3; ++c) {
            const int level = static_cast<int>(0x60 - 0x20 * c);
            EXPECT_NEAR(colors.Channel(5, 5, c), (level * 128 + 255 * 127) / 255, 1);
        }
    }
    // An uncompressed TGA picture starts like a cursor.
    Bytes targa{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 64, 0, 64, 0, 24, 0, 1, 2, 3, 4, 5, 6};
    targa.resize(susie::kHeaderBlockSize);
    EXPECT_EQ(plugin.isSupported("picture.tga", targa.data()), 0);
}

TEST_F(Iftesswic, ReadsTiffUprightInBothPolarities) {
    for (const uint32_t photometric : {0u, 1u}) {
        // Of 16 x 2 pixels the first four are black; upside down they are the last ones.
        const uint32_t strip = photometric == 0 ? 0x000000F0 : 0xFFFFFF0F;
        const HandedPicture plain(plugin, MakeTiff(16, 2, 1, photometric, 1, strip));
        ASSERT_EQ(plain.result, susie::kSuccess);
        EXPECT_EQ(plain.Header().bitCount, 1);
        EXPECT_EQ(plain.Pixels().At(3, 0), 0u);
        EXPECT_EQ(plain.Pixels().At(4, 0), kWhite);
        const HandedPicture turned(plugin, MakeTiff(16, 2, 1, photometric, 6, strip));
        ASSERT_EQ(turned.result, susie::kSuccess);
        EXPECT_EQ(turned.Pixels().width, 2u);
        EXPECT_EQ(turned.Pixels().At(1, 3), 0u);
        EXPECT_EQ(turned.Pixels().At(0, 3), kWhite);
    }
    const HandedPicture deep(plugin, MakeTiff(2, 1, 16, 1, 1, 0xC00012FF));
    ASSERT_EQ(deep.result, susie::kSuccess);
    EXPECT_EQ(deep.Pixels().At(0, 0), 0x121212u);
    EXPECT_EQ(deep.Pixels().At(1, 0), 0xC0C0C0u);
}

TEST(SourceStream, EndsWithItsLastReference) {
    dib::MemorySource source({});
    const auto stream = wic::MakeStream(source);
    EXPECT_EQ(stream->AddRef(), 2u);
    EXPECT_EQ(stream->Release(), 1u);
}

// The host's COM is as it was: not started, or of the kind that the host chose.
TEST_F(Iftesswic, LeavesComAsItWas) {
    const HandedPicture without(plugin, MakeGif());
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    const HandedPicture within(plugin, MakeGif());
    EXPECT_EQ(within.result, susie::kSuccess);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
}

}  // namespace
}  // namespace tessary::spi::test
