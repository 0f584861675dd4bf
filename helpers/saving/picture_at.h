// A picture whose blocks are known by their addresses only.
#pragma once

#include <optional>

#include "helpers/dib/dib_view.h"

namespace tessary::saving {

// The plain pair at two addresses. Null when it is not plain, or when the blocks that its header
// announces do not lie in readable memory of this process to their ends.
std::optional<dib::DibView> PictureAt(const void* info, const void* bits);

}  // namespace tessary::saving
