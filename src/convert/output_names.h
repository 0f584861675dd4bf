// The names of what a run writes.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "app/settings/modValue.h"
#include "convert/convert_monitor.h"
#include "convert/work_list.h"

namespace tessary {

// A picture that is to be written.
struct OutputWish {
    const WorkEntry& entry;
    std::wstring extension;  // with its dot; may be empty
    // Whether a file has the content that would be written.
    std::function<bool(const std::wstring& path)> isWritten;
};

struct OutputChoice {
    std::wstring path;
    bool isSkipped = false;  // nothing is to be written: what is there stays
    bool isRenamed = false;
    bool isReplaced = false;
    FileReason reason = FileReason::kNone;  // why it is skipped or renamed
};

// Decides by ConvertSettings::onConflict what a picture is saved as.
//
// A free name is given where the run would destroy one of its own sources, read or not, or one of
// its own results, or a file beside a source, which is likely to be the user's; any other file is
// replaced. Which of several pictures of one name gets which
// number depends on the order of the list; but a picture whose like was left by an earlier run, in
// whatever order, keeps that one's name: so runs that are stopped, repeated, or done over their own
// results come to the same files.
class OutputNames {
  public:
    // `onConflict`: ConvertSettings::onConflict. The monitor must outlive this.
    OutputNames(const std::vector<ConvertSource>& sources, int32_t onConflict,
                ConvertMonitor& monitor);

    // A file that will be converted. To be told of all that go into one folder before the first
    // name there is chosen.
    void Announce(const WorkEntry& entry);

    // An extracted member's own file is gone.
    void Release(const WorkEntry& entry);

    OutputChoice Choose(const OutputWish& wish);
    // The same before the picture has been read, of the same extension: whether it will be skipped
    // for sure.
    bool WillSkip(const WorkEntry& entry, const std::wstring& extension);
    // The same as far as can be told before the entry's turn.
    bool IsLikelyToSkip(const WorkEntry& entry, const std::wstring& extension) const;

    // A picture has been written, or is there from an earlier run. `isNew`: nothing had the name
    // before.
    void AddResult(const std::wstring& path, const WorkEntry& entry, bool isNew);
    // For a file that is there.
    bool IsResult(const std::wstring& path);
    // The file, or member, that has become the result; nothing when it is none, or one that nobody
    // can have meant by that path before the run.
    std::optional<std::wstring> SourceOfResult(const std::wstring& path) const;
    bool IsSource(const std::wstring& path);

  private:
    bool IsBesideSource(const std::wstring& path);
    bool Exists(const std::wstring& path, const WorkEntry& entry);
    bool IsListed(const std::wstring& path);
    bool IsTaken(const std::wstring& path, const WorkEntry& entry) const;
    // How many of the files would have the entry's name, but for the extension.
    int Contenders(const WorkEntry& entry) const;
    bool IsListedTwice(const std::wstring& path, const WorkEntry& entry);
    const std::wstring& SourceIdentity(const std::wstring& path);

    OutputChoice FreeName(const OutputWish& wish, bool onlyNew);
    OutputChoice SkippingName(const OutputWish& wish);
    OutputChoice OverwritingName(const OutputWish& wish);
    OutputChoice AskedName(const OutputWish& wish);

    const int32_t onConflict_;
    ConvertMonitor& monitor_;
    std::unordered_set<std::wstring> sources_;     // their paths in upper case
    std::unordered_set<std::wstring> sourceKeys_;  // their identities, as soon as they matter
    // The same by the paths of sources of one name, each of which is compared with all the others.
    std::unordered_map<std::wstring, std::wstring> identities_;
    std::map<std::wstring, bool> besideSource_;  // folders in upper case: whether they hold one
    std::unordered_set<std::wstring> sourceFolders_;  // identities of the folders that do
    // The results, by their paths in upper case: whose they are.
    std::unordered_map<std::wstring, std::wstring> results_;
    // The paths of new files, which nobody knew by other paths before the run.
    std::vector<std::wstring> newResults_;
    // The paths of the others, and of new ones as soon as that matters, by their identities.
    std::unordered_map<std::wstring, std::wstring> resultKeys_;
    // How many of the files would have a path, without its extension, in upper case.
    std::unordered_map<std::wstring, int> wanted_;
    // The paths that are extracted members' own, in upper case, and whose they are.
    std::unordered_map<std::wstring, std::wstring> own_;
    std::map<std::wstring, std::unordered_set<std::wstring>> listings_;  // of folders; upper case
};

}  // namespace tessary
