// The horizontal half of a resize: mixes neighbouring pixels of one row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "helpers/kernel/instructions.h"
#include "helpers/kernel/resize_filter.h"

namespace tessary::kernel {

// What a RowFilter makes of the mixed samples.
enum class RowOutput : uint8_t {
    kStored,      // 3 bytes of 3 samples from 0 to 255
    kLight,       // 3 bytes of 3 samples of light, from 0 to kFullLight
    kLightAlpha,  // 4 bytes of 4 samples of light, the fourth of which is alpha
};

// Made once per resize and shared by its threads.
class RowFilter {
  public:
    // For the target pixels `left` to `left` + `width`. `pixelSamples`: samples from one source
    // pixel to the next, 3 or 4; 3 of light, 4 with alpha. Throws std::bad_alloc.
    RowFilter(const FilterAxis& axis, int32_t left, int32_t width, size_t pixelSamples,
              Instructions instructions = BestInstructions(),
              RowOutput output = RowOutput::kStored);

    // The source pixels that count: from the first one to behind the last one.
    int32_t FirstPixel() const { return firstPixel_; }
    int32_t EndPixel() const { return endPixel_; }

    // How many samples behind the row Apply reads without using them; they have to be finite.
    static constexpr size_t kPadding = 16;

    // Mixes one row, which begins with the source pixel `from` (at most FirstPixel) and has
    // kPadding more floats behind EndPixel, into `width` pixels of the output, rounded and limited
    // to 0...255. Of each pixel the first three samples count, and alpha.
    void Apply(std::span<const float> row, int32_t from, std::span<uint8_t> pixels) const;

  private:
    // Which source pixel the weights of one target pixel begin with, and how many groups of four
    // follow in weights_.
    struct Target {
        int32_t first;
        int32_t groups;
    };

    template <size_t kPixelSamples, typename Writer>
    void ApplyWith(Writer writer, const float* row, int32_t from, uint8_t* out) const;

    template <size_t kPixelSamples, typename Writer>
    void ApplyTo(Writer writer, const float* row, int32_t from, uint8_t* out) const;

#if TESSARY_MAY_USE_AVX2
    template <size_t kPixelSamples, typename Writer>
    __attribute__((target("avx2"))) void ApplyWideTo(Writer writer, const float* row, int32_t from,
                                                     uint8_t* out) const;
#endif

    size_t pixelSamples_;
    Instructions instructions_;
    RowOutput output_;
    int32_t firstPixel_ = 0;
    int32_t endPixel_ = 0;
    std::vector<Target> targets_;
    std::vector<float> weights_;  // of all targets one after the other, zeros up to a whole group
};

}  // namespace tessary::kernel
