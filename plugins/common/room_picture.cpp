#include "plugins/common/room_picture.h"

#include <cstddef>
#include <cstring>

namespace tessary::spi {

bool RoomPicture::TakesProfile() const {
    return room_.size >= offsetof(susie::PictureRoom, enough) &&
           (room_.wishes & susie::kWishesOwnColors) != 0;
}

uint32_t RoomPicture::Enough() const {
    return room_.size >= sizeof(room_) ? room_.enough : 0;
}

bool RoomPicture::Allocate(size_t infoSize, size_t bitsSize) {
    warmer_.Stop();
    void* info = nullptr;
    void* bits = nullptr;
    const int answer = room_.take(&room_, infoSize, bitsSize, &info, &bits);
    if (answer <= susie::kNoRoom) return false;
    info_ = static_cast<uint8_t*>(info);
    bits_ = static_cast<uint8_t*>(bits);
    if (answer == susie::kRoomOfZeros) {
        warmer_.Start(bits_, bitsSize);
    } else {
        std::memset(info_, 0, infoSize);
        std::memset(bits_, 0, bitsSize);
    }
    return true;
}

}  // namespace tessary::spi
