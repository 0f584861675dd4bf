// Entries in an order, with a cursor: the model behind a list on the screen.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tessary {

// Shows the entries of a list as they are, as a list box does. It is told behind each change.
class EntryMirror {
  public:
    // So many entries more will come at once.
    virtual void EntriesExpected(int count) = 0;
    virtual void EntryAdded(const std::wstring& text) = 0;  // behind all others
    virtual void EntryRemoved(int index) = 0;
    virtual void EntriesCleared() = 0;
    virtual void CursorMoved(int index) = 0;  // -1: there is none any more

  protected:
    ~EntryMirror() = default;
};

// Indexes count from 0; -1 stands for no entry. `kText` is what people read of an entry.
template <class Entry, std::wstring Entry::*kText>
class EntryList {
  public:
    EntryList() = default;
    EntryList(const EntryList&) = delete;
    EntryList& operator=(const EntryList&) = delete;

    // Both must outlive the list, or its last change. There may be none.
    void SetMirror(EntryMirror& mirror) { mirror_ = &mirror; }
    // What selecting an entry does.
    void OnSelect(std::function<void()> handler) { select_ = std::move(handler); }
    // Told behind each change of the entries or the cursor; it must cost next to nothing.
    void OnChange(std::function<void()> handler) { change_ = std::move(handler); }

    // Another number whenever the entries have changed.
    uint64_t Revision() const { return revision_; }

    int Count() const { return static_cast<int>(entries_.size()); }
    bool IsEmpty() const { return entries_.empty(); }
    std::span<const Entry> All() const { return entries_; }
    // The index must be one of the list's. A copy: messages that are handled meanwhile may change
    // the list.
    std::wstring Text(int index) const { return At(index).*kText; }
    const Entry& At(int index) const { return entries_[static_cast<size_t>(index)]; }

    std::vector<std::wstring> Texts() const {
        std::vector<std::wstring> texts;
        texts.reserve(entries_.size());
        for (const Entry& entry : entries_)
            texts.push_back(entry.*kText);
        return texts;
    }

    // The first entry of exactly that text; -1 when there is none.
    int IndexOf(const std::wstring& text) const {
        const auto found = std::find_if(entries_.begin(), entries_.end(),
                                        [&](const Entry& entry) { return entry.*kText == text; });
        return found == entries_.end() ? -1 : static_cast<int>(found - entries_.begin());
    }

    // Makes room for so many entries more.
    void Expect(size_t count) {
        entries_.reserve(entries_.size() + count);
        if (mirror_ != nullptr) mirror_->EntriesExpected(static_cast<int>(count));
    }

    void Add(Entry entry) {
        entries_.push_back(std::move(entry));
        ++revision_;
        if (mirror_ != nullptr) mirror_->EntryAdded(entries_.back().*kText);
        Changed();
    }

    // The cursor stays with its entry; that of a removed one is gone.
    void Remove(int index) {
        entries_.erase(entries_.begin() + index);
        ++revision_;
        if (mirror_ != nullptr) mirror_->EntryRemoved(index);
        if (cursor_ == index) SetCursor(-1);
        if (cursor_ > index) SetCursor(cursor_ - 1);
        Changed();
    }

    // Takes these in place of all others, with the cursor where it is said; nothing is selected
    // anew.
    void Assign(std::vector<Entry> entries, int cursor) {
        Clear();
        entries_ = std::move(entries);
        ++revision_;
        if (mirror_ != nullptr) {
            mirror_->EntriesExpected(Count());
            for (const Entry& entry : entries_)
                mirror_->EntryAdded(entry.*kText);
        }
        SetCursor(cursor);
    }

    // Takes what else is known of the entries, which are the same.
    void Refresh(std::vector<Entry> entries) { entries_ = std::move(entries); }
    void Update(int index, Entry entry) { entries_[static_cast<size_t>(index)] = std::move(entry); }

    void Clear() {
        entries_.clear();
        ++revision_;
        cursor_ = -1;
        if (mirror_ != nullptr) mirror_->EntriesCleared();
        Changed();
    }

    int Cursor() const { return cursor_; }
    bool IsCursorAtEnd() const { return cursor_ == Count() - 1; }
    // The text at the cursor; empty when there is none.
    std::wstring Current() const { return cursor_ < 0 ? std::wstring() : Text(cursor_); }

    // Moves the cursor and nothing else; an index that there is not takes it away.
    void SetCursor(int index) {
        cursor_ = index < Count() ? index : -1;
        if (mirror_ != nullptr) mirror_->CursorMoved(cursor_);
        Changed();
    }

    // Moves the cursor and does what selecting the entry does, whoever selects; -1 takes the
    // selection away.
    void Select(int index) {
        SetCursor(index);
        if (select_) select_();
    }

  private:
    void Changed() const {
        if (change_) change_();
    }

    std::vector<Entry> entries_;
    uint64_t revision_ = 1;
    int cursor_ = -1;
    EntryMirror* mirror_ = nullptr;
    std::function<void()> select_;
    std::function<void()> change_;
};

}  // namespace tessary
