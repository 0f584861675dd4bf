// Work on many files that is not to end with the first bad ones.
#pragma once

#include "plugin/host_state.h"

namespace tessary {

// For its own life a plug-in that goes on ending its processes is called all the same, unless it
// was not called any more when it was first needed: each such file costs no more than itself, and
// the next start leaves the plug-in out.
class LongRun {
  public:
    LongRun() { Caller().longRun = ++Caller().longRuns; }
    LongRun(const LongRun&) = delete;
    LongRun& operator=(const LongRun&) = delete;
    ~LongRun() { Caller().longRun = 0; }
};

}  // namespace tessary
