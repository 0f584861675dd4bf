// Between the current picture and the clipboard's device-independent bitmap (CF_DIB): one block of
// header, masks or colour table, and pixel rows.
#pragma once

#include <windows.h>

#include <cstdint>

#include "app/base/handles.h"
#include "helpers/dib/backdrop.h"
#include "picture/picture.h"

namespace tessary {

enum class ClipboardBlock { kPicture, kNoPicture, kNoMemory };

// What a clipboard block holds, as a new picture: pixels that are
// run-length encoded or have unusual masks are written anew. The block stays the clipboard's; its
// real size decides what is read. Alpha that leaves nothing to be seen is none. From any thread.
// kNoPicture: it is none of a known kind, or not
// all of one.
ClipboardBlock ReadClipboardDIB(HGLOBAL block, Picture& picture);

// Makes what a clipboard block holds the current picture. The result is always 0: a block that
// cannot be read leaves the current picture as it is.
int16_t PictureFromClipboardDIB(HGLOBAL block);

// A picture with alpha as the block of CF_DIBV5, which says so; null for others, or without memory.
UniqueGlobal MakeClipboardDIBWithAlpha(const Picture& picture);

// A picture as such a block, movable, ready to be given to the clipboard: bottom row first, which
// all programs understand, transparent pixels laid over the backdrop, and with opaque fourth bytes
// of 32-bit pixels, which some take for alpha. Null for no picture, or without memory.
UniqueGlobal MakeClipboardDIB(const Picture& picture,
                              dib::Backdrop backdrop = dib::Backdrop::kWhite);

}  // namespace tessary
