// What the converter's window says about a run besides its log.
#pragma once

#include <cstdint>
#include <string>

namespace tessary {

// Time since the beginning, and as soon as it can be estimated the time that the rest will take
// when `position` of `maximum` entries are done.
std::wstring RunTimeText(uint64_t elapsedMilliseconds, int32_t position, int32_t maximum);

}  // namespace tessary
