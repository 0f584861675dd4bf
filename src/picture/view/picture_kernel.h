// Resizing through the picture kernel: pic_kernel.dll and its plug-in files bmp_import.iplg,
// plg_resize.fplg and bmp_export.eplg, which start-up has made resident.
#pragma once

#include <windows.h>

#include "helpers/dib/unpack_row.h"
#include "helpers/kernel/kernel_types.h"
#include "picture/picture.h"

namespace tessary {

// How the resized picture leaves the kernel.
enum class Handover {
    kMemory,  // with an exporter that lacks the entry for it, as with kFile
    kFile,    // through ~temp.bmp in the application folder
    kNoFile,  // in memory or not at all, from any thread
};

// A new picture of the given size in pixels, made from `picture`, which must not be empty. The file
// lies in the user's temporary folder instead when the application folder belongs to a cloud, and,
// until the program ends, once it was refused there. Empty when a library is missing or a step
// fails.
Picture ResizePicture(const Picture& picture, int width, int height,
                      Handover handover = Handover::kMemory,
                      kernel::Light light = kernel::Light::kStored);

// Whether its pictures can be had by file only: with an exporter that lacks the entry for memory.
bool HandsOverByFile();

// The same of a part of the new picture, given in its pixels, in memory and from any thread. Pixels
// with alpha are laid over the backdrop, or keep it in linear light.
Picture ResizePicturePart(const Picture& picture, SIZE size, const RECT& part,
                          dib::Backdrop backdrop = dib::Backdrop::kWhite,
                          kernel::Light light = kernel::Light::kStored);

// What the user has chosen to mix. Of the window's thread.
kernel::Light ChosenLight();

}  // namespace tessary
