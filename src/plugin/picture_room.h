// Memory that a plug-in puts its picture into itself (docs/plugin-extension.md).
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>

namespace tessary {

// Room for the two blocks of a picture; what stands there does not count.
struct RoomForPicture {
    std::span<uint8_t> info{};
    std::span<uint8_t> bits{};
    bool isZero = false;  // zeros stand there
};

// Asked for room of these sizes in bytes by a plug-in that is being called, once or more: what was
// answered before counts no more. It owns the room, which stays until it is asked again or the
// picture is done with. Nothing: there is no memory. Empty: plug-ins hand out blocks of their own.
using RoomMaker = std::function<std::optional<RoomForPicture>(size_t infoSize, size_t bitsSize)>;

}  // namespace tessary
