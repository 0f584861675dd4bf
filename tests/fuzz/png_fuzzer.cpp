#include <png.h>
#include <zlib.h>

#include <vector>

#include "plugins/iftpng/png_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

namespace {

// Gives every chunk its right check sum, or hardly any input would get past the first one.
void MendCheckSums(std::vector<uint8_t>& file) {
    for (size_t at = 8; at + 12 <= file.size();) {  // behind the signature
        const size_t size = png_get_uint_32(&file[at]);
        if (size > file.size() - at - 12) break;
        png_save_uint_32(&file[at + 8 + size], static_cast<uint32_t>(crc32(
                                                   0, &file[at + 4], static_cast<uInt>(size + 4))));
        at += 12 + size;
    }
}

}  // namespace

// The input is a PNG file; with an odd size its check sums are left as they are.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> file(data, data + size);
    if (size % 2 == 0) MendCheckSums(file);
    codec::fuzz::DecodeAll(png::PngDecoder(), file);
    return 0;
}
