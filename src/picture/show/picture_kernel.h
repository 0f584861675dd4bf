// Resizing through the picture kernel: pic_kernel.dll and its plug-in files bmp_import.iplg,
// plg_resize.fplg and bmp_export.eplg, which start-up has made resident.
#pragma once

#include "picture/modMemory.h"

namespace tessary {

// A new picture of the given size in pixels, made from `picture`, which must be a plain and checked
// pair. Goes through the file ~temp.bmp in the application folder, or in the user's temporary
// folder when the former cannot be written. Empty when a library is missing or a step fails.
OwnedPicture ResizePicture(const PicturePair& picture, int width, int height);

}  // namespace tessary
