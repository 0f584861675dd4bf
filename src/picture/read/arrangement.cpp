#include "picture/read/arrangement.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

// As they stand in names that are written by others; in upper case.
constexpr std::wstring_view kJunkFiles[] = {L"THUMBS.DB", L"EHTHUMBS.DB", L"DESKTOP.INI",
                                            L".DS_STORE"};
constexpr std::wstring_view kJunkFolder = L"__MACOSX";

// With "._" begins what a Mac keeps of a file where it has no better place.
bool IsJunk(std::wstring_view path) {
    const std::wstring upper = ToUpper(path);
    const size_t nameStart = upper.rfind(L'\\') + 1;
    const std::wstring_view name = std::wstring_view(upper).substr(nameStart);
    if (name.starts_with(L"._") || std::ranges::find(kJunkFiles, name) != std::end(kJunkFiles)) {
        return true;
    }
    const size_t at = upper.find(kJunkFolder);
    return at < nameStart && (at == 0 || upper[at - 1] == L'\\') &&
           upper[at + kJunkFolder.size()] == L'\\';
}

OrderedEntry OrderedOf(const ListedFile& file) {
    return {file.path, file.size, file.time, file.place};
}

OrderedEntry OrderedOf(const ListedMember& member) {
    return {member.name, member.size, member.time, static_cast<uint32_t>(member.position)};
}

template <typename Entry>
void Sort(const EntryOrder& order, std::vector<Entry>& entries) {
    std::vector<OrderedEntry> ordered;
    ordered.reserve(entries.size());
    for (const Entry& entry : entries)
        ordered.push_back(OrderedOf(entry));
    std::vector<Entry> sorted;
    sorted.reserve(entries.size());
    for (const size_t place : InOrder(ordered, order))
        sorted.push_back(std::move(entries[place]));
    entries = std::move(sorted);
}

// Where nothing is wanted people have come for what is there.
template <typename Entry>
void HideUnwanted(int16_t unclaimed, std::vector<Entry>& entries) {
    if (std::ranges::none_of(entries, &Entry::isWanted)) {
        for (Entry& entry : entries)
            entry.isWanted = true;
    }
    if (unclaimed == kUnclaimedHidden) {
        std::erase_if(entries, [](const Entry& entry) { return !entry.isWanted; });
    }
}

}  // namespace

// --- Kinds by name ---

struct NameKinds::Patterns {
    struct Claim {
        size_t plugin = 0;  // the first of those that name it is whom it belongs to
        FileKind kind = kFileUnknown;
    };
    struct Others {
        Claim claim;
        FilePatterns patterns;
    };
    std::unordered_map<std::wstring, Claim> extensions;  // of patterns such as *.JPG
    std::vector<Others> others;
};

NameKinds::NameKinds(std::span<const KnownPlugin> plugins)
    : patterns_(std::make_unique<Patterns>()) {
    for (size_t i = 0; i < plugins.size(); ++i) {
        const PluginTraits& traits = plugins[i].traits;
        const Patterns::Claim claim{i, traits.style == kStyleArchive ? kFileArchive : kFilePicture};
        FilePatterns others;
        for (const std::wstring& pattern : traits.patterns) {
            const bool isExtension =
                pattern.starts_with(L"*.") && pattern.find_first_of(L"*?.[", 2) == pattern.npos;
            if (isExtension && pattern.size() > 2) {
                patterns_->extensions.try_emplace(pattern.substr(2), claim);
            } else {
                others.push_back(pattern);
            }
        }
        if (!others.empty()) patterns_->others.push_back({claim, std::move(others)});
    }
}

NameKinds::~NameKinds() = default;
NameKinds::NameKinds(NameKinds&&) noexcept = default;
NameKinds& NameKinds::operator=(NameKinds&&) noexcept = default;

FileKind NameKinds::Of(std::wstring_view path) const {
    const std::wstring extension = UpperExtensionOf(path);
    if (extension == L"BMP" || extension == L"DIB") return kFileBitmap;
    const auto found = patterns_->extensions.find(extension);
    const bool isFound = found != patterns_->extensions.end();
    std::wstring name;
    for (const Patterns::Others& other : patterns_->others) {
        if (isFound && found->second.plugin <= other.claim.plugin) break;
        if (name.empty()) name = ToUpper(FileNameOf(path));
        if (MatchesNamingPattern(name, other.patterns)) return other.claim.kind;
    }
    return isFound ? found->second.kind : kFileUnknown;
}

Arrangement ChosenArrangement() {
    return {ChosenListingRules(), NameKinds(SusieCollection().Known())};
}

// --- Lists ---

std::vector<ListedFile> Arranged(std::vector<FoundFile> files, const Arrangement& arrangement) {
    const int16_t unclaimed = arrangement.rules.unclaimed;
    std::vector<ListedFile> listed;
    listed.reserve(files.size());
    for (FoundFile& file : files) {
        if (!file.isNamed && IsJunk(file.path)) continue;
        const bool isWanted = file.isNamed || unclaimed == kUnclaimedListed ||
                              arrangement.kinds.Of(file.path) != kFileUnknown;
        const auto place = static_cast<uint32_t>(listed.size());
        listed.push_back({std::move(file.path), file.size, file.time, place, isWanted});
    }
    HideUnwanted(unclaimed, listed);
    SortBy(arrangement.rules.order, listed);
    return listed;
}

std::vector<ListedMember> Arranged(std::vector<ListedMember> members,
                                   const Arrangement& arrangement) {
    std::erase_if(members, [](const ListedMember& member) { return IsJunk(member.name); });
    const int16_t unclaimed = arrangement.rules.unclaimed;
    for (ListedMember& member : members) {
        const FileKind kind = arrangement.kinds.Of(member.name);
        member.isWanted = unclaimed == kUnclaimedListed || kind != kFileUnknown;
        member.isPicture = unclaimed == kUnclaimedListed || IsPictureKind(kind);
    }
    HideUnwanted(unclaimed, members);
    SortBy(arrangement.rules.order, members);
    return members;
}

void SortBy(const EntryOrder& order, std::vector<ListedFile>& files) {
    Sort(order, files);
}

void SortBy(const EntryOrder& order, std::vector<ListedMember>& members) {
    Sort(order, members);
}

size_t OpeningMember(std::span<const ListedMember> members, bool atEnd) {
    for (const auto wanted : {&ListedMember::isPicture, &ListedMember::isWanted}) {
        if (atEnd) {
            const auto last = std::find_if(members.rbegin(), members.rend(),
                                           [&](const auto& member) { return member.*wanted; });
            if (last != members.rend()) return static_cast<size_t>(members.rend() - last) - 1;
        } else {
            const auto first =
                std::ranges::find_if(members, [&](const auto& member) { return member.*wanted; });
            if (first != members.end()) return static_cast<size_t>(first - members.begin());
        }
    }
    return atEnd ? members.size() - 1 : 0;
}

}  // namespace tessary
