// Compressors that wait for the next picture.
#pragma once

#include <memory>

#include "helpers/dcpng/strip_deflater.h"

namespace tessary::dcpng {

// Making a compressor takes about as long as compressing a small picture: a few of them stay for
// the next one, about 1 MB each. Any thread may use it.
class DeflaterStock {
  public:
    struct Return {
        void operator()(StripDeflater* deflater) const noexcept;
    };
    // Goes back to the stock at its end.
    using Lent = std::unique_ptr<StripDeflater, Return>;

    // One of that level, kept or new. Throws std::bad_alloc.
    static Lent Take(int level);
};

}  // namespace tessary::dcpng
