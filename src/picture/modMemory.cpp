#include "picture/modMemory.h"

#include <atomic>
#include <cstring>

namespace tessary {
namespace {

// What LocalFlags answers: the low byte counts the locks, these bits mark a discardable block, and
// from here on the block is discarded or the handle invalid (LMEM_INVALID_HANDLE, LMEM_DISCARDED).
constexpr UINT kLockCountMask = 0x00FF;
constexpr UINT kDiscardable = 0x0F00;
constexpr UINT kUnusable = 4096;

constexpr size_t kPageSize = 4096;

std::atomic<MemoryGuard> memoryGuard = nullptr;

uintptr_t LowBits(HLOCAL handle) {
    return reinterpret_cast<uintptr_t>(handle) % MEMORY_ALLOCATION_ALIGNMENT;
}

// Of blocks that can move the system hands out places in a table of its own, which it knows.
bool IsMovable(HLOCAL handle) {
    return LowBits(handle) == sizeof(void*);
}

// As LocalFlags, for whatever a plug-in takes for a handle. A fixed block's handle is its address:
// the system reads what stands before any address, and believes it.
UINT FlagsOf(HLOCAL handle) {
    const bool isKnown = IsMovable(handle) || (LowBits(handle) == 0 &&
                                               HeapValidate(GetProcessHeap(), 0, handle) != FALSE);
    return isKnown ? LocalFlags(handle) : UINT{LMEM_INVALID_HANDLE};
}

template <typename Work>
int __stdcall Run(LONG_PTR work) {
    (*reinterpret_cast<const Work*>(work))();
    return 1;
}

// False when `work`, which must own nothing, has crashed.
template <typename Work>
bool UnderGuard(const Work& work) {
    const MemoryGuard guard = memoryGuard;
    const auto argument = reinterpret_cast<LONG_PTR>(&work);
    if (guard == nullptr) return Run<Work>(argument) != 0;
    return guard(reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Run<Work>)), argument) != 0;
}

bool IsDiscardable(UINT flags) {
    return (flags & kDiscardable) == kDiscardable;
}

// FreeLocalHandle of a handle that is not null.
bool Free(HLOCAL& handle) {
    const UINT flags = FlagsOf(handle);
    // The invalid mark (0x8000) carries none of the discardable bits, so the two tests cannot meet.
    if (IsDiscardable(flags)) {
        LocalFree(handle);
        handle = nullptr;
        return true;
    }
    if (flags >= kUnusable) {
        // A movable block of no bytes counts as discarded. It has one of the system's few handles.
        if (flags != LMEM_INVALID_HANDLE) LocalFree(handle);
        handle = nullptr;
        return false;
    }
    for (UINT locks = flags & kLockCountMask; locks > 0; --locks) {
        if (LocalUnlock(handle) < 1 || IsDiscardable(FlagsOf(handle))) break;
    }
    if (IsLocalHandleValid(handle) && LocalFree(handle) != nullptr) return false;
    // A freed handle is not asked again: the system may already have given its place to another
    // block.
    handle = nullptr;
    return true;
}

}  // namespace

bool IsLocalHandleValid(HLOCAL handle) {
    return handle != nullptr && FlagsOf(handle) < kUnusable;
}

void* LockLocalHandle(HLOCAL handle) {
    return IsLocalHandleValid(handle) ? LocalLock(handle) : kInvalidLock;
}

INT_PTR UnlockLocalHandle(HLOCAL handle) {
    if (handle == nullptr || (FlagsOf(handle) & kLockCountMask) == 0) return -1;
    return LocalUnlock(handle);
}

bool FreeLocalHandle(HLOCAL& handle) {
    if (handle == nullptr) return false;
    bool isFreed = false;
    if (UnderGuard([&] { isFreed = Free(handle); })) return isFreed;
    handle = nullptr;
    return false;
}

void SetMemoryGuard(MemoryGuard guard) {
    memoryGuard = guard;
}

bool TakeForeignHandle(HLOCAL& handle) {
    if (handle == nullptr) return true;
    bool isBlock = false;
    const bool cameBack = UnderGuard([&] {
        const BlockLock lock(handle);
        isBlock = static_cast<bool>(lock);
        for (size_t at = 0; at < lock.Size(); at += kPageSize)
            static_cast<void>(static_cast<const volatile uint8_t*>(lock.Address())[at]);
    });
    if (!cameBack) handle = nullptr;
    if (!isBlock) FreeLocalHandle(handle);
    return cameBack;
}

void FreeLeftHandle(HLOCAL& handle) {
    if (IsMovable(handle)) FreeLocalHandle(handle);
    handle = nullptr;
}

INT_PTR LocalHandleSize(HLOCAL handle) {
    return IsLocalHandleValid(handle) ? static_cast<INT_PTR>(LocalSize(handle)) : -1;
}

bool GetPictureHeader(const PicturePair& picture, dib::BitmapInfoHeader& header) {
    if (picture.info == nullptr) return false;
    const BlockLock info(picture.info);
    if (info.Size() >= sizeof(header)) std::memcpy(&header, info.Address(), sizeof(header));
    return true;
}

void FreePicture(PicturePair& picture) {
    FreeLocalHandle(picture.info);
    FreeLocalHandle(picture.bits);
    picture = {};
}

BlockLock::BlockLock(HLOCAL handle) : handle_(handle) {
    void* const address = LockLocalHandle(handle);
    if (address == kInvalidLock || address == nullptr) return;
    address_ = address;
    size_ = static_cast<size_t>(LocalHandleSize(handle));
}

BlockLock::~BlockLock() {
    if (address_ == nullptr) return;
    // Unlocking clears the error code, which may tell why something failed under the lock.
    const DWORD error = GetLastError();
    UnlockLocalHandle(handle_);
    SetLastError(error);
}

}  // namespace tessary
