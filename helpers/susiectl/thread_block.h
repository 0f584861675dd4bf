// The system's block of this thread, which has what no function of the system's tells.
#pragma once

#include <windows.h>

#include <cstddef>

namespace tessary::susiectl {

// Good for as long as the thread lives.
inline std::byte* ThreadBlock() {
    std::byte* block;
#ifdef _WIN64
    asm volatile("movq %%gs:0x30, %0" : "=r"(block));
#else
    asm volatile("movl %%fs:0x18, %0" : "=r"(block));
#endif
    return block;
}

}  // namespace tessary::susiectl
