// What iftesswic.spi makes of the system's decoders.
#include <objbase.h>

#include <array>
#include <thread>

#include "plugins/iftesswic/source_stream.h"
#include "tests/plugins_bundled/loaded_plugin.h"
#include "tests/plugins_bundled/strange_profiles.h"
#include "tests/plugins_bundled/system_pictures.h"

namespace tessary::spi::test {
namespace {

using namespace codec::test;
using namespace tessary::test;

constexpr uint32_t kWhite = 0xFFFFFF;

class Iftesswic : public testing::Test {
  protected:
    // What every decoder of the system is handed: a picture that can be shown.
    std::unique_ptr<HandedPicture> Shown(const Bytes& file) const {
        auto picture = std::make_unique<HandedPicture>(plugin, file);
        EXPECT_EQ(picture->result, susie::kSuccess);
        return picture;
    }
    // The same of one that is told to be damaged.
    std::unique_ptr<HandedPicture> Damaged(const Bytes& file) const {
        auto picture = Shown(file);
        EXPECT_EQ(plugin.getLastCondition(nullptr, 0), susie::kConditionDamaged);
        return picture;
    }

    const LoadedPlugin plugin{"iftesswic"};
    const Bytes icon = SystemPicture("icon");
};

// Told to the thread that has called, in as much room as it gives, until its next call.
TEST_F(Iftesswic, TellsEachThreadOfItsOwnCalls) {
    Damaged(Cut(icon, size_t{icon[18]} + 100));  // in the first of its pictures
    wchar_t text[8];
    EXPECT_EQ(plugin.getLastCondition(text, 8), susie::kConditionDamaged);
    EXPECT_EQ(std::wstring(text).size(), 7u);
    EXPECT_EQ(plugin.getLastCondition(nullptr, 0), susie::kConditionDamaged);
    int other = -1;
    std::thread([&] { other = plugin.getLastCondition(nullptr, 0); }).join();
    EXPECT_EQ(other, susie::kConditionNone);
    Shown(icon);
    EXPECT_EQ(plugin.getLastCondition(text, 8), susie::kConditionNone);
    EXPECT_EQ(std::wstring(text), L"");
}

TEST_F(Iftesswic, ShowsTheLargestIconOnWhite) {
    for (const int type : {1, 2}) {  // icon, cursor
        const Colors colors = Shown(With(icon, 2, type))->Pixels();
        EXPECT_EQ(colors.width, 16u);
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

// A picture of one row of pixels of 8 or 16 bits a sample, and its profile.
Bytes TiffOf(uint32_t photometric, uint32_t samples, uint32_t bits, const Bytes& pixels,
             const Bytes& icc) {
    constexpr uint32_t kEntries = 11, kBitsAt = 8 + 2 + kEntries * 12 + 4, kPixelsAt = kBitsAt + 8;
    const auto profileAt = static_cast<uint32_t>(kPixelsAt + pixels.size());
    const auto width = static_cast<uint32_t>(pixels.size() / (bits / 8) / samples);
    const uint32_t entries[kEntries][4] = {
        {256, 3, 1, width},
        {257, 3, 1, 1},
        {258, 3, samples, samples <= 2 ? bits : kBitsAt},
        {259, 3, 1, 1},
        {262, 3, 1, photometric},
        {273, 4, 1, kPixelsAt},
        {274, 3, 1, 1},
        {277, 3, 1, samples},
        {278, 3, 1, 1},
        {279, 4, 1, static_cast<uint32_t>(pixels.size())},
        {34675, 7, static_cast<uint32_t>(icc.size()), profileAt}};
    Bytes file{'I', 'I', 42, 0, 8, 0, 0, 0, kEntries, 0};
    for (const auto& [tag, type, count, value] : entries)
        for (const uint32_t number : {tag | type << 16, count, value})
            file = With(Cut(file, file.size() + 4), file.size(), number, 4);
    file.resize(kPixelsAt);
    for (size_t i = 0; i < 4; ++i)
        file = With(file, kBitsAt + i * 2, bits, 2);
    file.insert(file.end(), pixels.begin(), pixels.end());
    file.insert(file.end(), icc.begin(), icc.end());
    return file;
}

TEST_F(Iftesswic, ConvertsColorsOfTiffToSrgb) {
    const auto expectNear = [](uint32_t color, uint32_t other) {
        for (int shift = 0; shift < 24; shift += 8)
            EXPECT_NEAR(color >> shift & 0xFF, other >> shift & 0xFF, 2) << color;
    };
    const Bytes colors{200, 30, 100, 7, 99, 255}, deep{1, 200, 2, 30, 3, 100, 4, 7, 5, 99, 6, 255};
    for (const auto& [bits, pixels] : {std::pair(8u, colors), std::pair(16u, deep)}) {
        const auto color = Shown(TiffOf(2, 3, bits, pixels, Swapped()));
        EXPECT_EQ(color->Header().bitCount, 24);
        expectNear(color->Pixels().At(0, 0), 0x641EC8);
        expectNear(color->Pixels().At(1, 0), 0xFF6307);
    }
    expectNear(Shown(TiffOf(2, 3, 8, colors, InkProfile()))->Pixels().At(0, 0), 0xC81E64);
    expectNear(Shown(TiffOf(2, 3, 8, colors, Cut(Swapped(), 50)))->Pixels().At(0, 0), 0xC81E64);
    expectNear(Shown(TiffOf(2, 3, 16, deep, color::Profile::Srgb().Icc()))->Pixels().At(0, 0),
               0xC81E64);
    const Bytes inks{0, 0, 255, 0, 255, 0, 0, 0, 0, 0, 0, 255, 0, 0, 0, 0};
    const Colors ink = Shown(TiffOf(5, 4, 8, inks, InkProfile()))->Pixels();
    expectNear(ink.At(0, 0), 0x00FFFF);
    expectNear(ink.At(1, 0), 0xFFFF00);
    expectNear(ink.At(2, 0), 0x000000);
    expectNear(ink.At(3, 0), 0xFFFFFF);
    // A profile without its table, or of other colours, counts as none.
    const Bytes pale{90, 20, 40, 10};
    const uint32_t plain = Shown(TiffOf(5, 4, 8, pale, {}))->Pixels().At(0, 0);
    const Bytes whole = InkProfile();
    for (const Bytes& icc : {Cut(whole, whole.size() / 2), Swapped()})
        expectNear(Shown(TiffOf(5, 4, 8, pale, icc))->Pixels().At(0, 0), plain);

    const Bytes linear = color::Profile::FromGreyCurve({1})->Icc();
    const auto grey = Shown(TiffOf(1, 1, 8, {0, 55, 255}, linear));
    EXPECT_EQ(grey->Header().bitCount, 8);
    expectNear(grey->Pixels().At(1, 0), 0x808080);
    expectNear(grey->Pixels().At(2, 0), 0xFFFFFF);
}

TEST_F(Iftesswic, ReadsTiffUprightInBothPolarities) {
    for (const uint32_t photometric : {0u, 1u}) {
        // Of 16 x 2 pixels the first four are black; upside down they are the last ones.
        const uint32_t strip = photometric == 0 ? 0x000000F0 : 0xFFFFFF0F;
        const Bytes file = With(Tiff({{kTiffPhotometric, photometric}}), kTiffStrip, strip, 4);
        const auto plain = Shown(file);
        EXPECT_EQ(plain->Header().bitCount, 1);
        EXPECT_EQ(plain->Pixels().At(3, 0), 0u);
        EXPECT_EQ(plain->Pixels().At(4, 0), kWhite);
        const auto turned = Shown(With(file, TiffAt(kTiffOrientation) + 8, 6));
        EXPECT_EQ(turned->Pixels().width, 2u);
        EXPECT_EQ(turned->Pixels().At(1, 3), 0u);
        EXPECT_EQ(turned->Pixels().At(0, 3), kWhite);
    }
}

TEST(LentStream, AnswersAsDocumentedAndOutlivesItsSource) {
    wic::ComPtr<IStream> kept;
    uint8_t bytes[8]{};
    ULONG count = 0;
    {
        const wic::ComApartment apartment;
        const std::array<uint8_t, 5> content{1, 2, 3, 4, 5};
        dib::MemorySource source(content);
        const wic::LentStream lent(source);
        kept = lent.Get();
        EXPECT_EQ(kept->Read(bytes, 2, &count), S_OK);
        wic::ComPtr<IStream> memory, clone;
        CreateStreamOnHGlobal(nullptr, TRUE, &memory);
        ASSERT_EQ(kept->Clone(&clone), S_OK);
        ULARGE_INTEGER read{}, written{};
        EXPECT_EQ(clone->CopyTo(memory.Get(), {.QuadPart = 100}, &read, &written), S_OK);
        EXPECT_EQ(read.QuadPart + written.QuadPart, 6u);
        EXPECT_EQ(kept->Read(bytes, 8, &count), S_FALSE);
        EXPECT_EQ(count, 3u);
        EXPECT_EQ(bytes[0], 3);
        EXPECT_EQ(kept->Seek({.QuadPart = -6}, STREAM_SEEK_END, nullptr), STG_E_INVALIDFUNCTION);
        EXPECT_EQ(kept->Write(bytes, 1, &count), STG_E_ACCESSDENIED);
        STATSTG status{};
        EXPECT_EQ(kept->Stat(&status, STATFLAG_NONAME), S_OK);
        EXPECT_EQ(status.cbSize.QuadPart, 5u);
    }
    EXPECT_EQ(kept->Seek({}, STREAM_SEEK_SET, nullptr), S_OK);
    EXPECT_EQ(kept->Read(bytes, 1, &count), STG_E_REVERTED);
    EXPECT_EQ(count, 0u);
}

// The host's COM is as it was: not started, or of the kind that the host chose.
TEST_F(Iftesswic, LeavesComAsItWas) {
    Shown(icon);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    Shown(icon);
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    CoUninitialize();
    CoUninitialize();
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    CoUninitialize();
}

TEST(IftesswicModule, GoesWithItsLastUser) {
    {
        const LoadedPlugin plugin{"iftesswic"};
        for (const char* name : {"icon", "tiff"})
            EXPECT_EQ(HandedPicture(plugin, SystemPicture(name)).result, susie::kSuccess);
        EXPECT_NE(GetModuleHandleW(L"iftesswic.spi"), nullptr);
    }
    EXPECT_EQ(GetModuleHandleW(L"iftesswic.spi"), nullptr);
}

}  // namespace
}  // namespace tessary::spi::test
