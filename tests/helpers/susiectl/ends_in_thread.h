// Work that may hang.
#pragma once

#include <windows.h>

#include <functional>

namespace tessary::test {

// Runs `work` in a thread of its own, which owns it. False when the thread has not ended after so
// many milliseconds, and goes on. Not with std::thread: one that is detached while it ends may take
// the handle of the next one with it.
bool EndsInThread(std::function<void()> work, DWORD longest);

}  // namespace tessary::test
