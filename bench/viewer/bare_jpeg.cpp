#include "bench/viewer/bare_jpeg.h"

#include <cstdint>
#include <cstdio>
#include <memory>

#include <jpeglib.h>

namespace tessary {

void DecodeBareJpeg(const std::wstring& path) {
    std::FILE* file = _wfopen(path.c_str(), L"rb");
    if (file == nullptr) return;
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&jpeg);
    jpeg_stdio_src(&jpeg, file);
    jpeg_read_header(&jpeg, TRUE);
    jpeg.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&jpeg);
    const size_t stride = (static_cast<size_t>(jpeg.output_width) * 3 + 3) / 4 * 4;
    // Not cleared first: the decoder fills it.
    const auto rows = std::make_unique_for_overwrite<uint8_t[]>(stride * jpeg.output_height);
    while (jpeg.output_scanline < jpeg.output_height) {
        JSAMPROW row = rows.get() + stride * jpeg.output_scanline;
        jpeg_read_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_decompress(&jpeg);
    jpeg_destroy_decompress(&jpeg);
    std::fclose(file);
}

}  // namespace tessary
