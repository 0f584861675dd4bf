#include "helpers/susiectl/exception_handlers.h"

#include <algorithm>
#include <array>
#include <span>

#include "helpers/susiectl/system_entry.h"

namespace tessary::susiectl {
namespace {

using NtQueryInformationProcess = LONG(WINAPI*)(HANDLE process, int what, void* answer, ULONG size,
                                                ULONG* length);
constexpr int kProcessExecuteFlags = 0x22;
constexpr ULONG kEnable = 0x02;  // data is run, and so are handlers wherever they are
constexpr ULONG kExecuteDispatchEnable = 0x10;
constexpr ULONG kImageDispatchEnable = 0x20;
constexpr ULONG kDisableChainValidation = 0x40;

// Found while the library is loaded: in an exception handler nothing can be looked for.
const auto queryProcess = SystemEntry<NtQueryInformationProcess>("NtQueryInformationProcess");

// The beginning of IMAGE_LOAD_CONFIG_DIRECTORY32, which grows with each system.
struct LoadConfiguration {
    DWORD size;
    std::array<DWORD, 15> others;
    DWORD handlers;  // address of a sorted list of offsets from the image's beginning
    DWORD handlerCount;
};

bool IsReadable(const MEMORY_BASIC_INFORMATION& page) {
    return page.State == MEM_COMMIT && !(page.Protect & (PAGE_NOACCESS | PAGE_GUARD));
}

// `count` values at an address that may be anything; none when they cannot be read.
template <typename T>
std::span<const T> ValuesAt(ULONG_PTR address, size_t count = 1) {
    const auto* const first = reinterpret_cast<const T*>(address);
    MEMORY_BASIC_INFORMATION page{};
    if (!VirtualQuery(first, &page, sizeof page) || !IsReadable(page)) return {};
    const size_t before = address - reinterpret_cast<ULONG_PTR>(page.BaseAddress);
    if ((page.RegionSize - before) / sizeof(T) < count) return {};
    return {first, count};
}

// Of an image in memory; none when the system has loaded it another way, or the plug-in has wiped
// it out.
std::span<const IMAGE_NT_HEADERS32> HeadersOf(ULONG_PTR image) {
    const auto dos = ValuesAt<IMAGE_DOS_HEADER>(image);
    if (dos.empty() || dos[0].e_magic != IMAGE_DOS_SIGNATURE) return {};
    const auto headers =
        ValuesAt<IMAGE_NT_HEADERS32>(image + static_cast<ULONG_PTR>(dos[0].e_lfanew));
    const bool isKnown = !headers.empty() && headers[0].Signature == IMAGE_NT_SIGNATURE &&
                         headers[0].OptionalHeader.Magic == IMAGE_NT_OPTIONAL_HDR32_MAGIC;
    return isKnown ? headers : std::span<const IMAGE_NT_HEADERS32>();
}

template <typename T>
std::span<const T> DirectoryOf(ULONG_PTR image, const IMAGE_OPTIONAL_HEADER32& header, DWORD kind) {
    if (kind >= header.NumberOfRvaAndSizes) return {};
    const DWORD offset = header.DataDirectory[kind].VirtualAddress;
    return offset == 0 ? std::span<const T>() : ValuesAt<T>(image + offset);
}

bool IsAllowedByImage(ULONG_PTR image, ULONG_PTR handler) {
    const auto headers = HeadersOf(image);
    if (headers.empty()) return true;
    const IMAGE_OPTIONAL_HEADER32& header = headers[0].OptionalHeader;
    if (header.DllCharacteristics & IMAGE_DLLCHARACTERISTICS_NO_SEH) return false;
    const auto config =
        DirectoryOf<LoadConfiguration>(image, header, IMAGE_DIRECTORY_ENTRY_LOAD_CONFIG);
    if (!config.empty() && config[0].size >= sizeof(LoadConfiguration) && config[0].handlers &&
        config[0].handlerCount) {
        const auto listed = ValuesAt<DWORD>(config[0].handlers, config[0].handlerCount);
        return std::ranges::binary_search(listed, handler - image);
    }
    const auto managed =
        DirectoryOf<IMAGE_COR20_HEADER>(image, header, IMAGE_DIRECTORY_ENTRY_COM_DESCRIPTOR);
    return managed.empty() || !(managed[0].Flags & COMIMAGE_FLAGS_ILONLY);
}

}  // namespace

HandlerRules CurrentHandlerRules() {
    ULONG flags = 0;
    if (!queryProcess ||
        queryProcess(GetCurrentProcess(), kProcessExecuteFlags, &flags, sizeof flags, nullptr) < 0)
        flags = 0;
    return {.inData = (flags & (kEnable | kExecuteDispatchEnable)) != 0,
            .outsideImages = (flags & (kEnable | kImageDispatchEnable)) != 0,
            .checksWholeChain = (flags & kDisableChainValidation) == 0};
}

bool IsCalled(const void* handler, const HandlerRules& rules) {
    MEMORY_BASIC_INFORMATION page{};
    if (!VirtualQuery(handler, &page, sizeof page) || !IsReadable(page)) return false;
    const bool isInImage = page.Type == MEM_IMAGE;
    if (isInImage && !IsAllowedByImage(reinterpret_cast<ULONG_PTR>(page.AllocationBase),
                                       reinterpret_cast<ULONG_PTR>(handler)))
        return false;
    constexpr DWORD kExecutable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    if (!(page.Protect & kExecutable)) return rules.inData;
    return isInImage || rules.outsideImages;
}

}  // namespace tessary::susiectl
