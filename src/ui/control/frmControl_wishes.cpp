// Stepping from entry to entry, and what the user asks for while a step is under way.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/ahead/pictures_ahead.h"
#include "picture/read/source_file.h"
#include "res/resource.h"
#include "ui/control/frmControl_busy.h"
#include "ui/form/activity.h"

namespace tessary {
namespace {

constexpr UINT kWishMilliseconds = 10;

// How long a search for the next picture goes on silently, and how often there is news then.
constexpr DWORD kLongSearchMilliseconds = 300;
constexpr int kFilesPerNews = 20;

constexpr wchar_t kSearching[] = L"画像を探しています";

// Whether a command does something with the picture that is shown.
bool IsOfPicture(int command) {
    switch (command) {
        case menuFileSaveAs:
        case menuEditCopy:
        case menuViewWallpaperCenter:
        case menuViewWallpaperTile:
        case commandFirstFrame:
            return true;
        default:
            return false;
    }
}

}  // namespace

// --- Stepping ---

void frmControl::Search::Hear() {
    if (hasBegun_) return;
    hasBegun_ = true;
    const Busy busy(bar_, kSearching);
}

bool frmControl::Search::IsKnown(const std::wstring& path) {
    if (!busy_) {
        busy_.emplace(bar_, kSearching);
        begin_ = GetTickCount();
    }
    hasBegun_ = true;
    return Ahead().Has({path}) || IsWorthShowing(path);
}

bool frmControl::Search::GoesOn(int index, int done, int total) {
    if (GetTickCount() - begin_ >= kLongSearchMilliseconds && index % kFilesPerNews == 0) {
        if (!former_) former_ = bar_.texts_.Info();
        bar_.texts_.TellInfo(std::wstring(kSearching) + L" [ " + std::to_wstring(index + 1) +
                             L" / " + std::to_wstring(bar_.sequence_.Files().Count()) + L" ]");
    }
    bar_.window_.TellProgress(done, total);
    return bar_.window_.Breathe() && !Overrules();
}

void frmControl::Search::End() {
    if (former_) bar_.texts_.TellInfo(*std::exchange(former_, {}));
    busy_.reset();
}

// Several steps at once show only where they lead to.
bool frmControl::MoveBy(int steps, bool inArchive) {
    if (busy_ > 0 || steps == 0) return false;
    wishes_.isMotion = false;
    sequence_.GoOn();
    travel_ = steps < 0 ? -1 : 1;
    Search search(*this);
    const bool loops = player_.IsShow() && Values().general.showLoops != 0;
    const int16_t atEnd = loops ? kEndGoesRound : Values().general.atListEnd;
    const bool isRandom = GoesAtRandom(steps);
    const StepTarget target =
        isRandom ? FindAtRandom(steps, inArchive, search)
                 : sequence_.Find(steps, inArchive, atEnd == kEndGoesRound, search);
    search.End();
    bool moved = target.isKnown;
    window_.ArriveAtBottom(std::exchange(toBottom_, false) && steps < 0);
    if (target.file) search.Hear();
    if (search.IsOverruled()) {
        moved = wishes_.file;
    } else if (target.file && (moved || atEnd == kEndListed)) {
        if (moved) GoOnLater(target.left);
        SelectFile(*target.file, steps < 0);
        if (moved && target.wentRound && !loops) TellRound(steps);
    } else if (target.leavesArchive && !target.member) {
        moved = GoBeyondEnd(steps, atEnd, isRandom);
    }
    if (!moved && target.member && !(target.leavesArchive && wishes_.Moves())) {
        sequence_.Members().Select(*target.member);
    }
    window_.ArriveAtBottom(false);
    window_.CloseIfAsked();
    return moved || target.member;
}

// What is left of several steps waits until the archive that they have come to is open.
void frmControl::GoOnLater(int steps) {
    if (steps == 0) return;
    wishes_.steps += steps;
    wishes_.isFresh = true;
    WishIsThere();
}

// In a show; and a step back from where it has led goes as it came.
bool frmControl::GoesAtRandom(int steps) const {
    if (Values().general.showRandom == 0 || std::abs(steps) != 1) return false;
    return player_.IsShow() || (steps < 0 && randomWay_.LeadsBack(sequence_.Files()));
}

// The pages of an archive are shown in their order.
StepTarget frmControl::FindAtRandom(int steps, bool inArchive, Search& search) {
    StepTarget target;
    target.leavesArchive = true;
    const bool isBack = steps < 0;
    if (inArchive) target = sequence_.FindInArchive(steps);
    if (!target.leavesArchive) return target;
    const FileSequence::FileEntries& files = sequence_.Files();
    target.file = isBack ? randomWay_.Back(files)
                         : randomWay_.Next(files, Values().general.showLoops != 0, search);
    target.isKnown = target.file.has_value();
    return target;
}

// Ends a motion, but not one that is started in the middle of the step.
void frmControl::StepAndStay(int steps, bool inArchive) {
    const int starts = starts_;
    MoveBy(steps, inArchive);
    if (starts == starts_) EndMotion();
}

// --- Wishes ---

// A step beyond the last entry leads nowhere.
bool frmControl::AwaitsFile() const {
    const bool stays =
        wishes_.steps == 0 || (wishes_.steps > 0 && sequence_.Files().IsCursorAtEnd());
    return !player_.IsFast() && !wishes_.file && !wishes_.member && stays;
}

bool frmControl::LeadsElsewhere(int steps) const {
    const auto& members = sequence_.Members();
    const auto& files = sequence_.Files();
    if (steps < 0) return files.Cursor() > 0 || (sequence_.IsInArchive() && members.Cursor() > 0);
    return steps > 0 &&
           !(files.IsCursorAtEnd() && (!sequence_.IsInArchive() || members.IsCursorAtEnd()));
}

// A file that is to be collected for deletion is another one, and what is done with a picture needs
// the one that is being loaded.
Urge frmControl::UrgeForElse() const {
    const bool goes = wishes_.file || wishes_.member || LeadsElsewhere(wishes_.steps);
    const bool isOther = wishes_.command != 0 && !IsOfPicture(wishes_.command);
    if ((goes && wishes_.isFresh) || isOther || wishes_.deletion || wishes_.isMotion ||
        player_.IsFast()) {
        return Urge::kStrong;
    }
    return goes || wishes_.pages != 0 || wishes_.command != 0 || !wishes_.marks.empty() ||
                   !wishes_.deleted.empty() || !wishes_.transferred.empty()
               ? Urge::kSome
               : Urge::kNone;
}

void frmControl::WishStep(int step) {
    player_.HaltTimer();
    wishes_.Step(step, keyRepeats_);
    WishIsThere();
}

void frmControl::WishCommand(int command) {
    if (!formLoaded_) return;
    if (command == commandNextFrame || command == commandFormerFrame) {
        wishes_.Page(command == commandNextFrame ? 1 : -1, keyRepeats_);
    } else {
        wishes_.Run(command);
    }
    WishIsThere();
}

// What the user sees is what he means, not what comes up next.
void frmControl::WishMark() {
    const std::wstring name = FileNameOf(shownPath_);
    if (shownPath_.empty() || sequence_.Files().IndexOf(shownPath_) < 0) {
        window_.ShowNote(shownPath_.empty() ? L"読み込みが終わってから、もう一度押してください。"
                                            : name + L" はもう一覧にありません。");
        return;
    }
    wishes_.Mark(shownPath_);
    window_.ShowNote(L"削除リストに追加します: " + name);
    WishIsThere();
}

// Also tells what comes next, where it is told what is being loaded.
void frmControl::WishIsThere() {
    wishesDue_.Start(kWishMilliseconds);
    std::wstring next;
    if (wishes_.file) next = FileNameOf(sequence_.Files().Current());
    if (wishes_.member) next = FileNameOf(sequence_.Members().Current());
    if (wishes_.steps != 0) {
        if (!next.empty()) next += L" から ";
        next += std::to_wstring(std::abs(wishes_.steps)) +
                (wishes_.steps > 0 ? L" 枚先へ" : L" 枚前へ");
    }
    texts_.TellNext(next);
}

// Between two steps, and not from within the one that has just ended: wishes may go on for long.
void frmControl::CarryOutWishes() {
    if (!wishes_.Any() || CurrentActivity().quitRequested || !formLoaded_) return wishesDue_.Stop();
    if (!MayStep() || (wishes_.steps != 0 && StepsWait())) return;
    wishesDue_.Stop();
    const Wishes wishes = std::exchange(wishes_, {});
    for (const std::wstring& path : wishes.marks)
        deleteList_.Mark(sequence_.Files().IndexOf(path));
    DeleteListed(wishes.deleted, wishes.forGood);
    if (!wishes.marks.empty() || !wishes.deleted.empty()) player_.RestartPause();
    if (!wishes.transferred.empty()) TransferListed(wishes.transferred, wishes.moves);
    const bool opensArchive = wishes.file && sequence_.Files().Cursor() >= 0 &&
                              LookAtName(sequence_.Files().Current()).kind == kFileArchive;
    if (wishes.steps != 0 && opensArchive) {
        GoOnLater(wishes.steps);
        listFileName_Click();
    } else if (wishes.steps != 0) {
        StepAndStay(wishes.steps, sequence_.IsInArchive() && !wishes.file);
    } else if (wishes.file) {
        listFileName_Click();
    } else if (wishes.member) {
        listArchiveFile_Click();
    }
    if (wishes.pages != 0 && HasPages() && !wishes_.Any()) StepPage(wishes.pages);
    // What was asked for meanwhile is newer.
    if (wishes.deletion) cmdOK_Click();
    if (wishes.command != 0 && !wishes_.Any()) window_.Commands().Run(wishes.command);
}

}  // namespace tessary
