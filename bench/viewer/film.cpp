#include "bench/viewer/film.h"

#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string_view>
#include <vector>

namespace tessary::bench {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr uint32_t kWidth = 1920;
constexpr uint32_t kHeight = 1080;
constexpr uint32_t kFrames = 60;

void Append(Bytes& bytes, uint32_t number) {
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<uint8_t>(number >> shift));
}

Bytes Numbers(std::initializer_list<uint32_t> numbers, std::initializer_list<uint8_t> rest = {}) {
    Bytes bytes;
    for (const uint32_t number : numbers)
        Append(bytes, number);
    bytes.insert(bytes.end(), rest);
    return bytes;
}

void AppendChunk(Bytes& file, std::string_view name, const Bytes& data) {
    Append(file, static_cast<uint32_t>(data.size()));
    const size_t at = file.size();
    file.insert(file.end(), name.begin(), name.end());
    file.insert(file.end(), data.begin(), data.end());
    Append(file, crc32(0, &file[at], static_cast<uInt>(file.size() - at)));
}

// Colours that wander, each pixel stored as what it differs by from the one before.
Bytes PackedFrame(uint32_t number, uint32_t width, uint32_t height) {
    Bytes rows;
    rows.reserve(size_t{height} * (1 + size_t{width} * 3));
    for (uint32_t y = 0; y < height; ++y) {
        rows.push_back(1);
        uint8_t before[3]{};
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t wave = (x / 3 + number * 4) ^ (y / 5 + number * 2);
            for (uint32_t channel = 0; channel < 3; ++channel) {
                const auto now = static_cast<uint8_t>(wave * (channel + 1) / 2);
                rows.push_back(static_cast<uint8_t>(now - before[channel]));
                before[channel] = now;
            }
        }
    }
    uLongf size = compressBound(static_cast<uLong>(rows.size()));
    Bytes packed(size);
    compress2(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()), 1);
    packed.resize(size);
    return packed;
}

}  // namespace

bool WriteFilm(const std::wstring& path, bool inParts) {
    Bytes file{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    AppendChunk(file, "IHDR", Numbers({kWidth, kHeight}, {8, 2, 0, 0, 0}));
    AppendChunk(file, "acTL", Numbers({kFrames, 0}));
    uint32_t sequence = 0;
    for (uint32_t i = 0; i < kFrames; ++i) {
        const bool isPart = inParts && i > 0;
        const uint32_t width = isPart ? kWidth * 3 / 4 : kWidth;
        const uint32_t height = isPart ? kHeight * 3 / 4 : kHeight;
        const uint32_t left = isPart ? i * 8 : 0;
        AppendChunk(
            file, "fcTL",
            Numbers({sequence++, width, height, left, isPart ? i * 4 : 0}, {0, 1, 0, 30, 0, 0}));
        Bytes data = i == 0 ? Bytes() : Numbers({sequence++});
        const Bytes packed = PackedFrame(i, width, height);
        data.insert(data.end(), packed.begin(), packed.end());
        AppendChunk(file, i == 0 ? "IDAT" : "fdAT", data);
    }
    AppendChunk(file, "IEND", {});
    std::ofstream out(std::filesystem::path(path), std::ios::binary);
    out.write(reinterpret_cast<const char*>(file.data()),
              static_cast<std::streamsize>(file.size()));
    return out.good();
}

}  // namespace tessary::bench
