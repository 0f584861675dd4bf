// The helper libraries beside the program.
#pragma once

namespace tessary {

// Loads the helper libraries from the application folder, by full path and in a fixed order, and
// keeps them resident. The picture kernel and its plug-in files may be missing (pictures then keep
// their size; the start-up notice tells it of one that is there and cannot be loaded); of the
// savers, the bitmap reader and the plug-in caller the first one that cannot be loaded ends the
// check: the start-up failure reason names it as missing, or tells why it is not loaded though it
// is there.
bool CheckHelperLibraries();

}  // namespace tessary
