#include "plugins/iftesstiff/tiff_pages.h"

#include <algorithm>

namespace tessary::tiff {
namespace {

// Also of cameras' old tag, in which 2 is the smaller copy.
bool IsPage(const TiffFile& file) {
    constexpr uint32_t kAside = FILETYPE_REDUCEDIMAGE | FILETYPE_MASK;
    return (file.Long(TIFFTAG_SUBFILETYPE) & kAside) == 0 &&
           file.Short(TIFFTAG_OSUBFILETYPE) != OFILETYPE_REDUCEDIMAGE;
}

}  // namespace

// libtiff itself ends at a directory that it has met before.
std::vector<uint64_t> PagesOf(const TiffFile& file, size_t most) {
    std::vector<uint64_t> pages;
    TIFF* const tiff = file.Handle();
    const uint64_t first = TIFFCurrentDirOffset(tiff);
    do {
        if (IsPage(file)) pages.push_back(TIFFCurrentDirOffset(tiff));
    } while (pages.size() < most && TIFFReadDirectory(tiff) != 0);
    if (pages.empty()) pages.push_back(first);
    return pages;
}

}  // namespace tessary::tiff
