#include "app/base/file_identity.h"

#include <windows.h>

#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

// FILE_ID_INFO, which Windows 8 has brought.
struct LongFileId {
    ULONGLONG volume;
    ULONGLONG low;
    ULONGLONG high;
};

// What of a file's number is beyond 64 bits: ReFS needs them to tell its files apart. Elsewhere,
// and where the system does not know, 0.
ULONGLONG UpperHalfOfId(HANDLE file) {
    constexpr auto kFileIdInfo = static_cast<FILE_INFO_BY_HANDLE_CLASS>(18);
    LongFileId id{};
    return GetFileInformationByHandleEx(file, kFileIdInfo, &id, sizeof(id)) ? id.high : 0;
}

}  // namespace

std::wstring IdentityOf(std::wstring_view path) {
    const UniqueFile opened(CreateFileW(ExtendedPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                                        nullptr));
    BY_HANDLE_FILE_INFORMATION file{};
    if (!opened || !GetFileInformationByHandle(opened.Get(), &file) ||
        (file.nFileIndexHigh | file.nFileIndexLow) == 0) {
        return ToUpper(FullPathOf(path));
    }
    // No path begins like this.
    std::wstring identity = L"<";
    for (const ULONGLONG number :
         {ULONGLONG{file.dwVolumeSerialNumber}, ULONGLONG{file.nFileIndexHigh},
          ULONGLONG{file.nFileIndexLow}, UpperHalfOfId(opened.Get())}) {
        identity.append(std::to_wstring(number)).append(L">");
    }
    return identity;
}

bool IsSameFile(std::wstring_view one, std::wstring_view other) {
    return EqualsIgnoreCase(one, other) || IdentityOf(one) == IdentityOf(other);
}

}  // namespace tessary
