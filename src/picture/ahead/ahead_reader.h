// A thread that reads ahead, with plug-ins of its own in a host process of their own.
#pragma once

#include <memory>

#include "picture/ahead/ahead_board.h"

namespace tessary {

// The way to plug-ins' files for one thread: its plug-ins' processes end with it.
using ConnectorMaker = std::function<PluginConnector()>;

// Where the threads read.
struct AheadSource {
    ConnectorMaker connect{};  // called on each thread; what it answers is dropped when there has
                               // been nothing to do for a while
    std::function<bool(const std::wstring& path)> mayRead{};
    bool opensArchives = true;   // of an archive the picture is read that it is opened with
    MakeFile make{};             // empty: pictures are kept as they are
    bool takesOwnColors = true;  // of ReadWatch
    DWORD patience = 0;  // milliseconds in which a plug-in gives no sign of life, behind which it
                         // is given up sooner than usual; 0: it is not
};

// Reads what the board wants until that has ended. Failures are told nobody and counted nowhere:
// what cannot be read is read once more when somebody asks for it. Nobody is preferred among the
// plug-ins for having accepted last: what is read first is chance here.
void ReadForBoard(const std::shared_ptr<ReadingBoard>& board, const AheadSource& source);

}  // namespace tessary
