// Bitmap files of one colour, for tests that need a picture and not a particular one.
#pragma once

#include <windows.h>

#include <string>

namespace tessary::test {

// The bytes of a 24-bit bitmap file.
inline std::string BitmapFileOf(int width, int height, COLORREF colour) {
    const int stride = (width * 3 + 3) / 4 * 4;
    const BITMAPFILEHEADER file{0x4D42, static_cast<DWORD>(54 + stride * height), 0, 0, 54};
    const BITMAPINFOHEADER info{40, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    std::string bytes(reinterpret_cast<const char*>(&file), sizeof(file));
    bytes.append(reinterpret_cast<const char*>(&info), sizeof(info));
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
