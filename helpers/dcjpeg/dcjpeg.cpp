#include "helpers/dcjpeg/dcjpeg.h"

#include <type_traits>

#include "helpers/dcjpeg/jpeg_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcjpeg {
namespace {

// What both entries do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::JpegSaveOptions* options, LONG_PTR progressCallback) {
    const saving::JpegSaveOptions chosen =
        options != nullptr ? *options : saving::JpegSaveOptions{};
    const dib::Progress progress = saving::ProgressOf(progressCallback);
    const auto write = [&](const dib::DibView& picture, files::ByteSink& sink) {
        return WriteJpeg(picture, chosen, sink, progress);
    };
    return saving::SaveToFile(info, bits, fileName, progress, write) ? 1 : 0;
}

}  // namespace
}  // namespace tessary::dcjpeg

using tessary::saving::JpegSaveOptions;

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

// Callers find the entries by their names: nothing else compares what they take.
static_assert(std::is_same_v<decltype(&SaveToJPEGFile), tessary::dcjpeg::SaveToJPEGFileFunction> &&
              std::is_same_v<decltype(&SaveToJPEGFileW), tessary::dcjpeg::SaveToJPEGFileWFunction>);
