#include "picture/modMemory.h"

#include <cstring>

namespace tessary {
namespace {

// What LocalFlags answers: the low byte counts the locks, these bits mark a discardable block, and
// from here on the block is discarded or the handle invalid (LMEM_INVALID_HANDLE, LMEM_DISCARDED).
constexpr UINT kLockCountMask = 0x00FF;
constexpr UINT kDiscardable = 0x0F00;
constexpr UINT kUnusable = 4096;

// The address of a fixed block is its handle, and aligned; other handles are not.
bool IsMovable(HLOCAL handle) {
    return reinterpret_cast<uintptr_t>(handle) % MEMORY_ALLOCATION_ALIGNMENT != 0;
}

bool IsDiscardable(UINT flags) {
    return (flags & kDiscardable) == kDiscardable;
}

}  // namespace

bool IsLocalHandleValid(HLOCAL handle) {
    return handle != nullptr && LocalFlags(handle) < kUnusable;
}

void* LockLocalHandle(HLOCAL handle) {
    return IsLocalHandleValid(handle) ? LocalLock(handle) : kInvalidLock;
}

INT_PTR UnlockLocalHandle(HLOCAL handle) {
    if (handle == nullptr || (LocalFlags(handle) & kLockCountMask) == 0) return -1;
    return LocalUnlock(handle);
}

bool FreeLocalHandle(HLOCAL& handle) {
    if (handle == nullptr) return false;
    UINT flags = LocalFlags(handle);
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
        if (LocalUnlock(handle) < 1 || IsDiscardable(LocalFlags(handle))) break;
    }
    if (IsLocalHandleValid(handle) && LocalFree(handle) != nullptr) return false;
    // A freed handle is not asked again: the system may already have given its place to another
    // block.
    handle = nullptr;
    return true;
}

void FreeLeftHandle(HLOCAL& handle) {
    if (IsMovable(handle)) FreeLocalHandle(handle);
    handle = nullptr;
}

bool IsLeftBlock(HLOCAL handle) {
    if (handle == nullptr) return false;
    return (IsMovable(handle) || HeapValidate(GetProcessHeap(), 0, handle)) &&
           IsLocalHandleValid(handle);
}

INT_PTR LocalHandleSize(HLOCAL handle) {
    if (handle == nullptr || LocalFlags(handle) >= kUnusable) return -1;
    return static_cast<INT_PTR>(LocalSize(handle));
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
