// When a file was made and changed.
#pragma once

#include <cstdint>

namespace tessary::files {

// In the system's units of 100 ns; 0: not known, or the present time.
struct FileDates {
    uint64_t created = 0;
    uint64_t changed = 0;

    bool operator==(const FileDates&) const = default;
};

}  // namespace tessary::files
