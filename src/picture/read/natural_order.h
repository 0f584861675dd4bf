// The order in which people look for files.
#pragma once

#include <vector>

#include "plugin/archive_members.h"

namespace tessary {

// Sorts members folder by folder, a folder's own files before those of its sub-folders; names as
// the user's language orders them without regard to case, and runs of digits by their value.
void SortNaturally(std::vector<ListedMember>& members);

}  // namespace tessary
