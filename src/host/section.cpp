#include "host/section.h"

#include <psapi.h>

#include <utility>

namespace tessary {
namespace {

DWORD ViewAccess(Section::Access access) {
    switch (access) {
        case Section::Access::kRead:
            return FILE_MAP_READ;
        case Section::Access::kWrite:
            return FILE_MAP_WRITE;
        case Section::Access::kPrivateWrite:
            return FILE_MAP_COPY;
    }
    return FILE_MAP_READ;
}

// How much of a view is there: whoever has made the section may have made it small. Nothing of a
// file: what lies there can go while it is read.
size_t RealSize(void* view) {
    MEMORY_BASIC_INFORMATION region{};
    const bool isKnown = VirtualQuery(view, &region, sizeof(region)) != 0;
    wchar_t file[MAX_PATH];
    const bool isFile = K32GetMappedFileNameW(GetCurrentProcess(), view, file, MAX_PATH) != 0;
    return isKnown && region.State == MEM_COMMIT && !isFile ? region.RegionSize : 0;
}

}  // namespace

std::optional<Section> Section::Make(size_t size, SECURITY_ATTRIBUTES* security) {
    const uint64_t wide = size;
    UniqueSection section(CreateFileMappingW(INVALID_HANDLE_VALUE, security, PAGE_READWRITE,
                                             static_cast<DWORD>(wide >> 32),
                                             static_cast<DWORD>(wide), nullptr));
    if (!section) return std::nullopt;
    void* const view = MapViewOfFile(section.Get(), FILE_MAP_WRITE, 0, 0, 0);
    return view == nullptr ? std::nullopt : std::optional(Section(std::move(section), view, size));
}

std::optional<Section> Section::Open(UniqueSection section, uint64_t size, Access access) {
    if (!section || size == 0 || size > SIZE_MAX) return std::nullopt;
    const auto bytes = static_cast<size_t>(size);
    void* const view = MapViewOfFile(section.Get(), ViewAccess(access), 0, 0, bytes);
    if (view == nullptr) return std::nullopt;
    Section opened(std::move(section), view, bytes);
    return RealSize(view) < bytes ? std::nullopt : std::optional(std::move(opened));
}

}  // namespace tessary
