// An archive's member list as a plug-in hands it out.
#pragma once

#include <string>
#include <vector>

#include "helpers/susiectl/susie_interface.h"
#include "picture/modMemory.h"

namespace tessary {

using ArchiveMembers = std::vector<susie::FileInfo>;

// The records of the block: whole ones only, up to the first whose method is all zero. Their texts
// may lack a NUL. The block stays the caller's.
ArchiveMembers ReadArchiveMembers(HLOCAL block);

// A member's name within its archive, folder included, with `\` between the parts.
std::wstring ArchiveMemberName(const susie::FileInfo& member);

}  // namespace tessary
