// Makes strips on all processors and hands them out in order.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "helpers/dcpng/strip_deflater.h"

namespace tessary::dcpng {

// The calling thread works along while the next strip is not ready; where no other thread can be
// had it does everything. Strips are made only so far ahead that memory stays bounded, whatever the
// size of the picture.
class StripTeam {
  public:
    // Makes one strip; each thread gets a function of its own.
    using Make = std::function<void(size_t strip, DeflatedStrip& to)>;

    // `newMake` is called on the threads, which it must not mind.
    StripTeam(size_t strips, std::function<Make()> newMake);
    StripTeam(const StripTeam&) = delete;
    StripTeam& operator=(const StripTeam&) = delete;
    // Waits for the threads, which stop behind the strips that they have begun.
    ~StripTeam();

    // The next strip, valid until the next call. Throws what its making has thrown on any thread.
    const DeflatedStrip& Take();

  private:
    struct Slot {
        DeflatedStrip strip;
        bool isReady = false;
    };
    using Lock = std::unique_lock<std::mutex>;

    void Work() noexcept;
    // With the lock held. One can be begun: there is one left, and a slot for it.
    bool CanBegin() const { return begun_ < strips_ && begun_ < freed_ + slots_.size(); }
    // Makes the next strip that nobody has begun; the lock is given back meanwhile.
    void MakeNext(const Make& make, Lock& lock);

    const size_t strips_;
    const std::function<Make()> newMake_;
    Make ownMake_;  // of the calling thread, once it is needed
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Slot> slots_;  // strip i in slot i modulo their number
    size_t begun_ = 0;
    size_t taken_ = 0;
    size_t freed_ = 0;  // strips whose slots are free again
    bool stops_ = false;
    std::exception_ptr failure_;
    std::vector<std::jthread> threads_;  // last: they are joined before the rest goes
};

}  // namespace tessary::dcpng
