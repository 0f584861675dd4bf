// A bar between two parts of a window, by which the user moves their border.
#pragma once

#include <functional>

#include "ui/form/window.h"

namespace tessary {

class Splitter final : public Window {
  public:
    // The bar is moved across: sideways between parts that stand side by side, else up and down.
    enum class Moves { kSideways, kUpAndDown };

    // Makes it, hidden. `dragged` is told the new place of the bar's first edge, in pixels of the
    // parent, as often as it changes; a drag that is broken off ends where it began.
    bool Create(HWND parent, Moves moves, std::function<void(int place)> dragged);
    void SetMoves(Moves moves) { moves_ = moves; }

    // Puts it into this rectangle of its parent; out of sight when that is empty.
    void SetBounds(const RECT& place) const;

  private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    int Along(POINT point) const { return moves_ == Moves::kSideways ? point.x : point.y; }
    POINT OnScreen() const;
    int InParent(POINT onScreen) const;
    void Drag();
    void BreakOff();

    Moves moves_ = Moves::kSideways;
    std::function<void(int)> dragged_;
    bool isHeld_ = false;
    int grip_ = 0;   // between the bar's first edge and the pointer, while it is held
    POINT start_{};  // where it was taken, on the screen
};

}  // namespace tessary
