// A thread that reads ahead, with plug-ins of its own in a host process of their own.
#pragma once

#include <memory>

#include "picture/ahead/ahead_board.h"

namespace tessary {

// Has the way to a plug-in's file for one thread: its plug-ins' processes end with it.
using ConnectorMaker = std::function<PluginConnector()>;

// Reads what the board wants until that has ended. Failures are told nobody and counted nowhere:
// what cannot be read is read once more when somebody asks for it. `connect` is called on this
// thread; what it answers is dropped when there has been nothing to do for a while.
void ReadAhead(const std::shared_ptr<AheadBoard>& board, const ConnectorMaker& connect);

}  // namespace tessary
