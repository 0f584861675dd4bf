// Files as the shell hands them round: on the clipboard, in a drag.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

#include "app/base/handles.h"

namespace tessary {

// The full paths in what CF_HDROP is the format of.
std::vector<std::wstring> PathsIn(HDROP files);

// Such a block, movable; null without memory.
UniqueGlobal MakeFileBlock(const std::vector<std::wstring>& paths);

// A DROPEFFECT_…, as the shell's formats for such have it; null without memory.
UniqueGlobal MakeEffectBlock(DWORD effect);

}  // namespace tessary
