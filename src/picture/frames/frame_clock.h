// When which frame is seen.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace tessary {

using FrameTime = std::chrono::steady_clock::time_point;

// How long a frame is shown for which a file tells so many milliseconds. Times of almost nothing
// are meant as "not told", and other programs take a tenth of a second for that too.
std::chrono::milliseconds ShownFor(uint32_t milliseconds);

// Times are added up, so that being late once makes nothing later.
class FrameClock {
  public:
    // Another animation; `rounds` as Animation. Its first frame is the one that is seen.
    void Begin(uint32_t count, uint32_t rounds);
    // From the first round on again, at the first frame.
    void Restart();
    // That frame is seen from `now` on.
    void GoTo(uint32_t index, FrameTime now, uint32_t milliseconds);

    // Moves on to what is to be seen at `now`; true: it is another frame. `find` answers of a
    // frame how many milliseconds its file tells, or nothing as long as it is not there: that one
    // is waited for. Frames whose time is over are passed by; who has waited for longer than a
    // frame takes goes on from there, without haste.
    template <typename Find>
    bool MoveOn(FrameTime now, const Find& find) {
        bool moved = false;
        while (now >= end_ && !IsAtEnd()) {
            const std::optional<uint32_t> milliseconds = find(Next());
            if (!milliseconds) break;
            due_ = end_;
            Advance(ShownFor(*milliseconds));
            moved = true;
        }
        if (moved && now >= end_) {
            end_ = now + (end_ - due_);
            due_ = now;
        }
        return moved;
    }

    uint32_t Index() const { return index_; }
    uint32_t Next() const { return index_ + 1 == count_ ? 0 : index_ + 1; }
    // From when on the frame was to be seen, and until when.
    FrameTime Due() const { return due_; }
    FrameTime End() const { return end_; }
    bool IsLastRound() const { return rounds_ != 0 && round_ + 1 >= rounds_; }
    // Whether no frame comes behind this one: it stays.
    bool IsAtEnd() const { return IsLastRound() && index_ + 1 == count_; }

  private:
    void Advance(std::chrono::milliseconds shown);

    uint32_t count_ = 0;
    uint32_t rounds_ = 0;
    uint32_t round_ = 0;
    uint32_t index_ = 0;
    FrameTime due_{};
    FrameTime end_{};
};

}  // namespace tessary
