// bmp_import.iplg: pictures in memory become images of the kernel. The contract is in
// helpers/kernel/pic_kernel.h.
#include "helpers/kernel/kernel_library.h"

using namespace tessary::kernel;

extern "C" __declspec(dllexport) KernelResult
    __stdcall attach_memory_image(const void* info, size_t infoSize, const void* bits,
                                  size_t bitsSize, HIMAGE* out) {
    if (out == nullptr) return kKernelBadParameter;
    *out = nullptr;
    return CallWithKernel([&](const KernelLibrary& kernel) {
        return kernel.attachImage(info, infoSize, bits, bitsSize, out);
    });
}
