// The heaps of the process after a crash.
//
// A function that crashes inside a heap leaves it locked: its thread may go on, but all others
// would wait for ever. And the crash of one that has written where it must not is often the first
// sign of a heap that is damaged.
#pragma once

namespace tessary::susiectl {

// Makes ready what CheckHeaps needs, for then nothing can be allocated any more. Without it no heap
// is checked, nor given back.
void PrepareHeapCheck();

// To be called by the thread in which the function has crashed, or has left a heap locked. Gives
// back the heaps' locks that this thread holds, has another thread look at all heaps, and allocates
// nothing. Takes a moment, or a second for each heap that another thread keeps locked, which is not
// looked at. Ends the process when nobody comes through, which takes 20 s: where a heap has become
// a maze, or the crash has left a lock that is not known how to give back.
void CheckHeaps();

// Whether a check has found a heap damaged, or locked by what has crashed in it.
bool AreHeapsDamaged();

}  // namespace tessary::susiectl
