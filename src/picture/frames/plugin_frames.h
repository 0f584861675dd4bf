// Frames as the plug-in reads them that has read the picture.
#pragma once

#include "picture/ahead/ahead_reader.h"
#include "picture/frames/animation.h"

namespace tessary {

// Readers with plug-ins of their own, in a process of their own. Failures are told nobody and held
// against nobody.
FrameReaderMaker PluginFrameReaders(ConnectorMaker connect);

}  // namespace tessary
