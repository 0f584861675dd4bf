#include "convert/output_names.h"

#include <windows.h>

#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

constexpr size_t kLongestName = 255;  // that file systems take

std::wstring OwnName(const WorkEntry& entry) {
    return entry.saveName.empty() ? FileNameOf(entry.path) : entry.saveName;
}

// The path that the entry would have in its folder, without its extension.
std::wstring OwnStem(const WorkEntry& entry) {
    const std::wstring name = OwnName(entry);
    return entry.folder + name.substr(0, name.rfind(L'.'));
}

// The path for the number, which counts from 1.
std::wstring Candidate(const WorkEntry& entry, const std::wstring& extension, int number) {
    std::wstring tail = extension;
    if (number > 1) tail = L" (" + std::to_wstring(number) + L')' + extension;
    std::wstring path = OwnStem(entry);
    const size_t longest = entry.folder.size() + kLongestName - tail.size();
    if (path.size() > longest) {
        // Not in the middle of a pair.
        path.resize(IS_HIGH_SURROGATE(path[longest - 1]) ? longest - 1 : longest);
    }
    return path + tail;
}

OutputChoice Chosen(const std::wstring& path, int number, bool isReplaced) {
    OutputChoice choice{.path = path, .isRenamed = number > 1, .isReplaced = isReplaced};
    if (choice.isRenamed) choice.reason = FileReason::kTargetExists;
    return choice;
}

OutputChoice Skipped(const std::wstring& path, FileReason reason) {
    return {.path = path, .isSkipped = true, .reason = reason};
}

}  // namespace

OutputNames::OutputNames(const std::vector<ConvertSource>& sources, int32_t onConflict,
                         ConvertMonitor& monitor)
    : onConflict_(onConflict), monitor_(monitor) {
    for (const ConvertSource& source : sources)
        sources_.insert(ToUpper(source.path));
}

void OutputNames::Announce(const WorkEntry& entry) {
    ++wanted_[ToUpper(OwnStem(entry))];
    if (!entry.IsExtracted()) return;
    own_.emplace(ToUpper(entry.folder + OwnName(entry)), entry.path);
    own_.emplace(ToUpper(entry.path), entry.path);
}

// The name that it is saved by stays its own.
void OutputNames::Release(const WorkEntry& entry) {
    if (!entry.saveName.empty()) own_.erase(ToUpper(entry.path));
}

void OutputNames::AddResult(const std::wstring& path, const WorkEntry& entry, bool isNew) {
    results_.emplace(ToUpper(path), entry.path);
    if (isNew) {
        newResults_.push_back(path);
    } else {
        resultKeys_.insert_or_assign(IdentityOf(path), path);
    }
}

bool OutputNames::IsResult(const std::wstring& path) {
    if (results_.contains(ToUpper(path))) return true;
    for (const std::wstring& result : newResults_)
        resultKeys_.insert_or_assign(IdentityOf(result), result);
    newResults_.clear();
    return SourceOfResult(path).has_value();
}

std::optional<std::wstring> OutputNames::SourceOfResult(const std::wstring& path) const {
    if (const auto result = results_.find(ToUpper(path)); result != results_.end()) {
        return result->second;
    }
    if (resultKeys_.empty()) return std::nullopt;
    const std::wstring identity = IdentityOf(path);
    const auto result = resultKeys_.find(identity);
    // The number of one that was replaced since may have become another file's.
    const bool isResult = result != resultKeys_.end() && IdentityOf(result->second) == identity;
    return isResult ? std::optional(results_.at(ToUpper(result->second))) : std::nullopt;
}

bool OutputNames::IsSource(const std::wstring& path) {
    if (sources_.contains(ToUpper(path))) return true;
    if (sourceKeys_.empty()) {
        for (const std::wstring& source : sources_)
            sourceKeys_.insert(IdentityOf(source));
    }
    return sourceKeys_.contains(IdentityOf(path));
}

bool OutputNames::IsBesideSource(const std::wstring& path) {
    const std::wstring folder = FolderOf(path);
    const auto [known, isNew] = besideSource_.try_emplace(ToUpper(folder));
    if (!isNew) return known->second;
    if (sourceFolders_.empty()) {
        std::unordered_set<std::wstring> folders;
        for (const std::wstring& source : sources_)
            folders.insert(FolderOf(source));
        for (const std::wstring& each : folders)
            sourceFolders_.insert(IdentityOf(each));
    }
    known->second = sourceFolders_.contains(IdentityOf(folder));
    return known->second;
}

// By a list of the folder that is made once: some systems read the whole folder for each question
// about a name that is not there.
bool OutputNames::IsListed(const std::wstring& path) {
    const std::wstring folder = FolderOf(path);
    const auto [listing, isNew] = listings_.try_emplace(ToUpper(folder));
    if (isNew) {
        for (const std::wstring& name : NamesInFolder(folder))
            listing->second.insert(ToUpper(name));
    }
    return listing->second.contains(ToUpper(FileNameOf(path)));
}

// An extracted member is no file that anybody misses when its own picture takes its place.
bool OutputNames::Exists(const std::wstring& path, const WorkEntry& entry) {
    if (entry.IsExtracted() && EqualsIgnoreCase(path, entry.path)) return false;
    // A list does not hold short names, and does not know what others do meanwhile; where nothing
    // of anybody's may be replaced, that matters.
    const bool trustsList = onConflict_ == kConflictFreeName || onConflict_ == kConflictOverwrite;
    if (trustsList && path.find(L'~') == path.npos && !IsListed(path)) return false;
    return PathExists(path);
}

// By another picture of this run, or for another member.
bool OutputNames::IsTaken(const std::wstring& path, const WorkEntry& entry) const {
    const auto own = own_.find(ToUpper(path));
    return (own != own_.end() && own->second != entry.path) || results_.contains(ToUpper(path));
}

int OutputNames::Contenders(const WorkEntry& entry) const {
    const auto wanted = wanted_.find(ToUpper(OwnStem(entry)));
    return wanted == wanted_.end() ? 1 : wanted->second;
}

const std::wstring& OutputNames::SourceIdentity(const std::wstring& path) {
    const auto [known, isNew] = identities_.try_emplace(path);
    if (isNew) known->second = IdentityOf(path);
    return known->second;
}

bool OutputNames::IsListedTwice(const std::wstring& path, const WorkEntry& entry) {
    const auto result = results_.find(ToUpper(path));
    if (entry.IsExtracted() || result == results_.end()) return false;
    return EqualsIgnoreCase(result->second, entry.path) ||
           SourceIdentity(result->second) == SourceIdentity(entry.path);
}

OutputChoice OutputNames::Choose(const OutputWish& wish) {
    switch (onConflict_) {
        case kConflictSkip:
            return SkippingName(wish);
        case kConflictOverwrite:
            return OverwritingName(wish);
        case kConflictAsk:
            return AskedName(wish);
        default:
            return FreeName(wish, false);
    }
}

// Looks among the names that an earlier run may have given to pictures of this name, also behind
// one that is free, and settles for the first of the best: the picture's like, a free one among
// them, its own where the file there may be replaced, a free one behind them.
OutputChoice OutputNames::FreeName(const OutputWish& wish, bool onlyNew) {
    const WorkEntry& entry = wish.entry;
    int last = Contenders(entry);
    bool isContested = last > 1;
    bool mayReplace = false;
    int free = 0;
    for (int number = 1; number <= last || (!mayReplace && free == 0); ++number) {
        const std::wstring path = Candidate(entry, wish.extension, number);
        if (IsListedTwice(path, entry)) return Skipped(path, FileReason::kListedTwice);
        if (IsTaken(path, entry)) {
            isContested = true;
            continue;
        }
        if (!Exists(path, entry)) {
            if (!isContested) return Chosen(path, number, false);
            if (free == 0) free = number;
            continue;
        }
        if (IsResult(path)) continue;
        const bool isSource = IsSource(path) || IsBesideSource(path) || IsFolder(path);
        isContested = isContested || isSource;
        if (isContested && wish.isWritten(path)) {
            return Skipped(path, FileReason::kAlreadyConverted);
        }
        // Another name than its own is not worth anybody's file.
        if (isSource || onlyNew || number > 1) {
            ++last;  // no earlier run has given this one
            continue;
        }
        if (!isContested) return Chosen(path, number, true);
        mayReplace = true;
    }
    const bool isFree = free != 0 && (free <= last || !mayReplace);
    const int number = isFree ? free : 1;
    return Chosen(Candidate(entry, wish.extension, number), number, !isFree);
}

// What is there stays. Pictures of one name still get one file each, or all but one would be left
// out. Where some of these are missing, a file that is none of theirs, by its content, counts as
// another's.
OutputChoice OutputNames::SkippingName(const OutputWish& wish) {
    const WorkEntry& entry = wish.entry;
    const int last = Contenders(entry);
    int free = 0;
    int unclaimed = 0;  // by a picture of this run
    for (int number = 1; number <= last || (unclaimed == 0 && free == 0); ++number) {
        const std::wstring path = Candidate(entry, wish.extension, number);
        if (IsListedTwice(path, entry)) return Skipped(path, FileReason::kListedTwice);
        if (IsTaken(path, entry)) continue;
        if (!Exists(path, entry)) {
            if (free == 0) free = number;
            continue;
        }
        if (IsResult(path)) continue;
        if (IsSource(path)) return Skipped(path, FileReason::kTargetExists);
        if (last == 1) return Skipped(path, FileReason::kTargetExists);
        if (wish.isWritten(path)) return Skipped(path, FileReason::kAlreadyConverted);
        if (unclaimed == 0 && number <= last) unclaimed = number;
    }
    if (unclaimed != 0 && (free == 0 || free > last)) {
        return Skipped(Candidate(entry, wish.extension, unclaimed), FileReason::kTargetExists);
    }
    return Chosen(Candidate(entry, wish.extension, free), free, false);
}

bool OutputNames::WillSkip(const WorkEntry& entry, const std::wstring& extension) {
    if (onConflict_ != kConflictSkip || Contenders(entry) > 1) return false;
    const std::wstring path = Candidate(entry, extension, 1);
    return !IsTaken(path, entry) && Exists(path, entry) && !IsResult(path);
}

bool OutputNames::IsLikelyToSkip(const WorkEntry& entry, const std::wstring& extension) const {
    return onConflict_ == kConflictSkip && Contenders(entry) <= 1 &&
           PathExists(Candidate(entry, extension, 1));
}

// A member that lies beside a file of its name is still saved under its own, as any file is, so
// that a run can be repeated; but for a picture of this run.
OutputChoice OutputNames::OverwritingName(const OutputWish& wish) {
    int number = 1;
    std::wstring path = Candidate(wish.entry, wish.extension, number);
    while (!wish.entry.saveName.empty() && results_.contains(ToUpper(path)))
        path = Candidate(wish.entry, wish.extension, ++number);
    return Chosen(path, number, Exists(path, wish.entry) && !IsFolder(path));
}

OutputChoice OutputNames::AskedName(const OutputWish& wish) {
    const WorkEntry& entry = wish.entry;
    const std::wstring path = Candidate(entry, wish.extension, 1);
    if (IsListedTwice(path, entry)) return Skipped(path, FileReason::kListedTwice);
    const bool isTaken = IsTaken(path, entry);
    const bool exists = Exists(path, entry);
    if (!isTaken && !exists) return Chosen(path, 1, false);
    // Nobody wants to lose a picture of this run to another one.
    const bool isOfRun = isTaken || IsResult(path) || IsFolder(path) ||
                         (IsSource(path) && !IsSameFile(path, entry.path));
    const ConflictAnswer answer =
        monitor_.AskConflict({.source = entry.path, .target = path, .mayReplace = !isOfRun});
    switch (answer) {
        case ConflictAnswer::kReplace:
            if (!isOfRun) return Chosen(path, 1, true);
            break;
        case ConflictAnswer::kSkip:
        case ConflictAnswer::kStop:
            return Skipped(path, FileReason::kTargetExists);
        case ConflictAnswer::kFreeName:
            break;
    }
    return FreeName(wish, true);
}

}  // namespace tessary
