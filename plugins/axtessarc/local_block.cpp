#include "plugins/axtessarc/local_block.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace tessary::unpack {
namespace {

constexpr size_t kFirstCapacity = 1u << 20;

}  // namespace

LocalBlock::~LocalBlock() {
    if (block_ != nullptr) LocalFree(block_);
}

bool LocalBlock::Resize(size_t size) noexcept {
    const HLOCAL resized = block_ == nullptr ? LocalAlloc(LMEM_MOVEABLE, size)
                                             : LocalReAlloc(block_, size, LMEM_MOVEABLE);
    if (resized == nullptr) return false;
    block_ = resized;
    capacity_ = size;
    return true;
}

bool LocalBlock::Write(std::span<const uint8_t> bytes) noexcept {
    if (bytes.size() > capacity_ - size_) {
        const size_t needed = size_ + bytes.size();
        size_t wanted = std::max(needed, capacity_ == 0 ? kFirstCapacity : 2 * capacity_);
        if (expected_ >= needed)
            wanted = static_cast<size_t>(std::min<uint64_t>(wanted, expected_));
        const bool overflows = needed < size_ || capacity_ > std::numeric_limits<size_t>::max() / 2;
        // Twice the room may not be had where what is needed can.
        if (overflows || !(Resize(wanted) || Resize(needed))) {
            isFull_ = true;
            return false;
        }
    }
    std::memcpy(static_cast<uint8_t*>(LocalLock(block_)) + size_, bytes.data(), bytes.size());
    LocalUnlock(block_);
    size_ += bytes.size();
    return true;
}

HLOCAL LocalBlock::Release() {
    if (size_ == 0) return LocalAlloc(LMEM_FIXED, 0);
    if (size_ != capacity_ && !Resize(size_)) return nullptr;
    return std::exchange(block_, nullptr);
}

}  // namespace tessary::unpack
