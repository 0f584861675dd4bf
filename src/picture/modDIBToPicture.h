// From a locked picture pair to the picture object that a view shows, and back.
#pragma once

#include <ocidl.h>
#include <windows.h>

#include "app/base/handles.h"
#include "picture/picture.h"

namespace tessary {

namespace handle_traits {
struct Picture : NullIsNone<IPicture*> {
    static void Close(IPicture* picture) { picture->Release(); }
};
}  // namespace handle_traits
using PictureReference = UniqueHandle<handle_traits::Picture>;

// The addresses of a picture pair's two locked blocks: never mixed with the handles in one value.
struct LockedPair {
    const void* info = nullptr;
    const void* bits = nullptr;
};

// A device-dependent bitmap with the pair's pixels, compatible with the device context. The caller
// owns it. Null when an address is null or the system cannot make it. The blocks must hold what the
// header promises.
HBITMAP CreateBitmapFromDIB(HDC context, const LockedPair& pair);

// A picture object that takes the bitmap over and deletes it at its own end; null when that fails,
// and the bitmap is then still the caller's.
IPicture* BitmapToPicture(HBITMAP bitmap);

// Both steps in one. `picture` receives a reference that the caller releases. False leaves nothing
// behind.
bool DIBToPicture(HDC context, const LockedPair& pair, IPicture** picture);

// The way back: the pixels of a bitmap as a picture with 24 bits per pixel; empty when that fails.
// The bitmap stays the caller's.
Picture CreateDIBFromBitmap(HDC context, HBITMAP bitmap);

}  // namespace tessary
