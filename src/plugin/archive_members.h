// An archive's member list: as a plug-in hands it out, and as people look at it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"

namespace tessary {

using ArchiveMembers = std::vector<susie::FileInfo>;

// The records of the block: whole ones only, up to the first whose method begins with a zero byte.
// Their texts may lack a NUL. The block stays the caller's. None for what is no block.
ArchiveMembers ReadArchiveMembers(HLOCAL block);

// Whether somebody must have made these records on purpose: there are some, and each has a name and
// texts without control characters.
bool LooksLikeList(const ArchiveMembers& members);

// A member's name within its archive, folder included, with `\` between the parts.
std::wstring ArchiveMemberName(const susie::FileInfo& member);

// When a member was last changed, in the system's units of 100 ns; 0: its record does not tell, or
// what no clock of an archiver would.
uint64_t MemberChanged(const susie::FileInfo& member);

// A member for a list of them.
struct ListedMember {
    std::wstring name;      // as ArchiveMemberName
    int32_t position = 0;   // its place in the plug-in's own list, from 1
    uint64_t size = 0;      // in bytes, as it is listed
    uint64_t time = 0;      // seconds since 1970, as it is listed
    bool isWanted = true;   // false: steps pass it by
    bool isPicture = true;  // by its name
};

// The members that are files, in the plug-in's order. Left out are entries that stand for a folder:
// the name ends in a separator, or they have no bytes and others lie below them.
std::vector<ListedMember> FilesAmong(const ArchiveMembers& members);

}  // namespace tessary
