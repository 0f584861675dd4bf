// The folder that comes after another.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "picture/read/arrangement.h"

namespace tessary {

struct FolderFiles {
    std::wstring folder{};            // with a trailing backslash; empty: there is none
    std::vector<ListedFile> files{};  // some of them wanted
};

// The next one (`step` 1) or the one before (-1) of those that lie beside `folder`, in natural
// order, in which something is to be seen. Hidden and system ones are left out. May block as long
// as a network does; `stop` may be raised by another thread.
FolderFiles FolderBeside(const std::wstring& folder, int step, const Arrangement& arrangement,
                         const std::atomic<bool>& stop);

}  // namespace tessary
