// Picture memory: the local-memory blocks that Susie plug-ins hand out, and the pair of them that
// is a picture. None of the helpers shows a message or throws; a handle may be anything, also one
// that was freed long ago.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>
#include <utility>

#include "helpers/dib/bitmap_header.h"

namespace tessary {

// A picture as two blocks: the info block (header and colour table) and the bits block (pixel
// rows). Null: no block. A plain value: whoever receives a pair owns both blocks and frees them.
struct PicturePair {
    HLOCAL info = nullptr;
    HLOCAL bits = nullptr;
};

// Whether a handle names a block that exists and is not discarded. Blocks of other heaps than the
// process's, as malloc gives them, are none.
bool IsLocalHandleValid(HLOCAL handle);

// The block's address after one more lock. For null and for an invalid handle all bits are set
// (-1): callers test the handle first and treat a null address as the failure.
void* LockLocalHandle(HLOCAL handle);

// What LockLocalHandle answers for a handle that cannot be locked.
inline void* const kInvalidLock = reinterpret_cast<void*>(static_cast<INT_PTR>(-1));

// Takes one lock off: -1 for null or a block that is not locked, else the system's answer.
INT_PTR UnlockLocalHandle(HLOCAL handle);

// Unlocks a block as often as it is locked, frees it and sets the caller's handle to null. False
// when there was no block to free, as for a handle without bytes, or freeing it crashed (it then
// becomes null all the same), or the block still exists (the handle stays).
bool FreeLocalHandle(HLOCAL& handle);

// Runs `work` with `argument` so that a crash in it is contained; answers 0 for a crash.
using MemoryGuard = int(__stdcall*)(FARPROC work, LONG_PTR argument);

// Who contains the crashes of what is done with blocks of plug-ins; null, as before the first call:
// nobody does. Plug-ins write beyond their blocks, which the system may come upon when it frees
// one. From any thread.
void SetMemoryGuard(MemoryGuard guard);

// Takes over what a plug-in has handed out. Afterwards it is a block all of which can be read, or
// null, and what could be freed of it is. False when looking at it has crashed.
bool TakeForeignHandle(HLOCAL& handle);

// Frees what a failed call has left in a handle, where that can be done without harm: a movable
// block. Of a fixed one nobody can tell whether the failed call has freed it already.
void FreeLeftHandle(HLOCAL& handle);

// The block's size in bytes; -1 for an invalid handle.
INT_PTR LocalHandleSize(HLOCAL handle);

// Copies the first 40 bytes of the info block. False only when the pair has no info block.
bool GetPictureHeader(const PicturePair& picture, dib::BitmapInfoHeader& header);

// Frees both blocks of a pair and leaves it empty.
void FreePicture(PicturePair& picture);

// Owns one block and frees it at the end of its life.
class OwnedBlock {
  public:
    OwnedBlock() = default;
    explicit OwnedBlock(HLOCAL handle) : handle_(handle) {}
    OwnedBlock(OwnedBlock&& other) noexcept : handle_(other.Release()) {}
    OwnedBlock& operator=(OwnedBlock&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~OwnedBlock() { FreeLocalHandle(handle_); }

    HLOCAL Get() const { return handle_; }
    HLOCAL Release() { return std::exchange(handle_, nullptr); }
    HLOCAL* Receive() { return &handle_; }  // for an empty owner only
    explicit operator bool() const { return handle_ != nullptr; }

  private:
    HLOCAL handle_ = nullptr;
};

// Keeps a block locked for its own life.
class BlockLock {
  public:
    explicit BlockLock(HLOCAL handle);
    BlockLock(const BlockLock&) = delete;
    BlockLock& operator=(const BlockLock&) = delete;
    ~BlockLock();

    void* Address() const { return address_; }  // null when the block could not be locked
    size_t Size() const { return size_; }       // bytes; 0 when the block could not be locked
    std::span<const uint8_t> Bytes() const {
        return {static_cast<const uint8_t*>(address_), size_};
    }
    explicit operator bool() const { return address_ != nullptr; }

  private:
    HLOCAL handle_;
    void* address_ = nullptr;
    size_t size_ = 0;
};

// A new movable block of `size` bytes, filled by `fill`, which gets them as a span of uint8_t;
// empty when there is no memory for it.
template <typename Fill>
OwnedBlock FilledBlock(size_t size, Fill fill) {
    OwnedBlock block(LocalAlloc(LMEM_MOVEABLE, size));
    const BlockLock lock(block.Get());
    if (lock) fill(std::span(static_cast<uint8_t*>(lock.Address()), size));
    return lock ? std::move(block) : OwnedBlock();
}

}  // namespace tessary
