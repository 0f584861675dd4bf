// From the progress of plug-ins and writers to the monitor's file bar.
#pragma once

#include <windows.h>

#include "convert/convert_monitor.h"

namespace tessary {

// For its own life a monitor is told the progress that ConvertProgressCallback gets.
class ProgressWatch {
  public:
    explicit ProgressWatch(ConvertMonitor& monitor);
    ProgressWatch(const ProgressWatch&) = delete;
    ProgressWatch& operator=(const ProgressWatch&) = delete;
    ~ProgressWatch();

    // Whether this thread has one.
    static bool IsThere();
};

// Tells the monitor `numerator` of `denominator` in percent, which is rounded to the nearest
// integer, halves to even, after a division in single precision. Always 0 (go on): a stop takes
// effect between files. Its address is a saving::ProgressCallback.
int __stdcall ConvertProgressCallback(int numerator, int denominator, LONG_PTR userData);

// The same for what reads files. True (go on) as long as the call is wanted (plugin/call_watch.h).
bool TellProgress(int done, int total);

// For what reads files out of their turn: the bars stay, but messages are let through. Always true.
bool TellNothing(int done, int total);

}  // namespace tessary
