// What stands in the way of a file that is to be moved or copied.
#pragma once

#include <string>

namespace tessary {

enum class AtTarget {
    kNothing,
    kItself,  // the file lies there
    kSame,    // another file of the same bytes
    kOther,
    kFolder,
    kNoSource,  // there is no such file any more
};

// Looks whether `path` could become `target`, both full. Blocks, and reads both files where they
// are of one size.
AtTarget LookAtTarget(const std::wstring& path, const std::wstring& target);

}  // namespace tessary
