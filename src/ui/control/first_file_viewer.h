// Takes the list of opened files and shows its first one, until there is a control bar to step
// through them all.
#pragma once

#include <functional>

#include "ui/main/control_bar.h"
#include "ui/main/frmMain.h"

namespace tessary {

class FirstFileViewer final : public FileListReceiver {
  public:
    // The window shows the pictures and must outlive the viewer.
    explicit FirstFileViewer(frmMain& window) : window_(window) {}

    // False when the list holds no name.
    bool SetFileList(std::span<const std::wstring> files) override;

  private:
    void Show(const std::wstring& path);

    frmMain& window_;
};

}  // namespace tessary
