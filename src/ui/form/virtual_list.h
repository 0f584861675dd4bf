// A list of any number of entries, which asks for what it draws: one is the entry in view, and any
// number may be chosen beside it.
#pragma once

#include <windows.h>
// The common controls need the types of windows.h.
#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

#include "ui/form/control.h"
#include "ui/form/entry_paint.h"

namespace tessary {

// What a list shows. Asked whenever the list draws: nothing of it may take long. Indexes count from
// 0 and may be out of the list, which has changed meanwhile.
class ListContent {
  public:
    virtual int Count() const = 0;
    virtual std::wstring Text(int index) const = 0;
    // What is told of an entry where the pointer rests on it.
    virtual std::wstring Tip(int index) const = 0;
    virtual int Cursor() const = 0;  // the entry in view; -1: none
    virtual int ChosenCount() const { return 0; }
    virtual bool IsChosen(int /*index*/) const { return false; }

    // The small picture of an entry, as far as it is there.
    virtual EntryPicture PictureOf(int /*index*/) const { return {}; }
    // These are in sight, in a list of small pictures.
    virtual void InSight(int /*first*/, int /*last*/) {}

  protected:
    ~ListContent() = default;
};

// The content is shown as it is: whoever changes it tells of that, and draws nothing himself. What
// the user does only becomes visible when the handlers have changed the content accordingly.
class VirtualList final : public Control {
  public:
    // The content must outlive the list. Without `choosesSeveral` the user can choose none beside
    // the entry in view.
    bool Create(HWND parent, ListContent& content, bool choosesSeveral);

    // Names one below the other, or, with a side above 0 (pixels at 96 dpi), pictures in rows, with
    // the names below them or without.
    void SetLook(int side, bool hasNames);
    // The side of the pictures in pixels of the screen; 0: there are none.
    int PictureSide() const { return layout_.side; }
    // Pictures have come. From any thread.
    void TellNews() const;

    // The user wants that entry in view.
    void OnSelect(std::function<void(int)> handler) { select_ = std::move(handler); }
    // These entries and no others are to be chosen, in ascending order; what is in view stays.
    void OnChoose(std::function<void(std::vector<int>)> handler) { choose_ = std::move(handler); }
    // The user asks for the list's menu at that place of the screen, in pixels.
    void OnMenu(std::function<void(POINT)> handler) { menu_ = std::move(handler); }

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
    int ScrollPlace() const;
    void ScrollBack(int place);

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
        return Send(LVM_GETITEMSTATE, static_cast<WPARAM>(index), state) != 0;
    }
    std::vector<int> AllSelected() const;
    bool IsPlaceholder() const { return content_->Count() == 0 && !placeholder_.empty(); }

    void FitRows();
    void FitColumn() const;
    void FitPictures();
    void TakeImages(int kind, int width, int height) const;
    SIZE CellSize() const;
    void TellSight();
    void DrawPictureEntry(HDC context, int index, const EntryLook& look) const;
    void GiveText(LVITEMW& item) const;
    void GiveTip(NMLVGETINFOTIPW& tip) const;
    LRESULT Find(const NMLVFINDITEMW& wanted) const;
    LRESULT Draw(const NMLVCUSTOMDRAW& draw) const;
    void DrawEntry(HDC context, int index, bool isFocused) const;

    ListContent* content_ = nullptr;
    PictureLayout layout_;
    int sideAt96Dpi_ = 0;
    bool hasNames_ = true;
    std::wstring placeholder_;
    int shownCount_ = 0;         // as the control knows it
    int shownCursor_ = -1;       // that the control was told last
    int shownSelected_ = -1;     // that the control was told last, if it is one
    bool showsSeveral_ = false;  // the control has had several selected
    bool isPending_ = false;     // a message to show the content is under way
    bool isShowing_ = false;     // what changes now is not the user's doing
    bool isTouched_ = false;     // the user has changed what is selected
    int depth_ = 0;              // of the messages being handled
    std::function<void(int)> select_;
    std::function<void(std::vector<int>)> choose_;
    std::function<void(POINT)> menu_;
};

}  // namespace tessary
