// The control bar's list as a whole: its order, its neighbours, and what lies beyond its ends.
#include <algorithm>
#include <atomic>
#include <memory>
#include <utility>

#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "picture/read/arrangement.h"
#include "res/resource.h"
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
constexpr wchar_t kNoNextFolder[] = L"次のフォルダはありません。";
constexpr wchar_t kNoFormerFolder[] = L"前のフォルダはありません。";

}  // namespace

void frmControl::RegisterListCommands() {
    for (int16_t by = 0; by < kOrderCount; ++by) {
        window_.Commands().Register(commandOrder_0 + by,
                                    {.run = [this, by] { ChooseOrder(by); },
                                     .checked = [by] { return Values().general.listOrder == by; }});
    }
    window_.Commands().Register(commandOrderDescending,
                                {.run =
                                     [this] {
                                         int16_t& other = Values().general.listDescending;
                                         other = other == 0 ? 1 : 0;
                                         Reorder();
                                     },
                                 .checked = [] { return Values().general.listDescending != 0; }});
    for (const bool isLast : {false, true}) {
        window_.Commands().Register(isLast ? commandLastFile : commandFirstFile,
                                    {.run = [this, isLast] { GoToEnd(isLast); },
                                     .enabled = [this] { return formLoaded_ && HasFiles(); }});
    }
}

// --- Order ---

void frmControl::ChooseOrder(int16_t by) {
    Values().general.listOrder = by;
    if (static_cast<OrderBy>(by) == OrderBy::kRandom) {
        Values().general.orderSeed = static_cast<int32_t>(GetTickCount());
    }
    Reorder();
}

void frmControl::Reorder() {
    if (!formLoaded_) return;
    {
        const RedrawHold files(listFileName_);
        const RedrawHold members(listArchiveFile_);
        sequence_.SortBy(ChosenListingRules().order);
    }
    ShowFoldedOrNot();
    if (!shownPath_.empty()) PlanAhead(ShownEntry());
}

AheadEntry frmControl::ShownEntry() const {
    const int member = sequence_.IsInArchive() ? sequence_.Members().Cursor() : -1;
    return member < 0 ? AheadEntry{shownPath_} : EntryOfMember(sequence_, member);
}

// --- Neighbours ---

bool frmControl::OpenFiles(std::vector<ListedFile> files, bool alone) {
    const std::wstring path = alone && files.size() == 1 ? files.front().path : std::wstring();
    if (!ShowList(files, 0)) return false;
    if (!path.empty() && Values().general.listNeighbours != 0) neighbours_.Begin(path);
    return true;
}

// The user may have gone on meanwhile, but for stepping: steps wait.
bool frmControl::TakeNeighbours(std::vector<ListedFile>& files, int opened) {
    if (IsReadUnderWay() || busy_ > 0) return false;
    std::erase_if(files, [this](const ListedFile& file) {
        return sequence_.Marks().IndexOf(file.path) >= 0;
    });
    const std::wstring path = sequence_.Files().Current();
    const auto found = std::ranges::find(files, path, &ListedFile::path);
    const bool isThere = found != files.end();
    const auto place = static_cast<int>(found - files.begin());
    const size_t count = files.size();
    if (Values().general.shortList != 0) files.resize(std::min(count, kShortListCount));
    TellCut(files.size(), count);
    {
        const RedrawHold hold(listFileName_);
        sequence_.Files().Assign(std::move(files), isThere ? place : -1);
    }
    ShowFoldedOrNot();
    if (isThere) {
        PlanAhead(ShownEntry());
    } else if (HasFiles()) {
        sequence_.Files().Select(std::min(opened, sequence_.Files().Count() - 1));
    }
    return true;
}

// --- The ends ---

// The first or the last of the archive's members, or of the files where that is shown already.
void frmControl::GoToEnd(bool isLast) {
    if (busy_ > 0 || !HasFiles()) return;
    player_.HaltTimer();
    EndMotion();
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
    if (!ShowList(found->files, step > 0 ? 0 : last)) return false;
    window_.ShowNote(L"フォルダ: " + FileNameOf(RemoveBackslash(found->folder)));
    return true;
}

}  // namespace tessary
