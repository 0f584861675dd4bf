// The vertical half of a resize: mixes neighbouring rows into one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "helpers/kernel/instructions.h"

namespace tessary::kernel {

// The weights of one target row as 16-bit integers, which is what SSE2 multiplies fastest. They are
// as fine as the sums over samples may be without leaving 32 bits, and weights that add up to 1 add
// up to exactly 1 / Unit(), so that flat areas stay flat.
class FixedWeights {
  public:
    // Makes Assign of up to `most` weights free of allocations. Throws std::bad_alloc.
    void Reserve(size_t most) { values_.reserve(most); }

    // `weights` add up to 1 or are a part of such; no sample is above `mostSample`.
    void Assign(std::span<const double> weights, int mostSample = UINT8_MAX);

    std::span<const int16_t> Values() const { return values_; }
    // The weight that one step of a value stands for: a power of two.
    float Unit() const { return unit_; }

  private:
    std::vector<int16_t> values_;
    float unit_ = 1;
};

// out[i] = unit * sum over all rows of weights[row] * rows[row][i]; with `add`, that much is added
// to out[i]. There are as many weights as rows, at least one, and as many samples in each row as in
// `out`, at least 16. `weights` come from FixedWeights (any part of them). Samples are bytes, or
// words from 0 on.
template <typename Sample>
void MixRows(std::span<const Sample* const> rows, std::span<const int16_t> weights, float unit,
             bool add, std::span<float> out, Instructions instructions = BestInstructions());

}  // namespace tessary::kernel
