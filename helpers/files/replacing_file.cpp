#include "helpers/files/replacing_file.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "helpers/files/file_name.h"

namespace tessary::files {
namespace {

constexpr size_t kBufferSize = 256u << 10;
constexpr size_t kLongestWrite = 1u << 30;  // bytes in one call to the system
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr uint32_t kNames = 1000;  // tried before giving up

// With its backslash.
std::wstring FolderOf(const std::wstring& name) {
    return name.substr(0, name.rfind(L'\\') + 1);
}

bool IsMissing(const std::wstring& folder) {
    if (GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES) return false;
    const DWORD error = GetLastError();
    return error == ERROR_PATH_NOT_FOUND || error == ERROR_FILE_NOT_FOUND;
}

// Creating says that access is denied both in a folder that takes no files and for a name that is a
// folder's or a vanishing file's; only for the latter another name helps.
bool IsTaken(const std::wstring& name, DWORD error) {
    if (error != ERROR_ACCESS_DENIED) return error == ERROR_FILE_EXISTS;
    return GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES ||
           GetLastError() != ERROR_FILE_NOT_FOUND;
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

// Scanners and indexers may look into the old file at any time; a moment later they are gone.
constexpr int kMoves = 10;
constexpr DWORD kMilliseconds = 50;  // between two of them

bool IsPassing(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_ACCESS_DENIED;
}

// Why a file cannot be moved to a name that is somebody's.
bool IsInTheWay(DWORD error) {
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS || IsPassing(error);
}

// Of a file that another program uses, moving only says that access is denied.
bool IsInUse(const std::wstring& target) {
    const HANDLE file = CreateFileW(target.c_str(), DELETE, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
    CloseHandle(file);
    return false;
}

}  // namespace

ReplacingFile::ReplacingFile(const std::wstring& target, Links links)
    : target_(ExtendedFullName(target)), links_(links) {
    if (target_.empty() || target_.back() == L'\\') {
        error_ = ERROR_INVALID_NAME;
    } else if (IsMissing(FolderOf(target_))) {
        error_ = ERROR_PATH_NOT_FOUND;
    }
    isOpen_ = error_ == ERROR_SUCCESS;
}

bool ReplacingFile::LookAtTarget() {
    old_.emplace(target_);
    if (old_->Exists() && links_ == Links::kFollow) {
        target_ = NameBehindLinks(target_);
        if (target_.empty()) return Fail();
        old_.emplace(target_);
    }
    if (!old_->IsReplaceable()) error_ = ERROR_ACCESS_DENIED;
    return old_->IsReplaceable();
}

bool ReplacingFile::CreateBeside() {
    const std::wstring folder = FolderOf(target_);
    for (uint32_t number = 1; number <= kNames; ++number) {
        written_ = folder + L"~tessary-" + std::to_wstring(number) + L".tmp";
        if (Create()) return true;
        if (!IsTaken(written_, error_)) return false;
    }
    return false;
}

bool ReplacingFile::Create() {
    const HANDLE file =
        CreateFileW(written_.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                    old_ ? old_->Attributes() : FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Fail();
    file_.reset(file);
    isMarked_ = false;
    rename_ = RenameInfo(target_);
    error_ = ERROR_SUCCESS;
    return true;
}

void ReplacingFile::TakeOver() {
    old_->PassOn(file_.get(), written_);  // while others can open it: the mark prevents that
    Mark(true);
}

ReplacingFile::~ReplacingFile() {
    Discard();
}

void ReplacingFile::Discard() noexcept {
    if (!file_) return;
    file_.reset();
    if (!isMarked_) DeleteFileW(written_.c_str());
}

bool ReplacingFile::Mark(bool deletes) noexcept {
    FILE_DISPOSITION_INFO disposition{static_cast<BOOLEAN>(deletes)};
    if (!SetFileInformationByHandle(file_.get(), FileDispositionInfo, &disposition,
                                    sizeof(disposition))) {
        return false;
    }
    isMarked_ = deletes;
    return true;
}

bool ReplacingFile::Write(std::span<const uint8_t> bytes) noexcept {
    isOpen_ = isOpen_ && Append(bytes);
    return isOpen_;
}

bool ReplacingFile::Append(std::span<const uint8_t> bytes) noexcept {
    if (bytes.size() <= kBufferSize - buffer_.size()) return Buffer(bytes);
    return WriteBuffered() &&
           (bytes.size() <= kBufferSize / 2 ? Buffer(bytes) : WriteThrough(bytes));
}

template <typename Work>
bool ReplacingFile::WithMemory(const Work& work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        error_ = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }
}

// It grows as it is needed: large blocks are new memory each time, which small files do not need.
bool ReplacingFile::Buffer(std::span<const uint8_t> bytes) noexcept {
    return WithMemory([&] {
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
        return true;
    });
}

bool ReplacingFile::WriteBuffered() noexcept {
    const bool written = (file_ || Begin()) && WriteThrough(buffer_);
    buffer_.clear();
    return written;
}

bool ReplacingFile::Begin() noexcept {
    return WithMemory([this] {
        if (!LookAtTarget() || !CreateBeside()) return false;
        TakeOver();
        return true;
    });
}

bool ReplacingFile::WriteThrough(std::span<const uint8_t> bytes) noexcept {
    while (!bytes.empty()) {
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kLongestWrite));
        DWORD done = 0;
        if (!WriteFile(file_.get(), bytes.data(), wanted, &done, nullptr)) return Fail();
        if (done == 0) {
            error_ = ERROR_DISK_FULL;
            return false;
        }
        bytes = bytes.subspan(done);
    }
    return true;
}

bool ReplacingFile::Commit(Durability durability) noexcept {
    const bool isWritten = isOpen_ && (file_ ? WriteBuffered() : WriteAsNew());
    const bool isCommitted = isWritten && ((!old_ && TryToMove(Existing::kStays)) ||
                                           (PrepareToReplace() && Replace(durability)));
    if (!isCommitted) Discard();
    file_.reset();
    isOpen_ = false;
    return isCommitted;
}

// Asks nothing about the target: there are systems that read the whole folder for each question
// about a name that is new.
bool ReplacingFile::WriteAsNew() noexcept {
    if (!WithMemory([this] { return CreateBeside(); })) return false;
    Mark(true);
    return WriteThrough(buffer_);
}

// Prepares what was written as new for a target that exists after all, or writes it once more.
bool ReplacingFile::PrepareToReplace() noexcept {
    if (old_) return true;
    if (!IsInTheWay(error_)) return false;
    return WithMemory([this] {
        const std::wstring wanted = target_;
        if (!LookAtTarget()) return false;
        if (target_ != wanted || old_->Attributes() != FILE_ATTRIBUTE_NORMAL) {
            Discard();
            if (!CreateBeside() || !WriteThrough(buffer_)) return false;
        }
        TakeOver();
        return true;
    });
}

bool ReplacingFile::Replace(Durability durability) noexcept {
    const bool toDisk = old_->Exists() && durability == Durability::kDisk;
    if (toDisk && !FlushFileBuffers(file_.get())) return Fail();
    if (!MoveToTarget()) return false;
    if (toDisk) FlushFileBuffers(file_.get());  // the new name too
    return true;
}

bool ReplacingFile::MoveToTarget() noexcept {
    for (int move = 1; !TryToMove(Existing::kIsReplaced); ++move) {
        if (!IsPassing(error_)) return false;
        if (move == kMoves) {
            if (IsInUse(target_)) error_ = ERROR_SHARING_VIOLATION;
            return false;
        }
        Sleep(kMilliseconds);
    }
    return true;
}

// The file stays open, so that the mark can be set again at once: between two tries it would vanish
// with the process. Not where the name was taken: what the old file hands on needs a file that can
// be opened.
bool ReplacingFile::TryToMove(Existing existing) noexcept {
    const bool wasMarked = isMarked_;
    if (wasMarked && !Mark(false)) return Fail();
    rename_[offsetof(FILE_RENAME_INFO, ReplaceIfExists)] = existing == Existing::kIsReplaced;
    if (SetFileInformationByHandle(file_.get(), FileRenameInfo, rename_.data(),
                                   static_cast<DWORD>(rename_.size()))) {
        return true;
    }
    Fail();
    if (wasMarked && existing == Existing::kIsReplaced) Mark(true);
    return false;
}

bool ReplacingFile::Fail() noexcept {
    error_ = GetLastError();
    return false;
}

}  // namespace tessary::files
