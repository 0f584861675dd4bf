// The same resize written the plainest way, in double precision: what the fast one is measured
// against.
#pragma once

#include <cstdint>
#include <vector>

#include "helpers/dib/dib_view.h"

namespace tessary::kernel {

// Blue, green, red of width x height pixels, top row first, neither rounded nor limited to 0...255.
// Each axis that shrinks is filtered by Lanczos-3, each other one by Catmull-Rom.
std::vector<double> ReferenceResize(const dib::DibView& source, int32_t width, int32_t height);

}  // namespace tessary::kernel
