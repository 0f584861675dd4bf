// Dragging the picture out of the window, as a file.
#pragma once

#include <list>
#include <memory>
#include <string>

#include "plugin/private_folder.h"
#include "ui/form/file_drag.h"
#include "ui/main/frmMain.h"

namespace tessary {

class DragOut {
  public:
    // Has the window's picture dragged by the mouse. `drag`: DragFile. Both the window and the
    // control bar must outlive this, or the window's last message.
    DragOut(frmMain& window, const ControlBar& controlBar,
            std::function<DWORD(DraggedFile file)> drag = DragFile);
    DragOut(const DragOut&) = delete;
    DragOut& operator=(const DragOut&) = delete;

    // Drags the file that is seen; of an archive's member a file of its bytes, of a turned or
    // pasted picture a PNG file, which are made when somebody takes them, and removed when this
    // ends.
    void DragPicture();

  private:
    frmMain& window_;
    const ControlBar& controlBar_;
    std::function<DWORD(DraggedFile file)> drag_;
    // A program may read what it was given long after it was dropped.
    std::list<PrivateFolder> folders_;
};

}  // namespace tessary
