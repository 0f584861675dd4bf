#include "files/move_file.h"

#include "app/base/error.h"
#include "app/base/found_file.h"
#include "app/base/handles.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/base/write_error.h"
#include "files/delete_file.h"
#include "files/same_content.h"

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

// Some systems leave half a copy.
DWORD CopyBeside(const std::wstring& path, const std::wstring& target, const CopyNews& tell,
                 std::wstring& copy) {
    for (int number = 1; number <= kMostNames; ++number) {
        copy = NameBeside(target, number);
        if (PathExists(copy)) continue;
        if (CopyFileExW(ExtendedPath(path).c_str(), ExtendedPath(copy).c_str(), Tell,
                        const_cast<CopyNews*>(&tell), nullptr, COPY_FILE_FAIL_IF_EXISTS)) {
            return ERROR_SUCCESS;
        }
        const DWORD error = LastErrorOf(target);
        if (error == ERROR_FILE_EXISTS) continue;
        DeleteForGood(copy);
        return error;
    }
    return ERROR_FILE_EXISTS;
}

// Whether it could be deleted now: what cannot is not copied either, or there would be two.
DWORD DeletabilityOf(const std::wstring& path) {
    const UniqueFile deletable(CreateFileW(ExtendedPath(path).c_str(), DELETE,
                                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                           nullptr, OPEN_EXISTING, 0, nullptr));
    return deletable ? DWORD{ERROR_SUCCESS} : LastErrorOf(path);
}

DWORD Bin(const std::wstring& path, BinnedFile& binned) {
    const BinResult result = PutIntoBin(path);
    switch (result.outcome) {
        case Binning::kDone:
            binned = result.file;
            return ERROR_SUCCESS;
        case Binning::kGone:
            return ERROR_SUCCESS;
        case Binning::kNoBin:
            return ERROR_NOT_SUPPORTED;
        case Binning::kStopped:
            return ERROR_CANCELLED;
        default:
            return result.error != ERROR_SUCCESS ? result.error : DWORD{ERROR_ACCESS_DENIED};
    }
}

// Gives a complete file its place on the same volume.
DWORD TakePlace(const std::wstring& file, const std::wstring& target, InTheWay inTheWay,
                BinnedFile& binned) {
    if (inTheWay == InTheWay::kIsReplaced) {
        const std::wstring old = ExtendedPath(target);
        const DWORD attributes = GetFileAttributesW(old.c_str());
        const bool isReadOnly =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
        if (isReadOnly) SetFileAttributesW(old.c_str(), attributes & ~FILE_ATTRIBUTE_READONLY);
        const DWORD error = TryToMove(file, target, MOVEFILE_REPLACE_EXISTING);
        if (isReadOnly && error != ERROR_SUCCESS) SetFileAttributesW(old.c_str(), attributes);
        return error;
    }
    const DWORD error = TryToMove(file, target, 0);
    if (error != ERROR_FILE_EXISTS || inTheWay == InTheWay::kStays || IsFolder(target)) {
        return error;
    }
    if (const DWORD refused = Bin(target, binned)) return refused;
    return TryToMove(file, target, 0);
}

// In place of what the move has come to.
DWORD PutBack(const BinnedFile& binned, DWORD error) {
    if (!binned.path.empty()) TakeOutOfBin(binned);
    return error;
}

DWORD Copy(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
           const CopyNews& tell, BinnedFile& binned, bool isMove) {
    std::wstring copy;
    if (const DWORD error = CopyBeside(path, target, tell, copy)) return error;
    KeepDates(path, copy);
    DWORD error = ERROR_SUCCESS;
    if (isMove && !HaveSameContent(path, copy)) error = ERROR_FILE_INVALID;
    // Some systems tell nothing while they copy.
    const uint64_t size = NamedFileOf(copy).size;
    if (tell && !Trapped(false, [&] { return tell(size, size); })) error = ERROR_CANCELLED;
    if (isMove && error == ERROR_SUCCESS) error = DeletabilityOf(path);
    if (error == ERROR_SUCCESS) error = TakePlace(copy, target, inTheWay, binned);
    if (error != ERROR_SUCCESS) DeleteForGood(copy);
    return error;
}

DWORD MoveToDrive(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                  const CopyNews& tell, BinnedFile& binned) {
    if (const DWORD error = DeletabilityOf(path)) return error;
    if (const DWORD error = Copy(path, target, inTheWay, tell, binned, true)) return error;
    const DWORD deleted = DeleteForGood(path);
    // There would be none at the target where the former one is lost.
    if (deleted != ERROR_SUCCESS && inTheWay != InTheWay::kIsReplaced) DeleteForGood(target);
    return deleted;
}

}  // namespace

DWORD RenameFile(const std::wstring& path, const std::wstring& newPath) {
    if (path == newPath) return ERROR_SUCCESS;
    const DWORD error = TryToMove(path, newPath, 0);
    const bool isSpelling = EqualsIgnoreCase(path, newPath);
    return error == ERROR_FILE_EXISTS && isSpelling ? RenameOverAnother(path, newPath) : error;
}

DWORD MoveWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell, BinnedFile* binned) {
    BinnedFile old;
    DWORD error = TakePlace(path, target, inTheWay, old);
    if (error == ERROR_NOT_SAME_DEVICE) error = MoveToDrive(path, target, inTheWay, tell, old);
    if (error != ERROR_SUCCESS) return PutBack(old, error);
    if (binned != nullptr) *binned = old;
    return ERROR_SUCCESS;
}

DWORD CopyWhole(const std::wstring& path, const std::wstring& target, InTheWay inTheWay,
                const CopyNews& tell, BinnedFile* binned) {
    if (inTheWay == InTheWay::kStays && PathExists(target)) return ERROR_FILE_EXISTS;
    BinnedFile old;
    if (const DWORD error = Copy(path, target, inTheWay, tell, old, false)) {
        return PutBack(old, error);
    }
    if (binned != nullptr) *binned = old;
    return ERROR_SUCCESS;
}

std::wstring FreeName(const std::wstring& target) {
    const std::wstring name = FileNameOf(target);
    const size_t dot = name.rfind(L'.');
    const std::wstring stem = dot == 0 ? name : name.substr(0, dot);
    const std::wstring extension = name.substr(stem.size());
    const std::wstring start = FolderOf(target) + stem + L" (";
    std::wstring free = target;
    for (int number = 2; PathExists(free); ++number) {
        free = start;
        free.append(std::to_wstring(number)).append(L")").append(extension);
    }
    return free;
}

}  // namespace tessary
