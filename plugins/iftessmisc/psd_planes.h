// The channels of a Photoshop file's composite, which stand one behind the other.
#pragma once

#include <utility>
#include <vector>

#include "plugins/iftessmisc/byte_input.h"
#include "plugins/iftessmisc/psd_file.h"

namespace tessary::misc {

enum class PsdPacking : uint16_t { kRaw = 0, kRuns = 1 };

class PsdPlanes {
  public:
    // The first `count` of them.
    PsdPlanes(dib::ByteSource& source, const PsdFile& file, PsdPacking packing, unsigned count);

    // The next row of a channel: fills what there is of it, and tells how many bytes that are.
    size_t ReadRow(unsigned channel, std::span<uint8_t> row);

  private:
    struct Plane {
        explicit Plane(ByteInput of) : input(std::move(of)) {}

        ByteInput input;
        std::vector<uint32_t> sizes;  // of its packed rows, as far as the file tells them
        size_t next = 0;
        uint64_t position = 0;  // of the next one
    };

    bool isPacked_;
    std::vector<Plane> planes_;
};

}  // namespace tessary::misc
