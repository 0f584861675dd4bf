// pic_kernel.dll: the entries that own the kernel's images. Their contract is in
// helpers/kernel/pic_kernel.h.
#include "helpers/kernel/pic_kernel.h"
#include "helpers/kernel/guarded_call.h"
#include "helpers/pic_kernel/image_table.h"

using namespace tessary::kernel;

namespace {

// The process's images.
ImageTable& Images() {
    static ImageTable images;
    return images;
}

std::span<const uint8_t> Bytes(const void* begin, size_t size) {
    return {static_cast<const uint8_t*>(begin), size};
}

}  // namespace

extern "C" __declspec(dllexport) KernelResult
    __stdcall CreateImage(const void* info, size_t infoSize, HIMAGE* out) {
    if (out == nullptr) return kKernelBadParameter;
    *out = nullptr;
    if (info == nullptr) return kKernelBadParameter;
    return GuardedCall([&] { return Images().Create(Bytes(info, infoSize), *out); });
}

extern "C" __declspec(dllexport) KernelResult
    __stdcall AttachImage(const void* info, size_t infoSize, const void* bits, size_t bitsSize,
                          HIMAGE* out) {
    if (out == nullptr) return kKernelBadParameter;
    *out = nullptr;
    if (info == nullptr || bits == nullptr) return kKernelBadParameter;
    return GuardedCall(
        [&] { return Images().Attach(Bytes(info, infoSize), Bytes(bits, bitsSize), *out); });
}

extern "C" __declspec(dllexport) KernelResult
    __stdcall GetImageBlocks(HIMAGE image, ImageBlocks* blocks) {
    if (blocks == nullptr || blocks->size < sizeof(*blocks)) return kKernelBadParameter;
    return GuardedCall([&] { return Images().Blocks(image, *blocks); });
}

extern "C" __declspec(dllexport) KernelResult __stdcall DestroyImageHandle(HIMAGE image) {
    return GuardedCall([&] { return Images().Destroy(image); });
}
