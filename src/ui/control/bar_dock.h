// At which side of the main window the control bar is docked, how large, and what of that is kept
// between runs.
#pragma once

#include <array>

#include "ui/main/client_areas.h"

namespace tessary {

class BarDock {
  public:
    // Takes what was kept. Whoever has a place of the bar kept, and no side, has it floating; a
    // first start has it at the left.
    void Read();
    void Save() const;

    DockSide Side() const { return side_; }
    bool IsDocked() const { return side_ != DockSide::kFloating; }
    void SetSide(DockSide side) { side_ = side; }

    // How thick it is unfolded at a side, in pixels at 96 dpi.
    int Thickness(DockSide side) const { return thickness_[static_cast<size_t>(side)]; }
    void SetThickness(DockSide side, int pixelsAt96Dpi) {
        thickness_[static_cast<size_t>(side)] = pixelsAt96Dpi;
    }

    // How much of their room the files take from the members below them.
    int FilesPermille() const { return filesPermille_; }
    void SetFilesPermille(int permille) { filesPermille_ = permille; }

    // Whether the user has put the docked bar out of sight.
    bool IsHidden() const { return isHidden_; }
    void SetHidden(bool isHidden) { isHidden_ = isHidden; }

  private:
    static constexpr size_t kSides = 5;

    DockSide side_ = DockSide::kFloating;
    std::array<int, kSides> thickness_{};
    int filesPermille_ = 0;
    bool isHidden_ = false;
};

}  // namespace tessary
