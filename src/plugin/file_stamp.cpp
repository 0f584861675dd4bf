#include "plugin/file_stamp.h"

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/paths.h"

namespace tessary {

std::optional<FileStamp> StampOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &data) ||
        (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return std::nullopt;
    }
    const auto joined = [](DWORD high, DWORD low) { return uint64_t{high} << 32 | low; };
    return FileStamp{
        joined(data.nFileSizeHigh, data.nFileSizeLow),
        joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime)};
}

std::optional<FileStamp> ExactStampOf(const std::wstring& path) {
    std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp) return std::nullopt;
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    FILE_BASIC_INFO times{};
    BY_HANDLE_FILE_INFORMATION known{};
    if (file && GetFileInformationByHandleEx(file.Get(), FileBasicInfo, &times, sizeof(times))) {
        stamp->touched = static_cast<uint64_t>(times.ChangeTime.QuadPart);
    }
    if (file && GetFileInformationByHandle(file.Get(), &known)) {
        stamp->identity = uint64_t{known.nFileIndexHigh} << 32 | known.nFileIndexLow;
    }
    return stamp;
}

}  // namespace tessary
