// What the picture kernel's library, its plug-in files and their callers exchange.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tessary::kernel {

// An image of the kernel. A number in a pointer's clothes: it is never an address, and that of a
// destroyed image is not given again, so that a stale one is told apart.
struct ImageTag;
using HIMAGE = ImageTag*;

// What every entry of the kernel answers.
enum KernelResult : int32_t {
    kKernelOk = 0,
    kKernelBadParameter = 1,  // a null address, a size below 1, an unknown filter, a short record
    kKernelBadHandle = 2,     // not an image, or one that was destroyed
    kKernelBadPicture = 3,    // the pair is not in the plain form (helpers/dib/dib_view.h)
    kKernelTooLarge = 4,      // more pixels than a bitmap can hold: 2 GB
    kKernelOutOfMemory = 5,
    kKernelCannotWrite = 6,  // the file could not be written; what was there before is untouched
    kKernelNotLoaded = 7,    // pic_kernel.dll is not in the process
    kKernelInternalError = 8,
};

// Values of ResizeParameters::filter.
enum class ResizeFilter : uint32_t {
    // Lanczos-3 where the axis shrinks, Catmull-Rom where it grows or keeps its length.
    kAutomatic = 0,
    // Sinc windowed by the main lobe of a sinc three times as wide. Keeps the most detail when
    // shrinking; rings when enlarging.
    kLanczos3 = 1,
    // Bicubic with B = 0, C = 1/2. Passes through the source's own values, so that enlarged text
    // and line art stay crisp where the smoother Mitchell filter blurs them.
    kCatmullRom = 2,
};

// Values of ResizeParameters::light: what is mixed.
enum class Light : uint32_t {
    // The samples as they are stored.
    kStored = 0,
    // The light that they stand for by the curve of sRGB, so that fine patterns keep their
    // brightness. A picture with alpha keeps it: the new image has 32 bits a pixel then.
    kLinear = 1,
};

struct ResizeParameters {
    uint32_t size;    // bytes of this record: sizeof(ResizeParameters), or one of the lengths below
    int32_t width;    // pixels of the new image, above 0
    int32_t height;   // above 0: the new image always has its bottom row first
    uint32_t filter;  // a ResizeFilter
    // What is made of the new image, in its pixels: the image has the size of this part, as if it
    // had been cut out of the whole. All 0, or a shorter record: all of it.
    int32_t left = 0;
    int32_t top = 0;
    int32_t partWidth = 0;
    int32_t partHeight = 0;
    // What pixels with alpha are laid over where they lose it: 0 white, 1 black.
    uint32_t overBlack = 0;
    uint32_t light = 0;  // a Light; none in a shorter record
};
// Bytes of a record that ends before the part.
constexpr uint32_t kWholeResizeSize = offsetof(ResizeParameters, left);
// Bytes of a record that ends before the light.
constexpr uint32_t kStoredResizeSize = offsetof(ResizeParameters, light);

// Where the blocks of an image lie. They belong to the image and stay where they are as long as it
// exists.
struct ImageBlocks {
    uint32_t size;     // in: sizeof(ImageBlocks)
    const void* info;  // 40-byte header, then masks or colour table
    size_t infoSize;   // bytes
    const void* bits;  // pixel rows
    size_t bitsSize;   // bytes
    void* ownBits;     // the rows again when they may be written, null for an attached picture
};

}  // namespace tessary::kernel
