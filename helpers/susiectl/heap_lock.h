// Who holds the lock of a heap.
//
// No function of the system's tells it. But the lock is a critical section in the heap's own
// memory, and where that lies shows when a heap is locked. There the name of a thread is written by
// that thread alone: whoever reads its own holds the lock, and whoever reads another one does not.
#pragma once

#include <windows.h>

#include <optional>

namespace tessary::susiectl {

// To be called once, before the first call of HolderOf. Makes a heap of its own for a moment, and
// waits for the lock of the process's.
void LearnHeapLocks();

// The id of the thread that holds the heap's lock, 0 when there is none. Nothing where it is not
// known how the system keeps the locks, or the heap is gone.
std::optional<DWORD> HolderOf(HANDLE heap);

// Whether this thread holds the lock of the process's heap; false where that is not known. Takes no
// time.
bool HoldsProcessHeap();

}  // namespace tessary::susiectl
