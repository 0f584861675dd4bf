// What the control bar's lists show of the files and of the members among them.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "picture/ahead/thumb_board.h"
#include "sequence/file_sequence.h"
#include "ui/form/virtual_list.h"

namespace tessary {

// What is read of a member, or a page, that is listed.
AheadEntry EntryOfMember(const FileSequence& sequence, int index);

EntryPicture FoundPicture(const ThumbEntry& entry);

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
    EntryPicture PictureOf(int index) const override {
        const std::optional<ThumbEntry> entry = ThumbOf(index);
        return entry ? FoundPicture(*entry) : EntryPicture();
    }
    void InSight(int first, int last) override {
        if (std::exchange(first_, first) == first && std::exchange(last_, last) == last) {
            if (!std::exchange(isAnew_, false)) return;
        }
        last_ = last;
        isAnew_ = false;
        if (inSight_) inSight_();
    }

    // Told when other small pictures are in sight.
    void OnSight(std::function<void()> handler) { inSight_ = std::move(handler); }
    // The same ones are to be told of once more.
    void TellSightAnew() { isAnew_ = true; }
    // What is in sight; or so many entries around that, the nearest first.
    std::vector<ThumbEntry> Thumbs(int around) const {
        std::vector<ThumbEntry> thumbs;
        const auto add = [&](int index) {
            if (std::optional<ThumbEntry> entry = ThumbOf(index)) thumbs.push_back(*entry);
        };
        if (list_.PictureSide() == 0 || entries_.IsEmpty()) return thumbs;
        for (int i = first_; around == 0 && i <= last_; ++i)
            add(i);
        for (int i = 1; i <= around; ++i) {
            add(last_ + i);
            add(first_ - i);
        }
        return thumbs;
    }

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
    virtual void Changed() {
        isAnew_ = true;
        list_.ContentChanged();
    }
    // What the small picture of an entry is made of; nothing: it has none.
    virtual std::optional<ThumbEntry> ThumbOf(int index) const = 0;

  private:
    VirtualList& list_;
    const Entries& entries_;
    int first_ = 0;  // in sight
    int last_ = -1;
    bool isAnew_ = true;
    std::function<void()> inSight_;
};

// Files go by their names, with as much of their folders before them as tells them apart; or by
// their full paths, where the user wants that (`ListText`).
class ShownFiles final : public ShownEntries<FileSequence::FileEntries> {
  public:
    using ShownEntries::ShownEntries;
    std::wstring Text(int index) const override;

  private:
    std::optional<ThumbEntry> ThumbOf(int index) const override;
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
    ShownMembers(VirtualList& list, const FileSequence& sequence)
        : ShownEntries(list, sequence.Members()), sequence_(sequence) {}

  private:
    std::optional<ThumbEntry> ThumbOf(int index) const override;

    const FileSequence& sequence_;
};

}  // namespace tessary
