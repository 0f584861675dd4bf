// Sizes and dates of files, and other large numbers, for the user.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

// As "1,234,567".
std::wstring GroupedNumber(uint64_t number);

// As "1.2 MB (1,234,567 バイト)".
std::wstring FileSizeText(uint64_t bytes);

// In the computer's time; `time` in units of 100 ns since 1601, UTC. Empty where that is no time.
std::wstring FileTimeText(uint64_t time);

}  // namespace tessary
