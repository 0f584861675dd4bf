// The system's heap after a crash.
#pragma once

namespace tessary::susiectl {

// A function that crashes inside the process's heap, as after an overrun, leaves it locked: its
// thread may go on, but all others would wait for ever. Has another thread try, and gives the lock
// back when that waits in vain; then it takes seconds, else a moment. To be called by the thread in
// which the function has crashed.
void UnlockLeftHeap();

}  // namespace tessary::susiectl
