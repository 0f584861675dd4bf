// The frames that are in memory: those that are shown next, and all of them where there is room.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>

#include "picture/frames/animation.h"

namespace tessary {

class FrameStore {
  public:
    // So many bytes at most, but two frames whatever they have.
    explicit FrameStore(size_t budget) : budget_(budget) {}

    // Of another animation, with so many frames: none is there.
    void Begin(uint32_t count);

    // Null: it is not there.
    const Frame* Find(uint32_t index) const;

    // Which frame to get next when `shown` is seen; nothing: all that there is room for are there.
    std::optional<uint32_t> Wanted(uint32_t shown) const;

    // Takes a frame in, in place of those that come last from `shown` on.
    void Put(uint32_t index, Frame frame, uint32_t shown);

    size_t Bytes() const { return bytes_; }

  private:
    // How many frames lie before it.
    uint32_t Distance(uint32_t index, uint32_t shown) const {
        return index >= shown ? index - shown : count_ - shown + index;
    }
    std::map<uint32_t, Frame>::const_iterator Farthest(uint32_t shown) const;
    bool HasRoomFor(size_t bytes) const { return frames_.size() < 2 || bytes_ + bytes <= budget_; }

    size_t budget_;
    uint32_t count_ = 0;
    std::map<uint32_t, Frame> frames_;
    size_t bytes_ = 0;
    size_t largest_ = 0;  // of a frame so far, in bytes
};

}  // namespace tessary
