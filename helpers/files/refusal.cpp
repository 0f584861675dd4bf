#include "helpers/files/refusal.h"

#include "helpers/files/file_name.h"

namespace tessary::files {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool Opens(const std::wstring& name, DWORD access, DWORD flags, FileCalls& calls) {
    const HANDLE file = calls.Create(name, access, kShareAll, OPEN_EXISTING, flags);
    if (file == INVALID_HANDLE_VALUE) return false;
    CloseHandle(file);
    return true;
}

bool IsThere(const std::wstring& folder, FileCalls& calls) {
    return Opens(folder, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS, calls);
}

}  // namespace

bool MayAddFiles(const std::wstring& folder, FileCalls& calls) {
    return Opens(folder, FILE_ADD_FILE, FILE_FLAG_BACKUP_SEMANTICS, calls);
}

DWORD TellingError(DWORD error, const std::wstring& name, FileCalls& calls) {
    const std::wstring folder = FolderOf(name);
    // Whoever creates a file asks for no other; a missing folder is a missing path.
    if (error == ERROR_FILE_NOT_FOUND) {
        return IsThere(folder, calls) ? kErrorProtectedFolder : error;
    }
    // Of a file that is there, and of what others have shared, its access control list may tell
    // less than its owner wants.
    const bool isOdd = error == ERROR_ACCESS_DENIED && !calls.IsRemote(name) &&
                       calls.Attributes(name) == INVALID_FILE_ATTRIBUTES &&
                       GetLastError() == ERROR_FILE_NOT_FOUND && MayAddFiles(folder, calls);
    return isOdd ? kErrorProtectedFolder : error;
}

// Who has it open and lets others delete it is in the way only of renaming: then it opens.
bool IsInUse(const std::wstring& name, FileCalls& calls) {
    if (Opens(name, DELETE, FILE_FLAG_OPEN_REPARSE_POINT, calls)) return true;
    return GetLastError() == ERROR_SHARING_VIOLATION || calls.WasDeletePending();
}

}  // namespace tessary::files
