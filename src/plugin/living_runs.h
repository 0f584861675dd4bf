// The copies of the program that run at the same time with the same settings store: each is known
// by a number, so that each keeps a call log of its own there.
#pragma once

namespace tessary {

// Numbers count from 1; copies beyond the last share it.
constexpr int kMostRuns = 16;

// The number of this copy, taken at the first call: the least that no living copy has. Throws
// RaisedError when the store cannot be accessed.
int OwnRun();

// Keeps other copies from taking a number, for its own life; waits until none is about to.
class RunsHeld {
  public:
    RunsHeld();
    RunsHeld(const RunsHeld&) = delete;
    RunsHeld& operator=(const RunsHeld&) = delete;
    ~RunsHeld();

    // Whether another living copy has that number.
    bool IsAnothers(int run) const;

  private:
    void* mutex_;
};

}  // namespace tessary
