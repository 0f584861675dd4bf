// Dragging a file out of a window, for the shell and other programs.
#pragma once

#include <windows.h>

#include <objidl.h>

#include <functional>
#include <string>

namespace tessary {

// Makes the file, or finds it, and answers its full path; empty when there is none. Must not throw.
using DraggedFile = std::function<std::wstring()>;

// What a drag of one file hands out, in all the forms that the shell knows. `file` is asked once,
// by whoever wants more than to know that there is one. The caller releases it.
IDataObject* MakeFileData(DraggedFile file);

// Drags a file until the user lets it go or gives up (Esc). Whoever gets it may copy it or link to
// it, and not move it. From a thread with OLE. The answer is DROPEFFECT_NONE when nobody took it.
DWORD DragFile(DraggedFile file);

}  // namespace tessary
