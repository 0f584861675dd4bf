// Which of a file's directories are pages.
#pragma once

#include <cstdint>
#include <vector>

#include "plugins/iftesstiff/tiff_file.h"

namespace tessary::tiff {

// More than these are left out: nobody looks at them.
constexpr size_t kMostPages = 10'000;

// Where the directories of the first `most` pages stand. Smaller copies of pages, and masks, are
// left out unless there is nothing else.
std::vector<uint64_t> PagesOf(const TiffFile& file, size_t most = kMostPages);

}  // namespace tessary::tiff
