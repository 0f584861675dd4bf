#include "helpers/susiectl/heap_check.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <new>
#include <span>

#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/heap_lock.h"
#include "helpers/susiectl/process_end.h"

namespace tessary::susiectl {
namespace {

constexpr DWORD kStep = 100;        // milliseconds
constexpr DWORD kPatience = 1000;   // milliseconds for another thread to let go of a lock
constexpr DWORD kLongest = 20'000;  // milliseconds for one step of the way through the heaps
constexpr int kDeepest = 16;        // calls of the heap inside each other
constexpr DWORD kMostHeaps = 512;
constexpr SIZE_T kStackSize = 256 * 1024;

using Heaps = std::array<HANDLE, kMostHeaps>;

enum class Stage { kIdle, kListing, kWaitingForLock, kLooking };

// What the thread that crashed and the one that looks tell each other.
struct Check {
    HANDLE wanted = nullptr;
    HANDLE done = nullptr;
    std::atomic<HANDLE> heap = nullptr;  // the one that is looked at
    std::atomic<Stage> stage = Stage::kIdle;
    std::atomic<bool> isUnderWay = false;
    std::atomic<bool> isDamaged = false;
    Heaps heaps{};
};

Check check;

// None where there are more than anybody has.
std::span<const HANDLE> ListHeaps(Heaps& heaps) {
    const DWORD count = GetProcessHeaps(kMostHeaps, heaps.data());
    return {heaps.data(), count <= kMostHeaps ? count : 0};
}

// Heaps of plug-ins may go at any moment.
bool IsThereStill(HANDLE heap) {
    Heaps heaps;
    return std::ranges::count(ListHeaps(heaps), heap) != 0;
}

bool IsHeldByAnother(HANDLE heap) {
    const DWORD holder = HolderOf(heap).value_or(0);
    return holder != 0 && holder != GetCurrentThreadId();
}

// Whoever holds a heap's lock for long is at work in it and will let go, or is nobody whom a crash
// in this thread tells anything about.
bool IsOutOfReach(HANDLE heap) {
    for (DWORD waited = 0; waited < kPatience && IsHeldByAnother(heap); waited += kStep)
        Sleep(kStep);
    return IsHeldByAnother(heap);
}

// Whether locking the heap keeps others out: a heap may have been made without a lock, for a thread
// that may be changing it.
bool IsLockedByThisThread(HANDLE heap) {
    return HolderOf(heap).value_or(GetCurrentThreadId()) == GetCurrentThreadId();
}

void Look(HANDLE heap) {
    check.heap = heap;
    check.stage = Stage::kWaitingForLock;
    if (IsOutOfReach(heap)) return;
    const auto isLocked = BareCall(AddressOf(HeapLock), {Word(heap)});
    check.stage = Stage::kLooking;
    if (!isLocked && IsThereStill(heap)) check.isDamaged = true;
    if (!isLocked.value_or(FALSE)) return;
    const bool isSound =
        !IsLockedByThisThread(heap) ||
        BareCall(AddressOf(HeapValidate), {Word(heap), HEAP_NO_SERIALIZE, 0}).value_or(FALSE);
    HeapUnlock(heap);
    if (!isSound && IsThereStill(heap)) check.isDamaged = true;
}

void LookAtAll() {
    check.stage = Stage::kListing;
    for (const HANDLE heap : ListHeaps(check.heaps))
        Look(heap);
    check.stage = Stage::kIdle;
}

// What this thread has left locked. Others would wait for it for ever.
void GiveBackLeftLocks() {
    Heaps heaps;
    for (const HANDLE heap : ListHeaps(heaps)) {
        for (int depth = 0; depth < kDeepest && HolderOf(heap) == GetCurrentThreadId(); ++depth) {
            check.isDamaged = true;
            HeapUnlock(heap);
        }
    }
}

DWORD WINAPI LookWhenWanted(void*) {
    try {
        BareCall(AddressOf(GetCurrentThreadId), {});  // whose first in a thread allocates
    } catch (const std::bad_alloc&) {
        check.isUnderWay = true;  // for ever: nobody is there to look
        return 1;
    }
    while (WaitForSingleObject(check.wanted, INFINITE) == WAIT_OBJECT_0) {
        LookAtAll();
        SetEvent(check.done);
    }
    return 0;
}

bool MakeReady() {
    LearnHeapLocks();
    HMODULE own = nullptr;  // must not go: the thread stays
    const bool isPinned = GetModuleHandleExW(
        GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
        reinterpret_cast<const wchar_t*>(reinterpret_cast<const void*>(&LookWhenWanted)), &own);
    check.done = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE wanted = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    check.wanted = wanted;
    if (!isPinned || !check.done || !wanted) return false;
    const HANDLE thread = CreateThread(nullptr, kStackSize, LookWhenWanted, nullptr,
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
    if (thread) CloseHandle(thread);
    return thread != nullptr;
}

}  // namespace

void PrepareHeapCheck() {
    static const bool isReady = MakeReady();
    if (!isReady) check.isUnderWay = true;
}

void CheckHeaps() {
    GiveBackLeftLocks();
    if (!check.wanted || check.isUnderWay.exchange(true)) return;
    ResetEvent(check.done);
    SetEvent(check.wanted);
    HANDLE heap = nullptr;
    Stage stage = Stage::kIdle;
    DWORD waited = 0;
    while (WaitForSingleObject(check.done, kStep) != WAIT_OBJECT_0) {
        waited += kStep;
        if (check.heap != heap || check.stage != stage) {  // it makes its way
            heap = check.heap;
            stage = check.stage;
            waited = 0;
        } else if (waited >= kLongest) {
            // Another thread has got in between and keeps the lock: there is no further check. Else
            // what keeps the way shut is what the crash has left.
            if (stage == Stage::kWaitingForLock && (IsHeldByAnother(heap) || !IsThereStill(heap)))
                return;
            EndProcess();
        }
    }
    check.isUnderWay = false;
}

bool AreHeapsDamaged() {
    return check.isDamaged;
}

}  // namespace tessary::susiectl
