// The same resize written the plainest way, in double precision: what the fast one is measured
// against.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "helpers/dib/dib_view.h"
#include "helpers/kernel/kernel_types.h"

namespace tessary::kernel {

// Blue, green, red of width x height pixels, top row first, neither rounded nor limited to 0...255.
// Each axis that shrinks is filtered by Lanczos-3, each other one by Catmull-Rom. In linear light
// they are limited.
std::vector<double> ReferenceResize(const dib::DibView& source, int32_t width, int32_t height,
                                    Light light = Light::kStored);

// The largest difference between that and 24-bit rows as bitmaps have them, bottom row first;
// padding is to be 0. Values that are rounded right differ by no more than a half.
double WorstDeviation(const dib::DibView& source, int32_t width, int32_t height,
                      std::span<const uint8_t> rows, Light light = Light::kStored);

// Of values so close to a half that the reference itself may be wrong.
inline constexpr double kMostDeviation = 0.52;

}  // namespace tessary::kernel
