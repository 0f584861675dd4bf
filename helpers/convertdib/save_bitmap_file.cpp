#include <type_traits>

#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/convertdib/convertdib.h"
#include "helpers/saving/progress_callback.h"
#include "helpers/saving/save_entry.h"

namespace tessary::convertdib {
namespace {

auto WriterFor(const saving::BmpSaveOptions* options) {
    return [chosen = options != nullptr ? *options : saving::BmpSaveOptions{}](
               const dib::DibView& picture, files::ByteSink& sink) {
        return WriteBitmap(picture, chosen, sink);
    };
}

// What the entries for files do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::BmpSaveOptions* options, LONG_PTR progressCallback,
         const saving::FileExtras* extras = nullptr) {
    return saving::SaveToFile(info, bits, fileName, saving::ProgressOf(progressCallback),
                              DatesIn(extras), WriterFor(options))
               ? 1
               : 0;
}

}  // namespace
}  // namespace tessary::convertdib

using tessary::saving::BmpSaveOptions;
using tessary::saving::BytesCallback;
using tessary::saving::FileExtras;

extern "C" __declspec(dllexport) int __stdcall SaveToBITMAPFile(const void* info, const void* bits,
                                                                const char* fileName,
                                                                const BmpSaveOptions* options) {
    return tessary::convertdib::Save(info, bits, fileName, options, 0);
}

extern "C" __declspec(dllexport) int __stdcall SaveToBITMAPFileW(const void* info, const void* bits,
                                                                 const wchar_t* fileName,
                                                                 const BmpSaveOptions* options,
                                                                 LONG_PTR progressCallback) {
    return tessary::convertdib::Save(info, bits, fileName, options, progressCallback);
}

extern "C" __declspec(dllexport) int __stdcall SaveToBITMAPFileExtras(
    const void* info, const void* bits, const wchar_t* fileName, const BmpSaveOptions* options,
    LONG_PTR progressCallback, const FileExtras* extras) {
    return tessary::convertdib::Save(info, bits, fileName, options, progressCallback, extras);
}

extern "C" __declspec(dllexport) int __stdcall MakeBITMAPBytes(const void* info, const void* bits,
                                                               const BmpSaveOptions* options,
                                                               BytesCallback take, void* to,
                                                               LONG_PTR /*progressCallback*/) {
    return tessary::saving::MakeBytes(info, bits, take, to,
                                      tessary::convertdib::WriterFor(options));
}

// Callers find the entries by their names: nothing else compares what they take.
static_assert(
    std::is_same_v<decltype(&SaveToBITMAPFile), tessary::convertdib::SaveToBITMAPFileFunction> &&
    std::is_same_v<decltype(&SaveToBITMAPFileW), tessary::convertdib::SaveToBITMAPFileWFunction> &&
    std::is_same_v<decltype(&SaveToBITMAPFileExtras),
                   tessary::convertdib::SaveToBITMAPFileExtrasFunction> &&
    std::is_same_v<decltype(&MakeBITMAPBytes), tessary::convertdib::MakeBITMAPBytesFunction>);
