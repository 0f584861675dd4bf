// The frames of animated PNG files.
#include <array>
#include <random>

#include "plugins/iftesspng/png_decoder.h"
#include "tests/plugins_bundled/decoded_picture.h"
#include "tests/support/seeds.h"

namespace tessary::png {
namespace {

using codec::Condition;
using codec::Result;
using namespace codec::test;
using namespace tessary::test;

constexpr uint32_t kWidth = 11, kHeight = 9;
constexpr unsigned kFrames = 30;

struct Pixel {
    std::array<double, 4> rgba{};
};

void AppendNumber(Bytes& bytes, uint32_t number, int count = 4) {
    while (count-- > 0)
        bytes.push_back(static_cast<uint8_t>(number >> 8 * count));
}

// Frames by chance, and what is to be seen of each.
struct Film {
    // `showsPicture`: the first frame is the picture that others show.
    Film(unsigned seed, bool showsPicture, bool hasAlpha = true)
        : random(seed), samples(hasAlpha ? 4 : 3), canvas(kWidth * kHeight) {
        file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
        Bytes header;
        AppendNumber(header, kWidth);
        AppendNumber(header, kHeight);
        header.insert(header.end(), {8, static_cast<uint8_t>(hasAlpha ? 6 : 2), 0, 0, 0});
        AppendChunk("IHDR", header);
        Bytes control;
        AppendNumber(control, kFrames);
        AppendNumber(control, 3);
        AppendChunk("acTL", control);
        // Turns the picture, and no frame.
        const std::string turn(
            "Raw profile type exif\0\nexif\n22\n"
            "49492a00080000000100120103000100000006000000",
            75);
        AppendChunk("tEXt", {turn.begin(), turn.end()});
        if (!showsPicture) AppendData(Pixels(kWidth, kHeight), "IDAT");
        for (unsigned i = 0; i < kFrames; ++i)
            AddFrame(i, i == 0 && showsPicture ? "IDAT" : "fdAT",
                     (i == 0 && showsPicture) || Any(3) == 0);
        AppendChunk("IEND", {});
    }

    unsigned Any(unsigned count) { return static_cast<unsigned>(random() % count); }
    void AppendChunk(const std::string& name, const Bytes& data) {
        AppendNumber(file, static_cast<uint32_t>(data.size()));
        const size_t at = file.size();
        file.insert(file.end(), name.begin(), name.end());
        file.insert(file.end(), data.begin(), data.end());
        AppendNumber(file, crc32(0, &file[at], static_cast<uInt>(file.size() - at)));
    }
    Bytes Pixels(unsigned width, unsigned height) {
        constexpr uint8_t kAlphas[] = {0, 255, 255, 100};
        Bytes pixels(size_t{width} * height * 4);
        for (size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = i % 4 != 3     ? static_cast<uint8_t>(Any(256))
                        : samples == 4 ? kAlphas[Any(4)]
                                       : uint8_t{255};
        return pixels;
    }
    // In two chunks.
    void AppendData(const Bytes& pixels, const std::string& name, unsigned width = kWidth) {
        Bytes rows;
        for (size_t at = 0; at < pixels.size(); at += width * 4) {
            rows.push_back(0);
            for (unsigned x = 0; x < width; ++x)
                rows.insert(rows.end(), &pixels[at + x * 4], &pixels[at + x * 4] + samples);
        }
        uLongf size = compressBound(static_cast<uLong>(rows.size()));
        Bytes packed(size);
        compress(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()));
        const Bytes parts[] = {{packed.begin(), packed.begin() + 9},
                               {packed.begin() + 9, packed.begin() + static_cast<ptrdiff_t>(size)}};
        for (const Bytes& part : parts) {
            Bytes data;
            if (name == "fdAT") AppendNumber(data, sequence++);
            data.insert(data.end(), part.begin(), part.end());
            AppendChunk(name, data);
        }
    }
    void AddFrame(unsigned number, const std::string& name, bool isWhole) {
        const unsigned width = isWhole ? kWidth : 1 + Any(kWidth);
        const unsigned height = isWhole ? kHeight : 1 + Any(kHeight);
        const unsigned left = Any(kWidth - width + 1), top = Any(kHeight - height + 1);
        const unsigned disposal = Any(3), blends = Any(2);
        Bytes control;
        for (const unsigned value : {sequence++, width, height, left, top})
            AppendNumber(control, value);
        AppendNumber(control, number, 2);
        AppendNumber(control, number % 2 == 0 ? 0 : 1000, 2);
        control.insert(control.end(),
                       {static_cast<uint8_t>(disposal), static_cast<uint8_t>(blends)});
        AppendChunk("fcTL", control);
        const Bytes pixels = Pixels(width, height);
        AppendData(pixels, name, width);

        const std::vector<Pixel> before = canvas;
        const auto forEach = [&](auto use) {
            for (unsigned y = 0; y < height; ++y)
                for (unsigned x = 0; x < width; ++x)
                    use(canvas[(top + y) * kWidth + left + x].rgba, &pixels[(y * width + x) * 4]);
        };
        forEach([&](std::array<double, 4>& under, const uint8_t* over) {
            const double alpha = over[3] / 255.0, rest = blends ? under[3] * (1 - alpha) : 0;
            for (int c = 0; c < 3 && alpha + rest > 0; ++c)
                under[c] = (over[c] * alpha + under[c] * rest) / (alpha + rest);
            under[3] = alpha + rest;
        });
        shown.push_back(canvas);
        if (disposal == 1)
            forEach([](std::array<double, 4>& pixel, const uint8_t*) { pixel = {}; });
        if (disposal == 2) canvas = before;
    }

    std::mt19937 random;
    unsigned samples;
    Bytes file;
    uint32_t sequence = 0;
    std::vector<Pixel> canvas;
    std::vector<std::vector<Pixel>> shown;
};

TEST(Apng, ShowsEachFrameWhoeverWasShownBefore) {
    for (unsigned seed = 0; seed < 12; ++seed) {
        Film film(seed, seed % 2 == 0, seed % 3 != 0);
        dib::MemorySource source(film.file);
        auto frames = PngDecoder().OpenFrames(source);
        ASSERT_NE(frames, nullptr);
        ASSERT_EQ(frames->Frames().count, kFrames);
        EXPECT_EQ(frames->Frames().rounds, 3u);
        for (unsigned i = 0; i < 3 * kFrames; ++i) {
            const uint32_t index = i < kFrames ? i : film.Any(kFrames);
            if (film.Any(9) == 0) frames = PngDecoder().OpenFrames(source);
            MemoryTarget target(SIZE_MAX, true);
            codec::Progress progress;
            uint32_t duration = 0;
            ASSERT_EQ(frames->Decode(source, index, target, progress, duration), Result::kSuccess);
            EXPECT_EQ(duration, index % 2 == 0 ? index * 10 : index);
            EXPECT_EQ(progress.Told().condition, Condition::kNone);
            const Colors colors(target.View().value());
            for (uint32_t at = 0; at < kWidth * kHeight; ++at) {
                const auto& wanted = film.shown[index][at].rgba;
                const uint32_t x = at % kWidth, y = at / kWidth;
                ASSERT_NEAR(colors.Channel(x, y, 3), wanted[3] * 255, 1.5);
                for (unsigned c = 0; c < 3 && wanted[3] > 0; ++c)
                    ASSERT_NEAR(colors.Channel(x, y, 2 - c), wanted[c], 3) << seed << ' ' << index;
            }
        }
    }
}

TEST(Apng, FilesThatAreNotAsTheyShouldBeAreStills) {
    const Film film(1, true);
    const auto opened = [](const Bytes& file) {
        dib::MemorySource source(file);
        const auto frames = PngDecoder().OpenFrames(source);
        return frames == nullptr ? 0 : frames->Frames().count;
    };
    const Bytes& good = film.file;
    EXPECT_EQ(opened(good), kFrames);
    // Numbers, with their check sums put right, and check sums.
    for (const auto& [name, offset] :
         {std::pair{"fcTL", 4}, {"fdAT", 4}, {"fcTL", 8}, {"fcTL", 12}, {"fcTL", 16}}) {
        const size_t at = Find(good, name, 2);
        Bytes bad = Damaged(good, at + static_cast<size_t>(offset), 0x40);
        EXPECT_EQ(opened(bad), 0u) << name << offset;
        const size_t size = good[at - 2] << 8 | good[at - 1];
        Bytes sum;
        AppendNumber(sum, crc32(0, &bad[at], static_cast<uInt>(size + 4)));
        std::ranges::copy(sum, bad.begin() + static_cast<ptrdiff_t>(at + 4 + size));
        EXPECT_EQ(opened(bad), 0u) << name << offset;
        EXPECT_EQ(Decoded(PngDecoder(), bad).condition, Condition::kNone);
    }
    EXPECT_EQ(opened(Damaged(good, Find(good, "acTL") + 4)), 0u);
    EXPECT_EQ(opened(Seed("fuzz_png/color8")), 0u);

    // Cut short it has fewer frames, of which the last is damaged; so is one with a wrong sum.
    const Bytes cut = Cut(good, Find(good, "fdAT", 9) + 6);
    const Bytes wrong = Damaged(good, Find(good, "fdAT", 8) + 12, 0x40);
    EXPECT_EQ(opened(wrong), kFrames);
    const std::pair<const Bytes*, uint32_t> files[] = {{&cut, opened(cut) - 1}, {&wrong, 5}};
    EXPECT_EQ(opened(cut), 6u);
    // The whole file is told of with its picture; what lacks no pixel is sound.
    const Bytes noSum = Cut(good, good.size() - 14), noFrame = Cut(good, Find(good, "fcTL", 9));
    Bytes ended = Cut(good, Find(good, "fcTL", 9) - 4);
    ended.insert(ended.end(), good.end() - 12, good.end());
    for (const Bytes* file : {&good, &noSum})
        EXPECT_EQ(Decoded(PngDecoder(), *file).condition, Condition::kNone);
    for (const Bytes* file : std::array<const Bytes*, 4>{&cut, &wrong, &noFrame, &ended})
        EXPECT_EQ(Decoded(PngDecoder(), *file).condition, Condition::kDamaged);
    for (const auto& [file, last] : files) {
        dib::MemorySource source(*file);
        const auto frames = PngDecoder().OpenFrames(source);
        for (const uint32_t index : {last, last - 1}) {
            MemoryTarget target(SIZE_MAX, true);
            codec::Progress progress;
            uint32_t duration = 0;
            EXPECT_EQ(frames->Decode(source, index, target, progress, duration), Result::kSuccess);
            EXPECT_EQ(progress.Told().condition == Condition::kDamaged, index == last) << last;
        }
    }
}

}  // namespace
}  // namespace tessary::png
