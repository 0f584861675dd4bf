#include "helpers/dcjpeg/dcjpeg.h"

#include <type_traits>
#include <utility>

#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcjpeg {
namespace {

auto WriterFor(const saving::JpegSaveOptions* options, const saving::ExifBytes* exif,
               dib::Progress progress) {
    return [chosen = options != nullptr ? *options : saving::JpegSaveOptions{},
            carried = exif != nullptr ? *exif : saving::ExifBytes{},
            progress = std::move(progress)](const dib::DibView& picture, files::ByteSink& sink) {
        return WriteJpeg(picture, chosen, sink, progress, carried.Span());
    };
}

// What both entries for files do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::JpegSaveOptions* options, LONG_PTR progressCallback,
         const saving::ExifBytes* exif = nullptr) {
    const dib::Progress progress = saving::ProgressOf(progressCallback);
    return saving::SaveToFile(info, bits, fileName, progress, WriterFor(options, exif, progress))
               ? 1
               : 0;
}

}  // namespace
}  // namespace tessary::dcjpeg

using tessary::saving::BytesCallback;
using tessary::saving::ExifBytes;
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

extern "C" __declspec(dllexport) int __stdcall SaveToJPEGFileExif(
    const void* info, const void* bits, const wchar_t* fileName, const JpegSaveOptions* options,
    LONG_PTR progressCallback, const ExifBytes* exif) {
    return tessary::dcjpeg::Save(info, bits, fileName, options, progressCallback, exif);
}

extern "C" __declspec(dllexport) int __stdcall MakeJPEGBytesExif(const void* info, const void* bits,
                                                                 const JpegSaveOptions* options,
                                                                 BytesCallback take, void* to,
                                                                 LONG_PTR progressCallback,
                                                                 const ExifBytes* exif) {
    return tessary::saving::MakeBytes(
        info, bits, take, to,
        tessary::dcjpeg::WriterFor(options, exif, ProgressOf(progressCallback)));
}

// Callers find the entries by their names: nothing else compares what they take.
static_assert(
    std::is_same_v<decltype(&SaveToJPEGFile), tessary::dcjpeg::SaveToJPEGFileFunction> &&
    std::is_same_v<decltype(&SaveToJPEGFileW), tessary::dcjpeg::SaveToJPEGFileWFunction> &&
    std::is_same_v<decltype(&MakeJPEGBytes), tessary::dcjpeg::MakeJPEGBytesFunction> &&
    std::is_same_v<decltype(&SaveToJPEGFileExif), tessary::dcjpeg::SaveToJPEGFileExifFunction> &&
    std::is_same_v<decltype(&MakeJPEGBytesExif), tessary::dcjpeg::MakeJPEGBytesExifFunction>);
