// bmp_export.eplg: writes images of the kernel to bitmap files and into memory. The contract is in
// helpers/kernel/pic_kernel.h.
#include <cstring>
#include <memory>

#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/files/replacing_file.h"
#include "helpers/kernel/kernel_library.h"

using namespace tessary;
using namespace tessary::kernel;

namespace {

struct FreeBlock {
    void operator()(HLOCAL block) const { LocalFree(block); }
};
using LocalBlock = std::unique_ptr<void, FreeBlock>;

// Null when there is no memory for it.
LocalBlock CopyOf(const void* bytes, size_t size) {
    LocalBlock block(LocalAlloc(LMEM_MOVEABLE, size));
    void* const address = block ? LocalLock(block.get()) : nullptr;
    if (address == nullptr) return nullptr;
    std::memcpy(address, bytes, size);
    LocalUnlock(block.get());
    return block;
}

}  // namespace

extern "C" __declspec(dllexport) KernelResult
    __stdcall write_memory_image(HIMAGE image, void** info, void** bits) {
    if (info == nullptr || bits == nullptr) return kKernelBadParameter;
    *info = *bits = nullptr;
    return CallWithKernel([&](const KernelLibrary& kernel) {
        const std::optional<ImageBlocks> blocks = kernel.BlocksOf(image);
        if (!blocks) return kKernelBadHandle;
        LocalBlock newInfo = CopyOf(blocks->info, blocks->infoSize);
        LocalBlock newBits = CopyOf(blocks->bits, blocks->bitsSize);
        if (!newInfo || !newBits) return kKernelOutOfMemory;
        *info = newInfo.release();
        *bits = newBits.release();
        return kKernelOk;
    });
}

extern "C" __declspec(dllexport) KernelResult
    __stdcall write_image(HIMAGE image, const wchar_t* fileName) {
    if (fileName == nullptr) return kKernelBadParameter;
    return CallWithKernel([&](const KernelLibrary& kernel) {
        const std::optional<dib::DibView> picture = kernel.ViewOf(image);
        if (!picture) return kKernelBadHandle;
        files::ReplacingFile file(fileName);
        if (!file.IsOpen()) return kKernelCannotWrite;
        const saving::SaveResult result = convertdib::WriteBitmap(*picture, {}, file);
        if (result == saving::SaveResult::kTooLarge) return kKernelTooLarge;
        const bool written =
            result == saving::SaveResult::kSaved && file.Commit(files::Durability::kCache);
        return written ? kKernelOk : kKernelCannotWrite;
    });
}
