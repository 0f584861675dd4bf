// Bitmap files of one colour, for tests that need a picture and not a particular one.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::test {

// The bytes of a 24-bit bitmap file, with an info header of that size.
inline std::string BitmapFileOf(int width, int height, COLORREF colour,
                                DWORD headerSize = sizeof(BITMAPINFOHEADER)) {
    const int stride = (width * 3 + 3) / 4 * 4;
    const DWORD start = sizeof(BITMAPFILEHEADER) + headerSize;
    const BITMAPFILEHEADER file{0x4D42, start + static_cast<DWORD>(stride * height), 0, 0, start};
    const BITMAPINFOHEADER info{headerSize, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    std::string bytes(reinterpret_cast<const char*>(&file), sizeof(file));
    bytes.append(reinterpret_cast<const char*>(&info), sizeof(info));
    bytes.resize(start);
    std::string row;
    for (int x = 0; x < width; ++x) {
        row += static_cast<char>(GetBValue(colour));
        row += static_cast<char>(GetGValue(colour));
        row += static_cast<char>(GetRValue(colour));
    }
    row.resize(static_cast<size_t>(stride));
    for (int y = 0; y < height; ++y)
        bytes += row;
    return bytes;
}

}  // namespace tessary::test
