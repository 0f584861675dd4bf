// What the empty view says of how to begin: drop something, open something, or one of the files
// opened lately.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "ui/form/control.h"
#include "ui/form/metrics.h"
#include "ui/form/window.h"

namespace tessary {

// One line that can be clicked or chosen by the keyboard, on a ground of its owner's colour.
class HintLink final : public Control {
  public:
    struct Look {
        HFONT font;
        COLORREF ground;
    };

    // `look` is asked whenever it paints.
    bool Create(HWND parent, std::function<Look()> look);
    void OnClick(std::function<void()> handler) { click_ = std::move(handler); }

  private:
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnCommand(WORD notification, WORD id) override;
    void OnDrawItem(const DRAWITEMSTRUCT& item) override;

    std::function<Look()> look_;
    std::function<void()> click_;
    bool isHot_ = false;
};

// A child of the main window in front of its view, as large as its texts.
class StartHint final : public Window {
  public:
    struct Events {
        std::function<void(const std::wstring& path)> open;
        std::function<void(bool back)> leave;        // Tab, or (back) Shift+Tab or Esc, was pressed
        std::function<COLORREF()> ground;            // of the view
        std::function<void(LPARAM at)> contextMenu;  // as WM_CONTEXTMENU tells where
    };

    // Hidden.
    bool Create(HWND window, Events events);

    // Shows it, with what was opened lately as it is now, or hides it.
    void SetOpen(bool isOpen);
    bool IsOpen() const { return isOpen_; }
    // What was opened lately, or the colours, may have changed.
    void Refresh();
    void ChangeMetrics();

    // Into the middle of the view, which has this rectangle of the window; with as many files as
    // there is room for.
    void Layout(const RECT& view);

    // Gives the keyboard to the first file; false when there is none to choose.
    bool TakeFocus() const;
    bool HasFocus() const { return Holds(GetFocus()); }
    bool Holds(HWND window) const { return Handle() != nullptr && IsChild(Handle(), window); }

  private:
    static constexpr size_t kMostFiles = 8;

    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    bool OnLinkKey(size_t link, int keyCode, int shift);
    void Paint(HDC screen) const;
    int LineHeight(HFONT font) const;
    HFONT HeadFont() const { return (isHeadLarge_ ? headFont_ : font_).Get(); }
    void Arrange();

    Events events_;
    bool isOpen_ = false;
    RECT view_{};
    UniqueFont font_;
    UniqueFont headFont_;
    bool isHeadLarge_ = true;  // there is room for it
    std::vector<std::wstring> files_;
    size_t shown_ = 0;  // how many of the files
    HintLink links_[kMostFiles];
};

}  // namespace tessary
