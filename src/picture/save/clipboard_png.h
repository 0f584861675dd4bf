// Pictures as the clipboard's PNG, which keeps alpha: what programs offer and take under the
// registered clipboard format "PNG".
#pragma once

#include "app/base/handles.h"
#include "picture/picture.h"

namespace tessary {

// The picture as the bytes of a PNG file, in a movable block, ready to be given to the clipboard.
// Quickly made, not small. Null when that fails.
UniqueGlobal MakeClipboardPNG(const Picture& picture);

}  // namespace tessary
