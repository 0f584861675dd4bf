// A picture whose blocks are known by their addresses only.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "helpers/dib/dib_view.h"

namespace tessary::saving {

// The pair at two addresses in the plain form. Blocks that are plain already are looked at where
// they are and must outlive the object; what else CheckDib accepts (other masks, longer headers,
// run lengths, wrong planes or colours used) is made plain in blocks of its own.
class PictureAt {
  public:
    // Throws std::bad_alloc.
    PictureAt(const void* info, const void* bits);

    // Null when the pair is none, or when the blocks that its header announces do not lie in
    // readable memory of this process to their ends; run lengths must announce their size.
    const std::optional<dib::DibView>& View() const { return view_; }

  private:
    std::vector<uint8_t> ownInfo_;
    std::vector<uint8_t> ownBits_;
    std::optional<dib::DibView> view_;
};

}  // namespace tessary::saving
