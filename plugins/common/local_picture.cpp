#include "plugins/common/local_picture.h"

#include <utility>

namespace tessary::spi {
namespace {

// Zero filled: the heap takes large blocks fresh from the system, so this costs nothing.
uint8_t* AllocateLocked(HLOCAL& block, size_t size) {
    block = LocalAlloc(LMEM_MOVEABLE | LMEM_ZEROINIT, size);
    return block == nullptr ? nullptr : static_cast<uint8_t*>(LocalLock(block));
}

void FreeLocked(HLOCAL& block, uint8_t*& bytes) {
    if (bytes != nullptr) LocalUnlock(block);
    if (block != nullptr) LocalFree(block);
    block = nullptr;
    bytes = nullptr;
}

}  // namespace

bool LocalPicture::Allocate(size_t infoSize, size_t bitsSize) {
    Free();
    infoBytes_ = AllocateLocked(info_, infoSize);
    bitsBytes_ = AllocateLocked(bits_, bitsSize);
    if (infoBytes_ == nullptr || bitsBytes_ == nullptr) return false;
    warmer_.Start(bitsBytes_, bitsSize);
    return true;
}

void LocalPicture::Release(HLOCAL& info, HLOCAL& bits) {
    warmer_.Stop();
    LocalUnlock(info_);
    LocalUnlock(bits_);
    infoBytes_ = bitsBytes_ = nullptr;
    info = std::exchange(info_, nullptr);
    bits = std::exchange(bits_, nullptr);
}

void LocalPicture::Free() {
    warmer_.Stop();
    FreeLocked(info_, infoBytes_);
    FreeLocked(bits_, bitsBytes_);
}

}  // namespace tessary::spi
