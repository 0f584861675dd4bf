// The record by which a plug-in asks for room for its picture (docs/plugin-extension.md).
#pragma once

#include <optional>

#include "app/base/error.h"
#include "helpers/susiectl/susie_interface.h"
#include "plugin/picture_room.h"

namespace tessary {

// What a plug-in asks for room for its picture. What goes wrong there is no memory to it.
struct AskedRoom : susie::PictureRoom {
    AskedRoom(const RoomMaker& maker, uint32_t wishes, uint32_t enough = 0)
        : susie::PictureRoom(), rooms(maker) {
        size = sizeof(susie::PictureRoom);
        take = &Take;
        this->wishes = wishes;
        this->enough = enough;
    }

    static int __stdcall Take(susie::PictureRoom* asked, SIZE_T infoSize, SIZE_T bitsSize,
                              void** info, void** bits) {
        AskedRoom& room = *static_cast<AskedRoom*>(asked);
        room.taken = Trapped(std::optional<RoomForPicture>(),
                             [&] { return room.rooms(infoSize, bitsSize); });
        if (!room.taken) return susie::kNoRoom;
        *info = room.taken->info.data();
        *bits = room.taken->bits.data();
        return room.taken->isZero ? susie::kRoomOfZeros : susie::kRoom;
    }

    const RoomMaker& rooms;
    std::optional<RoomForPicture> taken{};
};

}  // namespace tessary
