#include "convert/numbered_files.h"

#include <windows.h>

#include "app/base/paths.h"

namespace tessary {
namespace {

constexpr int16_t kHighestNumber = 511;

DWORD AccessOf(OpenAccess access) {
    switch (access) {
        case OpenAccess::kRead:
            return GENERIC_READ;
        case OpenAccess::kWrite:
            return GENERIC_WRITE;
        case OpenAccess::kReadWrite:
            return GENERIC_READ | GENERIC_WRITE;
    }
    return 0;
}

// Nothing is shared with a selector that means nothing.
DWORD SharingOf(OpenLock lock) {
    switch (lock) {
        case OpenLock::kShared:
            return FILE_SHARE_READ | FILE_SHARE_WRITE;
        case OpenLock::kDenyRead:
            return FILE_SHARE_WRITE;
        case OpenLock::kDenyWrite:
            return FILE_SHARE_READ;
        case OpenLock::kDenyBoth:
            break;
    }
    return 0;
}

DWORD CreationOf(OpenMode mode) {
    return mode == OpenMode::kInput ? OPEN_EXISTING : OPEN_ALWAYS;
}

bool IsKnown(OpenMode mode, OpenAccess access, OpenLock lock) {
    return mode >= OpenMode::kAppend && mode <= OpenMode::kBinary && access >= OpenAccess::kRead &&
           access <= OpenAccess::kReadWrite && lock >= OpenLock::kShared &&
           lock <= OpenLock::kDenyBoth;
}

}  // namespace

int16_t NumberedFiles::OpenFileNumber(const std::wstring& path, OpenMode mode, OpenAccess access,
                                      OpenLock lock) {
    if (path.empty() || !IsKnown(mode, access, lock)) return 0;
    int16_t number = 1;
    while (files_.contains(number))
        ++number;
    if (number > kHighestNumber) return 0;
    UniqueFile file(CreateFileW(ExtendedPath(path).c_str(), AccessOf(access), SharingOf(lock),
                                nullptr, CreationOf(mode), FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) return 0;
    const bool isReady = mode == OpenMode::kAppend
                             ? SetFilePointerEx(file.Get(), {}, nullptr, FILE_END) != FALSE
                         : mode == OpenMode::kOutput ? SetEndOfFile(file.Get()) != FALSE
                                                     : true;
    if (!isReady) return 0;
    files_.emplace(number, std::move(file));
    return number;
}

void NumberedFiles::CloseFileNumber(int16_t number) {
    files_.erase(number);
}

bool NumberedFiles::WriteLine(int16_t number, std::string_view line) {
    const auto file = files_.find(number);
    if (file == files_.end()) return false;
    // In one go: a full disk or a crash must not leave half a line without its end.
    const std::string whole = std::string(line) + "\r\n";
    DWORD written = 0;
    if (!WriteFile(file->second.Get(), whole.data(), static_cast<DWORD>(whole.size()), &written,
                   nullptr)) {
        return false;
    }
    if (written != whole.size()) SetLastError(ERROR_DISK_FULL);
    return written == whole.size();
}

}  // namespace tessary
