#include "files/move_file.h"

#include "app/base/error.h"
#include "app/base/found_file.h"
#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "files/delete_file.h"

namespace tessary {
namespace {

constexpr DWORD kPatience = 1500;  // milliseconds, with whoever has the file open
constexpr DWORD kTryAgainMilliseconds = 50;
constexpr int kMostNames = 999;

DWORD LastErrorOf(const std::wstring& path) {
    const DWORD error = GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS) return ERROR_FILE_EXISTS;
    if (error == ERROR_REQUEST_ABORTED) return ERROR_CANCELLED;
    SetLastError(error);
    return LastWriteError(path);
}

DWORD TryToMove(const std::wstring& path, const std::wstring& target, DWORD flags) {
    const DWORD start = GetTickCount();
    for (;;) {
        if (MoveFileExW(ExtendedPath(path).c_str(), ExtendedPath(target).c_str(), flags)) return 0;
        const DWORD error = GetLastError();
        if ((error != ERROR_SHARING_VIOLATION && error != ERROR_LOCK_VIOLATION) ||
            GetTickCount() - start >= kPatience) {
            SetLastError(error);
            return error == ERROR_NOT_SAME_DEVICE ? error : LastErrorOf(path);
        }
        Sleep(kTryAgainMilliseconds);
    }
}

std::wstring NameBeside(const std::wstring& target, int number) {
    return FolderOf(target) + L"~tessary-" + std::to_wstring(number) + L".tmp";
}

// Some systems take the new spelling of a name for a file that is in the way.
DWORD RenameOverAnother(const std::wstring& path, const std::wstring& newPath) {
    for (int number = 1; number <= kMostNames; ++number) {
        const std::wstring between = NameBeside(path, number);
        const DWORD error = TryToMove(path, between, 0);
        if (error == ERROR_FILE_EXISTS) continue;
        if (error != ERROR_SUCCESS) return error;
        const DWORD renamed = TryToMove(between, newPath, 0);
        if (renamed != ERROR_SUCCESS) TryToMove(between, path, 0);
        return renamed;
    }
    return ERROR_FILE_EXISTS;
}

DWORD CALLBACK Tell(LARGE_INTEGER total, LARGE_INTEGER done, LARGE_INTEGER, LARGE_INTEGER, DWORD,
                    DWORD, HANDLE, HANDLE, void* told) {
    const auto& tell = *static_cast<const CopyNews*>(told);
    const bool goesOn = Trapped(false, [&] {
        return !tell ||
               tell(static_cast<uint64_t>(done.QuadPart), static_cast<uint64_t>(total.QuadPart));
    });
    return goesOn ? PROGRESS_CONTINUE : PROGRESS_CANCEL;
}

// The system keeps the time of the last change by itself.
void KeepDates(const std::wstring& path, const std::wstring& copy) {
    WIN32_FILE_ATTRIBUTE_DATA former{};
    if (!GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &former)) return;
    const UniqueFile file(CreateFileW(ExtendedPath(copy).c_str(), FILE_WRITE_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, 0, nullptr));
    if (file) SetFileTime(file.Get(), &former.ftCreationTime, nullptr, &former.ftLastWriteTime);
}

DWORD CopyBeside(const std::wstring& path, const std::wstring& target, const CopyNews& tell,
                 std::wstring& copy) {
    for (int number = 1; number <= kMostNames; ++number) {
        copy = NameBeside(target, number);
        if (CopyFileExW(ExtendedPath(path).c_str(), ExtendedPath(copy).c_str(), Tell,
                        const_cast<CopyNews*>(&tell), nullptr, COPY_FILE_FAIL_IF_EXISTS)) {
            return ERROR_SUCCESS;
        }
        const DWORD error = LastErrorOf(target);
        if (error != ERROR_FILE_EXISTS) return error;
    }
    return ERROR_FILE_EXISTS;
}

}  // namespace

DWORD RenameFile(const std::wstring& path, const std::wstring& newPath) {
    if (path == newPath) return ERROR_SUCCESS;
    const DWORD error = TryToMove(path, newPath, 0);
    const bool isSpelling = EqualsIgnoreCase(path, newPath);
    return error == ERROR_FILE_EXISTS && isSpelling ? RenameOverAnother(path, newPath) : error;
}

DWORD MoveWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell) {
    const bool replaces = inTheWay == InTheWay::kIsReplaced;
    const DWORD error = TryToMove(path, target, replaces ? MOVEFILE_REPLACE_EXISTING : 0);
    if (error != ERROR_NOT_SAME_DEVICE) return error;
    // What cannot be deleted is not copied either, or there would be two.
    const UniqueFile deletable(CreateFileW(ExtendedPath(path).c_str(), DELETE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                           nullptr, OPEN_EXISTING, 0, nullptr));
    if (!deletable) return LastErrorOf(path);
    if (const DWORD copied = CopyWhole(path, target, inTheWay, tell)) return copied;
    const DWORD deleted = DeleteForGood(path);
    if (deleted != ERROR_SUCCESS && !replaces) DeleteForGood(target);
    return deleted;
}

DWORD CopyWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell) {
    const bool replaces = inTheWay == InTheWay::kIsReplaced;
    if (!replaces && PathExists(target)) return ERROR_FILE_EXISTS;
    std::wstring copy;
    if (const DWORD error = CopyBeside(path, target, tell, copy)) return error;
    KeepDates(path, copy);
    // Some systems tell nothing while they copy.
    const uint64_t size = NamedFileOf(copy).size;
    if (tell && !Trapped(false, [&] { return tell(size, size); })) {
        DeleteForGood(copy);
        return ERROR_CANCELLED;
    }
    const DWORD moved = TryToMove(copy, target, replaces ? MOVEFILE_REPLACE_EXISTING : 0);
    if (moved != ERROR_SUCCESS) DeleteForGood(copy);
    return moved;
}

}  // namespace tessary
