// A list box that shows the entries of a model.
#pragma once

#include <string>

#include "sequence/entry_list.h"
#include "ui/form/list_box.h"

namespace tessary {

// The list box must outlive this. What the user selects in it goes to the model by the list box's
// own events.
class ListBoxMirror final : public EntryMirror {
  public:
    explicit ListBoxMirror(ListBox& list) : list_(list) {
        list_.OnCancel([this] { CursorMoved(cursor_); });
    }
    ListBoxMirror(const ListBoxMirror&) = delete;
    ListBoxMirror& operator=(const ListBoxMirror&) = delete;

    void EntriesExpected(int count) override { list_.Expect(count); }
    void EntryAdded(const std::wstring& text) override { list_.Add(text); }
    void EntryRemoved(int index) override { list_.Remove(index); }
    void EntriesCleared() override {
        cursor_ = -1;
        list_.Clear();
    }
    // Not again where the user has put it: the list would scroll under his pointer.
    void CursorMoved(int index) override {
        cursor_ = index;
        if (list_.Selected() != index) list_.MarkSelected(index);
    }

  private:
    ListBox& list_;
    int cursor_ = -1;  // the model's
};

}  // namespace tessary
