// Choosing entries of the control bar's lists: the one in view, and others beside it.
//
// A click, or a step, leads to another file, and leaves none chosen beside it. Files that were
// marked (commandMarkFile) stay chosen all the same, with what is chosen beside them, until they
// are used or the user forgets them.
#include <algorithm>
#include <iterator>
#include <numeric>

#include "app/settings/modValue.h"
#include "res/resource.h"
#include "ui/control/frmControl.h"

namespace tessary {

void frmControl::RegisterChoosing() {
    CommandTable& commands = window_.Commands();
    commands.Register(commandChooseAll, {.run = [this] { ChooseAll(); },
                                         .enabled = [this] { return formLoaded_ && HasFiles(); },
                                         .whileLoading = true});
    commands.Register(commandMarkFile, {.run = [this] { MarkAndGoOn(); },
                                        .enabled = [this] { return formLoaded_ && HasFiles(); },
                                        .whileLoading = true});
    commands.Register(commandListPaths,
                      {.run =
                           [this] {
                               int16_t& text = Values().general.listText;
                               text = text == kListPaths ? kListNames : kListPaths;
                               listFileName_.ContentChanged();
                           },
                       .checked = [] { return Values().general.listText == kListPaths; },
                       .whileLoading = true});
}

// What is in view already is not read once more.
void frmControl::SelectFileByHand(int index) {
    sequence_.GoOn();
    FileSequence::FileEntries& files = sequence_.Files();
    const bool isShown = window_.PictureShown() && files.Current() == shownPath_;
    if (index == files.Cursor() && !IsLoading() && isShown) return;
    files.Select(index);
}

void frmControl::SelectMemberByHand(int index) {
    FileSequence::MemberEntries& members = sequence_.Members();
    const bool isShown = window_.PictureShown() && !shownPath_.empty();
    if (index != members.Cursor() || IsLoading() || !isShown) members.Select(index);
}

void frmControl::ChooseFiles(std::vector<int> indexes) {
    if (listsChange_) return;
    const bool adds = sequence_.HasMarks() && (CurrentShiftState() & kShiftMask) != 0;
    if (adds) std::ranges::copy(sequence_.Files().ChosenIndexes(), std::back_inserter(indexes));
    sequence_.ChooseForNow(indexes);
    TellChosen();
}

void frmControl::ChooseAll() {
    std::vector<int> all(static_cast<size_t>(sequence_.Files().Count()));
    std::iota(all.begin(), all.end(), 0);
    ChooseFiles(std::move(all));
}

// During a load it is about what the user sees.
void frmControl::MarkAndGoOn() {
    if (listsChange_ || keyRepeats_) return;
    FileSequence::FileEntries& files = sequence_.Files();
    const int seen = files.IndexOf(shownPath_);
    const int index = seen < 0 ? files.Cursor() : seen;
    if (index < 0) return;
    sequence_.ToggleMark(index);
    if (sequence_.IsInArchive() && !IsLoading()) {
        player_.HaltTimer();
        StepAndStay(1, false);  // the whole of it is marked
    } else {
        CoolBar_ButtonClick(BarButton::kStepForward);
    }
    TellChosen();
}

void frmControl::TellChosen() {
    const int count = sequence_.Files().ChosenCount();
    window_.ShowNote(count == 0 ? L"選択を解除しました。"
                                : std::to_wstring(count) + L" 個のファイルを選択しています。");
}

}  // namespace tessary
