// What is shown of a folder's files and an archive's members, and in which order.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "app/base/found_file.h"
#include "app/settings/listing_rules.h"
#include "picture/read/file_kind.h"
#include "picture/read/listed_file.h"
#include "plugin/archive_members.h"
#include "plugin/own_plugins.h"

namespace tessary {

// What files are by their names, as the plug-ins tell in their patterns. Of no thread: it is a copy
// of what they tell.
class NameKinds {
  public:
    explicit NameKinds(std::span<const KnownPlugin> plugins);
    ~NameKinds();
    NameKinds(NameKinds&&) noexcept;
    NameKinds& operator=(NameKinds&&) noexcept;

    // Of a path or a name.
    FileKind Of(std::wstring_view path) const;

  private:
    struct Patterns;
    std::unique_ptr<Patterns> patterns_;
};

struct Arrangement {
    ListingRules rules;
    NameKinds kinds;
};

// By the settings and the plug-ins of this thread.
Arrangement ChosenArrangement();

// What systems leave beside people's files (Thumbs.db, __MACOSX and their like) is left out, and
// what the rules hide; the rest comes in order. What the user has named himself is always wanted.
std::vector<ListedFile> Arranged(std::vector<FoundFile> files, const Arrangement& arrangement);
std::vector<ListedMember> Arranged(std::vector<ListedMember> members,
                                   const Arrangement& arrangement);

// The same files or members in another order.
void SortBy(const EntryOrder& order, std::vector<ListedFile>& files);
void SortBy(const EntryOrder& order, std::vector<ListedMember>& members);

// Where an archive is to be opened: at its first picture, or `atEnd` at its last; by its name, of
// what is wanted. There must be members.
size_t OpeningMember(std::span<const ListedMember> members, bool atEnd);

}  // namespace tessary
