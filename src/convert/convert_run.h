// One run of the conversion engine: its work list, and the steps that an entry goes through.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "app/base/error.h"
#include "app/base/text.h"
#include "convert/convert_log.h"
#include "convert/convert_monitor.h"
#include "convert/read_ahead.h"
#include "picture/modMemory.h"
#include "plugin/clsSusie.h"

namespace tessary {

enum class StepResult {
    kDone = 0,        // the picture was saved, or the archive expanded
    kNotHandled = 1,  // of no known kind, not to be expanded, or it could not be read
    kNotSaved = 2,    // too small, or it could not be written
    kStopped = 3,     // the user has stopped the run
};

// A file that is to be converted: one of the user's, or a member of an archive.
struct WorkEntry {
    std::wstring path{};      // full path; empty: a member that was not extracted
    std::wstring source{};    // full path of the user's file: this one, or the archive around it
    std::wstring member{};    // its name in the archive; empty for a file of the user's
    std::wstring saveName{};  // the name, without folder, that it is saved by; empty: its own
};

// The files to convert, in order. What is expanded from archives is added at the end.
class WorkList {
  public:
    explicit WorkList(const std::vector<ConvertSource>& files) {
        for (const ConvertSource& file : files) {
            entries_.push_back({file.path, file.path});
            held_.insert(ToUpper(file.path));
        }
        initialCount_ = UpperBound();
    }

    // Indexes count from 1 to UpperBound.
    int32_t UpperBound() const { return static_cast<int32_t>(entries_.size()); }
    const WorkEntry& At(int32_t index) const { return entries_[static_cast<size_t>(index) - 1]; }
    void Set(int32_t index, WorkEntry entry) {
        held_.insert(ToUpper(entry.path));
        entries_[static_cast<size_t>(index) - 1] = std::move(entry);
    }
    void SetPath(int32_t index, const std::wstring& path) {
        held_.insert(ToUpper(path));
        entries_[static_cast<size_t>(index) - 1].path = path;
    }
    // Adds so many empty entries.
    void Grow(int32_t count) { entries_.resize(entries_.size() + static_cast<size_t>(count)); }

    // Whether a path is an entry's, or was.
    bool Holds(const std::wstring& path) const { return held_.contains(ToUpper(path)); }

    // Whether the entry is an extracted member.
    bool IsExtracted(int32_t index) const { return index > initialCount_; }

  private:
    std::vector<WorkEntry> entries_;
    int32_t initialCount_ = 0;
    std::unordered_set<std::wstring> held_;  // in upper case
};

// Every step traps what goes wrong in it unexpectedly and then counts as far as it has come; the
// run goes on with the next file.
class ConvertRun {
  public:
    // `targetFolder` with its trailing backslash; it exists.
    ConvertRun(std::wstring targetFolder, const std::vector<ConvertSource>& files,
               ConvertMonitor& monitor)
        : targetFolder_(std::move(targetFolder)), list_(files), monitor_(monitor), log_(monitor) {}

    // False when the user stopped it.
    bool Run();

  private:
    // What stands in the log for one entry of the list.
    void ConvertEntry();
    // Tells the monitor what became of the entry, if that is known and the entry is a file.
    void TellReport();
    // Deletes an extracted member that has done its service or is not wanted.
    void CleanUp(const std::wstring& path, bool isExtracted, StepResult result);
    StepResult ConvertByKind(const std::wstring& path, const std::wstring& outputFolder);

    // --- Pictures (convert_picture.cpp); `outputFolder` has its trailing backslash ---

    StepResult ConvertBitmapFile(const std::wstring& path, const std::wstring& outputFolder);
    StepResult ConvertPictureFile(const std::wstring& path, const std::wstring& pluginKey,
                                  const std::wstring& outputFolder);
    // `path`: of the file that the picture comes from.
    StepResult SaveConvertedPicture(const PicturePair& picture, const std::wstring& outputFolder,
                                    const std::wstring& path);
    // Saves a picture and, where both are small, reads the next file of the list meanwhile. The
    // system's error, 0 for success.
    DWORD SaveAndRead(const PicturePair& picture, const std::wstring& output);
    // The next file to be read while a picture is saved as `output`, if any.
    std::optional<std::wstring> NextToRead(const std::wstring& output) const;
    // The name, without folder, that its picture is saved under.
    std::wstring SavedNameFor(const std::wstring& path, const std::wstring& outputFolder,
                              const std::wstring& extension) const;

    // --- Archives (convert_archive.cpp) ---

    StepResult ConvertArchiveFile(const std::wstring& path, const std::wstring& pluginKey,
                                  const std::wstring& expansionFolder);
    // `upperBound`: of the list before it grew. False when the user has stopped the run.
    bool ExpandArchiveFiles(clsSusie& archive, const std::wstring& expansionFolder,
                            int32_t upperBound);
    // One archive on its way.
    struct Expansion;
    // A member; without a path when it could not be extracted.
    WorkEntry ExpandMember(Expansion& expansion, int32_t index);
    std::wstring MakeExpansionFolder(const std::wstring& folder, bool& isNew);

    // --- Shared ---

    // Runs a step, which sets its result, kDone as long as it does not.
    template <typename Body>
    StepResult Step(Body&& body) {
        StepResult result = StepResult::kDone;
        try {
            body(result);
        } catch (...) {
            Trapped([&] {
                const RaisedError error = CurrentError();
                Report(FileOutcome::kFailed, FileReason::kUnexpected, error.Description());
                WriteUnexpected(error);
            });
        }
        return result;
    }

    const WorkEntry& Entry() const { return list_.At(current_); }
    // Notes what has become of the entry, unless it is noted already. Without a text the reason's
    // own.
    void Report(FileOutcome outcome, FileReason reason = FileReason::kNone, std::wstring text = {});
    // An extracted member that is still to be converted gives up a path that an output needs.
    void MakeWayFor(const std::wstring& output);
    // Deletes an extracted file that has done its service, unless it is an output by now.
    void DeleteExtracted(const std::wstring& path);
    // Deletes an extracted member that was not converted, unless such are to be kept.
    void RemoveExtractedFile(const std::wstring& path, bool isExtracted);
    void WritePluginError(const PluginFailure& failure, int16_t indent);
    void WriteUnexpected(const RaisedError& error);
    void WriteStopped();

    std::wstring targetFolder_;
    WorkList list_;
    ConvertMonitor& monitor_;
    ConvertLog log_;
    std::set<std::wstring> savedFiles_;        // what entries have become, in upper case
    std::set<std::wstring> expansionFolders_;  // of this run's archives, in upper case
    int32_t current_ = 0;                      // index of the entry at hand
    FileReport report_;                        // on it
    bool isReported_ = false;
    SourceFile source_;  // what it has turned out to be
    ReadAhead ahead_;    // the next entry
};

}  // namespace tessary
