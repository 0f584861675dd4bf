// Sections that are used again: the first touch of fresh memory takes longer than the copying of a
// picture into it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/host_messages.h"
#include "host/section.h"

namespace tessary {

class SectionStock {
  public:
    // A section of at least so many bytes, of unknown content: one that was returned, or a new
    // one. It stays here, and in use, until it is returned. Nothing without memory.
    struct Taken {
        std::span<uint8_t> bytes;
        WireSection wire;
        bool isNew = false;  // full of zeros
    };
    std::optional<Taken> Take(size_t size);

    // The program does not read it any more.
    void Return(uint32_t id);

  private:
    struct Kept {
        Section section;
        uint32_t id;
        bool isFree;
    };
    void DropSuperfluous();

    std::vector<Kept> kept_;  // the one that was returned last is the last
    uint32_t lastId_ = 0;
};

}  // namespace tessary
