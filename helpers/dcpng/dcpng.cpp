#include "helpers/dcpng/dcpng.h"

#include <type_traits>

#include "helpers/dcpng/png_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcpng {
namespace {

// What both entries do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::PngSaveOptions* options, LONG_PTR progressCallback) {
    const saving::PngSaveOptions chosen = options != nullptr ? *options : saving::PngSaveOptions{};
    const dib::Progress progress = saving::ProgressOf(progressCallback);
    const auto write = [&](const dib::DibView& picture, files::ByteSink& sink) {
        return WritePng(picture, chosen, sink, progress);
    };
    return saving::SaveToFile(info, bits, fileName, progress, write) ? 0 : 1;
}

}  // namespace
}  // namespace tessary::dcpng

using tessary::saving::PngSaveOptions;

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

// Callers find the entries by their names: nothing else compares what they take.
static_assert(std::is_same_v<decltype(&SaveToPNGFile), tessary::dcpng::SaveToPNGFileFunction> &&
              std::is_same_v<decltype(&SaveToPNGFileW), tessary::dcpng::SaveToPNGFileWFunction>);
