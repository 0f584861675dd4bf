#include "helpers/susiectl/heap_check.h"

#include <windows.h>

#include <array>
#include <atomic>
#include <new>

#include "helpers/susiectl/guard.h"
#include "helpers/susiectl/process_end.h"

namespace tessary::susiectl {
namespace {

// Longer than a thread may wait for its turn on a busy machine: nobody may unlock what he does not
// hold.
constexpr DWORD kInVain = 3000;     // milliseconds
constexpr DWORD kStep = 100;        // milliseconds
constexpr DWORD kLongest = 20'000;  // milliseconds to look through one heap
constexpr int kDeepest = 2;         // calls of the heap inside each other
constexpr DWORD kMostHeaps = 512;
constexpr SIZE_T kStackSize = 256 * 1024;

enum class Stage { kIdle, kWaitingForLock, kLooking };

// What the thread that crashed and the one that looks tell each other.
struct Check {
    HANDLE wanted = nullptr;
    HANDLE done = nullptr;
    std::atomic<HANDLE> heap = nullptr;  // the one that is looked at
    std::atomic<Stage> stage = Stage::kIdle;
    std::atomic<bool> isUnderWay = false;
    std::atomic<bool> isDamaged = false;
    std::array<HANDLE, kMostHeaps> heaps{};
};

Check check;

void Look(HANDLE heap) {
    check.heap = heap;
    check.stage = Stage::kWaitingForLock;
    // Heaps of plug-ins may go at any moment.
    const bool isLocked = BareCall(AddressOf(HeapLock), {Word(heap)}).value_or(FALSE) != FALSE;
    check.stage = Stage::kLooking;
    if (!isLocked) return;
    const auto isSound = BareCall(AddressOf(HeapValidate), {Word(heap), HEAP_NO_SERIALIZE, 0});
    HeapUnlock(heap);
    if (!isSound.value_or(FALSE)) check.isDamaged = true;
}

void LookAtAll() {
    const HANDLE own = GetProcessHeap();
    Look(own);  // first: the list of the others may be behind the same lock
    const DWORD count = GetProcessHeaps(kMostHeaps, check.heaps.data());
    for (DWORD i = 0; i < count && count <= kMostHeaps; ++i)
        if (check.heaps[i] != own) Look(check.heaps[i]);
    check.stage = Stage::kIdle;
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
    if (check.isUnderWay.exchange(true)) return;
    ResetEvent(check.done);
    SetEvent(check.wanted);
    HANDLE heap = nullptr;
    Stage stage = Stage::kIdle;
    DWORD waited = 0;
    int unlocked = 0;
    while (WaitForSingleObject(check.done, kStep) != WAIT_OBJECT_0) {
        waited += kStep;
        if (check.heap != heap) unlocked = 0;
        if (check.heap != heap || check.stage != stage) {  // it makes its way
            heap = check.heap;
            stage = check.stage;
            waited = 0;
        } else if (stage == Stage::kWaitingForLock && waited >= kInVain) {
            check.isDamaged = true;
            // Another thread holds it, which may never let go: so there is no further check.
            if (++unlocked > kDeepest) return;
            HeapUnlock(heap);
            waited = 0;
        } else if (stage == Stage::kLooking && waited >= kLongest) {
            EndProcess();
        }
    }
    check.isUnderWay = false;
}

bool AreHeapsDamaged() {
    return check.isDamaged;
}

}  // namespace tessary::susiectl
