#include "helpers/dcpng/dcpng.h"

#include "helpers/dcpng/png_writer.h"
#include "helpers/saving/save_entry.h"

namespace tessary::dcpng {
namespace {

// What both entries do, for a name in either kind of text.
template <typename Char>
int Save(const void* info, const void* bits, const Char* fileName,
         const saving::PngSaveOptions* options, LONG_PTR progressCallback) {
    const saving::PngSaveOptions chosen = options != nullptr ? *options : saving::PngSaveOptions{};
    const auto write = [&](const dib::DibView& picture, files::ByteSink& sink) {
        return WritePng(picture, chosen, sink, saving::ProgressOf(progressCallback));
    };
    return saving::SaveToFile(info, bits, fileName, write) ? 0 : 1;
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
