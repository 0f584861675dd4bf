// Entries in an order, with a cursor: the model behind a list on the screen.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
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
    virtual void ChosenChanged() {}           // others are chosen, or entries have another text

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
        if (!chosen_.empty()) chosen_.push_back(false);
        if (mirror_ != nullptr) mirror_->EntryAdded(entries_.back().*kText);
        Changed();
    }

    // The cursor stays with its entry; that of a removed one is gone.
    void Remove(int index) {
        if (IsChosen(index)) --chosenCount_;
        if (!chosen_.empty()) chosen_.erase(chosen_.begin() + index);
        entries_.erase(entries_.begin() + index);
        ++revision_;
        if (mirror_ != nullptr) mirror_->EntryRemoved(index);
        if (cursor_ == index) SetCursor(-1);
        if (cursor_ > index) SetCursor(cursor_ - 1);
        Changed();
    }

    // Takes these in place of all others, with the cursor where it is said; nothing is selected
    // anew. Chosen are those of the same texts.
    void Assign(std::vector<Entry> entries, int cursor) {
        const std::vector<std::wstring> chosen = ChosenTexts();
        Clear();
        entries_ = std::move(entries);
        ++revision_;
        ChooseTexts(chosen);
        if (mirror_ != nullptr) {
            mirror_->EntriesExpected(Count());
            for (const Entry& entry : entries_)
                mirror_->EntryAdded(entry.*kText);
        }
        SetCursor(cursor);
    }

    // Takes what else is known of the entries, which are the same.
    void Refresh(std::vector<Entry> entries) {
        entries_ = std::move(entries);
        if (mirror_ != nullptr) mirror_->ChosenChanged();
    }
    void Update(int index, Entry entry) {
        entries_[static_cast<size_t>(index)] = std::move(entry);
        if (mirror_ != nullptr) mirror_->ChosenChanged();
    }

    void Clear() {
        entries_.clear();
        ++revision_;
        chosen_.clear();
        chosenCount_ = 0;
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

    // --- The chosen ones ---
    // Entries that something is to be done with, beside the one at the cursor. They stay so until
    // they are removed, wherever they go.
    int ChosenCount() const { return chosenCount_; }
    bool IsChosen(int index) const {
        const auto at = static_cast<size_t>(index);
        return at < chosen_.size() && chosen_[at];
    }
    std::vector<int> ChosenIndexes() const {
        std::vector<int> indexes;
        for (int i = 0; i < std::ssize(chosen_); ++i)
            if (IsChosen(i)) indexes.push_back(i);
        return indexes;
    }
    std::vector<std::wstring> ChosenTexts() const {
        std::vector<std::wstring> texts;
        for (const int index : ChosenIndexes())
            texts.push_back(Text(index));
        return texts;
    }

    // These and no others; what is not in the list is passed over.
    void Choose(std::span<const int> indexes) {
        chosen_.assign(indexes.empty() ? 0 : entries_.size(), false);
        for (const int index : indexes)
            if (index >= 0 && index < Count()) chosen_[static_cast<size_t>(index)] = true;
        CountChosen();
    }
    // Those of these texts beside the others.
    void ChooseTexts(std::span<const std::wstring> texts) {
        if (texts.empty()) return;
        const std::unordered_set<std::wstring_view> wanted(texts.begin(), texts.end());
        chosen_.resize(entries_.size());
        for (size_t i = 0; i < entries_.size(); ++i)
            if (wanted.contains(entries_[i].*kText)) chosen_[i] = true;
        CountChosen();
    }
    void SetChosen(int index, bool isChosen) {
        chosen_.resize(entries_.size());
        chosen_[static_cast<size_t>(index)] = isChosen;
        CountChosen();
    }

  private:
    void Changed() const {
        if (change_) change_();
    }

    void CountChosen() {
        chosenCount_ = static_cast<int>(std::ranges::count(chosen_, true));
        if (chosenCount_ == 0) chosen_.clear();
        if (mirror_ != nullptr) mirror_->ChosenChanged();
    }

    std::vector<Entry> entries_;
    uint64_t revision_ = 1;
    std::vector<bool> chosen_;  // of each entry; empty: none is
    int chosenCount_ = 0;
    int cursor_ = -1;
    EntryMirror* mirror_ = nullptr;
    std::function<void()> select_;
    std::function<void()> change_;
};

}  // namespace tessary
