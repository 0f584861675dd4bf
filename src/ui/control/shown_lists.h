// What the control bar's lists show of the files and of the members among them.
#pragma once

#include <string>

#include "sequence/file_sequence.h"
#include "ui/form/virtual_list.h"

namespace tessary {

// Shows a list of entries in a list control, which asks it for what is in sight: no entry costs
// anything before that. Both must outlive this.
template <class Entries>
class ShownEntries : public ListContent, public EntryMirror {
  public:
    ShownEntries(VirtualList& list, const Entries& entries) : list_(list), entries_(entries) {}
    ShownEntries(const ShownEntries&) = delete;
    ShownEntries& operator=(const ShownEntries&) = delete;

    // ListContent
    int Count() const override { return entries_.Count(); }
    std::wstring Text(int index) const override { return Tip(index); }
    std::wstring Tip(int index) const override {
        return IsThere(index) ? entries_.Text(index) : std::wstring();
    }
    int Cursor() const override { return entries_.Cursor(); }
    int ChosenCount() const override { return entries_.ChosenCount(); }
    bool IsChosen(int index) const override { return entries_.IsChosen(index); }

    // EntryMirror
    void EntriesExpected(int) override {}
    void EntryAdded(const std::wstring&) override { Changed(); }
    void EntryRemoved(int) override { Changed(); }
    void EntriesCleared() override { Changed(); }
    void CursorMoved(int) override { list_.CursorMoved(); }
    void ChosenChanged() override { Changed(); }

  protected:
    ~ShownEntries() = default;
    const Entries& All() const { return entries_; }
    bool IsThere(int index) const { return index >= 0 && index < entries_.Count(); }
    virtual void Changed() { list_.ContentChanged(); }

  private:
    VirtualList& list_;
    const Entries& entries_;
};

// Files go by their names, with as much of their folders before them as tells them apart; or by
// their full paths, where the user wants that (`ListText`).
class ShownFiles final : public ShownEntries<FileSequence::FileEntries> {
  public:
    using ShownEntries::ShownEntries;
    std::wstring Text(int index) const override;

  private:
    void Changed() override {
        isFolderKnown_ = false;
        ShownEntries::Changed();
    }
    void FindFolder() const;

    mutable size_t folder_ = 0;  // how much of each path is the folder that they have in common
    mutable bool isFolderKnown_ = false;
};

class ShownMembers final : public ShownEntries<FileSequence::MemberEntries> {
  public:
    using ShownEntries::ShownEntries;
};

}  // namespace tessary
