#include "helpers/susiectl/left_heap.h"

#include <windows.h>

namespace tessary::susiectl {
namespace {

// Longer than a thread may wait for its turn on a busy machine: nobody may unlock what he does not
// hold.
constexpr DWORD kInVain = 3000;  // milliseconds
constexpr int kDeepest = 2;      // calls of the heap inside each other

void CALLBACK VisitHeap(PTP_CALLBACK_INSTANCE, void* visited) {
    HeapLock(GetProcessHeap());
    HeapUnlock(GetProcessHeap());
    SetEvent(visited);
}

}  // namespace

void UnlockLeftHeap() {
    const HANDLE visited = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (visited == nullptr) return;
    bool isOver = !TrySubmitThreadpoolCallback(VisitHeap, visited, nullptr);
    for (int depth = 0; !isOver && depth <= kDeepest; ++depth) {
        if (depth != 0) HeapUnlock(GetProcessHeap());
        isOver = WaitForSingleObject(visited, kInVain) == WAIT_OBJECT_0;
    }
    if (isOver) CloseHandle(visited);  // else the visitor may still come
}

}  // namespace tessary::susiectl
