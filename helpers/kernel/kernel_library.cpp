#include "helpers/kernel/kernel_library.h"

namespace tessary::kernel {
namespace {

template <typename Function>
bool FindEntry(HMODULE module, const char* name, Function& entry) {
    entry = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return entry != nullptr;
}

}  // namespace

std::optional<KernelLibrary> KernelLibrary::Find() {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(0, L"pic_kernel.dll", &module)) return std::nullopt;
    KernelLibrary library;
    library.module_.reset(module);
    const bool complete = FindEntry(module, kCreateImageName, library.createImage) &&
                          FindEntry(module, kAttachImageName, library.attachImage) &&
                          FindEntry(module, kDestroyImageHandleName, library.destroyImage) &&
                          FindEntry(module, kGetImageBlocksName, library.getImageBlocks_);
    if (!complete) return std::nullopt;
    return library;
}

std::optional<ImageBlocks> KernelLibrary::BlocksOf(HIMAGE image) const {
    ImageBlocks blocks{};
    blocks.size = sizeof(blocks);
    if (getImageBlocks_(image, &blocks) != kKernelOk) return std::nullopt;
    return blocks;
}

std::optional<dib::DibView> KernelLibrary::ViewOf(HIMAGE image) const {
    const std::optional<ImageBlocks> blocks = BlocksOf(image);
    if (!blocks) return std::nullopt;
    return dib::DibView::Of({static_cast<const uint8_t*>(blocks->info), blocks->infoSize},
                            {static_cast<const uint8_t*>(blocks->bits), blocks->bitsSize});
}

}  // namespace tessary::kernel
