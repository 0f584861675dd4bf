// The plug-in files' side of pic_kernel.dll.
#pragma once

#include <windows.h>

#include <memory>
#include <optional>
#include <type_traits>

#include "helpers/dib/dib_view.h"
#include "helpers/kernel/guarded_call.h"
#include "helpers/kernel/pic_kernel.h"

namespace tessary::kernel {

// The entries of the loaded pic_kernel.dll, which stays loaded as long as the object lives.
class KernelLibrary {
  public:
    // Null when the process has not loaded pic_kernel.dll, or one without these entries.
    static std::optional<KernelLibrary> Find();

    CreateImageFunction createImage = nullptr;
    AttachImageFunction attachImage = nullptr;
    DestroyImageHandleFunction destroyImage = nullptr;

    // Null when `image` is none.
    std::optional<ImageBlocks> BlocksOf(HIMAGE image) const;
    // The picture of an image, valid as long as the image exists; null when `image` is none.
    std::optional<dib::DibView> ViewOf(HIMAGE image) const;

  private:
    struct FreeModule {
        void operator()(HMODULE module) const { FreeLibrary(module); }
    };
    KernelLibrary() = default;

    std::unique_ptr<std::remove_pointer_t<HMODULE>, FreeModule> module_;
    GetImageBlocksFunction getImageBlocks_ = nullptr;
};

// Runs the body of a plug-in file's entry: `call` is given the library and answers a KernelResult.
template <typename Call>
KernelResult CallWithKernel(const Call& call) noexcept {
    return GuardedCall([&] {
        const std::optional<KernelLibrary> library = KernelLibrary::Find();
        return library ? call(*library) : kKernelNotLoaded;
    });
}

}  // namespace tessary::kernel
