#include "helpers/dcpng/dcpng.h"

#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

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

// Keeps the bytes.
class MemorySink : public files::ByteSink {
  public:
    bool Write(std::span<const uint8_t> bytes) noexcept override {
        try {
            bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }

    // A movable global block of them; null without memory.
    HGLOBAL MakeBlock() const {
        const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes_.size());
        if (block == nullptr) return nullptr;
        std::memcpy(GlobalLock(block), bytes_.data(), bytes_.size());
        GlobalUnlock(block);
        return block;
    }

  private:
    std::vector<uint8_t> bytes_;
};

DWORD Make(const void* info, const void* bits, const saving::PngSaveOptions& options,
           HGLOBAL* block) {
    if (block == nullptr) return ERROR_INVALID_PARAMETER;
    *block = nullptr;
    const saving::PictureAt picture(info, bits);
    if (!picture.View()) return ERROR_INVALID_DATA;
    MemorySink sink;
    const saving::SaveResult result = WritePng(*picture.View(), options, sink, {});
    if (result == saving::SaveResult::kNotWritten) return ERROR_NOT_ENOUGH_MEMORY;
    if (result != saving::SaveResult::kSaved) return saving::ErrorOf(result);
    *block = sink.MakeBlock();
    return *block != nullptr ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY;
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

extern "C" __declspec(dllexport) int __stdcall MakePNGBlock(const void* info, const void* bits,
                                                            const PngSaveOptions* options,
                                                            HGLOBAL* block) {
    const PngSaveOptions chosen = options != nullptr ? *options : PngSaveOptions{};
    const DWORD error =
        tessary::saving::ErrorIn([&] { return tessary::dcpng::Make(info, bits, chosen, block); });
    SetLastError(error);
    return error == ERROR_SUCCESS ? 0 : 1;
}

// Callers find the entries by their names: nothing else compares what they take.
static_assert(std::is_same_v<decltype(&SaveToPNGFile), tessary::dcpng::SaveToPNGFileFunction> &&
              std::is_same_v<decltype(&SaveToPNGFileW), tessary::dcpng::SaveToPNGFileWFunction> &&
              std::is_same_v<decltype(&MakePNGBlock), tessary::dcpng::MakePNGBlockFunction>);
