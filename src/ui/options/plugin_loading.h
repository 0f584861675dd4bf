// Telling the user how far the loading of the plug-ins is.
#pragma once

#include <string>
#include <vector>

#include "plugin/modSusie.h"
#include "ui/dialogs/frmProgress.h"

namespace tessary {

// Tells in the window, which must outlive the answer, lets messages run, and stops the loading when
// the user wants it or the program is about to end.
LoadingProgress TellIn(frmProgress& window);

// What the user should know about the last loading: that it was stopped and how far it came, and
// what is missing. In one line; empty when all is well.
std::wstring LoadingNotice();

// Several notices for a panel that has one line.
std::wstring InOneLine(const std::vector<std::wstring>& notices);

}  // namespace tessary
