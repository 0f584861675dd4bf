// The log of a conversion in its list on the screen.
#pragma once

#include <deque>
#include <string>

#include "app/base/handles.h"
#include "ui/form/list_box.h"

namespace tessary {

// Lines come faster than anybody reads and a list paints, so they are kept here and reach the
// screen together.
class LogList {
  public:
    // Takes the dialog's list over. Ctrl+C copies the whole log.
    void Attach(HWND dialog, int id);

    size_t Count() const { return lines_.size(); }
    void Add(const std::wstring& line);
    // Only when there is one.
    void RemoveFirst();
    void Clear();

    // Brings the list on the screen up to date; the last line is then selected and in view.
    void Show();

    // Takes a font of even width for the resolution; to be called when that has changed.
    void ChangeMetrics();

    void SetFocus() const { list_.SetFocus(); }
    void SetVisible(bool visible) {
        list_.SetVisible(visible);
        list_.SetEnabled(visible);
    }

  private:
    int WidthOf(size_t first) const;
    void CopyAll() const;

    ListBox list_;
    UniqueFont font_;
    std::deque<std::wstring> lines_;
    size_t removed_ = 0;  // lines at the beginning of the screen's list that are gone here
    size_t added_ = 0;    // lines at the end that the screen's list lacks
    int textWidth_ = 0;   // of the widest line so far, in pixels
};

}  // namespace tessary
