// A list of small pictures in rows, of any number of entries, of which only those in sight are
// asked for.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "app/base/handles.h"
#include "ui/form/grid_layout.h"
#include "ui/form/list_content.h"

namespace tessary {

// The behaviour of a window of the class kGridClass. It ends with the window, and lives while a
// message of it is being handled, whose events may have anything done.
class PictureGrid {
  public:
    // All must outlive it. Without `choosesSeveral` none can be chosen beside the entry in view.
    PictureGrid(HWND window, ListContent& content, const ListEvents& events, bool choosesSeveral);
    PictureGrid(const PictureGrid&) = delete;
    PictureGrid& operator=(const PictureGrid&) = delete;
    ~PictureGrid();

    // Registers the class of the window. Its own procedure is the system's.
    static const wchar_t* Class();

    // The side of the pictures, at 96 dpi, and whether names stand below them. To be called anew
    // when the resolution has changed.
    void SetLook(int side, bool hasNames);
    // In pixels of the screen.
    int PictureSide() const { return side_; }
    // Stands in place of entries while there are none.
    void SetPlaceholder(const std::wstring& text);

    // Shows the content as it is now. An entry that came into view comes into sight.
    void Show(bool isCursorAnew);
    // Pictures have come.
    void ShowNews();

    int64_t Scrolled() const { return scrolled_; }
    void ScrollTo(int64_t place);

    // Nothing: the system's procedure is to handle it.
    std::optional<LRESULT> OnMessage(UINT message, WPARAM wParam, LPARAM lParam);

  private:
    // picture_grid_input.cpp
    std::optional<LRESULT> OnInput(UINT message, WPARAM wParam, LPARAM lParam);
    bool KeyDown(int key);
    void Type(wchar_t character);
    void Press(POINT place, bool isRight);
    void Pick(int index, int shift);
    void Choose(std::vector<int> indexes);
    std::vector<int> Selected() const;
    bool IsSelected(int index) const;
    void AskForMenu(LPARAM place);
    void Turn(int delta);
    void ScrollByBar(int code);
    void MovePointer(POINT place);
    void GiveTip(NMHDR& header);

    void LayOut();
    void TellScrollBar();
    void Focus(int index);
    void TellFocus() const;
    void InvalidateCell(int index) const;
    int Step() const;

    void PaintFrame() const;
    void Paint();
    void PaintArea(HDC context, const RECT& area);
    void PaintCell(HDC context, int index);

    const HWND window_;
    ListContent& content_;
    const ListEvents& events_;
    const bool choosesSeveral_;
    const std::wstring name_;  // that the window was given
    std::wstring placeholder_;
    HFONT font_ = nullptr;  // the caller's

    int sideAt96Dpi_ = 0;
    bool hasNames_ = true;
    int side_ = 0;
    PictureLayout picture_;
    GridLayout layout_;
    int64_t scrolled_ = 0;
    bool isLayingOut_ = false;

    int shownCursor_ = -1;
    int focus_ = 0;            // the entry that keys go on from
    int anchor_ = 0;           // that a range begins at
    std::vector<int> coming_;  // that were drawn without their pictures
    int wheelRest_ = 0;
    std::wstring typed_;
    DWORD lastTyped_ = 0;
    HWND tips_ = nullptr;
    int hot_ = -1;  // below the pointer
    std::wstring tipText_;
};

}  // namespace tessary
