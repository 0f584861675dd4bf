#include "helpers/files/file_source.h"

#include <algorithm>

namespace tessary::files {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr size_t kLongestRead = 1u << 30;  // bytes in one call to the system

// The name in the form that the system takes at any length, where the usual form is too long.
std::wstring OpenableName(const std::wstring& fileName) {
    const DWORD length = GetFullPathNameW(fileName.c_str(), 0, nullptr, nullptr);
    if (length == 0) return fileName;
    std::wstring full(length, L'\0');
    full.resize(GetFullPathNameW(fileName.c_str(), length, full.data(), nullptr));
    if (full.size() < MAX_PATH || full.starts_with(L"\\\\?\\")) return fileName;
    if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + full.substr(2);
    return L"\\\\?\\" + full;
}

}  // namespace

std::optional<FileSource> FileSource::Open(const std::wstring& fileName) {
    const HANDLE handle =
        CreateFileW(OpenableName(fileName).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) return std::nullopt;
    UniqueFile file(handle);
    LARGE_INTEGER size;
    if (GetFileType(handle) != FILE_TYPE_DISK || !GetFileSizeEx(handle, &size)) return std::nullopt;
    return FileSource(std::move(file), static_cast<uint64_t>(size.QuadPart));
}

// Reading at an offset that is given to each call looks simpler, but has some systems report every
// single read to a server: of a picture in a thousand pieces that is half the time.
std::optional<size_t> FileSource::ReadAt(uint64_t offset, std::span<uint8_t> into) {
    if (offset != position_) {
        LARGE_INTEGER to;
        to.QuadPart = static_cast<LONGLONG>(offset);
        if (!SetFilePointerEx(file_.get(), to, nullptr, FILE_BEGIN)) return std::nullopt;
        position_ = offset;
    }
    size_t done = 0;
    while (done < into.size()) {
        const auto wanted = static_cast<DWORD>(std::min(into.size() - done, kLongestRead));
        DWORD got = 0;
        if (!ReadFile(file_.get(), into.data() + done, wanted, &got, nullptr)) {
            position_ = kUnknown;
            return std::nullopt;
        }
        if (got == 0) break;
        done += got;
        position_ += got;
    }
    return done;
}

}  // namespace tessary::files
