#include <cstddef>
#include <cstdio>

#include <jpeglib.h>

#include <cstdlib>

#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {
namespace {

constexpr int kBlackInk = 51;  // of 255, in all pixels of an ink picture

bool IsInk(JpegKind kind) {
    return kind == JpegKind::kAdobeInk || kind == JpegKind::kPlainInk;
}

// Red, green and blue, or cyan, magenta and yellow.
int Sample(JpegKind kind, uint32_t x, uint32_t y, unsigned which) {
    const int column = static_cast<int>(x / kTile), row = static_cast<int>(y / kTile);
    if (which == 0 || kind == JpegKind::kGrey) return 30 + column * 45 + row * 10;
    return which == 1 ? 20 + row * 80 : 200 - column * 20;
}

}  // namespace

int JpegChannel(JpegKind kind, uint32_t x, uint32_t y, unsigned channel) {
    const int sample = Sample(kind, x, y, 2 - channel);
    return IsInk(kind) ? (255 - sample) * (255 - kBlackInk) / 255 : sample;
}

std::vector<uint8_t> MakeJpeg(const JpegPlan& plan) {
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* file = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &file, &size);
    jpeg.image_width = kJpegWidth;
    jpeg.image_height = kJpegHeight;
    jpeg.input_components = IsInk(plan.kind) ? 4 : 3;
    jpeg.in_color_space = IsInk(plan.kind) ? JCS_CMYK : JCS_RGB;
    jpeg_set_defaults(&jpeg);
    if (plan.kind == JpegKind::kGrey) jpeg_set_colorspace(&jpeg, JCS_GRAYSCALE);
    if (plan.kind == JpegKind::kPlainInk) jpeg.write_Adobe_marker = FALSE;
    jpeg_set_quality(&jpeg, 100, TRUE);
    jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    if (plan.progressive) jpeg_simple_progression(&jpeg);
    jpeg.density_unit = plan.dotsPerInch != 0;
    jpeg.X_density = plan.dotsPerInch;
    jpeg.Y_density = static_cast<UINT16>(plan.dotsPerInch * 2);
    jpeg_start_compress(&jpeg, TRUE);
    // A TIFF directory of one entry: Orientation, SHORT. The byte orders take turns.
    const auto value = static_cast<uint8_t>(plan.orientation);
    const uint8_t big[] = {'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42,    0, 0, 0, 8, 0, 1,
                           1,   18,  0,   3,   0, 0, 0,   1,   0, value, 0, 0, 0, 0, 0, 0};
    const uint8_t little[] = {'E', 'x', 'i', 'f', 0, 0, 'I', 'I', 42,    0, 8, 0, 0, 0, 1, 0,
                              18,  1,   3,   0,   1, 0, 0,   0,   value, 0, 0, 0, 0, 0, 0, 0};
    static_assert(sizeof big == sizeof little);
    jpeg_write_marker(&jpeg, JPEG_APP0 + 1, value % 2 == 0 ? little : big, sizeof big);
    const int flip = plan.kind == JpegKind::kAdobeInk ? 255 : 0;  // there full ink is 0
    std::vector<uint8_t> row;
    while (jpeg.next_scanline < jpeg.image_height) {
        row.clear();
        for (uint32_t x = 0; x < jpeg.image_width; ++x) {
            for (unsigned i = 0; i < 3; ++i) {
                const int sample = Sample(plan.kind, x, jpeg.next_scanline, i);
                row.push_back(static_cast<uint8_t>(sample ^ flip));
            }
            if (IsInk(plan.kind)) row.push_back(static_cast<uint8_t>(kBlackInk ^ flip));
        }
        JSAMPROW start = row.data();
        jpeg_write_scanlines(&jpeg, &start, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::vector<uint8_t> bytes(file, file + size);
    std::free(file);
    return bytes;
}

}  // namespace tessary::codec::test
