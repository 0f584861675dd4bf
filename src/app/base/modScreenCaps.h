// What the program must know of the system before it does anything else.
#pragma once

#include <cstdint>

namespace tessary {

// Bits per pixel of the screen over all its colour planes; -1 when the screen cannot be asked.
int16_t GetColorDepth();

constexpr uint32_t kPlatformWindows95 = 1;
constexpr uint32_t kPlatformNT = 2;

// The operating system's family (dwPlatformId of its version record).
uint32_t GetPlatformId();

}  // namespace tessary
