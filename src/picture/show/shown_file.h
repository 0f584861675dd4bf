// What a file turns out to be when it is shown.
#pragma once

#include <cstdint>
#include <string>

#include "picture/read/file_kind.h"

namespace tessary {

// What came of showing a file.
struct ShownFile {
    FileKind kind = kFileUnknown;
    // The plug-in that decoded the picture, or that took the archive; empty: none.
    std::wstring pluginName = {};
    // What is wrong with a picture of which only a part could be read, one line for the user;
    // empty: it is whole, as far as its reader can tell.
    std::wstring damage = {};
    // Why it could not be shown, for a message box; empty when it was shown, when nobody claims it,
    // and when the read was asked to stop.
    std::wstring failure = {};
    // How many pages the file or member has, of which the first is shown; 0: it has none, or
    // another one is shown.
    uint32_t pages = 0;
    // The read was asked to stop. The kind is unknown then.
    bool stopped = false;
    // The file lies elsewhere and was not fetched, for nobody waits for it. So is the kind.
    bool passedBy = false;
};

}  // namespace tessary
