// What the test process holds, to be compared before and after.
#pragma once

#include <windows.h>

#include <cstddef>

namespace tessary::test {

// Open handles of this process among the first four thousand numbers. Each is asked for: what Wine
// gives as their count is the room in its table, which one busy moment doubles for good.
inline ULONG HandleCount() {
    ULONG count = 0;
    for (ULONG_PTR number = 4; number < 4 * 4096; number += 4) {
        DWORD flags = 0;
        count += GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) ? 1 : 0;
    }
    return count;
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
