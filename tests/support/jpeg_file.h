// A JPEG file as the library itself writes it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jpeglib.h>

namespace tessary::test {

// `prepare` is called when the defaults of samples of that space are set, and `mark` behind the
// beginning of the file, with the library's record; `sample` answers for x, y and channel.
template <class Prepare, class Mark, class Sample>
std::vector<uint8_t> JpegOf(uint32_t width, uint32_t height, J_COLOR_SPACE space, int components,
                            const Prepare& prepare, const Mark& mark, const Sample& sample) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* made = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &made, &size);
    jpeg.image_width = width;
    jpeg.image_height = height;
    jpeg.input_components = components;
    jpeg.in_color_space = space;
    jpeg_set_defaults(&jpeg);
    prepare(jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    mark(jpeg);
    std::vector<uint8_t> row(width * static_cast<size_t>(components));
    for (uint32_t y = 0; y < height; ++y) {
        const auto count = static_cast<uint32_t>(components);
        for (uint32_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<uint8_t>(sample(i / count, y, i % count));
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    jpeg_destroy_compress(&jpeg);
    std::vector<uint8_t> file(made, made + size);
    std::free(made);
    return file;
}

}  // namespace tessary::test
