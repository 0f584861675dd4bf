// The control bar's list as a whole: its order, its neighbours, and what lies beyond its ends.
#include <algorithm>
#include <atomic>
#include <climits>
#include <memory>
#include <utility>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/read/arrangement.h"
#include "res/resource.h"
#include "ui/control/chosen_order.h"
#include "ui/control/frmControl_busy.h"
#include "ui/control/next_folder.h"
#include "ui/form/activity.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr wchar_t kFirstIsShown[] = L"最初のファイルです。";
constexpr wchar_t kLastIsShown[] = L"最後のファイルです。";
constexpr wchar_t kWentToFirst[] = L"最初のファイルに戻りました。";
constexpr wchar_t kWentToLast[] = L"最後のファイルに移りました。";
constexpr wchar_t kRandomIsOver[] = L"スライドショーが一巡しました。";
constexpr wchar_t kRandomBegan[] = L"ランダム表示はここから始まりました。";
constexpr wchar_t kNoNextFolder[] = L"次のフォルダはありません。";
constexpr wchar_t kNoFormerFolder[] = L"前のフォルダはありません。";

}  // namespace

void frmControl::RegisterListCommands() {
    for (int16_t by = 0; by < kOrderCount; ++by) {
        window_.Commands().Register(
            commandOrder_0 + by,
            {.run =
                 [this, by] {
                     EntryOrder order = ShownOrder();
                     order.by = static_cast<OrderBy>(by);
                     if (order.by == OrderBy::kRandom) order.seed = GetTickCount();
                     ChooseOrder(order);
                 },
             .checked = [this, by] { return ShownOrder().by == static_cast<OrderBy>(by); }});
    }
    window_.Commands().Register(commandOrderDescending,
                                {.run =
                                     [this] {
                                         EntryOrder order = ShownOrder();
                                         order.isDescending = !order.isDescending;
                                         ChooseOrder(order);
                                     },
                                 .checked = [this] { return ShownOrder().isDescending; }});
    for (const bool isLast : {false, true}) {
        window_.Commands().Register(isLast ? commandLastFile : commandFirstFile,
                                    {.run = [this, isLast] { GoToEnd(isLast); },
                                     .enabled = [this] { return formLoaded_ && HasFiles(); }});
    }
}

// --- Order ---

EntryOrder frmControl::ShownOrder() const {
    if (!formLoaded_ || !HasFiles()) return ChosenListingRules().order;
    return sequence_.IsInArchive() && !sequence_.HasPages() ? memberOrder_ : fileOrder_;
}

// For all that is listed, and for what nothing is chosen for.
void frmControl::ChooseOrder(const EntryOrder& order) {
    GeneralSettings& general = Values().general;
    general.listOrder = static_cast<int16_t>(order.by);
    general.listDescending = order.isDescending ? 1 : 0;
    general.orderSeed = static_cast<int32_t>(order.seed);
    if (!formLoaded_) return;
    fileOrder_ = memberOrder_ = order;
    follower_.SetOrder(order);
    if (!listFolder_.empty()) KeepOrder(listFolder_, order);
    if (sequence_.IsInArchive() && !sequence_.HasPages()) KeepOrder(sequence_.Archive(), order);
    sequence_.SortBy(order);
    if (!shownPath_.empty()) PlanAhead(ShownEntry());
}

AheadEntry frmControl::ShownEntry() const {
    const int member = sequence_.IsInArchive() ? sequence_.Members().Cursor() : -1;
    return member < 0 ? AheadEntry{shownPath_} : EntryOfMember(sequence_, member);
}

// --- The folder that the list is of ---

bool frmControl::OpenFiles(std::vector<ListedFile> files, ListSource source) {
    const std::wstring folder = source == ListSource::kFiles || files.empty()
                                    ? std::wstring()
                                    : FolderOf(files.front().path);
    PutInOrder(OrderFor(folder), files);
    if (!ShowList(files, 0, folder)) return false;
    const std::wstring& path = files.front().path;
    if (source == ListSource::kOneFolder) follower_.Follow(FolderOf(path));
    if (source == ListSource::kOneFile && Values().general.listNeighbours != 0) {
        follower_.Bring(path);
    }
    return true;
}

// The user may have gone on meanwhile, but for stepping: steps wait.
bool frmControl::TakeFolder(std::vector<ListedFile>& files, int opened) {
    if (IsReadUnderWay() || busy_ > 0) return false;
    sequence_.LeaveOut(files);
    const size_t count = files.size();
    if (Values().general.shortList != 0) files.resize(std::min(count, kShortListCount));
    TellCut(files.size(), count);
    const int cursor = sequence_.Files().Cursor();
    const ListedFile former = cursor < 0 ? ListedFile() : sequence_.Files().At(cursor);
    if (std::ranges::equal(files, sequence_.Files().All(), {}, &ListedFile::path,
                           &ListedFile::path)) {
        sequence_.Files().Refresh(std::move(files));
    } else {
        ReplaceFiles(std::move(files), opened);
    }
    const int now = sequence_.Files().Cursor();
    if (now < 0 || sequence_.Files().At(now).path != shownPath_ || opened >= 0) return true;
    const ListedFile& shown = sequence_.Files().At(now);
    const bool isSame = shown.size == former.size && shown.time == former.time;
    if (shown.path == former.path && !isSame) window_.ShowAnew(std::wstring(shown.path));
    return true;
}

// What is shown stays so while it is there, by whatever name; in place of what is gone comes the
// file that stands there now.
void frmControl::ReplaceFiles(std::vector<ListedFile> files, int opened) {
    FileSequence::FileEntries& list = sequence_.Files();
    const int cursor = list.Cursor();
    const std::wstring path = list.Current();
    auto found = std::ranges::find(files, path, &ListedFile::path);
    const bool isGone = found == files.end();
    if (isGone && path == shownPath_) found = sequence_.RenamedAmong(files);
    const bool isThere = found != files.end();
    const int place = isThere ? static_cast<int>(found - files.begin()) : -1;
    const int64_t scrolled = listFileName_.ScrollPlace();
    sequence_.Replace(std::move(files), place);
    if (opened < 0) listFileName_.ScrollBack(scrolled);
    if (isThere && isGone) return ShowRenamed(place);
    if (isThere) return PlanAhead(ShownEntry());
    if (list.IsEmpty()) return ShowEmptyList();
    if (cursor >= 0 || opened >= 0)
        list.Select(std::min(std::max(cursor, opened), list.Count() - 1));
}

// The same picture, of the file's new name.
void frmControl::ShowRenamed(int file) {
    const int member = sequence_.IsInArchive() ? sequence_.Members().Cursor() : -1;
    if (member < 0) return window_.ShowAnew(sequence_.Files().Text(file));
    sequence_.Files().Select(file);
    if (member < sequence_.Members().Count()) sequence_.Members().Select(member);
}

// --- The ends ---

// The first or the last of the archive's members, or of the files where that is shown already.
void frmControl::GoToEnd(bool isLast) {
    if (busy_ > 0 || !HasFiles()) return;
    player_.HaltTimer();
    EndMotion();
    sequence_.GoOn();
    if (sequence_.IsInArchive() && !sequence_.Members().IsEmpty()) {
        const int member =
            static_cast<int>(isLast ? OpeningMember(sequence_.Members().All(), true)
                                    : OpeningMember(sequence_.Members().All(), false));
        if (member != sequence_.Members().Cursor()) return sequence_.Members().Select(member);
    }
    const std::span<const ListedFile> files = sequence_.Files().All();
    int file = isLast ? static_cast<int>(files.size()) - 1 : 0;
    const int step = isLast ? -1 : 1;
    while (file + step >= 0 && file + step < std::ssize(files) &&
           !files[static_cast<size_t>(file)].isWanted) {
        file += step;
    }
    if (file != sequence_.Files().Cursor() || sequence_.IsInArchive()) SelectFile(file, isLast);
}

// Comes to an archive at its first picture, or, from behind, at its last.
void frmControl::SelectFile(int file, bool fromBehind) {
    entersAtEnd_ = fromBehind && Values().general.backToLast != 0;
    sequence_.Files().Select(file);
    entersAtEnd_ = false;
}

// True when that leads to another picture.
bool frmControl::GoBeyondEnd(int steps, int16_t atEnd, bool isRandom) {
    const bool isWayBack = isRandom && steps < 0;
    const bool loops = player_.IsShow() && Values().general.showLoops != 0 && !isWayBack;
    if (loops && sequence_.IsInArchive() && !sequence_.Members().IsEmpty()) {
        // There is nothing but this archive.
        sequence_.Members().Select(
            static_cast<int>(OpeningMember(sequence_.Members().All(), steps < 0)));
        return true;
    }
    if (isWayBack || (isRandom && atEnd != kEndNextFolder)) {
        window_.ShowNote(isWayBack ? kRandomBegan : kRandomIsOver);
        return false;
    }
    if (atEnd == kEndNextFolder) return GoToNextFolder(steps > 0 ? 1 : -1);
    if (atEnd == kEndStays || atEnd == kEndGoesRound) TellEnd(steps);
    return false;
}

bool frmControl::GoTo(const Place& place) {
    if (IsReadUnderWay() || busy_ > 0) return false;
    const int file = sequence_.Files().IndexOf(place.file);
    if (file < 0) return false;
    player_.HaltTimer();
    EndMotion();
    wishes_.ForgetMoves();
    if (sequence_.Files().Cursor() == file && sequence_.Archive() == place.file) {
        BeginWithin(place, false);
    } else {
        startAt_ = place;
        sequence_.Files().Select(file);
        startAt_ = {};
    }
    return true;
}

// Shows the member or page of an archive that was entered; false when that is shown already.
bool frmControl::BeginWithin(const Place& start, bool fromBehind) {
    FileSequence::MemberEntries& members = sequence_.Members();
    const int page = static_cast<int>(std::min<uint32_t>(start.page, INT_MAX)) - 1;
    int member = sequence_.HasPages() ? page : -1;
    if (!start.member.empty()) member = members.IndexOf(start.member);
    const bool isFound = member >= 0 && member < members.Count();
    if (!isFound && !sequence_.HasPages()) {
        member = static_cast<int>(OpeningMember(members.All(), fromBehind));
    } else if (!isFound) {
        member = fromBehind ? members.Count() - 1 : 0;
    }
    const bool isShown = sequence_.HasPages() && member == members.Cursor();
    if (isShown && sequence_.SpreadHere(member).count == 1) return false;
    members.Select(member);
    if (!sequence_.HasPages() && isFound && page > 0) StepPage(page);
    return true;
}

void frmControl::TellEnd(int step) {
    window_.ShowNote(step > 0 ? kLastIsShown : kFirstIsShown);
}

void frmControl::TellRound(int step) {
    window_.ShowNote(step > 0 ? kWentToFirst : kWentToLast);
}

bool frmControl::GoToNextFolder(int step) {
    const std::wstring folder = FolderOf(sequence_.Files().Current());
    if (folder.empty()) return false;
    std::optional<FolderFiles> found;
    const auto stop = std::make_shared<std::atomic<bool>>(false);
    {
        const Busy busy(*this, L"フォルダを探しています");
        const auto arrangement = std::make_shared<const Arrangement>(ChosenArrangement());
        const auto look = [=] { return FolderBeside(folder, step, *arrangement, *stop); };
        found = CallInBackground<FolderFiles>(look, [this] { return window_.Breathe(); });
    }
    *stop = true;
    window_.CloseIfAsked();
    if (!found || CurrentActivity().quitRequested) return false;
    if (found->folder.empty()) {
        window_.ShowNote(step > 0 ? kNoNextFolder : kNoFormerFolder);
        return false;
    }
    const size_t last = found->files.size() - 1;
    PutInOrder(OrderFor(found->folder), found->files);
    if (!ShowList(found->files, step > 0 ? 0 : last, found->folder)) return false;
    follower_.Follow(found->folder);
    window_.ShowNote(L"フォルダ: " + FileNameOf(RemoveBackslash(found->folder)));
    return true;
}

}  // namespace tessary
