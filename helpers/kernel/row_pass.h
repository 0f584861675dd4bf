// The horizontal half of a resize: mixes neighbouring pixels of one row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "helpers/kernel/instructions.h"
#include "helpers/kernel/resize_filter.h"

namespace tessary::kernel {

// Made once per resize and shared by its threads.
class RowFilter {
  public:
    // `pixelSamples`: samples from one source pixel to the next, 3 or 4. Throws std::bad_alloc.
    RowFilter(const FilterAxis& axis, int32_t targetWidth, size_t pixelSamples,
              Instructions instructions = BestInstructions());

    // How many samples behind the row Apply reads without using them; they have to be finite.
    static constexpr size_t kPadding = 16;

    // Mixes one row (source width x pixelSamples floats and kPadding more) into targetWidth x 3
    // bytes, rounded and limited to 0...255. Of each pixel the first three samples count.
    void Apply(std::span<const float> row, std::span<uint8_t> bgr) const;

  private:
    // Where the weights of one target pixel begin in the row, and how many groups of four follow in
    // weights_.
    struct Target {
        int32_t first;
        int32_t groups;
    };

    template <size_t kPixelSamples>
    void ApplyTo(const float* row, std::span<uint8_t> bgr) const;

#if TESSARY_MAY_USE_AVX2
    template <size_t kPixelSamples>
    __attribute__((target("avx2"))) void ApplyWideTo(const float* row,
                                                     std::span<uint8_t> bgr) const;
#endif

    size_t pixelSamples_;
    Instructions instructions_;
    std::vector<Target> targets_;
    std::vector<float> weights_;  // of all targets one after the other, zeros up to a whole group
};

}  // namespace tessary::kernel
