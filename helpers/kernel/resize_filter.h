// Which source positions make one target position, and how much each counts. One axis at a time:
// the filters are separable.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/kernel/kernel_types.h"

namespace tessary::kernel {

// One axis of a resize. The pixel centres of both pictures are laid over each other; where the axis
// shrinks the filter is stretched by the same factor, so that every source position is counted and
// nothing aliases. At the edges the filter is cut off and what is left is normalised.
class FilterAxis {
  public:
    // Both lengths in pixels, above 0.
    FilterAxis(int32_t sourceLength, int32_t targetLength, ResizeFilter filter);

    // Fills `weights` for the target position (0 <= target < targetLength): their sum is 1, there
    // is at least one, and all their positions lie in the source. Returns the first one's position.
    int32_t WeightsOf(int32_t target, std::vector<double>& weights) const;

    // No target position has more weights than this.
    int32_t MostWeights() const;

  private:
    double (*kernel_)(double);
    int32_t sourceLength_;
    double step_;        // source pixels per target pixel
    double invStretch_;  // 1 / how much wider than its natural size the filter is laid out
    double reach_;       // source pixels on either side of the centre
};

}  // namespace tessary::kernel
