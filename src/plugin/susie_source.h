// What a plug-in reads from.
#pragma once

#include <windows.h>

#include "helpers/susiectl/susie_interface.h"

namespace tessary {

// The name of a file in the system's code page, or the address of a locked block. Owns nothing.
struct SusieSource {
    const char* source = nullptr;
    LONG_PTR length = 0;  // of a file: an offset into it; of a block: its size in bytes
    uint32_t flag = susie::kSourceFile;
};

}  // namespace tessary
