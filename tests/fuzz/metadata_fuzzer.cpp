#include <cstdlib>

#include "helpers/metadata/file_metadata.h"
#include "helpers/metadata/saved_exif.h"

using namespace tessary;

// The input is a picture file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    dib::MemorySource source({data, size});
    const metadata::FileMetadata read = metadata::ReadFileMetadata(source);
    const auto saved = metadata::SavedExif(read.exif, {.width = 100, .height = 100});
    if (saved.size() > metadata::kMostSavedExif) std::abort();
    // What was made can be read again.
    metadata::SavedExif(saved, {.width = 100, .height = 100, .keepsPosition = false});
    return 0;
}
