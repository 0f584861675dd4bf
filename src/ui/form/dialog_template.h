// Dialog templates in the font of the user's system.
#pragma once

#include <windows.h>

#include <vector>

namespace tessary {

// A DIALOGEX template of the program's resources with its font replaced: face, weight and size of
// `font`, a font at `dpi`. All lengths of a template are in units of its font, so the layout
// follows. The block is what the system's dialog calls take; empty when there is no such template.
std::vector<DWORD> LoadDialogTemplate(int resource, const LOGFONTW& font, int dpi);

}  // namespace tessary
