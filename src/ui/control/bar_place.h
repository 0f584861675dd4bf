// Where the control bar stands, whether it is folded up, and what of that is kept between runs.
#pragma once

#include <functional>
#include <optional>

#include "ui/form/form.h"
#include "ui/main/frmMain.h"

namespace tessary {

class BarPlace {
  public:
    // Heights of the window in pixels at 96 dpi.
    static constexpr int kFoldedHeight = 28;
    static constexpr int kUnfoldedHeight = 130;
    static constexpr int kDeletePanelHeight = 270;

    // What the bar does behind a change.
    struct Changes {
        std::function<void()> folded;  // it has been folded or unfolded, or its panel opened
        std::function<void()>
            layout;  // its parts stand elsewhere in it, which its size may not say
    };

    // Both windows must outlive this. All below is for the loaded bar.
    BarPlace(const Form& bar, frmMain& window, Changes changes);

    // Takes the place that was kept, or one beside the main window. A docked bar takes it when it
    // comes afloat.
    void Read(bool isDocked);
    void Save() const;

    // The window is about to become a part of the main window, or is none any more: it then takes
    // the place that it had afloat, or this one on the screen.
    void Dock();
    void Float(std::optional<POINT> at = std::nullopt);

    // Folded up to the toolbar. While the delete panel is open the window stays tall.
    bool IsRollUp() const { return isRollUp_; }
    void SetRollUp(bool rollUp);

    // Makes room for the delete panel; what the window has moved for that is taken back.
    void OpenPanel();
    void ClosePanel();
    bool IsPanelOpen() const { return isPanelOpen_; }
    // How much of the panel stands above the toolbar, in pixels.
    int HeightAboveToolbar() const;

    // To be called before the window is shown: its screen may be gone.
    void ComeIntoReach();

  private:
    RECT Frame() const;
    POINT PlaceInTwips() const;  // afloat, without what the panel has moved it by
    void PlaceAfloat();
    void SetHeight(int pixelsAt96Dpi);
    void ApplyRollUp(bool rollUp);
    void PlaceForPanel();
    void MoveOntoScreen();

    const Form& bar_;
    frmMain& window_;
    Changes changes_;
    bool isDocked_ = false;
    std::optional<POINT> afloat_;  // where a docked bar was before, in twips
    bool isRollUp_ = false;
    bool isPanelOpen_ = false;
    bool panelAbove_ = false;  // the panel stands above the toolbar
    POINT movedBy_{};          // pixels that the window has moved for the panel
};

}  // namespace tessary
