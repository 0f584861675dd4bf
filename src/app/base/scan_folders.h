// Collecting the files of a folder, or of a whole tree of folders.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/base/found_file.h"

namespace tessary {

struct ScanRequest {
    std::wstring folder;
    bool subFolders = false;
    std::wstring extensions;  // see ExtensionFilter
};

// What a scan has found since it last told.
struct ScanNews {
    std::wstring folder;                        // that is being read
    size_t looked = 0;                          // files looked at in all, wanted or not
    std::vector<FoundFile> files;               // the wanted ones
    std::vector<std::wstring> unreadable = {};  // sub-folders not listed to their end
};

// So many files are looked at from one telling to the next.
constexpr size_t kScanStep = 200;

// Lists the plain files of the folder in the system's order; then, with sub-folders, those of its
// folders, then of theirs, level by level. Hidden and system files are left out, and hidden and
// system sub-folders with all that is in them. A folder that cannot be read, or not to its end, is
// told, with the files that were found; one that is met again through a link is not listed twice.
// Tells at the beginning of each folder, every kScanStep files, and at the end; `tell` answering
// false ends the scan after what was told. The system's error when the first folder cannot be read,
// else 0.
unsigned long ScanFolders(const ScanRequest& request,
                          const std::function<bool(ScanNews&& news)>& tell);

}  // namespace tessary
