// How the saving entries of the libraries tell their progress.
#pragma once

#include <windows.h>

#include "helpers/dib/byte_stream.h"

namespace tessary::saving {

// Called while a file is written: `done` of `total`; the last argument is always 0. Non-zero asks
// to stop. At most about a hundred calls for one file, on the calling thread; must not throw.
using ProgressCallback = int(__stdcall*)(int done, int total, LONG_PTR userData);

// The callback whose address a caller passed, 0 for none.
inline dib::Progress ProgressOf(LONG_PTR address) {
    if (address == 0) return {};
    const auto callback = reinterpret_cast<ProgressCallback>(address);
    return [callback](int percent) { return callback(percent, 100, 0) == 0; };
}

}  // namespace tessary::saving
