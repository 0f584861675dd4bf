// What iftessgif.spi makes of GIF files.
#include "plugins/iftessgif/gif_decoder.h"

#include <random>

#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/seeds.h"

namespace tessary::gif {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using namespace tessary::test;

const GifDecoder kDecoder;

// "two-frames": 12 x 10 pixels in diagonal stripes of these colours, then the same shifted.
constexpr uint32_t kColors[4] = {0x000000, 0xFF0000, 0x00FF00, 0x0000FF};
constexpr uint32_t kWidth = 12, kHeight = 10;
constexpr unsigned IndexAt(uint32_t x, uint32_t y) {
    return (x + y) % 4;
}
constexpr size_t kScreen = 6, kHasClear = 28, kClearIndex = 31, kFrame = 34, kPixels = 43;

TEST(GifDecoder, PutsTheFirstFrameOnItsScreen) {
    const Bytes gif = Seed("fuzz_gif/two-frames");
    const Decoded whole(kDecoder, gif);
    EXPECT_EQ(whole.form.bitCount, 4);
    for (uint32_t x = 0; x < kWidth; ++x)
        EXPECT_EQ(whole.Pixels().At(x, 7), kColors[IndexAt(x, 7)]);

    Bytes file = With(With(gif, kScreen, 30), kScreen + 2, 8);
    file = With(With(file, kFrame, 4), kFrame + 2, 3);
    file = With(With(file, kHasClear, 1), kClearIndex, 2);
    for (const bool takesAlpha : {false, true}) {
        const Colors screen = Decoded(kDecoder, file, {}, takesAlpha).Pixels();
        ASSERT_EQ(screen.width, 30u);
        ASSERT_EQ(screen.height, 13u);  // the frame reaches below its screen
        for (uint32_t y = 0; y < screen.height; ++y) {
            for (uint32_t x = 0; x < screen.width; ++x) {
                const bool inFrame = x >= 4 && x < 16 && y >= 3;
                const unsigned index = inFrame ? IndexAt(x - 4, y - 3) : 2;
                ASSERT_EQ(screen.Channel(x, y, 3), takesAlpha && index == 2 ? 0 : 0xFF);
                ASSERT_EQ(screen.At(x, y), index == 2 ? 0xFFFFFF : kColors[index]) << x << y;
            }
        }
    }
    // A colour that could be transparent, and is not used, costs the table nothing.
    const Bytes unused = With(With(gif, kHasClear, 1), kClearIndex, 9);
    EXPECT_EQ(Decoded(kDecoder, unused, {}, true).target.View()->Header().bitCount, 4);
    const Bytes used = With(unused, kClearIndex, 1);
    EXPECT_EQ(Decoded(kDecoder, used, {}, true).target.View()->Header().bitCount, 32);
    EXPECT_EQ(Decoded(kDecoder, used).Pixels().At(1, 0), 0xFFFFFFu);
}

TEST(GifDecoder, ShowsWhatADamagedFileHolds) {
    const Bytes good = Seed("fuzz_gif/two-frames");
    constexpr size_t kFirstEnd = kPixels + 2 + 0x44;
    const Bytes higher = With(good, kFrame + 6, kHeight + 1);  // by a row without pixels
    const std::pair<Bytes, Condition> told[] = {
        {good, Condition::kNone},
        {Cut(good, good.size() - 1), Condition::kNone},  // each pixel is there
        {Cut(good, good.size() - 2), Condition::kNone},
        {Cut(good, good.size() - 20), Condition::kDamaged},  // the first frame is whole
        {Cut(good, kFirstEnd + 12), Condition::kDamaged},    // the second one's head is not
        {Cut(good, kFirstEnd), Condition::kNone},
        {Cut(good, kFirstEnd - 3), Condition::kDamaged},
        {higher, Condition::kDamaged},
    };
    for (const auto& [file, condition] : told)
        EXPECT_EQ(Decoded(kDecoder, file).condition, condition) << file.size();
    // The 105th code: one that is not there, an end mark, and what follows the end of the file.
    constexpr size_t kCode = kPixels + 2 + 39;
    for (const Bytes& bad : {With(good, kCode, 7), With(good, kCode, 5), Cut(good, kCode)}) {
        const Decoded part(kDecoder, bad);
        ASSERT_EQ(part.result, Result::kSuccess);
        EXPECT_EQ(part.condition, Condition::kDamaged);
        for (uint32_t pixel = 0; pixel < kWidth * kHeight; ++pixel) {
            const uint32_t x = pixel % kWidth, y = pixel / kWidth;
            const unsigned index = pixel < 69 ? IndexAt(x, y) : 0;
            ASSERT_EQ(part.Pixels().At(x, y), kColors[index]) << bad.size() << ": " << pixel;
        }
    }
    const Bytes flat = With(good, kFrame + 4, 0, 4);
    for (const Bytes& bad : {With(good, kPixels + 2, 7), With(higher, kScreen, 0xFFFFFFFF, 4),
                             With(flat, kScreen, 0, 4), Cut(good, 20), Cut(good, 5)})
        EXPECT_EQ(Decoded(kDecoder, bad).result, Result::kBrokenData) << bad.size();
    EXPECT_EQ(Decoded(kDecoder, Bytes{'G', 'I', 'F'}).result, Result::kUnknownFormat);
    EXPECT_EQ(ResultFromFailing(kDecoder, good, 60), Result::kReadError);
}

// A file of frames by chance, and what is to be seen of each.
struct Film {
    explicit Film(unsigned seed) : random(seed), canvas(kWidth * kHeight) {
        Append({'G', 'I', 'F', '8', '9', 'a', kWidth, 0, kHeight, 0, 0xF7, 0, 0});
        const std::vector<uint32_t> global = Table();
        for (unsigned i = 0; i < 40; ++i)
            AddFrame(i, global);
        file.push_back(0x3B);
    }

    unsigned Any(unsigned count) { return static_cast<unsigned>(random() % count); }
    void Append(std::initializer_list<unsigned> bytes) {
        for (const unsigned byte : bytes)
            file.push_back(static_cast<uint8_t>(byte));
    }
    std::vector<uint32_t> Table() {
        std::vector<uint32_t> table(256);
        for (uint32_t& color : table) {
            color = 0xFF000000 | (random() & 0xFFFFFF);
            Append({color >> 16 & 0xFF, color >> 8 & 0xFF, color & 0xFF});
        }
        return table;
    }
    void AddFrame(unsigned number, const std::vector<uint32_t>& global) {
        const bool isWhole = number % 9 == 0;  // places to begin anew
        const unsigned left = isWhole ? 0 : Any(kWidth + 3), top = isWhole ? 0 : Any(kHeight + 3);
        const unsigned width = isWhole ? kWidth : Any(kWidth + 3);
        const unsigned height = isWhole ? kHeight : Any(kHeight + 3);
        const unsigned disposal = Any(4), hasClear = Any(2), isLocal = Any(2), isWoven = Any(2);
        Append({0x21, 0xF9, 4, disposal << 2 | hasClear, number, 0, 7, 0});
        Append({0x2C, left, 0, top, 0, width, 0, height, 0, isLocal * 0x87 | isWoven * 0x40});
        const std::vector<uint32_t> table = isLocal ? Table() : global;
        std::vector<uint8_t> indexes(size_t{width} * height);
        for (uint8_t& index : indexes)
            index = static_cast<uint8_t>(Any(3) ? 5 + Any(4) : Any(256));
        AddPixels(indexes, width, height, isWoven != 0);

        const std::vector<uint32_t> before = canvas;
        const auto forEach = [&](auto use) {
            for (unsigned y = 0; y < height && top + y < kHeight; ++y)
                for (unsigned x = 0; x < width && left + x < kWidth; ++x)
                    use(canvas[(top + y) * kWidth + left + x], indexes[y * width + x]);
        };
        forEach([&](uint32_t& pixel, uint8_t index) {
            if (!hasClear || index != 7) pixel = table[index];
        });
        shown.push_back(canvas);
        if (disposal == 2) forEach([](uint32_t& pixel, uint8_t) { pixel = 0; });
        if (disposal == 3) canvas = before;
    }
    void AddPixels(const std::vector<uint8_t>& indexes, unsigned width, unsigned height,
                   bool isWoven) {
        std::vector<unsigned> rows;
        for (const auto& [first, step] : {std::pair{0u, 8u}, {4u, 8u}, {2u, 4u}, {1u, 2u}})
            for (unsigned y = isWoven ? first : height; y < height; y += step)
                rows.push_back(y);
        for (unsigned y = 0; y < height && !isWoven; ++y)
            rows.push_back(y);
        // Codes of nine bits, with a clear code before there are longer ones.
        Bytes data;
        uint32_t bits = 0;
        unsigned count = 0, sinceClear = 254;
        const auto put = [&](unsigned code) {
            bits |= code << count;
            for (count += 9; count >= 8; count -= 8, bits >>= 8)
                data.push_back(static_cast<uint8_t>(bits));
        };
        for (const unsigned y : rows) {
            for (unsigned x = 0; x < width; ++x) {
                if (sinceClear++ == 254) put(256), sinceClear = 1;
                put(indexes[y * width + x]);
            }
        }
        put(257);
        data.push_back(static_cast<uint8_t>(bits));
        file.push_back(8);
        // Blocks of a byte too.
        for (size_t at = 0, size = 0; at < data.size(); at += size) {
            size = std::min<size_t>(Any(2) == 0 ? 1 : 1 + Any(255), data.size() - at);
            file.push_back(static_cast<uint8_t>(size));
            file.insert(file.end(), &data[at], &data[at] + size);
        }
        file.push_back(0);
    }

    std::mt19937 random;
    Bytes file;
    std::vector<uint32_t> canvas;  // 0xAARRGGBB
    std::vector<std::vector<uint32_t>> shown;
};

TEST(GifDecoder, ShowsEachFrameOfAnAnimationWhoeverWasShownBefore) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        Film film(seed);
        dib::MemorySource source(film.file);
        const auto frames = kDecoder.OpenFrames(source);
        ASSERT_EQ(frames->Frames().count, 40u);
        EXPECT_EQ(frames->Frames().rounds, 1u);
        for (unsigned i = 0; i < 120; ++i) {
            const uint32_t index = i < 40 ? i : i < 80 ? 79 - i : film.Any(40);
            MemoryTarget target(SIZE_MAX, true);
            codec::Progress progress;
            uint32_t duration = 0;
            ASSERT_EQ(frames->Decode(source, index, target, progress, duration), Result::kSuccess);
            EXPECT_EQ(duration, index * 10);
            EXPECT_EQ(progress.Told().condition, Condition::kNone);
            const Colors colors(target.View().value());
            for (uint32_t pixel = 0; pixel < kWidth * kHeight; ++pixel) {
                const uint32_t wanted = film.shown[index][pixel];
                const uint32_t x = pixel % kWidth, y = pixel / kWidth;
                ASSERT_EQ(colors.Channel(x, y, 3), static_cast<int>(wanted >> 24));
                ASSERT_EQ(wanted != 0 ? colors.At(x, y) : 0, wanted & 0xFFFFFF) << index;
            }
        }
    }
}

TEST(GifDecoder, CountsFramesAndRounds) {
    const Bytes gif = Seed("fuzz_gif/two-frames");
    const auto opened = [](const Bytes& file) {
        dib::MemorySource source(file);
        const auto frames = kDecoder.OpenFrames(source);
        return frames == nullptr ? std::pair(0u, 0u)
                                 : std::pair(frames->Frames().count, frames->Frames().rounds);
    };
    EXPECT_EQ(opened(gif), std::pair(2u, 1u));
    EXPECT_EQ(opened(Cut(gif, kPixels + 40)), std::pair(0u, 0u));
    EXPECT_EQ(opened(Bytes(100)), std::pair(0u, 0u));
    const std::string name = "NETSCAPE2.0";
    for (const auto& [again, rounds] : {std::pair{0u, 0u}, {1u, 2u}, {65535u, 65536u}}) {
        Bytes loop{0x21, 0xFF, 11};
        loop.insert(loop.end(), name.begin(), name.end());
        for (const unsigned byte : {3u, 1u, again & 0xFF, again >> 8, 0u})
            loop.push_back(static_cast<uint8_t>(byte));
        Bytes file = gif;
        file.insert(file.begin() + 25, loop.begin(), loop.end());
        EXPECT_EQ(opened(file), std::pair(2u, rounds));
    }
    // So many that none is looked at for long.
    Bytes frame(gif.begin() + kFrame - 1, gif.begin() + kFrame - 1 + 10);
    for (const unsigned byte : {2u, 1u, 0x0Cu, 0u})
        frame.push_back(static_cast<uint8_t>(byte));
    Bytes many = Cut(gif, 25);
    for (int i = 0; i < 1'000'010; ++i)
        many.insert(many.end(), frame.begin(), frame.end());
    EXPECT_EQ(opened(many).first, 1'000'000u);
}

}  // namespace
}  // namespace tessary::gif
