// A list of texts of which one may be selected, or several (LBS_EXTENDEDSEL).
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "ui/form/control.h"

namespace tessary {

// Indexes count from 0; -1 stands for no entry.
class ListBox final : public Control {
  public:
    // A list of paths: one that is wider than the list is shortened in its middle, so that the
    // file name stays.
    bool CreateForPaths(HWND parent);

    // The user has clicked an entry or moved the selection; and a double click.
    void OnClick(std::function<void()> handler) { click_ = std::move(handler); }
    void OnDoubleClick(std::function<void()> handler) { doubleClick_ = std::move(handler); }
    // The selection that follows the pressed mouse was broken off, and stands anywhere.
    void OnCancel(std::function<void()> handler) { cancel_ = std::move(handler); }

    int Count() const { return static_cast<int>(Send(LB_GETCOUNT)); }
    std::wstring Item(int index) const;

    // Makes room for so many entries more, which are then added faster.
    void Expect(int count);
    // The new entry's index; -1 when there is no room.
    int Add(const std::wstring& text);
    void Remove(int index);
    void Clear() { Send(LB_RESETCONTENT); }

    int Selected() const { return static_cast<int>(Send(LB_GETCURSEL)); }
    // Moves the selection without a click; -1 takes it away.
    void MarkSelected(int index) { Send(LB_SETCURSEL, static_cast<WPARAM>(index)); }

    // The first entry in sight; and scrolls there.
    int Top() const { return static_cast<int>(Send(LB_GETTOPINDEX)); }
    void ScrollTo(int index) { Send(LB_SETTOPINDEX, static_cast<WPARAM>(index)); }

    // Of a list of which several may be selected: all that are, in order; selects one, with the
    // focus on it, or all.
    std::vector<int> AllSelected() const;
    void MarkOnly(int index);
    void MarkAll() { Send(LB_SETSEL, TRUE, -1); }

    // How wide the entries are, in pixels: a list with a horizontal scroll bar scrolls as far.
    void SetTextWidth(int pixels) { Send(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(pixels)); }

    // Shows the entries in grey: there is nothing to choose.
    void SetDimmed(bool dimmed);

    // Takes the row height that the font needs; to be called after SetFont.
    void FontChanged();

  private:
    void OnCommand(WORD notification, WORD /*id*/) override;
    void OnDrawItem(const DRAWITEMSTRUCT& item) override;

    bool dimmed_ = false;
    int textMargin_ = 0;  // beside an entry's text, in pixels
    std::function<void()> click_;
    std::function<void()> doubleClick_;
    std::function<void()> cancel_;
};

}  // namespace tessary
