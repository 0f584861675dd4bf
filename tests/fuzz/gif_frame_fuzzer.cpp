#include <cstdlib>
#include <vector>

#include "plugins/iftesswic/container.h"
#include "plugins/iftesswic/gif_first_frame.h"
#include "plugins/iftesswic/icon_directory.h"

using namespace tessary;

// The input is any file of iftesswic.spi: what is read of it before the system's decoders see it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    dib::MemorySource source({data, size});
    wic::DetectContainer({data, size});
    wic::LargestIcon(source);
    wic::GifFirstFrame gif(source);
    std::vector<uint8_t> whole(static_cast<size_t>(std::min<uint64_t>(gif.Size(), 20'000)));
    if (gif.ReadAt(0, whole) != whole.size()) std::abort();
    // Read in pieces it is the same file.
    for (size_t at = 0; at < whole.size(); at += 97) {
        uint8_t piece[64];
        const size_t count = gif.ReadAt(at, piece).value_or(0);
        if (!std::equal(piece, piece + std::min(count, whole.size() - at), whole.begin() + at)) {
            std::abort();
        }
    }
    return 0;
}
