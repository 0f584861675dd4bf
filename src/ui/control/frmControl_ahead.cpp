// What the control bar has read ahead: the neighbours of what it shows, in the direction of travel.
#include <algorithm>
#include <optional>

#include "app/settings/modValue.h"
#include "picture/ahead/ahead_rules.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/read/source_file.h"
#include "ui/control/frmControl.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

// A load that begins so soon behind the end of the one before belongs to the same motion.
constexpr ULONGLONG kMotionMilliseconds = 700;

constexpr int kNeighbours = 2;    // in the direction of travel; one in the other
constexpr int kLongestLook = 20;  // past entries that by their names are no pictures

// Walks from the selected entry into one direction, through the archive's members first.
class Walk {
  public:
    Walk(const FileSequence& sequence, int step)
        : sequence_(sequence),
          step_(step),
          member_(sequence.IsInArchive() ? sequence.Members().Cursor() : -1),
          file_(sequence.Files().Cursor()) {}

    // The next entry that may be a picture or an archive; nothing when the way has ended.
    std::optional<AheadEntry> Next() {
        if (member_ >= 0) {
            do {
                member_ += step_;
            } while (IsMember(member_) && !sequence_.Members().At(member_).isWanted);
            if (IsMember(member_)) return EntryOfMember(sequence_, member_);
            member_ = -1;
        }
        for (int looks = 0; looks < kLongestLook && file_ >= 0; ++looks) {
            file_ += step_;
            if (file_ < 0 || file_ >= sequence_.Files().Count()) break;
            const ListedFile& file = sequence_.Files().At(file_);
            const FileKind kind = file.isWanted ? LookAtName(file.path).kind : kFileUnknown;
            if (kind == kFileUnknown) continue;
            const bool atEnd =
                kind == kFileArchive && step_ < 0 && Values().general.backToLast != 0;
            return AheadEntry{.path = file.path, .atEnd = atEnd};
        }
        return std::nullopt;
    }

  private:
    bool IsMember(int index) const { return index >= 0 && index < sequence_.Members().Count(); }

    const FileSequence& sequence_;
    int step_;
    int member_;  // -1: among the files
    int file_;
};

void Append(Walk walk, int count, std::vector<AheadEntry>& entries) {
    for (int i = 0; i < count; ++i) {
        std::optional<AheadEntry> next = walk.Next();
        if (!next) return;
        entries.push_back(*std::move(next));
    }
}

}  // namespace

AheadEntry EntryOfMember(const FileSequence& sequence, int index) {
    const int32_t position = sequence.Members().At(index).position;
    if (!sequence.HasPages()) return {sequence.Archive(), position};
    return {.path = sequence.Archive(), .page = static_cast<uint32_t>(position) - 1};
}

// Else what is read ahead would only be in the way of what is read now.
bool frmControl::IsInMotion() const {
    return player_.IsPlaying() || GetTickCount64() - lastLoad_ < kMotionMilliseconds;
}

void frmControl::PlanAhead(const AheadEntry& shown) {
    lastLoad_ = GetTickCount64();
    if (CurrentActivity().quitRequested) return;
    const int step = player_.IsPlaying() ? (player_.GoesBack() ? -1 : 1) : travel_;
    // Of a book both spreads around the one that is shown, and its other page.
    const int beside = sequence_.IsOpenAsBook() ? 1 : 0;
    const int wanted = kNeighbours << beside;
    const int count = beside + (IsLoading() ? std::max(wanted, ReadingThreads() + 1) : wanted);
    std::vector<AheadEntry> next;
    const std::wstring drawn = GoesAtRandom(step) && step > 0 && !sequence_.IsInArchive()
                                   ? randomWay_.Coming(sequence_.Files())
                                   : std::wstring();
    if (!drawn.empty()) next.push_back({.path = drawn});
    Append(Walk(sequence_, step), drawn.empty() ? count : 0, next);
    Append(Walk(sequence_, -step), beside == 0 ? 1 : 3, next);
    Ahead().Plan(std::move(next), shown, PreparationFor(window_));
}

}  // namespace tessary
