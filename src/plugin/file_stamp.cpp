#include "plugin/file_stamp.h"

#include <windows.h>

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

}  // namespace tessary
