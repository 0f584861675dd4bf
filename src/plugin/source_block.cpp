#include "plugin/source_block.h"

#include <algorithm>
#include <cstring>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

// Leaves a 32-bit process room for what is made of the block.
constexpr int64_t kLargestBlock = 0x20000000;
constexpr size_t kLongestName = MAX_PATH - 1;

UniqueFile OpenForReading(const std::wstring& path) {
    return UniqueFile(CreateFileW(ExtendedPath(path).c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

}  // namespace

HeaderBlock HeaderOf(std::span<const uint8_t> block) {
    HeaderBlock header{};
    std::memcpy(header.data(), block.data(), std::min(block.size(), header.size()));
    return header;
}

std::optional<HeaderBlock> ReadFileHeader(const std::wstring& path) {
    const UniqueFile file = OpenForReading(path);
    if (!file) return std::nullopt;
    HeaderBlock header{};
    DWORD read = 0;
    if (!ReadFile(file.Get(), header.data(), static_cast<DWORD>(header.size()), &read, nullptr)) {
        return std::nullopt;
    }
    return header;
}

OwnedBlock ReadWholeFile(const std::wstring& path) {
    const UniqueFile file = OpenForReading(path);
    LARGE_INTEGER size{};
    if (!file || !GetFileSizeEx(file.Get(), &size) || size.QuadPart <= 0 ||
        size.QuadPart > kLargestBlock) {
        return {};
    }
    const auto length = static_cast<DWORD>(size.QuadPart);
    OwnedBlock block(LocalAlloc(LMEM_MOVEABLE, length));
    {
        const BlockLock lock(block.Get());
        DWORD read = 0;
        if (!lock || !ReadFile(file.Get(), lock.Address(), length, &read, nullptr) ||
            read != length) {
            return {};
        }
    }
    return block;
}

std::string AnsiNameOf(const std::wstring& path) {
    std::string name = ToAnsi(FileNameOf(path));
    if (name.size() > kLongestName) name = "_." + ToAnsi(UpperExtensionOf(path));
    if (name.size() > kLongestName) name = "_";
    // No file name has a `?` of its own.
    std::replace(name.begin(), name.end(), '?', '_');
    return name;
}

std::string AnsiSourceNameOf(const std::wstring& name) {
    const std::optional<std::string> exact = ToAnsiExact(name);
    return exact && exact->size() <= kLongestName ? *exact : AnsiNameOf(name);
}

}  // namespace tessary
