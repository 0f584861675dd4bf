// Keeping the system awake while the program works or shows something and nobody touches it.
#pragma once

#include <windows.h>

#include <functional>

namespace tessary {

// What must stay on: the machine, or the screen as well.
enum class AwakeNeed { kMachine, kScreen };

// For its own life the system does not go to sleep for lack of a user, nor switch the screen off
// where that is asked for. Several of these add up; any thread may make and end them, and what is
// left goes with the process. What the user does himself, such as closing the lid, counts all the
// same. Where the system refuses, things are as without it.
class StayAwake {
  public:
    // `reason` is what the system tells who looks for it (`powercfg /requests`).
    StayAwake(AwakeNeed need, const wchar_t* reason);
    StayAwake(const StayAwake&) = delete;
    StayAwake& operator=(const StayAwake&) = delete;
    ~StayAwake();

  private:
    AwakeNeed need_;
    HANDLE request_;
};

// Told of what begins (true) and ends (false), so that tests can see it; an empty function ends
// the telling.
using AwakeObserver = std::function<void(AwakeNeed need, bool isOn)>;
void SetAwakeObserver(AwakeObserver observer);

}  // namespace tessary
