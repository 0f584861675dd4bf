// Finding the plug-in for a file or memory block.
#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/CollectionSusie.h"

namespace tessary {
namespace {

size_t PlaceOf(int32_t index) {
    return static_cast<size_t>(std::max(index, 1)) - 1;
}

}  // namespace

int32_t CollectionSusie::IndexOf(const clsSusie* member) const {
    const auto found =
        std::ranges::find(order_.members, member, [](const auto& one) { return one.get(); });
    return found == order_.members.end() ? 0
                                         : static_cast<int32_t>(found - order_.members.begin()) + 1;
}

int32_t CollectionSusie::FileSupported(const std::wstring& path, int32_t startIndex) {
    return IndexOf(Search(order_, path, PlaceOf(startIndex)).Next());
}

int32_t CollectionSusie::MemorySupported(HLOCAL memory, const std::wstring& fileName,
                                         int32_t startIndex) {
    return IndexOf(Search(order_, memory, fileName, PlaceOf(startIndex)).Next());
}

Search CollectionSusie::SearchFor(const std::wstring& path) {
    if (PluginCallUnderWay()) return {};
    if (Holds(query_, path)) return std::exchange(query_, {}).search;
    query_ = {};
    UnloadFile();
    return Search(order_, path);
}

Search CollectionSusie::SearchFor(HLOCAL memory, const std::wstring& fileName) {
    return Search(order_, memory, fileName);
}

bool CollectionSusie::TakeOver(const std::wstring& path, std::wstring_view dllName) {
    const clsSusie* const found = Item(dllName);
    if (found == nullptr || Search(order_, path).PrefersAnother(*found)) return false;
    order_.lastSuccess = found;
    return true;
}

clsSusie* CollectionSusie::QueryFile(const std::wstring& path) {
    if (PluginCallUnderWay()) return nullptr;
    if (Holds(query_, path)) return query_.search.Peek();
    query_ = {};
    UnloadFile();
    const std::optional<FileStamp> stamp = StampOf(path);  // before anybody reads the file
    if (!stamp) return nullptr;
    Query query{Search(order_, path), *stamp};
    clsSusie* const found = query.search.Peek();
    query_ = std::move(query);
    return found;
}

const clsSusie* CollectionSusie::FirstNaming(const std::wstring& path) const {
    if (PluginCallUnderWay() || PluginsAreStopped()) return nullptr;
    const std::wstring name = ToUpper(FileNameOf(path));
    const auto found = std::ranges::find_if(order_.members, [&](const auto& member) {
        return MatchesNamingPattern(name, member->Patterns());
    });
    return found == order_.members.end() ? nullptr : found->get();
}

// Whether the member found is still bound to the file, and the file still the same.
bool CollectionSusie::Holds(Query& query, const std::wstring& path) {
    const clsSusie* const member = query.search.Peek();
    return member != nullptr && EqualsIgnoreCase(member->GetFile(), path) &&
           StampOf(path) == query.stamp;
}

clsSusie* CollectionSusie::ArchivePlugin(const std::wstring& path) {
    for (const auto& member : order_.members) {
        if (member->DllStyle() == kStyleArchive && EqualsIgnoreCase(member->GetFile(), path)) {
            return member.get();
        }
    }
    Search search = SearchFor(path);
    while (clsSusie* const found = search.Next()) {
        if (found->DllStyle() == kStyleArchive) return found;
    }
    return nullptr;
}

clsSusie* CollectionSusie::ArchiveToList(const std::wstring& path) {
    listing_ = {path, StampOf(path), {}};
    clsSusie* const archive = ArchivePlugin(path);
    if (archive != nullptr) listing_.dllName = archive->DllName();
    return archive;
}

clsSusie* CollectionSusie::ListedArchive(const std::wstring& path) {
    if (!EqualsIgnoreCase(listing_.path, path)) return ArchivePlugin(path);
    // Another plug-in may list the members in another order.
    clsSusie* const archive = listing_.dllName.empty() ? nullptr : Item(listing_.dllName);
    if (archive == nullptr || listing_.stamp != StampOf(path)) return nullptr;
    const bool bound = Trapped(false, [&] {
        archive->SetFile(path);
        return true;
    });
    return bound ? archive : nullptr;
}

}  // namespace tessary
