#include "convert/work_list.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"

namespace tessary {
namespace {

std::wstring WithBackslash(std::wstring folder) {
    if (!folder.ends_with(L'\\')) folder += L'\\';
    return folder;
}

std::wstring RootOf(const ConvertSource& source) {
    return source.root.empty() ? FolderOf(source.path) : WithBackslash(source.root);
}

// `C:\`, or `\\server\share\`; in upper case.
std::wstring DriveOf(const std::wstring& folder) {
    const bool isShare = folder.starts_with(LR"(\\)");
    size_t end = folder.find(L'\\', isShare ? 2 : 0);
    if (isShare && end != folder.npos) end = folder.find(L'\\', end + 1);
    return ToUpper(folder.substr(0, end == folder.npos ? end : end + 1));
}

bool IsBelow(const std::wstring& path, const std::wstring& folder) {
    return EqualsIgnoreCase(std::wstring_view(path).substr(0, folder.size()), folder);
}

std::wstring CommonFolder(std::wstring one, const std::wstring& other) {
    while (!one.empty() && !IsBelow(other, one))
        one = FolderOf(std::wstring_view(one).substr(0, one.size() - 1));
    return one;
}

// The deepest common folder of each drive's files; of several drives the one around it, so that
// what comes from one drive stays apart from what comes from another.
std::map<std::wstring, std::wstring> CommonFolders(const std::vector<ConvertSource>& sources) {
    std::map<std::wstring, std::wstring> common;
    for (const ConvertSource& source : sources) {
        const std::wstring root = RootOf(source);
        const auto [found, isNew] = common.emplace(DriveOf(root), root);
        if (!isNew) found->second = CommonFolder(found->second, root);
    }
    for (auto& [drive, folder] : common) {
        if (common.size() < 2 || folder.size() <= drive.size()) continue;
        folder = FolderOf(std::wstring_view(folder).substr(0, folder.size() - 1));
    }
    return common;
}

}  // namespace

std::vector<WorkEntry> EntriesOf(const std::vector<ConvertSource>& sources,
                                 const std::wstring& targetFolder, bool keepFolders) {
    std::map<std::wstring, std::wstring> common;
    if (keepFolders) common = CommonFolders(sources);
    std::vector<WorkEntry> entries;
    entries.reserve(sources.size());
    for (const ConvertSource& source : sources) {
        WorkEntry& entry = entries.emplace_back();
        entry.path = entry.source = source.path;
        entry.folder = targetFolder;
        if (!keepFolders) continue;
        const std::wstring folder = FolderOf(source.path);
        const std::wstring& base = common[DriveOf(RootOf(source))];
        if (!base.empty() && IsBelow(folder, base)) entry.folder += folder.substr(base.size());
    }
    return entries;
}

WorkList::WorkList(std::vector<WorkEntry> first, std::vector<WorkEntry> last)
    : entries_(std::move(first)), last_(std::move(last)) {
    for (const auto* const entries : {&entries_, &last_}) {
        for (const WorkEntry& entry : *entries)
            held_.insert(ToUpper(entry.path));
    }
}

const WorkEntry& WorkList::At(int32_t index) const {
    const auto at = static_cast<size_t>(index) - 1;
    return at < entries_.size() ? entries_[at] : last_[at - entries_.size()];
}

void WorkList::Set(int32_t index, WorkEntry entry) {
    held_.insert(ToUpper(entry.path));
    entries_[static_cast<size_t>(index) - 1] = std::move(entry);
}

void WorkList::SetPath(int32_t index, const std::wstring& path) {
    held_.insert(ToUpper(path));
    entries_[static_cast<size_t>(index) - 1].path = path;
}

int32_t WorkList::Grow(int32_t count) {
    const auto upperBound = static_cast<int32_t>(entries_.size());
    entries_.resize(entries_.size() + static_cast<size_t>(count), {.depth = 1});
    return upperBound;
}

void WorkList::Reach(int32_t index) {
    if (static_cast<size_t>(index) <= entries_.size()) return;
    std::move(last_.begin(), last_.end(), std::back_inserter(entries_));
    last_.clear();
}

bool WorkList::Holds(const std::wstring& path) const {
    return held_.contains(ToUpper(path));
}

}  // namespace tessary
