// Converts the rows of a picture on all processors while the decoder goes on.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "plugins/common/row_places.h"

namespace tessary::codec {

// How a row of stored pixels becomes one of the shown picture. `convert` is called by several
// threads at once, and does not throw; null where nothing is to be done.
struct RowConversion {
    unsigned storedBytes = 0;  // of a pixel
    std::function<void(const uint8_t* stored, uint8_t* shown)> convert = nullptr;
};

// Bands of rows wait in a ring until a thread takes them; when it is full the decoder's own thread
// works along, and does everything where there is no other.
class RowTeam {
  public:
    RowTeam(const RowPlaces& places, RowConversion conversion);
    RowTeam(const RowTeam&) = delete;
    RowTeam& operator=(const RowTeam&) = delete;
    // Gives up what has not been begun.
    ~RowTeam();

    // Room for the stored row `y`, and that it is decoded; rows come in their order.
    uint8_t* RowBuffer(uint32_t y);
    void RowDone(uint32_t y);
    // Waits until all rows are where they belong.
    void Finish();

  private:
    using Lock = std::unique_lock<std::mutex>;

    struct Band {
        std::vector<uint8_t> rows;
        uint32_t first = 0;
        uint32_t count = 0;
    };
    // Room for rows that become columns; one for each thread.
    using Scratch = std::vector<uint8_t>;

    void StartThreads();
    void Work(Scratch& scratch) noexcept;
    // With the lock held, which is given back meanwhile: converts the next band that waits.
    void ConvertNext(Scratch& scratch, Lock& lock) noexcept;
    void Convert(const Band& band, Scratch& scratch) const noexcept;
    Band& Current() { return ring_[filled_ % ring_.size()]; }

    const RowPlaces places_;
    const RowConversion conversion_;
    const size_t storedStride_;
    const size_t shownStride_;
    const uint32_t bandRows_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Band> ring_;  // band i in place i modulo their number
    size_t filled_ = 0;
    size_t begun_ = 0;
    std::vector<bool> isDone_;  // by place in the ring
    size_t done_ = 0;           // all bands before this one are
    bool stops_ = false;
    std::vector<Scratch> scratches_;     // the first is the decoder's thread's
    std::vector<std::jthread> threads_;  // last: they are joined before the rest goes
};

}  // namespace tessary::codec
