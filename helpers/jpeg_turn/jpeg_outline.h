// How a JPEG file (ITU-T T.81) is put together: what stands before its picture data, and where it
// ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tessary::jpeg {

struct Segment {
    uint8_t marker;  // behind the FF
    size_t at;       // of its data, behind the length
    size_t size;     // of its data
};

struct Outline {
    std::vector<Segment> segments{};  // up to the first scan
    uint32_t width = 0;
    uint32_t height = 0;
    // The pixels of a block of all components, the least that can be turned by itself.
    uint32_t blockWidth = 8;
    uint32_t blockHeight = 8;
    size_t end = 0;  // behind the end mark
};

// Nothing when the bytes are no such file, or not all of one.
std::optional<Outline> OutlineOf(std::span<const uint8_t> file);

}  // namespace tessary::jpeg
