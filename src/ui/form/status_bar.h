// The status bar at a form's lower edge.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "ui/form/metrics.h"

namespace tessary {

// Panels are counted from 1. All but the last are as wide as their text needs, up to half of the
// bar, and one that loses its text as wide as it was; the last takes the rest. Where that is too
// little for its text, the widest gives way, down to a quarter of the bar. A text that is cut off
// comes up whole as a tool tip. The bar's window
// belongs to its parent, which destroys it.
class StatusBar {
  public:
    // False when the system refuses the control. There is no panel before SetPanelText names one.
    bool Create(HWND parent);

    // Sets the text of a panel, adding the panels up to it; shown as it is.
    void SetPanelText(int panel, const std::wstring& text);
    std::wstring PanelText(int panel) const;  // empty for a panel that is not there

    // Takes away a panel and those behind it: the one before has their room then.
    void RemovePanelsFrom(int panel);

    // Takes the font and the sizes of the screen that the parent is on now.
    void ChangeMetrics();

    // Lays the bar out in a parent of new size; the result is the bar's height in pixels.
    int Layout();

    HWND Handle() const { return handle_; }

  private:
    int TextWidth(const std::wstring& text) const;
    void Measure(size_t index);
    void LayOutPanels();

    HWND handle_ = nullptr;
    UniqueFont font_;
    std::vector<std::wstring> texts_;
    std::vector<int> widths_;  // of the panels when they had a text
    std::vector<int> rightEdges_;
};

}  // namespace tessary
