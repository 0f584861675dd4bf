// What the test process holds, to be compared before and after.
#pragma once

#include <windows.h>

#include <winternl.h>

#include <cstddef>
#include <vector>

namespace tessary::test {

// Open handles of this process, from the system's list of all: Wine has no other count.
inline ULONG HandleCount() {
    std::vector<std::byte> list(1 << 20);
    ULONG size = 0;
    if (NtQuerySystemInformation(SystemProcessInformation, list.data(),
                                 static_cast<ULONG>(list.size()), &size) != 0) {
        return 0;
    }
    for (size_t at = 0;;) {
        const auto& process = reinterpret_cast<const SYSTEM_PROCESS_INFORMATION&>(list[at]);
        if (process.UniqueProcessId == ULongToHandle(GetCurrentProcessId())) {
            return process.HandleCount;
        }
        if (process.NextEntryOffset == 0) return 0;
        at += process.NextEntryOffset;
    }
}

// Memory that this process alone has committed, in bytes.
inline size_t PrivateBytes() {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (std::byte* at = nullptr; VirtualQuery(at, &region, sizeof(region)) != 0;) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
        std::byte* const end = static_cast<std::byte*>(region.BaseAddress) + region.RegionSize;
        if (end <= at) break;
        at = end;
    }
    return bytes;
}

}  // namespace tessary::test
