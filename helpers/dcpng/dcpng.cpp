#include "helpers/dcpng/dcpng.h"

#include <type_traits>
#include <utility>

#include "helpers/dcpng/png_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcpng {
namespace {

auto WriterFor(const saving::PngSaveOptions* options, const saving::FileExtras* extras,
               dib::Progress progress) {
    return [chosen = options != nullptr ? *options : saving::PngSaveOptions{},
            carried = extras != nullptr ? *extras : saving::FileExtras{},
            progress = std::move(progress)](const dib::DibView& picture, files::ByteSink& sink) {
        return WritePng(picture, chosen, sink, progress, carried);
    };
}

// What both entries for files do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::PngSaveOptions* options, LONG_PTR progressCallback,
         const saving::FileExtras* extras = nullptr) {
    const dib::Progress progress = saving::ProgressOf(progressCallback);
    return saving::SaveToFile(info, bits, fileName, progress, DatesIn(extras),
                              WriterFor(options, extras, progress))
               ? 0
               : 1;
}

}  // namespace
}  // namespace tessary::dcpng

using tessary::saving::BytesCallback;
using tessary::saving::FileExtras;
using tessary::saving::PngSaveOptions;
using tessary::saving::ProgressOf;

extern "C" __declspec(dllexport) int __stdcall SaveToPNGFile(const void* info, const void* bits,
                                                             const char* fileName,
                                                             const PngSaveOptions* options,
                                                             LONG_PTR progressCallback) {
    return tessary::dcpng::Save(info, bits, fileName, options, progressCallback);
}

extern "C" __declspec(dllexport) int __stdcall SaveToPNGFileW(const void* info, const void* bits,
                                                              const wchar_t* fileName,
                                                              const PngSaveOptions* options,
                                                              LONG_PTR progressCallback) {
    return tessary::dcpng::Save(info, bits, fileName, options, progressCallback);
}

extern "C" __declspec(dllexport) int __stdcall MakePNGBytes(const void* info, const void* bits,
                                                            const PngSaveOptions* options,
                                                            BytesCallback take, void* to,
                                                            LONG_PTR progressCallback) {
    return tessary::saving::MakeBytes(
        info, bits, take, to,
        tessary::dcpng::WriterFor(options, nullptr, ProgressOf(progressCallback)));
}

extern "C" __declspec(dllexport) int __stdcall SaveToPNGFileExtras(
    const void* info, const void* bits, const wchar_t* fileName, const PngSaveOptions* options,
    LONG_PTR progressCallback, const FileExtras* extras) {
    return tessary::dcpng::Save(info, bits, fileName, options, progressCallback, extras);
}

extern "C" __declspec(dllexport) int __stdcall MakePNGBytesExtras(
    const void* info, const void* bits, const PngSaveOptions* options, BytesCallback take, void* to,
    LONG_PTR progressCallback, const FileExtras* extras) {
    return tessary::saving::MakeBytes(
        info, bits, take, to,
        tessary::dcpng::WriterFor(options, extras, ProgressOf(progressCallback)));
}

// Callers find the entries by their names: nothing else compares what they take.
static_assert(
    std::is_same_v<decltype(&SaveToPNGFile), tessary::dcpng::SaveToPNGFileFunction> &&
    std::is_same_v<decltype(&SaveToPNGFileW), tessary::dcpng::SaveToPNGFileWFunction> &&
    std::is_same_v<decltype(&MakePNGBytes), tessary::dcpng::MakePNGBytesFunction> &&
    std::is_same_v<decltype(&SaveToPNGFileExtras), tessary::dcpng::SaveToPNGFileExtrasFunction> &&
    std::is_same_v<decltype(&MakePNGBytesExtras), tessary::dcpng::MakePNGBytesExtrasFunction>);
