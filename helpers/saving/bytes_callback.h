// How the entries that make a file in memory hand out its bytes.
#pragma once

#include <cstddef>

namespace tessary::saving {

// Takes the next bytes of the file; `to` is the caller's own value. 0: it cannot, and the rest is
// not made. On the calling thread; must not throw.
using BytesCallback = int(__stdcall*)(const void* bytes, size_t size, void* to);

}  // namespace tessary::saving
