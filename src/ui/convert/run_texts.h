// What the converter's window says about a run besides its log.
#pragma once

#include <cstdint>
#include <string>

#include "convert/convert_monitor.h"

namespace tessary {

// How many files came to which end.
struct OutcomeCounts {
    int converted = 0;
    int declined = 0;
    int failed = 0;

    void Count(FileOutcome outcome);
};

std::wstring OutcomeText(const OutcomeCounts& counts);

// Time since the beginning, and as soon as it can be estimated the time that the rest will take
// when `position` of `maximum` entries are done.
std::wstring RunTimeText(uint64_t elapsedMilliseconds, int32_t position, int32_t maximum);

}  // namespace tessary
