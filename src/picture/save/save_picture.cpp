#include "picture/save/save_picture.h"

#include <cstring>
#include <optional>

#include "app/base/error.h"
#include "app/base/helper_function.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/dcjpeg/dcjpeg.h"
#include "helpers/dcpng/dcpng.h"
#include "helpers/dib/dib_view.h"

namespace tessary {
namespace {

using Bytes = std::span<const uint8_t>;

// A picture's two parts in the memory that really is theirs.
struct PictureParts {
    Bytes info;
    Bytes bits;
};

// Where the pixel rows stand, counted from the info header, in the image of a bitmap file. A table
// for one bit always takes the room of two colours.
uint64_t BitsOffset(const dib::BitmapInfoHeader& header) {
    if (header.bitCount == 1) return dib::kInfoHeaderSize + 2 * sizeof(dib::PaletteEntry);
    if (header.bitCount == 4 || header.bitCount == 8) {
        const uint64_t colors = header.colorsUsed != 0 ? header.colorsUsed : 1u << header.bitCount;
        return dib::kInfoHeaderSize + colors * sizeof(dib::PaletteEntry);
    }
    return dib::InfoBlockSize(header);
}

// Empty ones when it is none.
PictureParts PartsOfFileImage(Bytes image) {
    if (image.size() < dib::kFileHeaderSize + dib::kInfoHeaderSize) return {};
    const Bytes info = image.subspan(dib::kFileHeaderSize);
    dib::BitmapInfoHeader header;
    std::memcpy(&header, info.data(), sizeof(header));
    const uint64_t offset = BitsOffset(header);
    if (offset > info.size()) return {};
    return {info, info.subspan(static_cast<size_t>(offset))};
}

std::optional<SaveFormat> FormatFor(const std::wstring& fileName) {
    const std::wstring extension = UpperExtensionOf(fileName);
    if (extension == L"BMP") return SaveFormat::kBMP;
    if (extension == L"PNG") return SaveFormat::kPNG;
    if (extension == L"JPG") return SaveFormat::kJPEG;
    return std::nullopt;
}

bool SaveParts(SaveFormat format, const PictureParts& parts, const std::wstring& fileName,
               LONG_PTR passThrough) {
    const void* const info = parts.info.data();
    const void* const bits = parts.bits.data();
    const ProcessValues& values = Values();
    return Trapped(false, [&] {
        switch (format) {
            case SaveFormat::kBMP:
                return SaveBitmap(info, bits, fileName, values.bmpSave, passThrough);
            case SaveFormat::kPNG:
                return SavePNG(info, bits, fileName, values.pngSave, passThrough);
            case SaveFormat::kJPEG:
                return SaveJPEG(info, bits, fileName, values.jpegSave, passThrough);
        }
        return false;
    });
}

}  // namespace

bool SavePictureFile(const Picture& picture, const std::wstring& fileName, LONG_PTR passThrough) {
    const std::optional<SaveFormat> format = FormatFor(fileName);
    if (!format) SetLastError(ERROR_INVALID_NAME);
    return format && SavePictureAs(*format, picture, fileName, passThrough);
}

bool SavePictureFile(const PicturePair& picture, const std::wstring& fileName,
                     LONG_PTR passThrough) {
    const BlockLock info(picture.info);
    const BlockLock bits(picture.bits);
    const std::optional<SaveFormat> format = FormatFor(fileName);
    const auto parts = picture.bits != nullptr ? PictureParts{info.Bytes(), bits.Bytes()}
                                               : PartsOfFileImage(info.Bytes());
    // The libraries only see addresses: whether the blocks are as large as the header says is
    // known here alone.
    if (!format || !dib::DibView::Of(parts.info, parts.bits)) {
        SetLastError(format ? ERROR_INVALID_DATA : ERROR_INVALID_NAME);
        return false;
    }
    return SaveParts(*format, parts, fileName, passThrough);
}

bool SavePictureAs(SaveFormat format, const Picture& picture, const std::wstring& fileName,
                   LONG_PTR passThrough) {
    if (!picture) {
        SetLastError(ERROR_INVALID_DATA);
        return false;
    }
    return SaveParts(format, {picture.Info(), picture.Bits()}, fileName, passThrough);
}

bool SaveBitmap(const void* info, const void* bits, const std::wstring& fileName,
                const saving::BmpSaveOptions& options, LONG_PTR passThrough) {
    const auto save = HelperFunction<convertdib::SaveToBITMAPFileWFunction>(
        L"convertdib.dll", convertdib::kSaveToBITMAPFileWName);
    return save != nullptr && save(info, bits, fileName.c_str(), &options, passThrough) != 0;
}

bool SavePNG(const void* info, const void* bits, const std::wstring& fileName,
             const saving::PngSaveOptions& options, LONG_PTR passThrough) {
    const auto save =
        HelperFunction<dcpng::SaveToPNGFileWFunction>(L"dcpng.dll", dcpng::kSaveToPNGFileWName);
    // Unlike the other two, this writer answers 0 for success.
    return save != nullptr && save(info, bits, fileName.c_str(), &options, passThrough) == 0;
}

bool SaveJPEG(const void* info, const void* bits, const std::wstring& fileName,
              const saving::JpegSaveOptions& options, LONG_PTR passThrough) {
    const auto save = HelperFunction<dcjpeg::SaveToJPEGFileWFunction>(L"dcjpeg.dll",
                                                                      dcjpeg::kSaveToJPEGFileWName);
    return save != nullptr && save(info, bits, fileName.c_str(), &options, passThrough) != 0;
}

}  // namespace tessary
