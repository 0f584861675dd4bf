#include "ui/control/next_folder.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/base/natural_key.h"
#include "app/base/paths.h"
#include "app/base/scan_folders.h"
#include "ui/dialogs/folder_listing.h"

namespace tessary {
namespace {

struct KeyedFolder {
    std::string key;
    std::wstring name;

    auto operator<=>(const KeyedFolder&) const = default;
};

}  // namespace

FolderFiles FolderBeside(const std::wstring& folder, int step, const Arrangement& arrangement,
                         const std::atomic<bool>& stop) {
    const std::wstring own = RemoveBackslash(folder);
    const std::wstring parent = FolderOf(own);
    if (parent.empty()) return {};
    NaturalKeys keys;
    const auto keyed = [&](const std::wstring& name) {
        return KeyedFolder{keys.OfName(name), name};
    };
    std::vector<KeyedFolder> folders;
    for (const ListedFolder& one : ListFolders(parent).folders)
        folders.push_back(keyed(one.name));
    const KeyedFolder self = keyed(FileNameOf(own));
    std::erase_if(folders,
                  [&](const KeyedFolder& one) { return step > 0 ? one <= self : one >= self; });
    std::ranges::sort(folders);
    if (step < 0) std::ranges::reverse(folders);
    for (const KeyedFolder& one : folders) {
        const std::wstring path = parent + one.name + L'\\';
        std::vector<FoundFile> found;
        const ScanRequest request{.folder = path, .subFolders = false, .extensions = {}};
        ScanFolders(request, [&](ScanNews&& news) {
            std::ranges::move(news.files, std::back_inserter(found));
            return !stop;
        });
        if (stop) return {};
        const bool isSeen = std::ranges::any_of(found, [&](const FoundFile& file) {
            return arrangement.kinds.Of(file.path) != kFileUnknown;
        });
        if (isSeen) return {path, Arranged(std::move(found), arrangement)};
    }
    return {};
}

}  // namespace tessary
