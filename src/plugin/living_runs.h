// The copies of the program that run at the same time with the same settings store: each is known
// by a number, so that each keeps a call log of its own there.
#pragma once

#include <mutex>
#include <string>

#include "app/base/handles.h"

namespace tessary {

// Numbers count from 1; copies beyond the last share it.
constexpr int kMostRuns = 16;

// This copy, which others can tell from one that has ended as long as this object lives.
class OwnRun {
  public:
    OwnRun();

    // The number of this copy, taken at the first call: the least that no living copy has. Throws
    // RaisedError when the store cannot be accessed. From any thread.
    int Number();

    const std::wstring& Name() const { return name_; }

  private:
    std::wstring name_;  // of the mutex, which this process holds for its whole life
    UniqueMutex held_;
    std::mutex mutex_;  // of the number
    int number_ = 0;    // 0: not taken yet
};

// Keeps other copies from taking a number, for its own life; waits until none is about to.
class RunsHeld {
  public:
    RunsHeld();
    RunsHeld(const RunsHeld&) = delete;
    RunsHeld& operator=(const RunsHeld&) = delete;
    ~RunsHeld();

    // Whether another living copy than the one of that name has that number.
    bool IsAnothers(int number, const std::wstring& ownName) const;

  private:
    UniqueMutex mutex_;
};

}  // namespace tessary
