// bmp_export.eplg: writes images of the kernel to bitmap files. The contract is in
// helpers/kernel/pic_kernel.h.
#include "helpers/convertdib/bitmap_writer.h"
#include "helpers/files/replacing_file.h"
#include "helpers/kernel/kernel_library.h"

using namespace tessary;
using namespace tessary::kernel;

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
