#include "plugins/iftessmisc/byte_input.h"

#include <algorithm>

namespace tessary::misc {

bool ByteInput::Fill() {
    start_ += filled_;
    next_ = 0;
    block_.resize(blockSize_);
    filled_ = source_->ReadAt(start_, block_).value_or(0);
    return filled_ != 0;
}

size_t ByteInput::Read(std::span<uint8_t> out) {
    size_t done = 0;
    while (done < out.size()) {
        if (next_ == filled_ && !Fill()) break;
        const size_t count = std::min(out.size() - done, filled_ - next_);
        std::copy_n(block_.begin() + static_cast<ptrdiff_t>(next_), count,
                    out.begin() + static_cast<ptrdiff_t>(done));
        next_ += count;
        done += count;
    }
    return done;
}

void ByteInput::Seek(uint64_t position) {
    if (position >= start_ && position - start_ <= filled_) {
        next_ = static_cast<size_t>(position - start_);
        return;
    }
    start_ = position;
    next_ = filled_ = 0;
}

}  // namespace tessary::misc
