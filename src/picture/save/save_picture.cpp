#include "picture/save/save_picture.h"

#include <cstring>
#include <optional>
#include <utility>

#include "app/base/error.h"
#include "app/base/helper_function.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "helpers/dib/dib_view.h"
#include "picture/opaque_picture.h"
#include "picture/srgb_picture.h"

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

// By the usual extension alone.
const SaverFormat* FormatFor(const std::wstring& fileName) {
    const SaverFormat* const format = SaverFormatOf(fileName);
    const bool isUsual = format != nullptr &&
                         EqualsIgnoreCase(format->extensions.front(), UpperExtensionOf(fileName));
    return isUsual ? format : nullptr;
}

// The entries of all libraries differ in the type of the options alone.
bool Write(const SaverWriter& writer, const void* info, const void* bits,
           const std::wstring& fileName, const void* options, LONG_PTR passThrough,
           const saving::FileExtras& extras = {}) {
    using Entry = int(__stdcall*)(const void*, const void*, const wchar_t*, const void*, LONG_PTR,
                                  const saving::FileExtras*);
    const auto entry = HelperFunction<Entry>(writer.library, writer.entry);
    return entry != nullptr && (entry(info, bits, fileName.c_str(), options, passThrough,
                                      &extras) == 0) == writer.zeroIsSuccess;
}

bool SaveParts(const SaverFormat& format, const PictureParts& parts, const std::wstring& fileName,
               const saving::SaveOptions& options, LONG_PTR passThrough,
               const saving::FileExtras& extras = {}) {
    return Trapped(false, [&] {
        return Write(format.writer, parts.info.data(), parts.bits.data(), fileName,
                     format.writer.options(options), passThrough, extras);
    });
}

}  // namespace

bool SavePictureFile(const Picture& picture, const std::wstring& fileName,
                     const saving::SaveOptions& options, LONG_PTR passThrough) {
    const SaverFormat* const format = FormatFor(fileName);
    if (format == nullptr) SetLastError(ERROR_INVALID_NAME);
    return format != nullptr && SavePictureAs(*format, picture, fileName, options, passThrough);
}

bool SavePictureFile(const PicturePair& picture, const std::wstring& fileName,
                     const saving::SaveOptions& options, LONG_PTR passThrough) {
    const BlockLock info(picture.info);
    const BlockLock bits(picture.bits);
    const SaverFormat* const format = FormatFor(fileName);
    const auto parts = picture.bits != nullptr ? PictureParts{info.Bytes(), bits.Bytes()}
                                               : PartsOfFileImage(info.Bytes());
    // The libraries only see addresses: whether the blocks are as large as the header says is
    // known here alone.
    if (format == nullptr || !dib::DibView::Of(parts.info, parts.bits)) {
        SetLastError(format != nullptr ? ERROR_INVALID_DATA : ERROR_INVALID_NAME);
        return false;
    }
    return SaveParts(*format, parts, fileName, options, passThrough);
}

bool SavePictureAs(const SaverFormat& format, const Picture& picture, const std::wstring& fileName,
                   const saving::SaveOptions& options, LONG_PTR passThrough) {
    if (!picture || !picture.IsThere()) {
        SetLastError(ERROR_INVALID_DATA);
        return false;
    }
    const Picture saved = AsItIsSaved(picture, format, options);
    return SaveParts(format, {saved.Info(), saved.Bits()}, fileName, options, passThrough,
                     ExtrasOf(saved));
}

saving::FileExtras ExtrasOf(const Picture& picture) {
    return {.exif = {picture.Exif().data(), picture.Exif().size()},
            .profile = {picture.Profile().data(), picture.Profile().size()},
            .dates = picture.Dates()};
}

Picture AsItIsSaved(const Picture& picture, const SaverFormat& format,
                    const saving::SaveOptions& options) {
    const bool keepsColors = format.KeepsProfile(options) && IsSavableInOwnColors(picture);
    Picture saved = keepsColors ? picture.Another() : SrgbPicture(picture.Another());
    // Over white the libraries lay it themselves, row by row.
    Picture opaque;
    if (!format.metadata.alpha && options.backdrop != dib::Backdrop::kWhite)
        opaque = OpaquePicture(saved.View(), options.backdrop);
    if (opaque) saved = std::move(opaque);
    saved.TakeAlongAsOf(picture);
    return saved;
}

bool SaveBitmap(const void* info, const void* bits, const std::wstring& fileName,
                const saving::BmpSaveOptions& options, LONG_PTR passThrough) {
    return Write(SaverFormatAt(kBmpFormat)->writer, info, bits, fileName, &options, passThrough);
}

bool SavePNG(const void* info, const void* bits, const std::wstring& fileName,
             const saving::PngSaveOptions& options, LONG_PTR passThrough) {
    return Write(SaverFormatAt(kPngFormat)->writer, info, bits, fileName, &options, passThrough);
}

bool SaveJPEG(const void* info, const void* bits, const std::wstring& fileName,
              const saving::JpegSaveOptions& options, LONG_PTR passThrough) {
    return Write(SaverFormatAt(kJpegFormat)->writer, info, bits, fileName, &options, passThrough);
}

}  // namespace tessary
