// The picture kernel: resizes pictures. Four DLL files in the application folder, to be loaded by
// full path, pic_kernel.dll first:
//
//   pic_kernel.dll    owns the images
//   bmp_import.iplg   makes an image of a picture pair, without copying its pixels
//   plg_resize.fplg   makes a resized image of an image
//   bmp_export.eplg   writes an image to a bitmap file, or hands it over in memory
//
// Every entry is __stdcall under its plain name, answers a KernelResult and lets no exception out.
// An `out` handle is null after a failure. Entries may be called from any thread; an image must not
// be destroyed while another call uses it. What images still exist when pic_kernel.dll is freed
// is freed with it.
#pragma once

#include "helpers/kernel/kernel_types.h"

namespace tessary::kernel {

// pic_kernel.dll ----------------------------------------------------------------------------------

// Frees an image. Of an attached one only the handle: its pixels are the caller's.
using DestroyImageHandleFunction = KernelResult(__stdcall*)(HIMAGE image);
constexpr char kDestroyImageHandleName[] = "DestroyImageHandle";

// The following three are for the plug-in files.

// An image that owns its pixels, all of them 0. `info` is a plain info block and is copied.
using CreateImageFunction = KernelResult(__stdcall*)(const void* info, size_t infoSize,
                                                     HIMAGE* out);
constexpr char kCreateImageName[] = "CreateImage";

// An image over pixels of the caller's. `info` is copied, `bits` is not.
using AttachImageFunction = KernelResult(__stdcall*)(const void* info, size_t infoSize,
                                                     const void* bits, size_t bitsSize,
                                                     HIMAGE* out);
constexpr char kAttachImageName[] = "AttachImage";

// Where an image's blocks lie.
using GetImageBlocksFunction = KernelResult(__stdcall*)(HIMAGE image, ImageBlocks* blocks);
constexpr char kGetImageBlocksName[] = "GetImageBlocks";

// bmp_import.iplg ---------------------------------------------------------------------------------

// Makes an image of a plain picture pair: `info` of `infoSize` bytes is copied, `bits` of
// `bitsSize` bytes is read where it lies and must stay there (a local-memory block: locked) until
// the image is destroyed. It is never written to.
using AttachMemoryImageFunction = KernelResult(__stdcall*)(const void* info, size_t infoSize,
                                                           const void* bits, size_t bitsSize,
                                                           HIMAGE* out);
constexpr char kAttachMemoryImageName[] = "attach_memory_image";

// plg_resize.fplg ---------------------------------------------------------------------------------

// Makes a new image of the given size from `source`, which stays as it is: 24 bits a pixel (32
// where alpha is kept, see Light), bottom row first, same resolution. The caller destroys both.
using DoFilterFunction = KernelResult(__stdcall*)(HIMAGE source, const ResizeParameters* parameters,
                                                  HIMAGE* out);
constexpr char kDoFilterName[] = "do_filter";

// bmp_export.eplg ---------------------------------------------------------------------------------

// Writes the image to a bitmap file at its own depth (24 bits a pixel for a resized one): 40-byte
// header, bottom row first, same resolution. A file of that name is replaced, whole or not at all.
// Names may be longer than MAX_PATH.
using WriteImageFunction = KernelResult(__stdcall*)(HIMAGE image, const wchar_t* fileName);
constexpr char kWriteImageName[] = "write_image";

// Hands over a copy of the image as a plain picture pair of two movable blocks of local memory,
// which are the caller's. Both are null after a failure. Exporters may lack this entry: then images
// go by files.
using WriteMemoryImageFunction = KernelResult(__stdcall*)(HIMAGE image, void** info, void** bits);
constexpr char kWriteMemoryImageName[] = "write_memory_image";

}  // namespace tessary::kernel
