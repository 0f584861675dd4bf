// A file that takes its place only when it is complete.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "helpers/files/byte_sink.h"
#include "helpers/files/file_calls.h"
#include "helpers/files/file_dates.h"
#include "helpers/files/old_file.h"
#include "helpers/files/unfinished_file.h"

namespace tessary::files {

// What a power cut may cost: nothing, or a file that is quickly made again.
enum class Durability { kDisk, kCache };

// What happens to a link in the target's place.
enum class Links {
    kReplace,  // it becomes a file, so that nothing outside the target's folder changes
    kFollow,   // the file that it leads to is the target
};

// Asked while something is waited for: whether to go on.
using GoesOn = std::function<bool()>;

// Written under a name of its own in the target's folder; Commit puts it in the target's place in
// one step. Whatever happens before that (an error, a full disk, the end of the process) leaves the
// target as it was and the folder without the file. Only a power cut leaves it, as ~tessary-1.tmp
// or with a higher number, and so does the end of the process in the very moment of moving, or at
// any time where the file system does not help (UnfinishedFile). Nobody removes it then: it cannot
// be told from a user's own file of that name.
//
// The new file takes over what OldFile tells of. Of a file with several names (hard links) only the
// target's gets the new content; the others keep the old: to reach all, the old content would have
// to be overwritten in place.
class ReplacingFile final : public ByteSink {
  public:
    // `target` may be longer than MAX_PATH. A device, or a name in no folder, is refused here; a
    // folder, what is read-only or, with kFollow, a link to nothing when the buffer is full, or by
    // Commit.
    explicit ReplacingFile(const std::wstring& target, Links links = Links::kReplace,
                           FileCalls& calls = SystemFileCalls());
    ReplacingFile(const ReplacingFile&) = delete;
    ReplacingFile& operator=(const ReplacingFile&) = delete;

    // The rest may be called only when this is true; it is not any more when something has failed.
    bool IsOpen() const { return isOpen_; }
    // Collects small pieces in a buffer.
    bool Write(std::span<const uint8_t> bytes) noexcept override;
    // Has the file take its place with these dates, as far as the system allows: no picture is lost
    // because its date cannot be kept.
    void SetDates(const FileDates& dates) { dates_ = dates; }
    // Replaces the target, with kDisk only after all that was written has reached the disk. Where
    // there was no file, nothing can be lost, and the disk is not waited for. A target that others
    // have open, as scanners and indexers do for a moment, is waited for up to kPatience, as long
    // as `goesOn` allows; it must not throw. The file is closed then, with and without success.
    bool Commit(Durability durability = Durability::kDisk, const GoesOn& goesOn = {}) noexcept;
    static constexpr DWORD kPatience = 2500;  // milliseconds
    // Why one of the above was false, as the system's error code: ERROR_SHARING_VIOLATION of a
    // target that others did not close, ERROR_ACCESS_DENIED only of what is not allowed,
    // kErrorProtectedFolder as TellingError tells, ERROR_CANCELLED when `goesOn` ended the waiting,
    // ERROR_FILE_INVALID of a file that its file system has lost.
    DWORD Error() const { return error_; }

  private:
    // Finds old_, behind links; false when it is not to be replaced.
    bool LookAtTarget();
    bool CreateBeside();
    // Has the file take over from old_ what OldFile tells of.
    void TakeOver();
    // Creates the file before all that goes into it is known.
    bool Begin() noexcept;
    // Creates it and writes all that goes into it.
    bool WriteAsNew() noexcept;
    // Makes the file one that may take the place of old_.
    bool PrepareToReplace() noexcept;
    bool Replace(Durability durability, const GoesOn& goesOn) noexcept;
    bool WriteThrough(std::span<const uint8_t> bytes) noexcept;
    bool Append(std::span<const uint8_t> bytes) noexcept;
    bool Buffer(std::span<const uint8_t> bytes) noexcept;
    bool WriteBuffered() noexcept;
    bool MoveToTarget(const GoesOn& goesOn) noexcept;
    bool TryToMove(Existing existing) noexcept;
    void PassOnDates() const noexcept;
    // Notes the system's error; always false.
    bool Fail() noexcept;
    // What `work` answers; false when there was no memory for it.
    template <typename Work>
    bool WithMemory(const Work& work) noexcept;

    FileCalls& calls_;
    std::wstring target_;
    Links links_;
    std::optional<OldFile> old_;  // what stands there, as soon as that has been looked at
    UnfinishedFile file_;
    bool isOpen_ = false;
    std::vector<uint8_t> buffer_;
    FileDates dates_;
    DWORD error_ = ERROR_SUCCESS;
};

}  // namespace tessary::files
