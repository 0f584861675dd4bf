// What a file is, and which plug-in takes it: what is known of it before it is read.
#pragma once

#include <optional>
#include <string>

#include "picture/read/file_kind.h"
#include "plugin/search.h"

namespace tessary {

struct SourceFile {
    std::wstring path{};
    FileKind kind = kFileUnknown;
    std::wstring plugin{};  // full path of the plug-in that takes a picture or an archive
    std::optional<Search::Refusal> refusal{};  // why one that may know it does not take it
    std::wstring trouble{};  // why it cannot be opened, for the user; empty: it can be
};

// By its content: the file is opened, wherever it lies. The plug-in stays bound to it, and reading
// the same unchanged file next (read_picture.h) costs no second look for it.
SourceFile LookAtFile(const std::wstring& path);

// By its name, which is what plug-ins tell of it in their patterns: the file is not opened.
SourceFile LookAtName(const std::wstring& path);

// By its content if it is on this disk, else by its name.
SourceFile QueryFile(const std::wstring& path);

// Whether its kind is known, or nobody could be asked who may know it: a search for pictures that
// passed it by would pass by all others too.
bool IsWorthShowing(const std::wstring& path);

}  // namespace tessary
