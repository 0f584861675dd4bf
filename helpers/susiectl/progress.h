// The progress callback that plug-ins are given in place of the host's.
#pragma once

#include <windows.h>

namespace tessary::susiectl {

// Calls the callback that the host passed to the call under way, with the host's own value and
// under the host's floating-point settings. Answers 0, "go on", when there is none, and when the
// plug-in calls after its time or from a thread of its own, for which the host's is not meant.
int __stdcall ReportProgress(int done, int total, LONG_PTR userData);

}  // namespace tessary::susiectl
