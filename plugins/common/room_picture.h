// A picture in memory of the host's (docs/plugin-extension.md, GetPictureInto).
#pragma once

#include <cstddef>

#include "helpers/susiectl/susie_interface.h"
#include "plugins/common/page_warmer.h"
#include "plugins/common/picture_target.h"

namespace tessary::spi {

// Whether it is a record of a host's. Those of the first kind have no wishes.
inline bool IsRoom(const susie::PictureRoom* room) {
    return room != nullptr && room->size >= offsetof(susie::PictureRoom, wishes);
}

class RoomPicture final : public codec::PictureTarget {
  public:
    explicit RoomPicture(susie::PictureRoom& room) : room_(room) {}

    bool Allocate(size_t infoSize, size_t bitsSize) override;
    bool TakesAlpha() const override { return true; }
    bool TakesProfile() const override;
    uint32_t Enough() const override;
    uint8_t* Info() override { return info_; }
    uint8_t* Bits() override { return bits_; }

  private:
    susie::PictureRoom& room_;
    uint8_t* info_ = nullptr;  // the host's
    uint8_t* bits_ = nullptr;
    PageWarmer warmer_;
};

}  // namespace tessary::spi
