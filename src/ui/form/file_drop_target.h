// Files dropped onto a window from the shell.
#pragma once

#include <ole2.h>
#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tessary {

// Makes a window a target of OLE drag and drop, for the life of this object or until Revoke.
class FileDropTarget {
  public:
    struct Handlers {
        std::function<bool()> accepts;                              // are files welcome now?
        std::function<void(std::vector<std::wstring> paths)> drop;  // as the source names them
    };

    FileDropTarget() = default;
    FileDropTarget(const FileDropTarget&) = delete;
    FileDropTarget& operator=(const FileDropTarget&) = delete;
    ~FileDropTarget();

    // False when OLE refuses the window. The source waits for `drop` to return: what takes long
    // does not belong there.
    bool Register(HWND window, Handlers handlers);

    // Must run before the window is destroyed.
    void Revoke();

  private:
    HWND window_ = nullptr;
};

}  // namespace tessary
