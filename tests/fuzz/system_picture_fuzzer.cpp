#include <cstdlib>
#include <vector>

#include "plugins/iftesswic/safe_file.h"
#include "plugins/iftesswic/tiff_file.h"

using namespace tessary;

// The input is any file of iftesswic.spi: what is read of it before the system's decoders see it.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    dib::MemorySource source({data, size});
    const wic::Container container = wic::DetectContainer({data, size});
    wic::SafeFile::Page page{.icon = wic::CountIcons(source) / 2};
    if (container == wic::Container::kTiff) {
        const std::vector<uint32_t> pages = wic::TiffPages(source);
        if (!pages.empty()) page.directory = pages.back();
    }
    wic::SafeFile file(source, container, page);
    if (file.Found().result != codec::Result::kSuccess) return 0;
    dib::ByteSource& safe = file.Source();
    std::vector<uint8_t> whole(static_cast<size_t>(std::min<uint64_t>(safe.Size(), 20'000)));
    if (safe.ReadAt(0, whole) != whole.size()) std::abort();
    // Read in pieces it is the same file.
    for (size_t at = 0; at < whole.size(); at += 97) {
        uint8_t piece[64];
        const size_t count = safe.ReadAt(at, piece).value_or(0);
        if (!std::equal(piece, piece + std::min(count, whole.size() - at), whole.begin() + at)) {
            std::abort();
        }
    }
    return 0;
}
