#include "tests/plugins/picture_blocks.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

#include "tests/plugins/pattern.h"

namespace tessary::test {
namespace {

template <typename T>
void Append(std::string& bytes, T value) {
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// How the picture is stored, beyond its size.
struct Form {
    uint32_t headerSize;
    bool masks;  // red, green, blue as MaskedPixel has them
    bool unpadded;
    bool topDown;
    bool runLength;
    uint8_t filler;  // of row padding and fourth bytes
};

Form FormOf(const PictureSize& size, const Script& script) {
    const auto headerSize = static_cast<uint32_t>(script.Number("header").value_or(40));
    const bool direct = size.depth == 16 || size.depth == 32;
    return {.headerSize = headerSize,
            .masks = direct && (headerSize > 40 || script.Has("masks")),
            .unpadded = script.Has("unpadded"),
            .topDown = script.Has("top-down"),
            .runLength =
                (size.depth == 8 && script.Has("rle8")) || (size.depth == 4 && script.Has("rle4")),
            .filler = static_cast<uint8_t>(script.Has("junk") ? 0xA5 : 0)};
}

void AppendPixel(std::string& row, Colour colour, uint32_t depth, const Form& form) {
    if (depth == 24 || (depth == 32 && !form.masks)) {
        Append(row, colour);
        if (depth == 32) Append(row, form.filler);
    } else if (depth == 32) {
        Append(row, Colour{colour.red, colour.green, colour.blue});
        Append(row, form.filler);
    } else if (form.masks) {
        Append(row, static_cast<uint16_t>(colour.red >> 3 << 11 | colour.green >> 2 << 5 |
                                          colour.blue >> 3));
    } else {
        Append(row, static_cast<uint16_t>(colour.red >> 3 << 10 | colour.green >> 3 << 5 |
                                          colour.blue >> 3));
    }
}

std::string MakeRow(const PictureSize& size, uint32_t y, const Form& form) {
    std::string row;
    if (size.depth >= 16)
        for (uint32_t x = 0; x < size.width; ++x)
            AppendPixel(row, PatternPixel(x, y), size.depth, form);
    else
        row.assign((size.width * size.depth + 7) / 8, '\0');
    for (uint32_t x = 0; size.depth < 16 && x < size.width; ++x) {
        const uint32_t bit = x * size.depth;
        const uint32_t shift = 8 - size.depth - bit % 8;
        row[bit / 8] = static_cast<char>(static_cast<uint8_t>(row[bit / 8]) |
                                         PatternIndex(x, y, size.depth) << shift);
    }
    while (!form.unpadded && row.size() % 4 != 0)
        Append(row, form.filler);
    return row;
}

// Every pixel a run of its own, then the mark of a row's end.
std::string MakeRunLengthRow(const PictureSize& size, uint32_t y) {
    std::string row;
    for (uint32_t x = 0; x < size.width; ++x) {
        const uint32_t index = PatternIndex(x, y, size.depth);
        Append(row, uint8_t{1});
        Append(row, static_cast<uint8_t>(size.depth == 4 ? index << 4 : index));
    }
    Append(row, uint16_t{0});
    return row;
}

std::string MakeBits(const PictureSize& size, const Form& form) {
    std::string bits;
    for (uint32_t i = 0; i < size.height; ++i) {
        const uint32_t y = form.topDown ? i : size.height - 1 - i;
        bits += form.runLength ? MakeRunLengthRow(size, y) : MakeRow(size, y, form);
    }
    if (form.runLength) Append(bits, uint16_t{0x0100});
    return bits;
}

uint32_t CompressionOf(const PictureSize& size, const Form& form) {
    if (form.runLength) return size.depth == 8 ? BI_RLE8 : BI_RLE4;
    return form.masks ? BI_BITFIELDS : BI_RGB;
}

// The first 40 bytes of every header but the core one, as the script changes them.
BITMAPINFOHEADER MakeHeader(const PictureSize& size, const Form& form, size_t bitsSize,
                            const Script& script) {
    const auto field = [&](const char* name, auto value) {
        return static_cast<decltype(value)>(script.Number(name).value_or(static_cast<int>(value)));
    };
    const LONG height = static_cast<LONG>(size.height);
    return {.biSize = field("biSize", static_cast<DWORD>(form.headerSize)),
            .biWidth = field("biWidth", static_cast<LONG>(size.width)),
            .biHeight = field("biHeight", form.topDown ? -height : height),
            .biPlanes = field("biPlanes", WORD{1}),
            .biBitCount = field("biBitCount", static_cast<WORD>(size.depth)),
            .biCompression = field("biCompression", static_cast<DWORD>(CompressionOf(size, form))),
            .biSizeImage = field("biSizeImage", static_cast<DWORD>(bitsSize)),
            .biXPelsPerMeter = 0,
            .biYPelsPerMeter = 0,
            .biClrUsed = field("biClrUsed", DWORD{0}),
            .biClrImportant = 0};
}

std::string MakeInfo(const PictureSize& size, const Form& form, size_t bitsSize,
                     const Script& script) {
    std::string info;
    if (form.headerSize == 12) {
        Append(info,
               BITMAPCOREHEADER{12, static_cast<WORD>(size.width), static_cast<WORD>(size.height),
                                1, static_cast<WORD>(size.depth)});
    } else {
        Append(info, MakeHeader(size, form, bitsSize, script));
        if (form.masks) {
            const bool is32 = size.depth == 32;
            Append(info, is32 ? 0x0000FFU : 0xF800U);
            Append(info, is32 ? 0x00FF00U : 0x07E0U);
            Append(info, is32 ? 0xFF0000U : 0x001FU);
        }
        if (info.size() < form.headerSize) info.resize(form.headerSize);
    }
    for (uint32_t i = 0; size.depth <= 8 && i < 1U << size.depth; ++i) {
        Append(info, PatternColour(i));
        if (form.headerSize != 12) Append(info, form.filler);
    }
    return info;
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
    const Form form = FormOf(size, script);
    PictureBlocks blocks;
    blocks.bits = MakeBits(size, form);
    blocks.info = MakeInfo(size, form, blocks.bits.size(), script);
    Resize(blocks.info, script.Number("info-size"));
    Resize(blocks.bits, script.Number("bits-size"));
    return blocks;
}

}  // namespace tessary::test
