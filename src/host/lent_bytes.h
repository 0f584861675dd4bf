// Bytes of the program's that hosts are to read.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <span>

#include "host/section.h"

namespace tessary {

// One plug-in after the other is asked about the same bytes: they are copied once.
class LentBytes {
  public:
    struct Lent {
        HANDLE section = nullptr;  // this object's
        uint64_t size = 0;
        uint32_t id = 0;  // of these very bytes; 0: they do not come again
    };

    // A section that has a copy of the bytes, until this is asked next. Nothing without memory.
    std::optional<Lent> Of(std::span<const uint8_t> bytes);

    // Nobody is likely to ask about them again.
    void Forget() { section_.reset(); }

  private:
    std::optional<Section> section_;
    uint32_t id_ = 0;  // of the last bytes
};

}  // namespace tessary
