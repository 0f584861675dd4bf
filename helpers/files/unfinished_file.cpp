#include "helpers/files/unfinished_file.h"

#include <cstddef>
#include <cstring>
#include <optional>

#include "helpers/files/file_name.h"
#include "helpers/files/refusal.h"

namespace tessary::files {
namespace {

constexpr uint32_t kNames = 1000;  // tried before giving up

// Not in the headers for the systems that the program runs on.
constexpr auto kRenameInfoEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(22);
constexpr DWORD kReplace = 1;
constexpr DWORD kPosixSemantics = 2;

// Looked for so often after its move, and so long between: networks remember for a while that there
// was no file.
constexpr int kLooks = 6;
constexpr DWORD kMillisecondsBetween = 100;

// Creating says that access is denied both in a folder that takes no files and for a name that is a
// folder's or a vanishing file's; only for the latter another name helps.
bool IsTaken(const std::wstring& name, FileCalls& calls) {
    const DWORD error = GetLastError();
    bool isTaken = error == ERROR_FILE_EXISTS;
    if (error == ERROR_ACCESS_DENIED) {
        isTaken = calls.Attributes(name) != INVALID_FILE_ATTRIBUTES ||
                  GetLastError() != ERROR_FILE_NOT_FOUND;
    }
    SetLastError(error);
    return isTaken;
}

std::vector<uint8_t> RenameInfo(const std::wstring& target) {
    const size_t bytes = target.size() * sizeof(wchar_t);
    std::vector<uint8_t> block(sizeof(FILE_RENAME_INFO) + bytes);
    FILE_RENAME_INFO info{};
    info.FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(block.data(), &info, sizeof(info));
    std::memcpy(block.data() + offsetof(FILE_RENAME_INFO, FileName), target.data(), bytes);
    return block;
}

// Of file systems that can rename files only by their names.
bool IsUnknownCall(DWORD error) {
    return error == ERROR_INVALID_PARAMETER || error == ERROR_INVALID_FUNCTION ||
           error == ERROR_NOT_SUPPORTED || error == ERROR_CALL_NOT_IMPLEMENTED ||
           error == ERROR_INVALID_LEVEL;
}

}  // namespace

bool UnfinishedFile::Create(const std::wstring& target, DWORD attributes) {
    target_ = target;
    rename_ = RenameInfo(target);
    isRemote_ = calls_.IsRemote(target);
    const std::wstring folder = FolderOf(target);
    for (uint32_t number = 1; number <= kNames; ++number) {
        const std::wstring name = folder + L"~tessary-" + std::to_wstring(number) + L".tmp";
        if (CreateAs(name, attributes)) {
            const std::wstring volume = calls_.Volume(Get(), name);
            const std::optional<bool> known = calls_.Volumes().TakesMarkBack(volume);
            takesMarkBack_ = known ? *known : TryMark();
            if (!known) calls_.Volumes().SetTakesMarkBack(volume, takesMarkBack_);
            if (known || CreateAs(name, attributes)) return true;
        }
        if (!IsTaken(name, calls_)) {
            SetLastError(TellingError(GetLastError(), name, calls_));
            return false;
        }
    }
    return false;
}

bool UnfinishedFile::CreateAs(const std::wstring& name, DWORD attributes) {
    std::wstring copy = name;
    const HANDLE file = calls_.Create(name, GENERIC_WRITE | DELETE, 0, CREATE_NEW, attributes);
    if (file == INVALID_HANDLE_VALUE) return false;
    file_.reset(file);
    name_ = std::move(copy);
    isMarked_ = false;
    return true;
}

// There are file systems that take the mark, say that they take it back, and delete the file all
// the same.
bool UnfinishedFile::TryMark() {
    const bool isTakenBack = SetMark(true) && SetMark(false);
    file_.reset();
    const bool isThere = calls_.Attributes(name_) != INVALID_FILE_ATTRIBUTES;
    isMarked_ = false;
    Discard();
    return isTakenBack && isThere;
}

void UnfinishedFile::Mark() noexcept {
    if (takesMarkBack_) SetMark(true);
}

bool UnfinishedFile::SetMark(bool deletes) noexcept {
    FILE_DISPOSITION_INFO disposition{static_cast<BOOLEAN>(deletes)};
    if (!calls_.SetInformation(Get(), FileDispositionInfo, &disposition, sizeof(disposition))) {
        return false;
    }
    isMarked_ = deletes;
    return true;
}

// The file stays open, so that the mark can be set again at once: between two tries it would vanish
// with the process. Not where the name was taken: what the old file hands on needs a file that can
// be opened.
bool UnfinishedFile::MoveToTarget(Existing existing) noexcept {
    const bool wasMarked = isMarked_;
    if (wasMarked && !SetMark(false)) return false;
    if (Rename(existing)) {
        name_.clear();
        return true;
    }
    const DWORD error = GetLastError();
    if (wasMarked && Get() != nullptr && existing == Existing::kIsReplaced) SetMark(true);
    SetLastError(error);
    return false;
}

// As other systems rename: the old file's name is free at once, and who has it open keeps it. Known
// since Windows 10, and to few file systems.
bool UnfinishedFile::Rename(Existing existing) noexcept {
    if (Get() == nullptr) return RenameClosed(existing);
    const bool replaces = existing == Existing::kIsReplaced;
    if (replaces && RenameOpen(kRenameInfoEx, kReplace | kPosixSemantics)) return true;
    if (RenameOpen(FileRenameInfo, replaces ? kReplace : 0)) return true;
    if (!IsUnknownCall(GetLastError())) return false;
    file_.reset();
    return RenameClosed(existing);
}

bool UnfinishedFile::RenameOpen(FILE_INFO_BY_HANDLE_CLASS kind, DWORD flags) noexcept {
    static_assert(offsetof(FILE_RENAME_INFO, RootDirectory) >= sizeof(flags));
    std::memcpy(rename_.data(), &flags, sizeof(flags));
    return calls_.SetInformation(Get(), kind, rename_.data(), static_cast<DWORD>(rename_.size()));
}

bool UnfinishedFile::RenameClosed(Existing existing) noexcept {
    return calls_.Move(name_, target_,
                       existing == Existing::kIsReplaced
                           ? MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH
                           : MOVEFILE_WRITE_THROUGH);
}

bool UnfinishedFile::Close() noexcept {
    const bool wasOpen = file_ != nullptr;
    file_.reset();
    if (!wasOpen || !isRemote_) return true;
    for (int look = 1; !IsThere(target_); ++look) {
        if (look == kLooks) {
            SetLastError(ERROR_FILE_INVALID);
            return false;
        }
        calls_.Pause(kMillisecondsBetween);
    }
    return true;
}

// What cannot be asked about is no reason to think it lost.
bool UnfinishedFile::IsThere(const std::wstring& name) noexcept {
    if (calls_.Attributes(name) != INVALID_FILE_ATTRIBUTES) return true;
    const DWORD error = GetLastError();
    return error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND;
}

void UnfinishedFile::Discard() noexcept {
    file_.reset();
    if (!name_.empty() && !isMarked_) DeleteFileW(name_.c_str());
    name_.clear();
}

}  // namespace tessary::files
