// Small bitmaps of every kind, with the picture that each must give.
#pragma once

#include "tests/helpers/dib/test_bitmap.h"

namespace tessary::dib::test {

struct Sample {
    const char* name;
    const char* picture;  // as Show gives it
    uint16_t plainBits;   // bits per pixel of the plain form
    bool keepsBits;       // raw rows that the plain form can hold as they are
    TestBitmap bitmap;
};

inline const std::vector<uint32_t> kRgbw = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
inline const std::vector<uint32_t> k565Masks = {0xF800, 0x7E0, 0x1F};
inline const std::vector<uint32_t> k888Masks = {0xFF0000, 0xFF00, 0xFF};

// Rows of two by two pixels, blue and white below red and green; padding and spare bits are junk.
inline const Bytes k24Bits = {255, 0, 0, 255, 255, 255, 9, 9, 0, 0, 255, 0, 255, 0, 9, 9};
inline const Bytes k8Bits = {2, 3, 9, 9, 0, 1, 9, 9};
inline const Bytes k4Bits = {0x23, 9, 9, 9, 0x01, 9, 9, 9};
inline const Bytes k2Bits = {0xBF, 9, 9, 9, 0x1F, 9, 9, 9};
inline const Bytes k1Bit = {0x9F, 9, 9, 9, 0x6F, 9, 9, 9};
inline const Bytes k555 = {0x1F, 0x00, 0xFF, 0x7F, 0x00, 0x7C, 0xE0, 0x83};
inline const Bytes k565 = {0x1F, 0x00, 0xFF, 0xFF, 0x00, 0xF8, 0xE0, 0x07};
inline const Bytes k444 = {0x0F, 0x00, 0xFF, 0x0F, 0x00, 0x0F, 0xF0, 0x00};
inline const Bytes k32Bits = {255, 0, 0, 7, 255, 255, 255, 7, 0, 0, 255, 7, 0, 255, 0, 7};
inline const Bytes k32Reversed = {255, 0,   0, 255, 255, 255, 255, 255,
                                  255, 255, 0, 0,   255, 0,   255, 0};

inline std::vector<Sample> AllSamples() {
    const std::vector<uint32_t> reversed = {0xFF00, 0xFF0000, 0xFF000000, 0xFF};
    const std::vector<uint32_t> alpha = {0xFF0000, 0xFF00, 0xFF, 0xFF000000};
    const std::vector<uint32_t> rw = {0xFF0000, 0xFFFFFF};
    const std::vector<uint32_t> rg = {0xFF0000, 0x00FF00};
    const std::vector<uint32_t> rb = {0xFF0000, 0x0000FF};
    const std::vector<uint32_t> bgr = {0xFF, 0xFF00, 0xFF0000};
    const std::vector<uint32_t> k1555 = {0x7C00, 0x3E0, 0x1F, 0x8000};
    const std::vector<uint32_t> k10BitMasks = {0x3FF00000, 0xFFC00, 0x3FF};
    const Bytes k10Bits = {0, 0, 0, 0x3F, 0, 0xFC, 0x0F, 0};
    const Bytes deep = {0, 0, 0, 0x80, 0, 0x7F, 0, 0, 0, 0, 0, 0x10, 0xFF, 0xFF, 0, 0x20};
    const Bytes tones565 = {0x09, 0x84, 0xF6, 0x7B};
    std::vector<Sample> samples = {
        {"24", "RG/BW", 24, true, {2, 2, 24, k24Bits}},
        {"24 top-down", "BW/RG", 24, true, {2, -2, 24, k24Bits}},
        {"24, OS/2 1", "RG/BW", 24, true, {2, 2, 24, k24Bits, {}, 12}},
        {"24, OS/2 2 shortest", "RG/BW", 24, true, {2, 2, 24, k24Bits, {}, 16}},
        {"24, OS/2 2 cut in a field", "RG/BW", 24, true, {2, 2, 24, k24Bits, {}, 22}},
        {"24, unknown version", "RG/BW", 24, true, {2, 2, 24, k24Bits, {}, 200}},
        {"24, spare colours", "RG/BW", 24, true, {2, 2, 24, k24Bits, kRgbw}},
        {"24 reversed", "BG/RW", 24, false, {2, 2, 24, k24Bits, {}, 52, 3, bgr}},
        {"8", "RG/BW", 8, true, {2, 2, 8, k8Bits, kRgbw}},
        {"8 top-down", "BW/RG", 8, true, {2, -2, 8, k8Bits, kRgbw}},
        {"8, OS/2 1", "RG/BW", 8, true, {2, 2, 8, k8Bits, kRgbw, 12}},
        {"8, OS/2 2", "RG/BW", 8, true, {2, 2, 8, k8Bits, kRgbw, 64}},
        {"8, version 5", "RG/BW", 8, true, {2, 2, 8, k8Bits, kRgbw, 124}},
        {"8, cut table", "RG/..", 8, true, {2, 2, 8, k8Bits, rg, 40, 0, {}, 0}},
        {"8, huge table", "RG/BW", 8, true, {2, 2, 8, k8Bits, kRgbw, 40, 0, {}, 0x40000001}},
        {"8, few used", "RG/..", 8, true, {2, 2, 8, k8Bits, kRgbw, 124, 0, {}, 2}},
        {"8, no table", "[555555][AAAAAA]/.W", 8, true, {2, 2, 8, {0, 255, 0, 0, 85, 170, 0, 0}}},
        {"4, OS/2 1, cut table", "RG/..", 4, true, {2, 2, 4, k4Bits, rg, 12}},
        {"2", "RG/BW", 4, false, {2, 2, 2, k2Bits, kRgbw}},
        {"2, five wide", "RGBWW", 4, false, {5, 1, 2, {0x1B, 0xC0, 0, 0}, kRgbw}},
        {"2, no table", ".[555555]/[AAAAAA]W", 4, false, {2, 2, 2, k2Bits}},
        {"1", "RW/WR", 1, true, {2, 2, 1, k1Bit, rw}},
        {"555", "RG/BW", 16, true, {2, 2, 16, k555}},
        {"555 as masks", "RG/BW", 16, true, {2, 2, 16, k555, {}, 40, 3, {0x7C00, 0x3E0, 0x1F}}},
        {"1555", "WG/WW", 32, false, {2, 2, 16, k555, {}, 56, 3, k1555}},
        {"1555, all clear", "R", 32, false, {1, 1, 16, {0, 0x7C, 0, 0}, {}, 56, 3, k1555}},
        {"555, masks 0", "RG/BW", 16, true, {2, 2, 16, k555, {}, 40, 3, {0, 0, 0}}},
        {"565", "RG/BW", 16, true, {2, 2, 16, k565, {}, 40, 3, k565Masks}},
        {"565, version 5", "RG/BW", 16, true, {2, 2, 16, k565, {}, 124, 3, k565Masks}},
        {"565 reversed", "BG/RW", 24, false, {2, 2, 16, k565, {}, 40, 3, {0x1F, 0x7E0, 0xF800}}},
        {"444", "RG/BW", 24, false, {2, 2, 16, k444, {}, 40, 3, {0xF00, 0xF0, 0xF}}},
        {"310", "[B60000]G", 24, false, {2, 1, 16, {160, 0, 16, 0}, {}, 40, 3, {0xE0, 0x10, 0}}},
        {"32", "RG/BW", 32, true, {2, 2, 32, k32Bits}},
        {"32 masks top-down", "BW/RG", 32, true, {2, -2, 32, k32Bits, {}, 40, 3, k888Masks}},
        {"32, version 5", "RG/BW", 32, true, {2, 2, 32, k32Bits, {}, 124, 3, k888Masks}},
        {"32 with alpha", "[FFF8F8]", 32, true, {1, 1, 32, {0, 0, 255, 7}, {}, 108, 3, alpha}},
        {"32 ARGB", "[FFF8F8]", 32, false, {1, 1, 32, {7, 255, 0, 0}, {}, 56, 3, reversed}},
        {"32 with a mask in vain", "RG/BW", 32, true, {2, 2, 32, k32Bits, {}, 108, 0, alpha}},
        {"32 reversed", "RG/BW", 32, false, {2, 2, 32, k32Reversed, {}, 40, 6, reversed}},
        {"32 reversed top-down", "BW/RG", 32, false, {2, -2, 32, k32Reversed, {}, 56, 3, reversed}},
        {"64", "R[00BC00]", 32, false, {2, 1, 64, deep}},
        {"10 bits", "[FC0000]G", 32, false, {2, 1, 32, k10Bits, {}, 40, 3, k10BitMasks}},
        // Rows that end within a byte, middle tones, indexes beyond the table.
        {"1 odd", "RBRRRRRRBRB", 1, true, {11, -1, 1, {0x40, 0xBF, 9, 9}, rb}},
        {"4 odd", "RGBW.", 4, true, {5, -1, 4, {0x01, 0x23, 0xF9, 9}, kRgbw}},
        {"8 odd", "R.W", 8, true, {3, -1, 8, {0, 4, 3, 9}, kRgbw}},
        {"555 tones", "[84104A][7BEFB5]", 16, true, {2, -1, 16, {0x49, 0x40, 0xB6, 0xBF}}},
        {"565 tones", "[84824A][7B7DB5]", 16, true, {2, -1, 16, tones565, {}, 40, 3, k565Masks}},
        {"24 tones", "[030201][060504]", 24, true, {2, -1, 24, {1, 2, 3, 4, 5, 6, 9, 9}}},
        {"32 tones", "[030201][060504]", 32, true, {2, -1, 32, {1, 2, 3, 77, 4, 5, 6, 77}}},
    };
    const Bytes literal24 = {0, 3, 255, 0, 0, 0, 255, 0, 0, 0, 255, 99, 5, 0, 0, 255};
    const struct {
        const char* name;
        uint32_t compression;
        const char* picture;
        Bytes codes;
        int32_t height = 2;
    } runs[] = {
        {"RLE8", 1, "BBWW/GGGG", {4, 1, 0, 0, 2, 2, 2, 3, 0, 1, 4, 3}},
        {"RLE8 top-down, no end mark", 1, "GGGG/BBBB", {4, 1, 0, 0, 4, 2}, -2},
        {"RLE8 over the row end", 1, "BBBB/GGGG", {9, 1, 1, 2, 0, 0, 255, 2}},
        {"RLE8 delta", 1, "RBRR/RRRR", {0, 2, 1, 1, 1, 2, 0, 1}},
        {"RLE8 delta below the end", 1, "RRRR/GRRR", {1, 1, 0, 2, 200, 200, 4, 2}},
        {"RLE8 delta beside the end", 1, "BBBB/RRRR", {0, 2, 9, 0, 4, 1, 0, 0, 4, 2}},
        {"RLE8 literal", 1, "BBBB/GBWG", {0, 3, 1, 2, 3, 99, 1, 1, 0, 0, 4, 2}},
        {"RLE8 long literal", 1, "GBWG/BBBB", {4, 2, 0, 0, 0, 5, 1, 2, 3, 1, 2, 9}},
        {"RLE8 cut in a literal", 1, "RRRR/GBRR", {0, 4, 1, 2}},
        {"RLE8 cut in a delta", 1, "RRRR/GGGG", {4, 1, 0, 2, 1}},
        {"RLE8 cut in a run", 1, "RRRR/GGGG", {4, 1, 0, 0, 4}},
        {"RLE8 too many rows", 1, "RRRR/RRRR", {0, 0, 0, 0, 4, 1}},
        {"RLE4", 2, "WGWR/GBGB", {4, 0x12, 0, 0, 3, 0x31, 0, 1}},
        {"RLE4 odd literal", 2, "BBBB/GGBW", {1, 0x1F, 0, 3, 0x12, 0x30, 0, 0, 4, 0x22}},
        {"RLE4 odd run", 2, "RRRR/RBWR", {0, 2, 1, 0, 2, 0x23, 0, 1}},
        {"RLE4 long literal", 2, "WWWW/GBWG", {0, 6, 0x12, 0x31, 0x11, 99, 0, 0, 9, 0x33}},
        {"RLE24", 4, "RRRR/BBB.", {3, 255, 0, 0, 1, 0, 0, 0, 0, 0, 4, 0, 0, 255, 0, 1}},
        {"RLE24 literal", 4, "..../BGRR", literal24},
    };
    for (const auto& run : runs) {
        const uint16_t depth = run.compression == 1 ? 8 : run.compression == 2 ? 4 : 24;
        const auto colors = depth == 24 ? std::vector<uint32_t>() : kRgbw;
        const uint32_t header = depth == 24 ? 64 : 40;
        const TestBitmap bitmap{4, run.height, depth, run.codes, colors, header, run.compression};
        samples.push_back({run.name, run.picture, depth, false, bitmap});
    }
    return samples;
}

}  // namespace tessary::dib::test
