#include "helpers/jpeg_turn/jpeg_outline.h"
#include "helpers/jpeg_turn/jpeg_turn.h"
#include "plugins/iftessjpeg/jpeg_decoder.h"
#include "tests/fuzz/decode_all.h"

using namespace tessary;

// The input is a JPEG file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    codec::fuzz::DecodeAll(jpeg::JpegDecoder(), {data, size});
    if (const auto outline = jpeg::OutlineOf({data, size})) {
        for (const bool followsFile : {false, true})
            jpeg::Turn({data, size},
                       {exif::kTurnedRight, outline->width, outline->height, followsFile, true});
    }
    return 0;
}
