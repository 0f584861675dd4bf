// One run of the conversion engine: its work list, and the steps that an entry goes through.
#pragma once

#include <cstdint>
#include <map>
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

// The full paths of the files to convert, in order. What is expanded from archives is added at the
// end, where an empty text stands for a member that was not extracted.
class WorkList {
  public:
    explicit WorkList(std::vector<std::wstring> files)
        : files_(std::move(files)), initialCount_(UpperBound()) {
        for (const std::wstring& file : files_)
            held_.insert(ToUpper(file));
    }

    // Indexes count from 1 to UpperBound.
    int32_t UpperBound() const { return static_cast<int32_t>(files_.size()); }
    const std::wstring& At(int32_t index) const { return files_[static_cast<size_t>(index) - 1]; }
    void Set(int32_t index, std::wstring path) {
        held_.insert(ToUpper(path));
        files_[static_cast<size_t>(index) - 1] = std::move(path);
    }
    // Adds so many empty entries.
    void Grow(int32_t count) { files_.resize(files_.size() + static_cast<size_t>(count)); }

    // Whether a path is an entry, or was one.
    bool Holds(const std::wstring& path) const { return held_.contains(ToUpper(path)); }

    // Whether the entry is an extracted member.
    bool IsExtracted(int32_t index) const { return index > initialCount_; }

  private:
    std::vector<std::wstring> files_;
    int32_t initialCount_;
    std::unordered_set<std::wstring> held_;  // in upper case
};

// Every step traps what goes wrong in it unexpectedly and then counts as far as it has come; the
// run goes on with the next file.
class ConvertRun {
  public:
    // `targetFolder` with its trailing backslash; it exists.
    ConvertRun(std::wstring targetFolder, std::vector<std::wstring> files, ConvertMonitor& monitor)
        : targetFolder_(std::move(targetFolder)),
          list_(std::move(files)),
          monitor_(monitor),
          log_(monitor) {}

    // False when the user stopped it.
    bool Run();

  private:
    // What stands in the log for one entry of the list.
    void ConvertEntry(int32_t index);
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
    // Saves a picture and, where both are small, reads the next file of the list meanwhile.
    bool SaveAndRead(const PicturePair& picture, const std::wstring& output);
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
    // Where a member was extracted to; empty when it was not.
    std::wstring ExpandMember(Expansion& expansion, int32_t index);
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
                monitor_.CountFile(FileOutcome::kFailed);
                WriteUnexpected(CurrentError());
            });
        }
        return result;
    }

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
    // By their paths in upper case: the names, without folder, of extracted files that had to lie
    // beside somebody's file of that name.
    std::map<std::wstring, std::wstring> ownNames_;
    int32_t current_ = 0;  // index of the entry at hand
    SourceFile source_;    // what it has turned out to be
    ReadAhead ahead_;      // the next entry
};

}  // namespace tessary
