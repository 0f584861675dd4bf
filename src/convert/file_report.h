// What became of each file of a run, for those who count, list or write it down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace tessary {

enum class FileOutcome {
    kConverted,
    kDeclined,  // by the user's filters, as an archive that is not to be expanded, or as no picture
    kFailed,
    kSkipped,  // what it would have become is there already
    kStopped,  // the user has stopped the run in the middle of it
};

// Why a file was not converted, or not as it would have been otherwise.
enum class FileReason {
    kNone,
    // Of declined files.
    kNameFiltered,
    kTooSmall,
    kArchiveNotExpanded,
    kNoPicture,    // the name is that of something else (IsNoPicture)
    kTooDeep,      // an archive in too many archives
    kSameArchive,  // an archive whose like has been expanded in this run
    // Of skipped, renamed and replaced ones.
    kTargetExists,
    kAlreadyConverted,  // what it would become is there, from an earlier run or this one
    kListedTwice,       // it was in the list before
    // Of failed ones.
    kMissing,
    kOverwritten,  // by another picture of this run, before it was read
    kUnreadable,
    kNotFetched,  // it lies elsewhere, as in a cloud, and could not be brought here
    kEmptyFile,
    kUnknownFormat,
    kNoPlugin,  // unknown, and no plug-in is loaded that might know it
    kPassword,
    kBrokenData,
    kVolumeMissing,  // a part of an archive in several files
    kKindNotRead,    // of a known format, but of a kind or method that the plug-in does not do
    kDamaged,        // a part of the picture is missing; also of converted ones
    kPluginFailed,
    kPluginCrashed,
    kPluginSilent,
    kNoMembers,
    kBadName,  // a member's that no file can have
    kOutOfMemory,
    kDiskFull,
    kReadOnlyTarget,
    kAccessDenied,
    kTargetInUse,
    kProtectedFolder,  // the target's, by a security feature of the system
    kNoTargetFolder,
    kTargetLost,   // its file system has lost what was written
    kNotSavable,   // not in this format
    kWriteFailed,  // for another reason, in the system's words
    kUnexpected,
};

// A word for programs, in ASCII, such as `disk-full`; empty for kNone.
const wchar_t* ReasonKey(FileReason reason);
// A few words for the user; empty for kNone.
const wchar_t* ReasonText(FileReason reason);

// The reason why a file could not be opened or read, from the system's error for it.
FileReason ReasonOfReadError(unsigned long error);
// The reason why a file could not be written, from the system's error for it.
FileReason ReasonOfWriteError(unsigned long error, const std::wstring& target);

// Told once for each file that is to be converted, and for each member of an archive. An archive
// itself is told only when it could not be expanded whole.
struct FileReport {
    std::wstring source{};  // full path of the user's file; of a member: of the archive around it
    std::wstring
        member{};  // name in the archive; of archives in archives with `\` between; or empty
    std::wstring target{};  // full path of what was written, or would have been; may be empty
    FileOutcome outcome = FileOutcome::kFailed;
    bool isRenamed = false;   // written under another name than its own
    bool isReplaced = false;  // an older file gave way to it
    bool isDamaged = false;   // a part of the picture could not be read
    uint32_t frames = 0;  // of the source or its pages, of which the first was converted; 0: one
    FileReason reason = FileReason::kNone;
    std::wstring text{};        // the reason for the user, with what plug-ins say; may be empty
    uint64_t bytes = 0;         // written
    uint32_t milliseconds = 0;  // that it took
};

// The file for the user: its path, of a member with the name in the archive.
std::wstring SourceText(const FileReport& report);

// The reason for the user.
std::wstring ReasonTextOf(const FileReport& report);

// Why the user will want to know about a file; the worst first.
enum class Remark { kFailed, kDamaged, kStopped, kSkipped, kRenamed };
constexpr size_t kRemarkCount = 5;

// Nothing when the file has become what it should.
std::optional<Remark> RemarkOf(const FileReport& report);
const wchar_t* RemarkText(Remark remark);

// How many files came to what.
struct OutcomeCounts {
    int converted = 0;  // and whole
    int damaged = 0;    // in part, or not at all because of it
    int declined = 0;
    int skipped = 0;
    int failed = 0;
    int renamed = 0;   // of the converted and damaged ones
    int replaced = 0;  // of the same
    int filtered = 0;  // by their names, of the declined ones

    void Count(const FileReport& report);
    int All() const { return all_; }

  private:
    int all_ = 0;
};

// One line; kinds that there are none of are left out, but for the most common.
std::wstring OutcomeText(const OutcomeCounts& counts);

}  // namespace tessary
