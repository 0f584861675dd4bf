// Stepping from entry to entry, and what the user asks for while a step is under way.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "app/base/paths.h"
#include "picture/show/modShowPicture.h"
#include "res/resource.h"
#include "ui/control/frmControl_busy.h"

namespace tessary {
namespace {

constexpr UINT kWishMilliseconds = 10;

// How long a search for the next picture goes on silently, and how often there is news then.
constexpr DWORD kLongSearchMilliseconds = 300;
constexpr int kFilesPerNews = 20;

constexpr wchar_t kSearching[] = L"画像を探しています";

}  // namespace

// --- Stepping ---

// The first entry of known kind from `start` on, in steps of 1 or -1; the index behind the end or
// -1 when there is none; nothing when the user has stopped the search or chosen a file himself.
std::optional<int> frmControl::FindKnown(int start, int step) {
    const Busy busy(*this, kSearching);
    const int stops = stops_;
    const std::wstring former = lateInfo_ ? *lateInfo_ : textFileInfo_.Text();
    const DWORD begin = GetTickCount();
    const int count = listFileName_.Count();
    const int total = step > 0 ? count - start : start + 1;
    std::optional<int> index = start;
    for (; *index >= 0 && *index < count; *index += step) {
        if (QueryFileKind(listFileName_.Item(*index)) != kFileUnknown) return index;
        if (GetTickCount() - begin >= kLongSearchMilliseconds && *index % kFilesPerNews == 0) {
            TellInfo(std::wstring(kSearching) + L" [ " + std::to_wstring(*index + 1) + L" / " +
                     std::to_wstring(count) + L" ]");
        }
        window_.TellProgress(std::abs(*index - start), total);
        if (!window_.Breathe() || stops != stops_ || wishes_.file) {
            index.reset();
            break;
        }
    }
    TellInfo(former);
    return index;
}

bool frmControl::ListIndexBackOne() {
    return MoveBy(-1, archiveShown_);
}

bool frmControl::ListIndexForwardOne() {
    return MoveBy(1, archiveShown_);
}

// Several steps at once show only where they lead to. They stop at the last entry of known kind;
// a single one goes beyond it: off the start to no selection, off the end to the last entry.
bool frmControl::MoveBy(int steps, bool inArchive) {
    if (busy_ > 0 || steps == 0) return false;
    const int step = steps > 0 ? 1 : -1;
    int member = -1;
    if (inArchive) {
        const int selected = std::max(listArchiveFile_.Selected(), step > 0 ? -1 : 0);
        member = std::clamp(selected + steps, 0, listArchiveFile_.Count() - 1);
        steps -= member - selected;
        if (member == selected) member = -1;
        if (steps == 0) {
            listArchiveFile_.Select(member);
            return true;
        }
    }
    const bool moved = MoveInFiles(steps, member >= 0);
    if (!moved && member >= 0 && !wishes_.Moves()) listArchiveFile_.Select(member);
    window_.CloseIfAsked();
    return moved || member >= 0;
}

// `orStay`: where there is no way on, nothing changes.
bool frmControl::MoveInFiles(int steps, bool orStay) {
    const int step = steps > 0 ? 1 : -1;
    const int count = listFileName_.Count();
    const int start = listFileName_.Selected();
    if (step > 0 ? start >= count - 1 : start < 0) return false;
    const int stops = stops_;
    int reached = start;
    {
        const Busy busy(*this, kSearching);
        for (; steps != 0; steps -= step) {
            const std::optional<int> found = FindKnown(reached + step, step);
            if (!found) return wishes_.file;
            if (*found < 0 || *found >= count) break;
            reached = *found;
        }
    }
    // The end of the search may have heard of something else.
    if (wishes_.file || stops != stops_) return wishes_.file;
    if (reached != start) {
        listFileName_.Select(reached);
        return true;
    }
    if (!orStay) listFileName_.Select(step > 0 ? count - 1 : -1);
    return false;
}

// --- Wishes ---

bool frmControl::IsLoading() const {
    return window_.IsReading();
}

// A step beyond the last entry leads nowhere.
bool frmControl::AwaitsFile() const {
    const bool isAtEnd = listFileName_.Selected() == listFileName_.Count() - 1;
    const bool stays = wishes_.steps == 0 || (wishes_.steps > 0 && isAtEnd);
    return !player_.IsFast() && !wishes_.file && !wishes_.member && stays;
}

void frmControl::WishStep(int step) {
    player_.HaltTimer();
    wishes_.Step(step, keyRepeats_);
    WishIsThere();
}

void frmControl::WishCommand(int command) {
    if (!formLoaded_) return;
    wishes_.Run(command);
    WishIsThere();
}

// What the user sees is what he means, not what comes up next.
void frmControl::WishMark() {
    const std::wstring name = FileNameOf(shownPath_);
    if (shownPath_.empty() || IndexOf(shownPath_) < 0) {
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
    if (loadingText_.empty() || burst_ != nullptr) return;
    std::wstring next;
    if (wishes_.file) next = FileNameOf(listFileName_.Item(listFileName_.Selected()));
    if (wishes_.member) next = FileNameOf(listArchiveFile_.Item(listArchiveFile_.Selected()));
    if (wishes_.steps != 0) {
        if (!next.empty()) next += L" から ";
        next += std::to_wstring(std::abs(wishes_.steps)) +
                (wishes_.steps > 0 ? L" 枚先へ" : L" 枚前へ");
    }
    TellNotShown(next.empty() ? loadingText_ : loadingText_ + L" （続けて " + next + L"）");
}

// Between two steps, and not from within the one that has just ended: wishes may go on for long.
void frmControl::CarryOutWishes() {
    if (!wishes_.Any() || Values().quitRequested || !formLoaded_) return wishesDue_.Stop();
    if (!MayStep()) return;
    wishesDue_.Stop();
    const Wishes wishes = std::exchange(wishes_, {});
    for (const std::wstring& path : wishes.marks)
        MarkForDeletion(IndexOf(path));
    if (!wishes.marks.empty()) player_.RestartPause();
    if (wishes.steps != 0) {
        MoveBy(wishes.steps, archiveShown_ && !wishes.file);
        EndMotion();
    } else if (wishes.file) {
        listFileName_Click();
    } else if (wishes.member) {
        listArchiveFile_Click();
    }
    // What was asked for meanwhile is newer.
    if (wishes.deletion) cmdOK_Click();
    if (wishes.command != 0 && !wishes_.Any()) window_.Commands().Run(wishes.command);
}

int frmControl::IndexOf(const std::wstring& path) const {
    for (int index = 0; index < listFileName_.Count(); ++index) {
        if (listFileName_.Item(index) == path) return index;
    }
    return -1;
}

}  // namespace tessary
