#include "plugins/common/susie_source.h"

#include "helpers/files/file_name.h"
#include "plugins/common/file_part.h"

namespace tessary::spi {
namespace {

using codec::Result;

constexpr uint32_t kSourceMask = 7;

// Addresses of the lowest 64 KB are never mapped: a header "pointer" in there is a file handle.
constexpr uintptr_t kHighestHandle = 0xFFFF;

// Reads from the handle's position on and puts the position back.
size_t PeekFile(HANDLE file, std::span<uint8_t> out) {
    LARGE_INTEGER position{};
    if (!SetFilePointerEx(file, {}, &position, FILE_CURRENT)) return 0;
    DWORD count = 0;
    if (!ReadFile(file, out.data(), static_cast<DWORD>(out.size()), &count, nullptr)) count = 0;
    SetFilePointerEx(file, position, nullptr, FILE_BEGIN);
    return count;
}

}  // namespace

Result OpenSource(const char* source, LONG_PTR length, uint32_t flag,
                  std::unique_ptr<dib::ByteSource>& bytes) {
    if (source == nullptr) return Result::kInternalError;
    switch (flag & kSourceMask) {
        case susie::kSourceFile: {
            if (length < 0) return Result::kBrokenData;
            bytes = FilePart::Open(files::FileNameOf(source), static_cast<uint64_t>(length));
            if (bytes == nullptr) return Result::kReadError;
            return bytes->Size() == 0 ? Result::kBrokenData : Result::kSuccess;
        }
        case susie::kSourceMemory:
            if (length <= 0) return Result::kBrokenData;
            bytes = std::make_unique<dib::MemorySource>(
                std::span(reinterpret_cast<const uint8_t*>(source), static_cast<size_t>(length)));
            return Result::kSuccess;
        default:
            return Result::kInternalError;
    }
}

std::span<const uint8_t> HeaderBytes(const char* fileName, const void* header, HeaderBlock& block) {
    const auto value = reinterpret_cast<uintptr_t>(header);
    if (value > kHighestHandle) {
        return {static_cast<const uint8_t*>(header), susie::kHeaderBlockSize};
    }
    size_t count = 0;
    if (value != 0) {
        count = PeekFile(reinterpret_cast<HANDLE>(value), block);
    } else if (fileName != nullptr) {
        const auto file = FilePart::Open(files::FileNameOf(fileName), 0);
        if (file != nullptr) count = file->ReadAt(0, block).value_or(0);
    }
    return std::span<const uint8_t>(block).first(count);
}

}  // namespace tessary::spi
