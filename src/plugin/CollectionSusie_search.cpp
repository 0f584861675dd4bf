// Finding the plug-in for a file or memory block.
#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/CollectionSusie.h"
#include "plugin/result_text.h"
#include "plugin/susie_library.h"

namespace tessary {
namespace {

// The pattern of the format that a file's content shows; empty when it shows none of these.
std::wstring ContentPatternOf(const std::wstring& path) {
    const SusieLibrary* const library = FindSusieLibrary();
    if (library == nullptr) return {};
    switch (library->getFileInformation(ExtendedPath(path).c_str())) {
        case susiectl::kContentBmp:
            return L"*.BMP";
        case susiectl::kContentPng:
            return L"*.PNG";
        case susiectl::kContentJpeg:
            return L"*.JPG";
        case susiectl::kContentGif:
            return L"*.GIF";
        case susiectl::kContentLzh:
            return L"*.LZH";
        case susiectl::kContentZip:
            return L"*.ZIP";
        default:
            return {};
    }
}

// A refusal and a failure of the plug-in are the same here. Whether the name matters has been
// decided by then, so the member is not to look at it again: the content may have spoken for the
// file.
bool Accepts(clsSusie& member, const std::function<bool(clsSusie&)>& accepts) {
    const bool checkMode = member.CheckMode();
    member.SetCheckMode(false);
    const bool accepted = Trapped(false, [&] { return accepts(member); });
    member.SetCheckMode(checkMode);
    return accepted;
}

}  // namespace

int32_t CollectionSusie::FileSupported(const std::wstring& path, int32_t startIndex) {
    std::set<int32_t> asked;
    return FirstSupporting(path, startIndex, asked);
}

int32_t CollectionSusie::FileSupported(const std::wstring& path, std::set<int32_t>& asked) {
    if (PluginCallUnderWay()) return 0;
    const Query query = std::exchange(query_, {});
    if (asked.empty()) {
        if (Holds(query, path)) {
            asked = query.asked;
            return query.index;
        }
        UnloadFile();
    }
    return FirstSupporting(path, 1, asked);
}

int32_t CollectionSusie::QueryFile(const std::wstring& path) {
    if (PluginCallUnderWay()) return 0;
    query_ = {};
    UnloadFile();
    const std::optional<FileStamp> stamp = StampOf(path);  // before anybody reads the file
    if (!stamp) return 0;
    Query query;
    query.stamp = *stamp;
    query.index = FirstSupporting(path, 1, query.asked);
    query_ = query;
    return query.index;
}

int32_t CollectionSusie::FirstNaming(const std::wstring& path) const {
    if (PluginCallUnderWay() || PluginsAreStopped()) return 0;
    const std::wstring name = ToUpper(FileNameOf(path));
    const auto found =
        std::ranges::find_if(members_, [&](const auto& member) { return member->Names(name); });
    return found == members_.end() ? 0 : static_cast<int32_t>(found - members_.begin()) + 1;
}

// Whether the member found is still bound to the file, and the file still the same.
bool CollectionSusie::Holds(const Query& query, const std::wstring& path) const {
    if (query.index < 1 || query.index > Count()) return false;
    const clsSusie& member = *members_[static_cast<size_t>(query.index) - 1];
    return EqualsIgnoreCase(member.GetFile(), path) && StampOf(path) == query.stamp;
}

int32_t CollectionSusie::FirstSupporting(const std::wstring& path, int32_t startIndex,
                                         std::set<int32_t>& asked) {
    if (PluginCallUnderWay()) return 0;
    const std::optional<FileStamp> stamp = StampOf(path);
    if (!stamp) return 0;
    if (asked.empty()) refusal_.reset();
    std::optional<std::wstring> pattern;  // asked for once, and only if it matters
    return FirstAccepting({.upperName = ToUpper(FileNameOf(path)),
                           .contentPattern =
                               [&] {
                                   if (!pattern) pattern = ContentPatternOf(path);
                                   return *pattern;
                               },
                           .accepts =
                               [&](clsSusie& member) {
                                   try {
                                       member.SetFile(path);
                                   } catch (const UnlistedArchiveError& error) {
                                       NoteRefusal(member, path, error.Result());
                                       throw;
                                   }
                                   return true;
                               },
                           .isEmpty = stamp->size == 0},
                          startIndex, asked);
}

// Of the member's last call.
void CollectionSusie::NoteCrash(const clsSusie& member) {
    if (refusal_ || member.ErrorString() != kPluginCrashedText) return;
    refusal_ = {
        .reason = kPluginCrashedText, .plugin = NameOf(member.DllName()), .hasCrashed = true};
}

// What is no archive of the plug-in's at all is nothing to tell.
void CollectionSusie::NoteRefusal(clsSusie& member, const std::wstring& path, int32_t result) {
    if (refusal_) return;
    std::wstring reason = member.Condition().text;
    const bool isDoubtful = result <= susie::kAborted || result == susie::kUnknownFormat ||
                            result == kResultNotExported;
    // Plug-ins that say so of every kind of file, and to every file, are no witnesses.
    const bool isOwn = !isDoubtful || (member.FileType(0) != kEveryFile &&
                                       member.Claims(ToUpper(FileNameOf(path))));
    if (reason.empty() && isOwn && member.CheckFile(path)) reason = ResultText(result);
    if (reason.empty()) return;
    refusal_ = {std::move(reason), NameOf(member.DllName()), member.Condition().kind};
}

int32_t CollectionSusie::MemorySupported(HLOCAL memory, const std::wstring& fileName,
                                         int32_t startIndex) {
    std::set<int32_t> asked;
    return FirstSupporting(memory, fileName, startIndex, asked);
}

int32_t CollectionSusie::MemorySupported(HLOCAL memory, const std::wstring& fileName,
                                         std::set<int32_t>& asked) {
    return FirstSupporting(memory, fileName, 1, asked);
}

int32_t CollectionSusie::FirstSupporting(HLOCAL memory, const std::wstring& fileName,
                                         int32_t startIndex, std::set<int32_t>& asked) {
    if (PluginCallUnderWay() || !IsLocalHandleValid(memory)) return 0;
    if (asked.empty()) refusal_.reset();
    return FirstAccepting({.upperName = ToUpper(FileNameOf(fileName)),
                           .contentPattern = [] { return std::wstring(); },
                           .accepts =
                               [&](clsSusie& member) {
                                   if (member.DllStyle() == kStyleArchive) {
                                       return member.CheckMemory(memory, fileName);
                                   }
                                   member.SetMemoryHandle(memory, fileName);
                                   return true;
                               },
                           .isEmpty = false},
                          startIndex, asked);
}

clsSusie* CollectionSusie::ArchivePlugin(const std::wstring& path) {
    for (const auto& member : members_) {
        if (member->DllStyle() == kStyleArchive && EqualsIgnoreCase(member->GetFile(), path)) {
            return member.get();
        }
    }
    std::set<int32_t> asked;
    while (const int32_t index = FileSupported(path, asked)) {
        if (Item(index).DllStyle() == kStyleArchive) return &Item(index);
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

int32_t CollectionSusie::FirstAccepting(const Search& search, int32_t startIndex,
                                        std::set<int32_t>& asked) {
    if (PluginsAreStopped()) return 0;
    const int32_t start = std::max(startIndex, 1);
    const bool tryAll = tryAll_ && !search.isEmpty;
    const auto claims = [&](int32_t index) {
        const clsSusie& member = *members_[static_cast<size_t>(index) - 1];
        return member.Claims(search.upperName) || member.Claims(search.contentPattern());
    };
    const auto names = [&](int32_t index) {
        const clsSusie& member = *members_[static_cast<size_t>(index) - 1];
        return member.Names(search.upperName) || member.Names(search.contentPattern());
    };
    const auto isNamed = [&] {
        for (int32_t i = start; i <= Count(); ++i) {
            if (names(i)) return true;
        }
        return false;
    };
    // Nobody is asked twice about the same file.
    const auto offer = [&](int32_t index) {
        if (!asked.insert(index).second) return false;
        clsSusie& member = *members_[static_cast<size_t>(index) - 1];
        if (member.DllName().empty()) return false;
        const uint32_t before = member.ErrorSerial();
        if (!Accepts(member, search.accepts)) {
            if (member.ErrorSerial() != before) NoteCrash(member);
            return false;
        }
        lastSuccess_ = index;
        return true;
    };

    const int32_t hint = lastSuccess_;
    const bool isHint = hint >= start && hint <= Count() && (tryAll || claims(hint));
    if (isHint && (names(hint) || !isNamed()) && offer(hint)) return hint;
    for (int32_t i = start; i <= Count(); ++i) {
        if (claims(i) && offer(i)) return i;
    }
    if (!tryAll) return 0;
    if (isHint && offer(hint)) return hint;
    for (int32_t i = start; i <= Count(); ++i) {
        if (offer(i)) return i;
    }
    return 0;
}

}  // namespace tessary
