// Members' names as hosts see them, and as files on a disk get them: the same ones, so that a host
// finds what it had extracted.
#pragma once

#include <string>

#include "plugins/axtessarc/member.h"

namespace tessary::unpack {

// The two parts of a name, in the system's ANSI code page. Characters that it cannot hold are `_`.
struct ListedName {
    std::string folder;  // empty, or with a trailing `\`
    std::string file;    // never empty
};

// Each part fits a 200-byte field with its NUL. Whatever the archive says, the names are relative
// and harmless: no `..`, no drive, no device, no character that is not a file name's.
ListedName ListedNameOf(const Member& member);

// The same on a system of that code page.
ListedName ListedNameOf(const Member& member, unsigned systemCodePage);

// For comparing names regardless of case and of the kind of separator.
std::wstring ComparableName(const std::string& name);

}  // namespace tessary::unpack
