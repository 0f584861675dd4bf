// Telling the user how far the loading of the plug-ins is.
#pragma once

#include <string>

#include "plugin/modSusie.h"
#include "ui/dialogs/frmProgress.h"

namespace tessary {

// Tells in the window, which must outlive the answer, lets messages run, and stops the loading when
// the user wants it or the program is about to end.
LoadingProgress TellIn(frmProgress& window);

// That the last loading was stopped, and how far it came; empty when it was not.
std::wstring StoppedLoadingText();

}  // namespace tessary
