#include "picture/save/encoded_picture.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/base/helper_function.h"
#include "helpers/files/replacing_file.h"
#include "helpers/saving/bytes_callback.h"
#include "helpers/saving/progress_callback.h"
#include "picture/save/save_picture.h"

namespace tessary {
namespace {

// Pieces as large as all before them: few for a large file, and no room wasted for a small one.
constexpr size_t kLeastPiece = 32u << 10;
constexpr size_t kMostPiece = 4u << 20;

int __stdcall Take(const void* bytes, size_t size, void* to) {
    return Trapped(0, [&] {
        static_cast<FileBytes*>(to)->Append({static_cast<const uint8_t*>(bytes), size});
        return 1;
    });
}

// The entries of all libraries differ in the type of the options alone.
using Entry = int(__stdcall*)(const void*, const void*, const void*, saving::BytesCallback, void*,
                              LONG_PTR);
using ExifEntry = int(__stdcall*)(const void*, const void*, const void*, saving::BytesCallback,
                                  void*, LONG_PTR, const saving::ExifBytes*);

}  // namespace

void FileBytes::Append(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
        if (pieces_.empty() || pieces_.back().size() == pieces_.back().capacity()) {
            pieces_.emplace_back().reserve(std::clamp(size_, kLeastPiece, kMostPiece));
        }
        std::vector<uint8_t>& piece = pieces_.back();
        const auto next = bytes.first(std::min(bytes.size(), piece.capacity() - piece.size()));
        piece.insert(piece.end(), next.begin(), next.end());
        size_ += next.size();
        bytes = bytes.subspan(next.size());
    }
}

std::shared_ptr<const EncodedPicture> EncodePicture(const Picture& picture,
                                                    const SaverFormat& format,
                                                    const saving::SaveOptions& options,
                                                    LONG_PTR passThrough) {
    const SaverWriter& writer = format.writer;
    const saving::ExifBytes exif = ExifFor(picture, format);
    const auto make = HelperFunction<Entry>(writer.library, writer.bytesEntry);
    const auto makeWithExif =
        exif.size != 0 ? HelperFunction<ExifEntry>(writer.library, writer.exifBytesEntry) : nullptr;
    if ((exif.size != 0 ? makeWithExif == nullptr : make == nullptr) || !picture ||
        !picture.IsThere())
        return nullptr;
    const auto encoded = std::make_shared<EncodedPicture>();
    encoded->width = picture.Width();
    encoded->height = picture.Height();
    encoded->bitCount = picture.Header().bitCount;
    const Picture saved = AsItIsSaved(picture, format, options);
    const void* const chosen = writer.options(options);
    const int error = makeWithExif != nullptr
                          ? makeWithExif(saved.Info().data(), saved.Bits().data(), chosen, Take,
                                         &encoded->bytes, passThrough, &exif)
                          : make(saved.Info().data(), saved.Bits().data(), chosen, Take,
                                 &encoded->bytes, passThrough);
    return error == ERROR_SUCCESS ? encoded : nullptr;
}

bool SaveEncoded(const EncodedPicture& picture, const std::wstring& fileName,
                 LONG_PTR passThrough) {
    const DWORD error = Trapped(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&]() -> DWORD {
        files::ReplacingFile file(fileName, files::Links::kFollow);
        if (!file.IsOpen()) return file.Error();
        for (const std::vector<uint8_t>& piece : picture.bytes.Pieces()) {
            if (!file.Write(piece)) return file.Error();
        }
        const dib::Progress progress = saving::ProgressOf(passThrough);
        const auto goesOn = [&] { return !progress || progress(100); };
        return file.Commit(files::Durability::kDisk, goesOn) ? ERROR_SUCCESS : file.Error();
    });
    SetLastError(error);
    return error == ERROR_SUCCESS;
}

}  // namespace tessary
