#include "helpers/files/replacing_file.h"

#include <algorithm>

#include "helpers/files/file_name.h"

namespace tessary::files {
namespace {

constexpr size_t kBufferSize = 256u << 10;
constexpr size_t kLongestWrite = 1u << 30;  // bytes in one call to the system
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr uint32_t kNames = 100;  // tried before giving up

// A power cut can leave a written file behind. The next one that wants its name removes it, so no
// folder ever has to be searched. One that is being written cannot be opened here; only between its
// closing and its moving could it be, and no program takes a day for that.
constexpr uint64_t kLeftoverAge = 24ull * 60 * 60 * 10'000'000;  // in units of FILETIME

uint64_t Ticks(const FILETIME& time) {
    return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

// False when the file is not old, or in use.
bool DeleteLeftover(const std::wstring& name) {
    const HANDLE file = CreateFileW(name.c_str(), DELETE | FILE_READ_ATTRIBUTES, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    FILETIME written;
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    FILE_DISPOSITION_INFO deletes{TRUE};
    const bool isOld =
        GetFileTime(file, nullptr, nullptr, &written) && Ticks(now) > Ticks(written) + kLeftoverAge;
    const bool deleted =
        isOld && SetFileInformationByHandle(file, FileDispositionInfo, &deletes, sizeof(deletes));
    CloseHandle(file);
    return deleted;
}

// Scanners and indexers look into a new file as soon as it is closed, and into the old one at any
// time; a moment later they are gone.
constexpr int kMoves = 10;
constexpr DWORD kMilliseconds = 50;  // between two of them

bool IsPassing(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_ACCESS_DENIED;
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

ReplacingFile::ReplacingFile(const std::wstring& target) : target_(ExtendedFullName(target)) {
    buffer_.reserve(kBufferSize);
    if (AcceptsTarget()) CreateBesideTarget();
}

bool ReplacingFile::AcceptsTarget() {
    if (target_.empty() || target_.back() == L'\\') {
        error_ = ERROR_INVALID_NAME;
        return false;
    }
    const DWORD attributes = GetFileAttributesW(target_.c_str());
    constexpr DWORD kNotReplaceable = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY;
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & kNotReplaceable) != 0) {
        error_ = ERROR_ACCESS_DENIED;
        return false;
    }
    return true;
}

void ReplacingFile::CreateBesideTarget() {
    const std::wstring folder = target_.substr(0, target_.rfind(L'\\') + 1);
    for (uint32_t number = 1; number <= kNames; ++number) {
        written_ = folder + L"~tessary-" + std::to_wstring(number) + L".tmp";
        if (Create() || (error_ == ERROR_FILE_EXISTS && DeleteLeftover(written_) && Create())) {
            // Where the file system lacks this, only the end of the process would leave the file.
            DeleteWhenClosed(true);
            return;
        }
        if (error_ != ERROR_FILE_EXISTS && error_ != ERROR_ACCESS_DENIED) return;
    }
}

bool ReplacingFile::Create() noexcept {
    const HANDLE file = CreateFileW(written_.c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                    CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return Fail();
    file_.reset(file);
    error_ = ERROR_SUCCESS;
    return true;
}

ReplacingFile::~ReplacingFile() {
    if (!IsOpen()) return;
    file_.reset();
    DeleteFileW(written_.c_str());
}

bool ReplacingFile::DeleteWhenClosed(bool deletes) noexcept {
    FILE_DISPOSITION_INFO disposition{static_cast<BOOLEAN>(deletes)};
    return SetFileInformationByHandle(file_.get(), FileDispositionInfo, &disposition,
                                      sizeof(disposition)) != FALSE;
}

bool ReplacingFile::Write(std::span<const uint8_t> bytes) noexcept {
    if (bytes.size() <= kBufferSize - buffer_.size()) {
        buffer_.insert(buffer_.end(), bytes.begin(), bytes.end());
        return true;
    }
    return WriteBuffered() &&
           (bytes.size() <= kBufferSize / 2 ? Write(bytes) : WriteThrough(bytes));
}

bool ReplacingFile::WriteBuffered() noexcept {
    const bool written = WriteThrough(buffer_);
    buffer_.clear();
    return written;
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
    const bool complete = WriteBuffered() && (durability == Durability::kCache ||
                                              FlushFileBuffers(file_.get()) || Fail());
    if (complete) DeleteWhenClosed(false);
    file_.reset();
    if (complete && MoveToTarget(durability)) return true;
    DeleteFileW(written_.c_str());
    return false;
}

bool ReplacingFile::MoveToTarget(Durability durability) noexcept {
    const DWORD flags =
        MOVEFILE_REPLACE_EXISTING | (durability == Durability::kDisk ? MOVEFILE_WRITE_THROUGH : 0);
    for (int move = 1;; ++move) {
        if (MoveFileExW(written_.c_str(), target_.c_str(), flags)) return true;
        Fail();
        if (!IsPassing(error_)) return false;
        if (move == kMoves) {
            if (IsInUse(target_)) error_ = ERROR_SHARING_VIOLATION;
            return false;
        }
        Sleep(kMilliseconds);
    }
}

bool ReplacingFile::Fail() noexcept {
    error_ = GetLastError();
    return false;
}

}  // namespace tessary::files
