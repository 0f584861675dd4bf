#include "plugins/iftesstiff/tiff_library_colors.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace tessary::tiff {
namespace {

using codec::Result;

// Of pixels that are read at once, and rows, where the file has them in larger pieces.
constexpr uint64_t kMostPixels = 16U << 20;

struct ImageEnder {
    void operator()(TIFFRGBAImage* image) const { TIFFRGBAImageEnd(image); }
};

uint32_t RowsAtOnce(const TiffFile& file, const TiffForm& form) {
    const bool isTiled = TIFFIsTiled(file.Handle()) != 0;
    const uint32_t piece =
        file.Long(isTiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP, form.height);
    return std::clamp(piece, 1U, form.height);
}

void PutRow(const uint32_t* pixels, uint32_t width, uint8_t* out) {
    for (uint32_t x = 0; x < width; ++x, out += 3) {
        out[0] = static_cast<uint8_t>(TIFFGetB(pixels[x]));
        out[1] = static_cast<uint8_t>(TIFFGetG(pixels[x]));
        out[2] = static_cast<uint8_t>(TIFFGetR(pixels[x]));
    }
}

}  // namespace

Result ReadLibraryColors(const TiffFile& file, const TiffForm& form, codec::OrientedRows& rows,
                         codec::Progress& progress, bool& isSound) {
    isSound = true;
    char message[1024] = "";
    TIFFRGBAImage image{};
    if (TIFFRGBAImageOK(file.Handle(), message) == 0 ||
        TIFFRGBAImageBegin(&image, file.Handle(), 0, message) == 0) {
        return Result::kUnknownFormat;
    }
    const std::unique_ptr<TIFFRGBAImage, ImageEnder> ender(&image);
    image.req_orientation = image.orientation;  // turned they are elsewhere
    const uint32_t piece = RowsAtOnce(file, form);
    if (uint64_t{piece} * form.width > kMostPixels * 8) return Result::kOutOfMemory;
    std::vector<uint32_t> raster(size_t{piece} * form.width);
    for (uint32_t first = 0; first < form.height; first += piece) {
        if (!progress.Report(first, form.height)) return Result::kAborted;
        const uint32_t count = std::min(piece, form.height - first);
        std::ranges::fill(raster, 0U);
        image.row_offset = static_cast<int>(first);
        image.col_offset = 0;
        if (TIFFRGBAImageGet(&image, raster.data(), form.width, count) == 0) {
            if (first == 0) return Result::kBrokenData;
            isSound = false;
        }
        for (uint32_t y = 0; y < count; ++y) {
            PutRow(&raster[size_t{y} * form.width], form.width, rows.RowBuffer(first + y));
            rows.RowDone(first + y);
        }
    }
    return Result::kSuccess;
}

}  // namespace tessary::tiff
