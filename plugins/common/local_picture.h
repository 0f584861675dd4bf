// A picture in two local-memory blocks, which is how the Susie interface hands pictures over.
#pragma once

#include <windows.h>

#include "plugins/common/page_warmer.h"
#include "plugins/common/picture_target.h"

namespace tessary::spi {

// Owns movable blocks, locked while they are written, until Release gives them away.
class LocalPicture final : public codec::PictureTarget {
  public:
    explicit LocalPicture(bool takesAlpha) : takesAlpha_(takesAlpha) {}
    ~LocalPicture() override { Free(); }
    LocalPicture(const LocalPicture&) = delete;
    LocalPicture& operator=(const LocalPicture&) = delete;

    bool Allocate(size_t infoSize, size_t bitsSize) override;
    bool TakesAlpha() const override { return takesAlpha_; }
    uint8_t* Info() override { return infoBytes_; }
    uint8_t* Bits() override { return bitsBytes_; }

    // Unlocks both blocks and hands them to the caller, who frees them with LocalFree.
    void Release(HLOCAL& info, HLOCAL& bits);

  private:
    void Free();

    bool takesAlpha_;
    HLOCAL info_ = nullptr;
    HLOCAL bits_ = nullptr;
    uint8_t* infoBytes_ = nullptr;
    uint8_t* bitsBytes_ = nullptr;
    PageWarmer warmer_;
};

}  // namespace tessary::spi
