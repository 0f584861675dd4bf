#include <zlib.h>

#include <vector>

#include "plugins/iftesspng/png_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

namespace {

constexpr size_t kSignatureSize = 8;

// The big-endian number at `at`.
uint32_t Number(const std::vector<uint8_t>& file, size_t at) {
    return uint32_t{file[at]} << 24 | uint32_t{file[at + 1]} << 16 | uint32_t{file[at + 2]} << 8 |
           file[at + 3];
}

// Gives every chunk its right check sum, or hardly any input would get past the first one.
void MendCheckSums(std::vector<uint8_t>& file) {
    size_t at = kSignatureSize;
    while (at + 12 <= file.size() && Number(file, at) <= file.size() - at - 12) {
        const size_t end = at + 8 + Number(file, at);
        const auto sum = crc32(0, &file[at + 4], static_cast<uInt>(end - at - 4));
        for (size_t i = 0; i < 4; ++i)
            file[end + i] = static_cast<uint8_t>(sum >> (24 - 8 * i));
        at = end + 4;
    }
}

}  // namespace

// The input is a PNG file; with an odd size its check sums are left as they are.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<uint8_t> file(data, data + size);
    if (size % 2 == 0) MendCheckSums(file);
    codec::fuzz::DecodeAll(png::PngDecoder(), file);
    codec::fuzz::DecodeAll(png::PngDecoder(0), file);
    codec::fuzz::DecodeFrames(png::PngDecoder(), file);
    return 0;
}
