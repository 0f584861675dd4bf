// JPEG files of all kinds, made and decoded by the library itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/support/jpeg_file.h"

namespace tessary::test {

using Bytes = std::vector<uint8_t>;

struct JpegKind {
    int components = 3;  // 1 grey, 3 colours, 4 inks
    int across = 1;      // the sampling of the first one against the others'
    int down = 1;
    bool isProgressive = false;
    bool isArithmetic = false;
    bool isOptimized = false;
};

// Rows from the top, `components` bytes a pixel.
struct Pixels {
    uint32_t width = 0;
    uint32_t height = 0;
    size_t components = 0;
    Bytes bytes{};

    const uint8_t* At(uint32_t x, uint32_t y) const {
        return &bytes[(size_t{y} * width + x) * components];
    }
    bool operator==(const Pixels&) const = default;
};

struct Marker {
    int number;
    std::string data;
};

// Each square of 32 pixels has a colour of its own, so that it survives turning to the last bit.
inline Bytes MadeJpeg(const JpegKind& kind, uint32_t width, uint32_t height,
                      const std::vector<Marker>& markers = {}, bool isNoise = false) {
    const J_COLOR_SPACE space = kind.components == 1   ? JCS_GRAYSCALE
                                : kind.components == 3 ? JCS_YCbCr
                                                       : JCS_CMYK;
    const auto prepare = [&](jpeg_compress_struct& jpeg) {
        jpeg.comp_info[0].h_samp_factor = kind.across;
        jpeg.comp_info[0].v_samp_factor = kind.down;
        jpeg.arith_code = kind.isArithmetic;
        jpeg.optimize_coding = kind.isOptimized;
        if (kind.isProgressive) jpeg_simple_progression(&jpeg);
    };
    const auto mark = [&](jpeg_compress_struct& jpeg) {
        for (const Marker& marker : markers)
            jpeg_write_marker(&jpeg, marker.number,
                              reinterpret_cast<const JOCTET*>(marker.data.data()),
                              static_cast<unsigned>(marker.data.size()));
    };
    uint32_t random = 1;
    return JpegOf(width, height, space, kind.components, prepare, mark,
                  [&](uint32_t x, uint32_t y, uint32_t channel) {
                      random = random * 1664525 + 1013904223;
                      return isNoise ? random >> 24 : x / 32 * 67 + y / 32 * 31 + channel * 50;
                  });
}

// The samples as they are stored, colours not made smooth. The file must be whole.
inline Pixels DecodedJpeg(std::span<const uint8_t> file) {
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = jpeg.jpeg_color_space;
    jpeg.do_fancy_upsampling = FALSE;
    jpeg_start_decompress(&jpeg);
    Pixels pixels{jpeg.output_width, jpeg.output_height,
                  static_cast<size_t>(jpeg.output_components)};
    pixels.bytes.resize(size_t{pixels.width} * pixels.height * pixels.components);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW rows[] = {&pixels.bytes[jpeg.output_scanline * pixels.width * pixels.components]};
        jpeg_read_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    return pixels;
}

}  // namespace tessary::test
