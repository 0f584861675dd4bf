#include "tests/plugins/picture_blocks.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace tessary::test {
namespace {

template <typename T>
void Append(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string MakeRow(const PictureSize& size, uint32_t y) {
    std::string row;
    if (size.depth < 24) row.assign((size.width * size.depth + 7) / 8, '\0');
    for (uint32_t x = 0; x < size.width; ++x) {
        if (size.depth == 24) {
            for (const uint32_t channel : {x * 7, y * 11, x * 3 + y * 5})
                row += static_cast<char>(channel);
            continue;
        }
        const uint32_t bit = x * size.depth;
        const uint32_t index = (x + y) & ((1U << size.depth) - 1);
        row[bit / 8] = static_cast<char>(row[bit / 8] | index << (8 - size.depth - bit % 8));
    }
    return row;
}

std::string MakeBits(const PictureSize& size) {
    std::string bits;
    for (uint32_t i = 0; i < size.height; ++i) {
        bits += MakeRow(size, size.height - 1 - i);
        bits.resize((bits.size() + 3) / 4 * 4);
    }
    return bits;
}

// The header, as the script changes it, and the palette.
std::string MakeInfo(const PictureSize& size, size_t bitsSize, const Script& script) {
    const auto field = [&](const char* name, auto value) {
        return static_cast<decltype(value)>(script.Number(name).value_or(static_cast<int>(value)));
    };
    const auto headerSize = static_cast<DWORD>(script.Number("header").value_or(40));
    const BITMAPINFOHEADER header{.biSize = field("biSize", headerSize),
                                  .biWidth = field("biWidth", static_cast<LONG>(size.width)),
                                  .biHeight = field("biHeight", static_cast<LONG>(size.height)),
                                  .biPlanes = 1,
                                  .biBitCount = field("biBitCount", static_cast<WORD>(size.depth)),
                                  .biCompression = BI_RGB,
                                  .biSizeImage = static_cast<DWORD>(bitsSize),
                                  .biXPelsPerMeter = 0,
                                  .biYPelsPerMeter = 0,
                                  .biClrUsed = 0,
                                  .biClrImportant = 0};
    std::string info;
    Append(info, header);
    info.resize(headerSize);
    for (uint32_t i = 0; size.depth <= 8 && i < 1U << size.depth; ++i)
        Append(info, 0x10101 * i);  // from black to as light as it goes
    return info;
}

std::string FromHex(const std::string& digits) {
    std::string bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

// Behind header and table, where a header of version 5 leads to.
void AddProfile(std::string& info, const std::string& profile) {
    const uint32_t numbers[] = {static_cast<uint32_t>(info.size()),
                                static_cast<uint32_t>(profile.size())};
    const uint32_t embedded = 0x4D424544;
    std::memcpy(&info[56], &embedded, sizeof embedded);
    std::memcpy(&info[112], numbers, sizeof numbers);
    info += profile;
}

void Resize(std::string& block, std::optional<int> size) {
    if (size) block.resize(static_cast<size_t>(*size));
}

}  // namespace

PictureSize ParseSize(const std::string& text) {
    PictureSize size;
    std::sscanf(text.c_str(), "%ux%ux%u", &size.width, &size.height, &size.depth);
    return size;
}

PictureBlocks MakePicture(const PictureSize& size, const Script& script) {
    PictureBlocks blocks;
    blocks.bits = MakeBits(size);
    blocks.info = MakeInfo(size, blocks.bits.size(), script);
    if (const auto digits = script.Text("profile")) AddProfile(blocks.info, FromHex(*digits));
    Resize(blocks.info, script.Number("info-size"));
    Resize(blocks.bits, script.Number("bits-size"));
    return blocks;
}

bool PutInto(susie::PictureRoom& room, const PictureBlocks& blocks) {
    void* info = nullptr;
    void* bits = nullptr;
    if (!room.take(&room, blocks.info.size(), blocks.bits.size(), &info, &bits)) return false;
    std::memcpy(info, blocks.info.data(), blocks.info.size());
    std::memcpy(bits, blocks.bits.data(), blocks.bits.size());
    return true;
}

}  // namespace tessary::test
