#include <png.h>

#include <array>

#include "tests/plugins_bundled/made_pictures.h"

namespace tessary::codec::test {

std::vector<uint8_t> MakePng(const PngPlan& plan) {
    std::vector<uint8_t> file;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    const auto write = [](png_structp writer, png_bytep data, size_t size) {
        auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(writer));
        out->insert(out->end(), data, data + size);
    };
    png_set_write_fn(png, &file, write, nullptr);
    png_set_IHDR(png, info, plan.width, plan.height, plan.depth, plan.colorType,
                 plan.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_pHYs(png, info, 3937, 7874, PNG_RESOLUTION_METER);
    if (plan.colorType == PNG_COLOR_TYPE_PALETTE) {
        std::array<png_color, 256> colors;
        for (unsigned i = 0; i < colors.size(); ++i) {
            colors[i].red = colors[i].green = colors[i].blue = PngPaletteLevel(i);
        }
        png_set_PLTE(png, info, colors.data(), 1 << plan.depth);
    }
    const size_t rowBytes = png_get_rowbytes(png, info);
    std::vector<uint8_t> pixels(rowBytes * plan.height);
    uint32_t noise = 1;
    for (uint8_t& byte : pixels) {
        noise = noise * 1664525 + 1013904223;
        byte = static_cast<uint8_t>(noise >> 24);
    }
    if (plan.transparent) {
        // The first pixel is clear, and what has its colour.
        const auto sample = [&](size_t channel) {
            const size_t at = channel * static_cast<size_t>(plan.depth) / 8;
            if (plan.depth == 16) return static_cast<png_uint_16>(pixels[at] << 8 | pixels[at + 1]);
            return static_cast<png_uint_16>(pixels[at] >> (8 - plan.depth));
        };
        const png_uint_16 first = sample(0);
        const bool isColor = plan.colorType == PNG_COLOR_TYPE_RGB;
        const png_color_16 clear{0, first, isColor ? sample(1) : first, isColor ? sample(2) : first,
                                 first};
        const png_byte alphas[]{0, 60, 120, 180};
        png_set_tRNS(png, info, alphas, plan.depth == 1 ? 2 : 4, &clear);
    }
    if (plan.background) {
        const png_uint_16 sample = *plan.background;
        const png_color_16 color{static_cast<png_byte>(sample), sample, sample, sample, sample};
        png_set_bKGD(png, info, &color);
    }
    std::vector<png_bytep> rows;
    for (uint32_t y = 0; y < plan.height; ++y)
        rows.push_back(pixels.data() + y * rowBytes);
    png_write_info(png, info);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return file;
}

}  // namespace tessary::codec::test
