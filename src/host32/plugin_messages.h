// The messages of plug-ins' windows.
#pragma once

#include "plugin/call_notes.h"

namespace tessary {

// Handles all that wait for this thread. Between two requests, when nobody else has noted whose
// turn it is, it is noted there.
void HandleMessages(CallNotes& notes);

}  // namespace tessary
