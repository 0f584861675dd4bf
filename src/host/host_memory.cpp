#include "host/host_memory.h"

#include <psapi.h>

#include <algorithm>

namespace tessary {
namespace {

constexpr uint64_t kLeastBound = uint64_t{3} << 29;  // 1.5 GB
constexpr ULONGLONG kPause = 200;                    // milliseconds; a look costs as much as a call

}  // namespace

uint64_t DefaultMemoryBound() {
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    return GlobalMemoryStatusEx(&memory) ? std::max<uint64_t>(memory.ullTotalPhys / 2, kLeastBound)
                                         : kLeastBound;
}

bool HostMemory::IsLittered() {
    const ULONGLONG now = GetTickCount64();
    if (now - lookedAt_ < kPause) return false;
    lookedAt_ = now;
    return Used() > std::min(bound_, kLeastBound) / 2;
}

uint64_t HostMemory::Used() const {
    PROCESS_MEMORY_COUNTERS_EX counters{};
    counters.cb = sizeof(counters);
    const bool isKnown = K32GetProcessMemoryInfo(
        process_, reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof(counters));
    // Some systems fill in the one, some the other.
    return isKnown ? std::max(counters.PrivateUsage, counters.PagefileUsage) : 0;
}

}  // namespace tessary
