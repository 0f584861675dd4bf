// The helper libraries beside the program.
#pragma once

namespace tessary {

// Loads the helper libraries from the application folder, by full path and in a fixed order, and
// keeps them resident. The picture kernel and its plug-in files may be missing (pictures then keep
// their size); of the savers, the bitmap reader and the plug-in caller the first one that is
// missing ends the check: the start-up failure reason names it.
bool CheckHelperLibraries();

}  // namespace tessary
