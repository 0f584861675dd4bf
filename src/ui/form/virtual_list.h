// A list of any number of entries, which asks for what it draws: one is the entry in view, and any
// number may be chosen beside it.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ui/form/control.h"
#include "ui/form/list_content.h"
#include "ui/form/picture_grid.h"

namespace tessary {

// The content is shown as it is: whoever changes it tells of that, and draws nothing himself. What
// the user does only becomes visible when the handlers have changed the content accordingly.
//
// Names are in a list of the system's, small pictures in a grid of ours; another look is another
// window.
class VirtualList final : public Control {
  public:
    // The content must outlive the list. Without `choosesSeveral` the user can choose none beside
    // the entry in view.
    bool Create(HWND parent, ListContent& content, bool choosesSeveral);

    // Names one below the other, or, with a side above 0 (pixels at 96 dpi), pictures in rows, with
    // the names below them or without. To be called anew when the resolution has changed.
    void SetLook(int side, bool hasNames);
    // The side of the pictures in pixels of the screen; 0: there are none.
    int PictureSide() const { return grid_ ? grid_->PictureSide() : 0; }
    // Pictures have come.
    void ShowNews() {
        if (grid_) grid_->ShowNews();
    }

    // As ListEvents says.
    void OnSelect(std::function<void(int)> handler) { events_.select = std::move(handler); }
    void OnChoose(std::function<void(std::vector<int>)> handler) {
        events_.choose = std::move(handler);
    }
    void OnMenu(std::function<void(POINT)> handler) { events_.menu = std::move(handler); }

    // The content has changed. It is shown at once where the cursor has moved, which comes into
    // sight then; else a moment later.
    void ContentChanged() { Later(); }
    void CursorMoved();

    // One text in grey stands in place of entries while there are none; empty: nothing does.
    void SetPlaceholder(const std::wstring& text);

    // As the user sees it: a placeholder counts as an entry.
    int Count() const;
    std::wstring Item(int index) const;
    int Selected() const { return content_ == nullptr ? -1 : content_->Cursor(); }

    // How far the list is scrolled, in whatever unit; and back there.
    int64_t ScrollPlace() const;
    void ScrollBack(int64_t place);

  private:
    std::optional<LRESULT> OnNotify(NMHDR& header) override;
    std::optional<LRESULT> OnOwnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT Hear(UINT message, WPARAM wParam, LPARAM lParam);
    void HearUser();
    void ChooseAll();
    void AskForMenu(LPARAM place);

    void Later();
    void ShowContent();
    void ShowChosen();
    void SetState(int index, UINT state, UINT mask) const;
    bool HasState(int index, UINT state) const {
        return Send(LVM_GETITEMSTATE, static_cast<WPARAM>(index), static_cast<LPARAM>(state)) != 0;
    }
    std::vector<int> AllSelected() const;
    bool IsPlaceholder() const { return content_->Count() == 0 && !placeholder_.empty(); }

    bool CreateRows(HWND parent);
    bool CreateGrid(HWND parent);
    std::optional<LRESULT> OnRowsMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void FitRows();
    void FitColumn() const;
    void GiveText(LVITEMW& item) const;
    void GiveTip(NMLVGETINFOTIPW& tip) const;
    LRESULT Find(const NMLVFINDITEMW& wanted) const;
    LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;
    void DrawEntry(HDC context, int index, bool isFocused) const;

    ListContent* content_ = nullptr;
    ListEvents events_;
    bool choosesSeveral_ = false;
    std::wstring name_;
    std::shared_ptr<PictureGrid> grid_;  // null: names are shown
    std::wstring placeholder_;
    int shownCount_ = 0;         // as the control knows it
    int shownCursor_ = -1;       // that the control was told last
    int shownSelected_ = -1;     // that the control was told last, if it is one
    bool showsSeveral_ = false;  // the control has had several selected
    bool isPending_ = false;     // a message to show the content is under way
    bool isShowing_ = false;     // what changes now is not the user's doing
    bool isTouched_ = false;     // the user has changed what is selected
    int depth_ = 0;              // of the messages being handled
};

}  // namespace tessary
