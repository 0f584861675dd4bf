// The part of the control bar below its lists: the files collected for deletion, and what can be
// done with them.
#pragma once

#include <functional>
#include <string>

#include "sequence/entry_list.h"
#include "ui/form/list_box.h"
#include "ui/form/metrics.h"
#include "ui/form/simple_controls.h"

namespace tessary {

// Shows the marks; what the user does with them goes to the actions.
class DeletePanel final : public EntryMirror {
  public:
    struct Actions {
        std::function<void()> deleteAll;  // from the disk
        std::function<void()> dropAll;    // from viewing
        std::function<void()> putAllBack;
        std::function<void(const std::wstring& path)> putBack;
        std::function<bool()> keyRepeats;  // the key being handled is held down
    };

    explicit DeletePanel(Actions actions) : actions_(std::move(actions)) {}

    // Makes the controls, hidden and disabled.
    void Create(HWND parent);
    void SetFont(HFONT font);
    // Into this rectangle of the bar: the buttons beside the list, below it where that is narrow.
    void Layout(const RECT& place, const Metrics& metrics);
    void SetEnabled(bool enabled);
    void SetVisible(bool visible);

    bool IsListFocused() const { return listDelete_.HasFocus(); }
    bool IsButtonFocused() const;
    bool IsDeletionFocused() const { return cmdOK_.HasFocus(); }
    // Presses the button whose caption has that letter underlined; false when there is none.
    bool PressMnemonic(wchar_t letter);

    const ListBox& List() const { return listDelete_; }

    // EntryMirror
    void EntriesExpected(int count) override { listDelete_.Expect(count); }
    void EntryAdded(const std::wstring& text) override;
    void EntryRemoved(int index) override;
    void EntriesCleared() override;
    void CursorMoved(int) override {}  // the user selects here, and nobody else

  private:
    static constexpr int kButtons = 3;

    void listDelete_DblClick();
    bool OnButtonKey(int button, int keyCode);
    void ShowCount();

    Actions actions_;
    Label deleteName_;  // out of sight: screen readers name the list by the label before it
    ListBox listDelete_;
    Button cmdOK_;
    Button cmdDelList_;
    Button cmdCancel_;
    Button* const buttons_[kButtons] = {&cmdOK_, &cmdDelList_, &cmdCancel_};  // from top to bottom
    Label lblMarks_;  // how many files there are
};

}  // namespace tessary
