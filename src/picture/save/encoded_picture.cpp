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
using ExtrasEntry = int(__stdcall*)(const void*, const void*, const void*, saving::BytesCallback,
                                    void*, LONG_PTR, const saving::FileExtras*);

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
    if (!picture || !picture.IsThere()) return nullptr;
    const auto encoded = std::make_shared<EncodedPicture>();
    encoded->width = picture.Width();
    encoded->height = picture.Height();
    encoded->bitCount = picture.Header().bitCount;
    encoded->dates = picture.Dates();
    const Picture saved = AsItIsSaved(picture, format, options);
    const saving::FileExtras extras = ExtrasOf(saved);
    const SaverWriter& writer = format.writer;
    const auto make = [&](auto entry, const auto*... more) {
        return entry != nullptr
                   ? entry(saved.Info().data(), saved.Bits().data(), writer.options(options), Take,
                           &encoded->bytes, passThrough, more...)
                   : ERROR_PROC_NOT_FOUND;
    };
    const int error =
        writer.holdsExtras
            ? make(HelperFunction<ExtrasEntry>(writer.library, writer.bytesEntry), &extras)
            : make(HelperFunction<Entry>(writer.library, writer.bytesEntry));
    return error == ERROR_SUCCESS ? encoded : nullptr;
}

bool SaveEncoded(const EncodedPicture& picture, const std::wstring& fileName,
                 LONG_PTR passThrough) {
    const DWORD error = Trapped(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&]() -> DWORD {
        files::ReplacingFile file(fileName, files::Links::kFollow);
        if (!file.IsOpen()) return file.Error();
        file.SetDates(picture.dates);
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
