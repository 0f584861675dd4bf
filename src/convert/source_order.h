// Which of the user's files come last in a run.
#pragma once

#include <string>
#include <vector>

#include "app/settings/modValue.h"
#include "convert/work_list.h"

namespace tessary {

struct OrderedEntries {
    std::vector<WorkEntry> first;
    std::vector<WorkEntry> last;
};

// Files that lie in the target folder, or below it, and have the extension of what is written may
// be results of an earlier run. They come last, each behind the one that it may have been named
// after: by then it is known whether they are what others become. Otherwise the order stays.
OrderedEntries WithResultsLast(std::vector<WorkEntry> entries, const std::wstring& targetFolder,
                               const ConvertSettings& settings);

}  // namespace tessary
