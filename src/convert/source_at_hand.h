// A file that is to be converted, as far as it is known.
#pragma once

#include <memory>
#include <optional>

#include "convert/encoding.h"
#include "picture/read/read_picture.h"

namespace tessary {

struct SourceAtHand {
    SourceFile file;
    std::optional<ReadResult> read{};      // once its picture was read
    std::shared_ptr<Encoding> encoding{};  // of that picture; it may have taken its place
};

}  // namespace tessary
