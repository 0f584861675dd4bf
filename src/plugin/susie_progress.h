// From a plug-in's progress callback to a function of ours.
#pragma once

#include <windows.h>

#include <functional>

#include "helpers/susiectl/susie_interface.h"

namespace tessary {

// Told how far a plug-in has come, `done` of `total`, in the plug-in's own units (total may be 0);
// false asks it to stop. Empty: nobody is told.
using SusieProgress = std::function<bool(int done, int total)>;

// Stands between plug-in and `progress` for its own life. What is thrown ends the plug-in's work
// and not the plug-in.
class ProgressRelay {
  public:
    explicit ProgressRelay(const SusieProgress& progress) : progress_(progress) {}
    ProgressRelay(const ProgressRelay&) = delete;
    ProgressRelay& operator=(const ProgressRelay&) = delete;

    // For a plug-in: never null, for some call it unasked; and the value that goes with it, which
    // susiectl.dll hands back, whatever the plug-in passes.
    static susie::ProgressCallback Callback() { return &OnProgress; }
    LONG_PTR UserData() const { return reinterpret_cast<LONG_PTR>(this); }

    // Whether the plug-in was asked to stop.
    bool Stopped() const { return stopped_; }

  private:
    static int __stdcall OnProgress(int done, int total, LONG_PTR userData);

    const SusieProgress& progress_;
    bool stopped_ = false;
};

}  // namespace tessary
