// Lists of equally large pictures, as the system's controls take them.
#pragma once

#include <windows.h>

#include <commctrl.h>

#include <span>

#include "app/base/handles.h"
#include "ui/form/vector_image.h"

namespace tessary {

namespace handle_traits {
struct ImageList : NullIsNone<HIMAGELIST> {
    static void Close(HIMAGELIST list) { ImageList_Destroy(list); }
};
}  // namespace handle_traits
using UniqueImageList = UniqueHandle<handle_traits::ImageList>;

// A list of these pictures, all of one size, in their order. Null when the system has no room.
UniqueImageList MakeImageList(std::span<const ArgbImage> images);

}  // namespace tessary
