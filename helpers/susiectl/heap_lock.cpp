#include "helpers/susiectl/heap_lock.h"

#include <atomic>

namespace tessary::susiectl {
namespace {

// How much of a heap's beginning is searched: its header, with room for later systems' ones.
constexpr size_t kHeaderSize = 4096;

std::atomic<size_t> place = 0;  // of the lock, from the heap's address; 0: not known
std::atomic<bool> isProcessHeapLikewise = false;

const volatile CRITICAL_SECTION* LockAt(HANDLE heap, size_t offset) {
    return reinterpret_cast<const CRITICAL_SECTION*>(static_cast<const std::byte*>(heap) + offset);
}

// Whether it looks like a lock that this thread holds so many times; 0: nobody does.
bool IsHeld(const volatile CRITICAL_SECTION* lock, LONG times) {
    const DWORD holder = times > 0 ? GetCurrentThreadId() : 0;
    return lock->RecursionCount == times && HandleToULong(lock->OwningThread) == holder;
}

// In a heap that nobody else knows; 0 when nothing in its header, or more than one thing, behaves
// like its lock.
size_t FindLock(HANDLE heap) {
    size_t found = 0;
    int count = 0;
    HeapLock(heap);
    HeapLock(heap);
    for (size_t at = alignof(void*); at + sizeof(CRITICAL_SECTION) <= kHeaderSize;
         at += alignof(void*)) {
        if (!IsHeld(LockAt(heap, at), 2)) continue;
        found = at;
        ++count;
    }
    HeapUnlock(heap);
    const bool isHeldOnce = count == 1 && IsHeld(LockAt(heap, found), 1);
    HeapUnlock(heap);
    return isHeldOnce && IsHeld(LockAt(heap, found), 0) ? found : 0;
}

bool HasReadableHeader(HANDLE heap) {
    MEMORY_BASIC_INFORMATION memory{};
    return VirtualQuery(heap, &memory, sizeof memory) && memory.State == MEM_COMMIT &&
           memory.RegionSize >= kHeaderSize;
}

}  // namespace

void LearnHeapLocks() {
    const HANDLE sample = HeapCreate(0, 0, 0);
    if (!sample) return;
    if (HasReadableHeader(sample)) place = FindLock(sample);
    HeapDestroy(sample);
    const HANDLE own = GetProcessHeap();
    if (place == 0 || !HasReadableHeader(own)) return;
    // The system makes this one itself, early, and may do it another way.
    HeapLock(own);
    isProcessHeapLikewise = IsHeld(LockAt(own, place), 1);
    HeapUnlock(own);
}

std::optional<DWORD> HolderOf(HANDLE heap) {
    if (place == 0 || (heap == GetProcessHeap() && !isProcessHeapLikewise)) return std::nullopt;
    CRITICAL_SECTION lock{};
    const auto* const at = static_cast<const std::byte*>(heap) + place;
    // The heap may go at any moment.
    if (!ReadProcessMemory(GetCurrentProcess(), at, &lock, sizeof lock, nullptr))
        return std::nullopt;
    return HandleToULong(lock.OwningThread);
}

bool HoldsProcessHeap() {
    return isProcessHeapLikewise &&
           HandleToULong(LockAt(GetProcessHeap(), place)->OwningThread) == GetCurrentThreadId();
}

}  // namespace tessary::susiectl
