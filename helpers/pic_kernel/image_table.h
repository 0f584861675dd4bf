// The images of the kernel and their handles.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <vector>

#include "helpers/kernel/kernel_types.h"

namespace tessary::kernel {

// All operations may be called from any thread. Throws only std::bad_alloc and std::length_error.
class ImageTable {
  public:
    // An image with pixels of its own, all 0; kKernelBadPicture when `info` is not plain.
    KernelResult Create(std::span<const uint8_t> info, HIMAGE& out);
    // An image over the caller's pixels; kKernelBadPicture when the pair is not plain.
    KernelResult Attach(std::span<const uint8_t> info, std::span<const uint8_t> bits, HIMAGE& out);
    KernelResult Destroy(HIMAGE image);
    // Fills everything but the record's size; kKernelBadHandle when there is no such image.
    KernelResult Blocks(HIMAGE image, ImageBlocks& blocks);

  private:
    struct Image {
        std::vector<uint8_t> info;
        std::vector<uint8_t> ownBits;   // empty for an attached picture
        std::span<const uint8_t> bits;  // the own ones or the caller's
    };

    HIMAGE Add(Image image);

    std::mutex mutex_;
    std::map<HIMAGE, Image> images_;
    uintptr_t lastNumber_ = 0;
};

}  // namespace tessary::kernel
