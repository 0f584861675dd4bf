#include "helpers/files/replacing_file.h"

#include <algorithm>

#include "helpers/files/file_name.h"
#include "helpers/files/refusal.h"

namespace tessary::files {
namespace {

constexpr size_t kBufferSize = 256u << 10;
constexpr size_t kLongestWrite = 1u << 30;  // bytes in one call to the system

// The pauses between two tries to move, in milliseconds: scanners and indexers may look into the
// old file at any time, and mostly are gone in a moment.
constexpr DWORD kFirstPause = 10;
constexpr DWORD kLongestPause = 100;
// What cannot be moved for other reasons than somebody's use of it rarely can be so much later.
constexpr DWORD kPatienceWithRefusals = 500;

bool IsMissing(const std::wstring& folder) {
    if (GetFileAttributesW(folder.c_str()) != INVALID_FILE_ATTRIBUTES) return false;
    const DWORD error = GetLastError();
    return error == ERROR_PATH_NOT_FOUND || error == ERROR_FILE_NOT_FOUND;
}

bool IsPassing(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_USER_MAPPED_FILE || error == ERROR_DELETE_PENDING ||
           error == ERROR_ACCESS_DENIED;
}

// Why a file cannot be moved to a name that is somebody's.
bool IsInTheWay(DWORD error) {
    return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS || IsPassing(error);
}

}  // namespace

ReplacingFile::ReplacingFile(const std::wstring& target, Links links, FileCalls& calls)
    : calls_(calls), target_(ExtendedFullName(target)), links_(links), file_(calls) {
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
    error_ = ERROR_SUCCESS;
    return file_.Create(target_, old_ ? old_->Attributes() : FILE_ATTRIBUTE_NORMAL) || Fail();
}

void ReplacingFile::TakeOver() {
    old_->PassOn(file_.Get(), file_.Name());  // while others can open it: the mark prevents that
    file_.Mark();
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
    const bool written = (file_.Get() != nullptr || Begin()) && WriteThrough(buffer_);
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
        if (!WriteFile(file_.Get(), bytes.data(), wanted, &done, nullptr)) return Fail();
        if (done == 0) {
            error_ = ERROR_DISK_FULL;
            return false;
        }
        bytes = bytes.subspan(done);
    }
    return true;
}

bool ReplacingFile::Commit(Durability durability, const GoesOn& goesOn) noexcept {
    const bool isWritten = isOpen_ && (file_.Get() != nullptr ? WriteBuffered() : WriteAsNew());
    const bool isMoved = isWritten && ((!old_ && TryToMove(Existing::kStays)) ||
                                       (PrepareToReplace() && Replace(durability, goesOn)));
    const bool isCommitted = isMoved && (file_.Close() || Fail());
    file_.Discard();
    isOpen_ = false;
    return isCommitted;
}

// Asks nothing about the target: there are systems that read the whole folder for each question
// about a name that is new.
bool ReplacingFile::WriteAsNew() noexcept {
    if (!WithMemory([this] { return CreateBeside(); })) return false;
    file_.Mark();
    return WriteThrough(buffer_);
}

// Prepares what was written as new for a target that exists after all, or writes it once more.
bool ReplacingFile::PrepareToReplace() noexcept {
    if (old_) return true;
    if (!IsInTheWay(error_)) return false;
    return WithMemory([this] {
        const std::wstring wanted = target_;
        if (!LookAtTarget()) return false;
        if (target_ != wanted || old_->Attributes() != FILE_ATTRIBUTE_NORMAL ||
            file_.Get() == nullptr) {
            file_.Discard();
            if (!CreateBeside() || !WriteThrough(buffer_)) return false;
        }
        TakeOver();
        return true;
    });
}

bool ReplacingFile::Replace(Durability durability, const GoesOn& goesOn) noexcept {
    const bool toDisk = old_->Exists() && durability == Durability::kDisk;
    if (toDisk && !FlushFileBuffers(file_.Get())) return Fail();
    if (!MoveToTarget(goesOn)) return false;
    if (toDisk && file_.Get() != nullptr) FlushFileBuffers(file_.Get());  // the new name too
    return true;
}

bool ReplacingFile::MoveToTarget(const GoesOn& goesOn) noexcept {
    DWORD patience = kPatienceWithRefusals;
    DWORD waited = 0;
    for (DWORD pause = kFirstPause; !TryToMove(Existing::kIsReplaced);
         pause = std::min(2 * pause, kLongestPause)) {
        if (!IsPassing(error_)) return false;
        if (waited >= patience) {
            const bool isInUse = IsInUse(target_, calls_);
            if (waited >= kPatience || !isInUse) {
                error_ = isInUse ? ERROR_SHARING_VIOLATION : ERROR_ACCESS_DENIED;
                return false;
            }
            patience = kPatience;
        }
        if (goesOn && !goesOn()) {
            error_ = ERROR_CANCELLED;
            return false;
        }
        calls_.Pause(pause);
        waited += pause;
    }
    return true;
}

// Behind all that was written, which would change them.
void ReplacingFile::PassOnDates() const noexcept {
    const auto time = [](uint64_t of) {
        return FILETIME{static_cast<DWORD>(of), static_cast<DWORD>(of >> 32)};
    };
    const FILETIME created = time(dates_.created);
    const FILETIME changed = time(dates_.changed);
    if (file_.Get() == nullptr || dates_ == FileDates{}) return;
    SetFileTime(file_.Get(), dates_.created != 0 ? &created : nullptr, nullptr,
                dates_.changed != 0 ? &changed : nullptr);
}

bool ReplacingFile::TryToMove(Existing existing) noexcept {
    PassOnDates();
    return file_.MoveToTarget(existing) || Fail();
}

bool ReplacingFile::Fail() noexcept {
    error_ = GetLastError();
    return false;
}

}  // namespace tessary::files
