// Crashes inside windows of the plug-in's own, whose procedures the system calls.
#pragma once

#include <string>

namespace tessary::test {

// "<where>/<kind>": crashes as Crash(kind) does, in one of these places: `create` (WM_CREATE),
// `create-in-create` (that of a window which is made in another's), `init` (WM_INITDIALOG),
// `command` (the WM_COMMAND of a dialog's button), `posted` (a message that was posted), `timer` (a
// WM_TIMER), `timer-procedure` (a function that SetTimer was given), `destroy` (WM_DESTROY).
// Anything else does nothing. Counts as "window" when the crash is reached, and as
// "window-came-back" when the function of the system does come back to its caller.
void CrashInWindow(const std::string& placeAndKind);

}  // namespace tessary::test
