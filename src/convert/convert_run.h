// One run of the conversion engine: its work list, and the steps that an entry goes through.
#pragma once

#include <windows.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/base/error.h"
#include "convert/convert_log.h"
#include "convert/convert_monitor.h"
#include "convert/convert_options.h"
#include "convert/encoding.h"
#include "convert/file_at_hand.h"
#include "convert/files_ahead.h"
#include "convert/kept_metadata.h"
#include "convert/output_names.h"
#include "convert/read_ahead.h"
#include "convert/save_extension.h"
#include "convert/work_list.h"
#include "files/same_content.h"
#include "plugin/clsSusie.h"

namespace tessary {

enum class StepResult {
    kDone = 0,        // the picture was saved, or the archive expanded
    kNotHandled = 1,  // of no known kind, not to be expanded, or it could not be read
    kNotSaved = 2,    // too small, or it could not be written
    kStopped = 3,     // the user has stopped the run
};

// Every step traps what goes wrong in it unexpectedly and then counts as far as it has come; the
// run goes on with the next file.
class ConvertRun {
  public:
    // `targetFolder` with its trailing backslash; it exists.
    ConvertRun(const std::wstring& targetFolder, const std::vector<ConvertSource>& files,
               ConvertOptions options, ConvertMonitor& monitor);

    // False when the user stopped it.
    bool Run();

    const ConvertLog& Log() const { return log_; }

  private:
    // What stands in the log for one entry of the list.
    void ConvertEntry(FileAtHand& file);
    // Whether the user has asked to stop and waits for a plug-in longer than he may be expected to:
    // the file at hand is given up then.
    bool IsGivenUp();
    // Tells the monitor what became of it, if that is known and the entry is a file.
    void TellReport(FileAtHand& file);
    // Warns once that no plug-in is called any more.
    void TellStoppedPlugins(const FileAtHand& file);
    // Deletes an extracted member that has done its service or is not wanted.
    void CleanUp(const WorkEntry& entry, StepResult result);
    StepResult ConvertByKind(FileAtHand& file);
    // Whether the file, whose kind is that of its name, is to be converted.
    bool IsWorthFetching(const WorkEntry& entry, FileKind kind) const;
    // Has a file fetched that is not on this disk: kDone, or it could not be, or the run is
    // stopped.
    StepResult FetchSource(FileAtHand& file);
    void ReportUnknown(FileAtHand& file, const SourceFile& source);

    // --- Pictures (convert_picture.cpp) ---

    StepResult ConvertBitmapFile(FileAtHand& file, SourceAtHand& source);
    StepResult ConvertPictureFile(FileAtHand& file, SourceAtHand& source);
    // What is to be known of a picture's damage; false when it is not to be saved for it.
    bool ToleratesDamage(FileAtHand& file, const std::wstring& damage);
    StepResult SaveConvertedPicture(FileAtHand& file, SourceAtHand& source);
    StepResult Skip(FileAtHand& file, const std::wstring& path, FileReason reason);
    StepResult KeepDamaged(FileAtHand& file, const std::wstring& path, const std::wstring& damage);
    // --- Before their turn (convert_ahead.cpp) ---

    // An entry that was looked at: once, before its turn.
    struct Upcoming {
        std::wstring path;
        std::optional<FileStamp> stamp{};  // nothing: it is left to its turn
    };
    Upcoming LookAt(const WorkEntry& entry) const;
    void LookAhead(int32_t index);
    // Has the large files read whose turn comes behind this one.
    void PlanAhead(int32_t index);
    // The first small one behind this one and those that were read; null: there is none in sight.
    Upcoming* NextSmall(int32_t index);
    // Has it read and made into its file elsewhere, if it is a bitmap by its name.
    bool BeginNext(int32_t index);
    // The same, or reads it here; false when it has to wait for its turn.
    bool ReadNext(int32_t index);
    // What was read of the file before its turn.
    std::optional<SourceAtHand> TakeAhead(const FileAtHand& file);
    // Waits for the end, and reads the next files meanwhile.
    void Await(Encoding& encoding, int32_t index);
    // Has the file made that a picture is saved as; null when it is not to be, or not beforehand.
    std::shared_ptr<Encoding> BeginEncoding(const ReadResult& read);
    // The same, at its end.
    const EncodedPicture* Encoded(const FileAtHand& file, SourceAtHand& source);
    // The system's error, 0 for success.
    DWORD SavePicture(const FileAtHand& file, SourceAtHand& source, const std::wstring& output);

    // --- Archives (convert_archive.cpp) ---

    StepResult ConvertArchiveFile(FileAtHand& file, const std::wstring& pluginKey);
    // Why an archive is not to be expanded; kNone when it is.
    FileReason ReasonNotToExpand(const WorkEntry& entry) const;
    // `upperBound`: of the list before it grew. False when the user has stopped the run.
    bool ExpandArchiveFiles(FileAtHand& file, clsSusie& archive, int32_t upperBound);
    // One archive on its way.
    struct Expansion;
    // A member of `parent`; without a path when it could not be extracted.
    WorkEntry ExpandMember(const WorkEntry& parent, Expansion& expansion, int32_t index);
    // `error` receives the system's where none can be made.
    std::wstring MakeExpansionFolder(const WorkEntry& entry, bool& isNew, DWORD& error);

    // --- Shared ---

    // Runs a step, which sets its result, kDone as long as it does not.
    template <typename Body>
    StepResult Step(FileAtHand& file, Body&& body) {
        StepResult result = StepResult::kDone;
        try {
            body(result);
        } catch (...) {
            Trapped([&] {
                const RaisedError error = CurrentError();
                file.Report(FileOutcome::kFailed, FileReason::kUnexpected, error.Description());
                WriteUnexpected(error);
            });
        }
        return result;
    }

    // A file that could not be written, with the system's error: in the log and as a report.
    void ReportUnwritten(FileAtHand& file, DWORD error, const std::wstring& path);
    // An extracted member that is still to be converted gives up a path that an output needs.
    void MakeWayFor(const FileAtHand& file, const std::wstring& output);
    // Deletes an extracted member that has done its service, unless it is an output by now.
    void DeleteExtracted(const WorkEntry& entry);
    // The same for those that were not reached any more, from `first` on: the next run extracts
    // them again.
    void DeleteUnconverted(int32_t first);
    // Deletes an extracted member that was not converted, unless such are to be kept and its like
    // is not there yet.
    void RemoveExtractedFile(const WorkEntry& entry);
    void WritePluginError(const PluginFailure& failure, int16_t indent);
    void WriteUnexpected(const RaisedError& error);
    void WriteStopped();

    const ConvertOptions options_;
    const ConvertSettings& settings_;  // of the options
    WorkList list_;
    ConvertMonitor& monitor_;
    ConvertLog log_;
    OutputNames names_;
    std::set<std::wstring> expansionFolders_;  // of this run's archives, in upper case
    // Of the user's archives, by the folder that each would be expanded into, in upper case.
    std::map<std::wstring, std::set<std::wstring>> namesakes_;
    KnownContents expanded_;  // archives
    bool stopIsTold_ = false;
    ULONGLONG stopAskedAt_ = 0;  // in ticks; 0: not yet
    const int threads_ = ThreadsFor(settings_.jobs);
    std::deque<Upcoming> upcoming_;
    int32_t upcomingFrom_ = 1;  // place of the first of them in the list
    int32_t upcomingOf_ = 0;    // the list's upper bound then
    Encoders encoders_{threads_, options_};
    ReadAhead ahead_{
        TakesOwnColors(settings_, options_.save),
        [this](const std::wstring& path, const std::optional<FileStamp>& stamp, ReadResult& read) {
            KeepMetadata(read, path, stamp, options_);
            return BeginEncoding(read);
        }};
    std::optional<FilesAhead> filesAhead_;
};

}  // namespace tessary
