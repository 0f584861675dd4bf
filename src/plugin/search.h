// The search for a plug-in that can read a file or a memory block.
#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "plugin/clsSusie.h"

namespace tessary {

// The plug-ins in the order in which they are tried, and what decides where that leaves a choice.
struct TrialOrder {
    std::vector<std::unique_ptr<clsSusie>> members;
    // A file that no plug-in claims by its patterns is offered to every one.
    bool tryAll = true;
    // Who accepted last, in any search; null when unknown.
    const clsSusie* lastSuccess = nullptr;
};

// One search. It yields the plug-ins that accept the file or block, one after the other, for the
// case that one of them fails with it; nobody is asked twice.
//
// Plug-ins are asked in this order: the one that accepted last, unless others name the file in
// their patterns and it does not; those whose patterns match the name or the content's format, in
// trial order; with `tryAll` the one that accepted last and then all in trial order. So the files
// of one kind in a row cost one question each, and who accepts anything takes nothing away from
// those who know the format.
//
// While a plug-in is being called (PluginCallUnderWay), and after damage (PluginsAreStopped), it
// finds nobody. It must not outlive the order.
class Search {
  public:
    // Why a plug-in has not taken what it may be meant for.
    struct Refusal {
        std::wstring reason;
        std::wstring dllName;
        susie::Condition condition = susie::kConditionNone;
        bool hasCrashed = false;
    };

    // Finds nobody.
    Search() = default;
    // For a file, among the members from `first` on (from 0).
    Search(TrialOrder& order, std::wstring path, size_t first = 0);
    // For a block, which must live until its plug-in is bound to something else. `fileName` tells
    // where the data comes from.
    Search(TrialOrder& order, HLOCAL memory, std::wstring fileName, size_t first = 0);

    // The next plug-in that accepts it; null when there is none. It is then bound to it; but an
    // archive plug-in is only asked about a block and stays bound to what it is bound to: the block
    // may come out of that very archive.
    clsSusie* Next();
    // The same without going on: Next answers it once more.
    clsSusie* Peek();

    // To be called at first: whether one is asked before `found` because it accepted last.
    bool PrefersAnother(const clsSusie& found);

    // To be called when the plug-in found last has failed: it is not preferred any more.
    void NoteFailure();

    // Why the first archive plug-in that was met could not read what it takes for an archive of its
    // own, or that the first plug-in that crashed did so; nothing when there was neither.
    const std::optional<Refusal>& LastRefusal() const { return refusal_; }

  private:
    clsSusie* Find();
    clsSusie* Hint(bool tryAll);
    bool IsPreferred(const clsSusie& hint);
    bool LookAtSource();
    bool Claims(const clsSusie& member);
    bool Names(const clsSusie& member);
    bool IsNamed();
    const std::wstring& ContentPattern();
    bool Offer(clsSusie& member);
    bool Accepts(clsSusie& member);
    void Bind(clsSusie& member);
    void NoteCrash(const clsSusie& member);
    void NoteRefusal(clsSusie& member, int32_t result);

    TrialOrder* order_ = nullptr;
    std::wstring name_;       // the file's path; where the block comes from
    std::wstring upperName_;  // without folder
    bool isBlock_ = false;
    HLOCAL memory_ = nullptr;
    size_t first_ = 0;
    bool isEmpty_ = false;  // no content shows who can read it: only who claims it is asked
    std::optional<std::wstring> contentPattern_;  // of the content's format; slow to find out
    std::set<const clsSusie*> asked_;
    std::optional<clsSusie*> peeked_;
    std::optional<Refusal> refusal_;
};

}  // namespace tessary
