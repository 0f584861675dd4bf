#include "helpers/susiectl/plugin_threads.h"

#include <memory>

#include "helpers/susiectl/module_at.h"
#include "helpers/susiectl/system_entry.h"

namespace tessary::susiectl {
namespace {

// Negative for failure.
using NtGetNextThread = LONG(WINAPI*)(HANDLE process, HANDLE thread, ACCESS_MASK access,
                                      ULONG attributes, ULONG flags, HANDLE* next);
using NtQueryInformationThread = LONG(WINAPI*)(HANDLE thread, int what, void* answer, ULONG size,
                                               ULONG* length);
constexpr int kThreadQuerySetWin32StartAddress = 9;

struct Close {
    void operator()(void* handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, Close>;

bool IsAlive(HANDLE thread) {
    return WaitForSingleObject(thread, 0) == WAIT_TIMEOUT;
}

// Null when the system cannot tell.
const void* StartOf(HANDLE thread) {
    static const auto query = SystemEntry<NtQueryInformationThread>("NtQueryInformationThread");
    const void* start = nullptr;
    // Some systems learn it from the thread itself, a moment after it was made.
    constexpr int kMostTries = 50;
    for (int tries = 0; query && !start && tries < kMostTries && IsAlive(thread); ++tries) {
        if (tries > 0) Sleep(1);
        query(thread, kThreadQuerySetWin32StartAddress, &start, sizeof start, nullptr);
    }
    return start;
}

}  // namespace

bool RunsThreads(HMODULE module) {
    static const auto nextOf = SystemEntry<NtGetNextThread>("NtGetNextThread");
    if (!nextOf) return false;
    Handle thread;
    HANDLE next = nullptr;
    while (nextOf(GetCurrentProcess(), thread.get(), THREAD_QUERY_INFORMATION | SYNCHRONIZE, 0, 0,
                  &next) >= 0) {
        thread.reset(next);
        if (ModuleAt(StartOf(next)) == module && IsAlive(next)) return true;
    }
    return false;
}

}  // namespace tessary::susiectl
