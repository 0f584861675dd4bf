#include "convert/source_order.h"

#include <algorithm>
#include <map>
#include <utility>

#include "app/base/file_identity.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "convert/save_extension.h"

namespace tessary {
namespace {

// Whether folders are the target folder or lie below it, by whatever path.
class TargetTree {
  public:
    explicit TargetTree(const std::wstring& target) : target_(IdentityOf(target)) {}

    // `folder` with its trailing backslash.
    bool Holds(const std::wstring& folder) {
        const auto known = known_.find(folder);
        if (known != known_.end()) return known->second;
        const std::wstring parent =
            FolderOf(std::wstring_view(folder).substr(0, folder.size() - 1));
        const bool isIn = IdentityOf(folder) == target_ ||
                          (!parent.empty() && parent != LR"(\\)" && Holds(parent));
        known_[folder] = isIn;
        return isIn;
    }

  private:
    std::wstring target_;
    std::map<std::wstring, bool> known_;
};

// Of ` (2) (3)` behind a name: two.
size_t NumbersBehind(std::wstring_view stem) {
    size_t count = 0;
    for (;; ++count) {
        const size_t blank = stem.rfind(L" (");
        if (!stem.ends_with(L')') || blank == stem.npos) return count;
        const std::wstring_view digits = stem.substr(blank + 2, stem.size() - blank - 3);
        if (digits.empty() || digits.find_first_not_of(L"0123456789") != digits.npos) return count;
        stem = stem.substr(0, blank);
    }
}

size_t NumbersIn(const WorkEntry& entry) {
    const std::wstring name = FileNameOf(entry.path);
    return NumbersBehind(std::wstring_view(name).substr(0, name.rfind(L'.')));
}

}  // namespace

OrderedEntries WithResultsLast(std::vector<WorkEntry> entries, const std::wstring& targetFolder,
                               const ConvertSettings& settings) {
    TargetTree tree(targetFolder);
    OrderedEntries ordered;
    for (WorkEntry& entry : entries) {
        const bool isLast = IsSaveExtension(L'.' + UpperExtensionOf(entry.path), settings) &&
                            tree.Holds(FolderOf(entry.path));
        (isLast ? ordered.last : ordered.first).push_back(std::move(entry));
    }
    std::ranges::stable_sort(ordered.last, {}, NumbersIn);
    return ordered;
}

}  // namespace tessary
