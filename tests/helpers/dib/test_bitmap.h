// Builds bitmaps of any kind, right or wrong, and shows decoded ones as readable text.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <optional>

#include "helpers/dib/unpack_row.h"

namespace tessary::dib::test {

using Bytes = std::vector<uint8_t>;

// A bitmap as its writer sees it; whatever is set goes into the headers as it is.
struct TestBitmap {
    int32_t width;
    int32_t height;
    uint16_t bitCount;
    Bytes pixels;
    std::vector<uint32_t> colors{};  // 0xRRGGBB
    uint32_t headerSize = 40;
    uint32_t compression = 0;
    std::vector<uint32_t> masks{};          // behind the first 40 bytes
    std::optional<uint32_t> colorsUsed{};   // their true count when not set
    std::optional<uint32_t> pixelOffset{};  // the true one when not set
    uint16_t planes = 1;

    Bytes Info() const {
        const uint32_t used = colorsUsed.value_or(static_cast<uint32_t>(colors.size()));
        const BitmapInfoHeader header{headerSize, width, height, planes, bitCount, compression,
                                      0,          11811, 5906,   used,   7};
        Bytes info;
        Append(info, &header, sizeof(header));
        Append(info, masks.data(), masks.size() * 4);
        if (headerSize == 12) {
            const uint16_t core[] = {static_cast<uint16_t>(width), static_cast<uint16_t>(height),
                                     planes, bitCount};
            std::memcpy(&info[4], core, sizeof(core));
        }
        const bool sizeCounts = headerSize >= 12 && headerSize < 1000;
        if (sizeCounts && (headerSize < 40 || headerSize >= 52)) info.resize(headerSize);
        for (const uint32_t& color : colors)
            Append(info, &color, headerSize == 12 ? 3 : 4);
        info.shrink_to_fit();
        return info;
    }
    Bytes File() const {
        const Bytes info = Info();
        const BitmapFileHeader header{
            kBitmapFileType, 0xBAD51234, 0, 0,
            pixelOffset.value_or(static_cast<uint32_t>(14 + info.size()))};
        Bytes file;
        Append(file, &header, sizeof(header));
        Append(file, info.data(), info.size());
        Append(file, pixels.data(), pixels.size());
        file.shrink_to_fit();
        return file;
    }
    static void Append(Bytes& bytes, const void* from, size_t size) {
        const auto* first = static_cast<const uint8_t*>(from);
        std::copy(first, first + size, std::back_inserter(bytes));
    }
};

// A block to be written, filled with junk as allocators leave it. Like all blocks
// here it has no room behind it, so that the sanitizer sees each byte too far.
inline Bytes JunkBlock(size_t size) {
    return Bytes(size, 0xCD);
}

// The rows from the top, separated by slashes; pixels as letters (. black, R, G, B, W) or RRGGBB in
// brackets. Where the rows with a fourth byte show something else, that is a failure; so is a
// fourth byte that is not 255 where the picture has none of its own.
inline std::string Show(const DibView& view) {
    const RowReader reader(view);
    std::string text;
    const auto width = static_cast<size_t>(view.Width());
    Bytes bgr = JunkBlock(width * 3);
    Bytes bgra = JunkBlock(width * 4);
    for (int32_t y = 0; y < view.Height(); ++y) {
        reader.Row(view.Row(y), bgr);
        reader.RowBgra(view.Row(y), bgra);
        if (y != 0) text += '/';
        for (size_t i = 0; i < bgr.size(); i += 3) {
            const uint8_t* const four = &bgra[i / 3 * 4];
            const bool isOwn = view.Header().bitCount == 32;
            EXPECT_EQ(four[3], isOwn ? view.Row(y)[i / 3 * 4 + 3] : 255);
            // Where it is alpha, what is shown lies over white.
            EXPECT_TRUE(view.Format() == PixelFormat::kBgra32 || !std::memcmp(four, &bgr[i], 3));
            char hex[16];
            std::snprintf(hex, sizeof(hex), "[%02X%02X%02X]", bgr[i + 2], bgr[i + 1], bgr[i]);
            const std::string_view color = hex;
            text += color == "[000000]"   ? "."
                    : color == "[FF0000]" ? "R"
                    : color == "[00FF00]" ? "G"
                    : color == "[0000FF]" ? "B"
                    : color == "[FFFFFF]" ? "W"
                                          : color;
        }
    }
    return text;
}

}  // namespace tessary::dib::test
