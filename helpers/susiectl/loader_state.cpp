#include "helpers/susiectl/loader_state.h"

#include <cstddef>
#include <cstring>

#include "helpers/susiectl/exception_codes.h"
#include "helpers/susiectl/system_entry.h"
#include "helpers/susiectl/thread_block.h"

namespace tessary::susiectl {
namespace {

using RtlNtStatusToDosError = ULONG(WINAPI*)(LONG status);

// Places in the system's blocks of the thread and the process, the same since Windows Vista.
#ifdef _WIN64
constexpr size_t kProcessBlock = 0x60;   // in the thread's
constexpr size_t kThreadFlags = 0x17EE;  // in the thread's
constexpr size_t kLoaderLock = 0x110;    // in the process's
#else
constexpr size_t kProcessBlock = 0x30;
constexpr size_t kThreadFlags = 0xFCA;
constexpr size_t kLoaderLock = 0xA0;
#endif

// Of kThreadFlags, from Windows 8 on, which has more than one lock; 0 before.
constexpr USHORT kLoadOwner = 0x1000;

template <typename T>
T ReadAt(const std::byte* block, size_t offset) {
    T value;
    std::memcpy(&value, block + offset, sizeof value);
    return value;
}

}  // namespace

bool IsCrash(DWORD error, DWORD exception) {
    if (exception == 0) return false;
    if (error == ERROR_DLL_INIT_FAILED) return IsSystemError(exception);
    static const auto errorOf = SystemEntry<RtlNtStatusToDosError>("RtlNtStatusToDosError");
    return errorOf && errorOf(static_cast<LONG>(exception)) == error;
}

bool HoldsLoader() {
    const std::byte* const thread = ThreadBlock();
    const auto* const process = ReadAt<const std::byte*>(thread, kProcessBlock);
    const auto* const lock = ReadAt<const CRITICAL_SECTION*>(process, kLoaderLock);
    const bool holdsLock = lock && HandleToULong(lock->OwningThread) == GetCurrentThreadId();
    return holdsLock || (ReadAt<USHORT>(thread, kThreadFlags) & kLoadOwner);
}

}  // namespace tessary::susiectl
