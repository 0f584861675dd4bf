// The helper libraries beside the program.
#pragma once

#include <string>

namespace tessary {

// What became of loading them.
struct HelperLibraries {
    std::wstring failure;  // which one the program needs and has not, and why; empty: it has all
    std::wstring notice;   // what it goes on without, though it is there; else empty

    explicit operator bool() const { return failure.empty(); }
};

// Loads the helper libraries from the application folder, by full path and in a fixed order, and
// keeps them resident. The picture kernel and its plug-in files may be missing (pictures then keep
// their size); of the savers, the bitmap reader and the plug-in caller the first one that cannot be
// loaded ends the check.
HelperLibraries CheckHelperLibraries();

}  // namespace tessary
