#include "picture/frames/frame_clock.h"

namespace tessary {

std::chrono::milliseconds ShownFor(uint32_t milliseconds) {
    constexpr uint32_t kLeast = 20;
    return std::chrono::milliseconds(milliseconds < kLeast ? 100 : milliseconds);
}

void FrameClock::Begin(uint32_t count, uint32_t rounds) {
    count_ = count;
    rounds_ = rounds;
    Restart();
}

void FrameClock::Restart() {
    round_ = 0;
    index_ = 0;
}

void FrameClock::GoTo(uint32_t index, FrameTime now, uint32_t milliseconds) {
    index_ = index;
    due_ = now;
    end_ = now + ShownFor(milliseconds);
}

void FrameClock::Advance(std::chrono::milliseconds shown) {
    if (index_ + 1 == count_) ++round_;
    index_ = Next();
    end_ += shown;
}

}  // namespace tessary
