#include "plugin/search.h"

#include <algorithm>
#include <utility>

#include "app/base/paths.h"
#include "app/base/text.h"
#include "plugin/content_pattern.h"
#include "plugin/file_stamp.h"
#include "plugin/no_host.h"
#include "plugin/result_text.h"

namespace tessary {
Search::Search(TrialOrder& order, std::wstring path, size_t first)
    : order_(&order),
      name_(std::move(path)),
      upperName_(ToUpper(FileNameOf(name_))),
      first_(first) {}

Search::Search(TrialOrder& order, HLOCAL memory, std::wstring fileName, size_t first)
    : order_(&order),
      name_(std::move(fileName)),
      upperName_(ToUpper(FileNameOf(name_))),
      isBlock_(true),
      memory_(memory),
      first_(first) {}

clsSusie* Search::Next() {
    if (PluginCallUnderWay()) return nullptr;
    return peeked_ ? *std::exchange(peeked_, std::nullopt) : Find();
}

clsSusie* Search::Peek() {
    if (!peeked_) peeked_ = Next();
    return *peeked_;
}

void Search::NoteFailure() {
    if (order_ != nullptr) order_->lastSuccess = nullptr;
}

clsSusie* Search::Find() {
    if (order_ == nullptr || !LookAtSource() || PluginsAreStopped()) return nullptr;
    const auto& members = order_->members;
    const auto begin = members.begin() + static_cast<ptrdiff_t>(std::min(first_, members.size()));
    const bool tryAll = order_->tryAll && !isEmpty_;
    clsSusie* const hint = Hint(tryAll);
    if (hint != nullptr && IsPreferred(*hint) && Offer(*hint)) return hint;
    for (auto member = begin; member != members.end(); ++member) {
        if (Claims(**member) && Offer(**member)) return member->get();
    }
    if (!tryAll) return nullptr;
    if (hint != nullptr && Offer(*hint)) return hint;
    for (auto member = begin; member != members.end(); ++member) {
        if (Offer(**member)) return member->get();
    }
    return nullptr;
}

// Who accepted last, if he is to be asked at all.
clsSusie* Search::Hint(bool tryAll) {
    const auto& members = order_->members;
    const auto begin = members.begin() + static_cast<ptrdiff_t>(std::min(first_, members.size()));
    const auto found = std::find_if(begin, members.end(), [&](const auto& member) {
        return member.get() == order_->lastSuccess;
    });
    return found != members.end() && (tryAll || Claims(**found)) ? found->get() : nullptr;
}

bool Search::IsPreferred(const clsSusie& hint) {
    return Names(hint) || !IsNamed();
}

bool Search::PrefersAnother(const clsSusie& found) {
    if (order_ == nullptr || !LookAtSource()) return false;
    const clsSusie* const hint = Hint(order_->tryAll && !isEmpty_);
    return hint != nullptr && hint != &found && IsPreferred(*hint);
}

// False when it is not there.
bool Search::LookAtSource() {
    if (isBlock_) return IsLocalHandleValid(memory_);
    const std::optional<FileStamp> stamp = StampOf(name_);
    isEmpty_ = stamp && stamp->size == 0;
    return stamp.has_value();
}

bool Search::Claims(const clsSusie& member) {
    return MatchesAnyPattern(upperName_, member.Patterns()) ||
           MatchesAnyPattern(ContentPattern(), member.Patterns());
}

bool Search::Names(const clsSusie& member) {
    return MatchesNamingPattern(upperName_, member.Patterns()) ||
           MatchesNamingPattern(ContentPattern(), member.Patterns());
}

bool Search::IsNamed() {
    return std::any_of(order_->members.begin() + static_cast<ptrdiff_t>(first_),
                       order_->members.end(), [&](const auto& member) { return Names(*member); });
}

// Found out only if it matters.
const std::wstring& Search::ContentPattern() {
    if (!contentPattern_) contentPattern_ = isBlock_ ? std::wstring() : ContentPatternOf(name_);
    return *contentPattern_;
}

bool Search::Offer(clsSusie& member) {
    if (!asked_.insert(&member).second || member.DllName().empty()) return false;
    const uint32_t before = member.ErrorSerial();
    if (!Accepts(member)) {
        if (member.ErrorSerial() != before) NoteCrash(member);
        return false;
    }
    order_->lastSuccess = &member;
    return true;
}

// A refusal and a failure of the plug-in are the same here. Whether the name matters has been
// decided by then, so the member is not to look at it again: the content may have spoken for the
// file.
bool Search::Accepts(clsSusie& member) {
    const bool checkMode = member.CheckMode();
    member.SetCheckMode(false);
    const bool accepted = Trapped(false, [&] {
        if (isBlock_ && member.DllStyle() == kStyleArchive) {
            return member.CheckMemory(memory_, name_);
        }
        Bind(member);
        return true;
    });
    member.SetCheckMode(checkMode);
    return accepted;
}

void Search::Bind(clsSusie& member) {
    if (isBlock_) return member.SetMemoryHandle(memory_, name_);
    try {
        member.SetFile(name_);
    } catch (const UnlistedArchiveError& error) {
        NoteRefusal(member, error.Result());
        throw;
    }
}

// Of the member's last call.
void Search::NoteCrash(const clsSusie& member) {
    const std::wstring& reason = member.ErrorString();
    if (refusal_) return;
    if (reason == kPluginCrashedText || reason == kPluginSilentText ||
        reason == kPluginHoardedText) {
        refusal_ = {.reason = reason, .dllName = member.DllName(), .hasCrashed = true};
    } else if ((reason == kPluginGivenUpText || IsNoHostText(reason)) && Names(member)) {
        refusal_ = {.reason = reason, .dllName = member.DllName()};
    } else if (reason == kPluginNotAvailableText && Names(member)) {
        refusal_ = {.reason = L"プラグインを読み込めません", .dllName = member.DllName()};
    }
}

// What is no archive of the plug-in's at all is nothing to tell.
void Search::NoteRefusal(clsSusie& member, int32_t result) {
    if (result == kResultCrashed) NoteCrash(member);
    if (refusal_) return;
    std::wstring reason = member.Condition().text;
    const bool isDoubtful = result <= susie::kAborted || result == susie::kUnknownFormat ||
                            result == kResultNotExported;
    // Plug-ins that say so of every kind of file, and to every file, are no witnesses.
    const bool isOwn = !isDoubtful || (member.FileType(0) != kEveryFile &&
                                       MatchesAnyPattern(upperName_, member.Patterns()));
    if (reason.empty() && isOwn && member.CheckFile(name_)) reason = ResultText(result);
    if (reason.empty()) return;
    refusal_ = {std::move(reason), member.DllName(), member.Condition().kind};
}

}  // namespace tessary
