#include "helpers/dcjpeg/dcjpeg.h"

#include <type_traits>
#include <utility>

#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcjpeg {
namespace {

auto WriterFor(const saving::JpegSaveOptions* options, const saving::FileExtras* extras,
               dib::Progress progress) {
    return [chosen = options != nullptr ? *options : saving::JpegSaveOptions{},
            carried = extras != nullptr ? *extras : saving::FileExtras{},
            progress = std::move(progress)](const dib::DibView& picture, files::ByteSink& sink) {
        return WriteJpeg(picture, chosen, sink, progress, carried);
    };
}

// What both entries for files do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::JpegSaveOptions* options, LONG_PTR progressCallback,
         const saving::FileExtras* extras = nullptr) {
    const dib::Progress progress = saving::ProgressOf(progressCallback);
    return saving::SaveToFile(info, bits, fileName, progress, DatesIn(extras),
                              WriterFor(options, extras, progress))
               ? 1
               : 0;
}

}  // namespace
}  // namespace tessary::dcjpeg

using tessary::saving::BytesCallback;
using tessary::saving::FileExtras;
using tessary::saving::JpegSaveOptions;
using tessary::saving::ProgressOf;

extern "C" __declspec(dllexport) int __stdcall SaveToJPEGFile(const void* info, const void* bits,
                                                              const char* fileName,
                                                              const JpegSaveOptions* options,
                                                              LONG_PTR progressCallback) {
    return tessary::dcjpeg::Save(info, bits, fileName, options, progressCallback);
}

extern "C" __declspec(dllexport) int __stdcall SaveToJPEGFileW(const void* info, const void* bits,
                                                               const wchar_t* fileName,
                                                               const JpegSaveOptions* options,
                                                               LONG_PTR progressCallback) {
    return tessary::dcjpeg::Save(info, bits, fileName, options, progressCallback);
}

extern "C" __declspec(dllexport) int __stdcall MakeJPEGBytes(const void* info, const void* bits,
                                                             const JpegSaveOptions* options,
                                                             BytesCallback take, void* to,
                                                             LONG_PTR progressCallback) {
    return tessary::saving::MakeBytes(
        info, bits, take, to,
        tessary::dcjpeg::WriterFor(options, nullptr, ProgressOf(progressCallback)));
}

extern "C" __declspec(dllexport) int __stdcall SaveToJPEGFileExtras(
    const void* info, const void* bits, const wchar_t* fileName, const JpegSaveOptions* options,
    LONG_PTR progressCallback, const FileExtras* extras) {
    return tessary::dcjpeg::Save(info, bits, fileName, options, progressCallback, extras);
}

extern "C" __declspec(dllexport) int __stdcall MakeJPEGBytesExtras(
    const void* info, const void* bits, const JpegSaveOptions* options, BytesCallback take,
    void* to, LONG_PTR progressCallback, const FileExtras* extras) {
    return tessary::saving::MakeBytes(
        info, bits, take, to,
        tessary::dcjpeg::WriterFor(options, extras, ProgressOf(progressCallback)));
}

// Callers find the entries by their names: nothing else compares what they take.
static_assert(
    std::is_same_v<decltype(&SaveToJPEGFile), tessary::dcjpeg::SaveToJPEGFileFunction> &&
    std::is_same_v<decltype(&SaveToJPEGFileW), tessary::dcjpeg::SaveToJPEGFileWFunction> &&
    std::is_same_v<decltype(&MakeJPEGBytes), tessary::dcjpeg::MakeJPEGBytesFunction> &&
    std::is_same_v<decltype(&SaveToJPEGFileExtras),
                   tessary::dcjpeg::SaveToJPEGFileExtrasFunction> &&
    std::is_same_v<decltype(&MakeJPEGBytesExtras), tessary::dcjpeg::MakeJPEGBytesExtrasFunction>);
