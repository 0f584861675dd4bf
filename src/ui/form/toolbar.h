// A row of buttons with images.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ui/form/control.h"
#include "ui/form/image_list.h"

namespace tessary {

// A drop-down has a button and an arrow beside it; a separator has neither image nor name.
struct ToolbarItem {
    enum class Kind { kButton, kDropDown, kSeparator };

    int index;  // from 1, in a row
    Kind kind;
    int image = 0;           // from 1
    std::wstring name = {};  // for the tool tip, and for who cannot see the image
    std::wstring keys = {};  // what the tip names as its shortcut; empty: none
};

// The images of a toolbar, from 1 to `count`, drawn again for each resolution and colour scheme.
struct ToolbarImages {
    int count;
    ArgbImage (*draw)(int image, const ImageLook& look);
};

// Buttons and separators are known by their index. A disabled button is shown greyed.
class Toolbar final : public Control {
  public:
    bool Create(HWND parent, std::span<const ToolbarItem> items, const ToolbarImages& images,
                int id = 0);

    // The user has pressed a button.
    void OnButton(std::function<void(int index)> handler) { button_ = std::move(handler); }

    // The user wants the menu of a drop-down, which is here on the screen.
    void OnDropDown(std::function<void(int index, const RECT& button)> handler) {
        dropDown_ = std::move(handler);
    }

    // The left mouse button went down where no button is.
    void OnBackgroundPress(std::function<void()> handler) { backgroundPress_ = std::move(handler); }

    void EnableButton(int index, bool enabled);
    bool IsButtonEnabled(int index) const { return StateOf(index).enabled; }

    // A checked button looks as if it were held down.
    void CheckButton(int index, bool checked);

    void SetImage(int index, int image);

    // The rectangle of a button with its arrow, in the toolbar's area.
    RECT ButtonRectangle(int index) const;

    // What the buttons take in as many rows as a width asks for, in pixels: at least one of them
    // stands in each, separators break the rows first, and are out of sight there. 0: one row.
    SIZE SizeIn(int width) const;
    // Puts them into such rows.
    void Wrap(int width);

    // Takes sizes and images for the screen and the colours that there are now; while a drop-down's
    // menu is open, behind it.
    void ChangeMetrics();

  private:
    struct State {
        ToolbarItem::Kind kind;
        int image;
        std::wstring name;
        std::wstring toolTip;
        bool enabled = true;
        bool checked = false;
        bool endsRow = false;
        bool hidden = false;  // a separator at the end of a row
    };

    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnCommand(WORD notification, WORD id) override;
    std::optional<LRESULT> OnNotify(NMHDR& header) override;

    const State& StateOf(int index) const { return states_[static_cast<size_t>(index) - 1]; }
    State& StateOf(int index) { return states_[static_cast<size_t>(index) - 1]; }
    bool IsPressable(int index) const;

    static BYTE SystemState(const State& state);

    HWND ToolTips() const { return reinterpret_cast<HWND>(Send(TB_GETTOOLTIPS)); }
    void MakeImages();
    LRESULT Draw(const NMTBCUSTOMDRAW& draw) const;
    void DrawButton(const NMTBCUSTOMDRAW& draw) const;
    void MakeButtons();
    int WidthOf(const State& state) const;
    SIZE BreakRows(std::vector<State>& states, int width) const;
    bool TakeRows(int width);
    void ShowState(int index);
    int ButtonAt(LPARAM position) const;
    bool Key(int keyCode);
    void MoveTo(int index, int direction);
    void Press(int index) const;
    void DropDown(int index);

    std::vector<State> states_;
    ToolbarImages images_{};
    UniqueImageList normal_;
    UniqueImageList greyed_;
    int wrapWidth_ = 0;
    int dropDownWidth_ = 0;  // in pixels
    int current_ = 1;        // where the keyboard is
    bool isMenuOpen_ = false;
    bool changesLater_ = false;
    std::function<void(int)> button_;
    std::function<void(int, const RECT&)> dropDown_;
    std::function<void()> backgroundPress_;
};

}  // namespace tessary
