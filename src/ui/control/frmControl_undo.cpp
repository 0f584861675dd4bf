// Undoing what the user has done with files of the list.
#include <algorithm>
#include <ranges>
#include <utility>

#include "app/base/found_file.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "app/base/write_error.h"
#include "places/place.h"
#include "ui/control/frmControl_busy.h"
#include "ui/form/activity.h"
#include "ui/form/menu.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr size_t kLongestCaption = 50;  // characters
constexpr int kMostTold = 5;            // of the files that could not be taken back

std::wstring ProblemOf(const FileStep& step, const UndoResult& result) {
    const std::wstring name = L"「" + FileNameOf(step.path) + L"」";
    switch (result.outcome) {
        case Undone::kDone:
            return name + L"と置き換えたファイルを、ごみ箱から戻せません。\r\n　" + step.now;
        case Undone::kChanged:
            return name + L"のコピーは、そのあと変更されたので残します。\r\n　" + step.now;
        case Undone::kNotThere:
            return name + (step.now.empty() ? std::wstring(L"は、ごみ箱に見つかりません。")
                                            : L"が見つかりません。\r\n　" + step.now);
        case Undone::kOccupied:
            return name + L"のあった場所に、同じ名前のファイルがあります。\r\n　" + step.path;
        default:
            if (step.copy && result.error == ERROR_SUCCESS)
                return name + L"のコピーは、ごみ箱に入れられないので残します。\r\n　" + step.now;
            return name + L"を戻せません。" + WriteErrorText(result.error);
    }
}

// Trying again leads nowhere.
bool IsFinal(Undone outcome) {
    return outcome == Undone::kNotThere || outcome == Undone::kChanged;
}

}  // namespace

std::wstring frmControl::UndoCaption() const {
    const FileAct* const act = history_.Last();
    if (act == nullptr) return L"元に戻す(&U)";
    return L"元に戻す - " + AsMenuCaption(ShortenedPath(NameOf(*act), kLongestCaption)) + L"(&U)";
}

void frmControl::UndoLast() {
    if (IsReadUnderWay() || busy_ > 0) return;
    std::optional<FileAct> act = history_.TakeLast();
    if (!act) return;
    player_.HaltTimer();
    EndMotion();
    FileAct left{.kind = act->kind, .steps = {}, .list = act->list};
    std::vector<ListedStep> back;
    std::wstring problems;
    int problemCount = 0;
    WhileFilesChange({.what = L"元に戻しています",
                      .session = L"ファイルを元に戻しています。",
                      .caption = L"元に戻す"},
                     [&](const DeletionNews& tell) {
                         const auto total = static_cast<int32_t>(act->steps.size());
                         bool goesOn = true;
                         int32_t done = 0;
                         for (ListedStep& step : act->steps | std::views::reverse) {
                             const std::optional<UndoResult> result =
                                 goesOn ? CallInBackground<UndoResult>(
                                              [file = step.file] { return Undo(file); },
                                              [] { return true; })
                                        : std::nullopt;
                             if (goesOn) goesOn = tell(step.file.path, ++done, total);
                             if (result && result->outcome == Undone::kDone) {
                                 if (result->keepsReplaced && ++problemCount <= kMostTold)
                                     problems += ProblemOf(step.file, *result) + L"\r\n";
                                 back.push_back(std::move(step));
                                 continue;
                             }
                             if (result && ++problemCount <= kMostTold)
                                 problems += ProblemOf(step.file, *result) + L"\r\n";
                             if (!result || !IsFinal(result->outcome))
                                 left.steps.push_back(std::move(step));
                         }
                     });
    std::ranges::reverse(left.steps);
    const std::wstring name = NameOf({.kind = act->kind, .steps = back});
    const bool isUndone = !back.empty();
    PutBackInList(*act, std::move(back));
    if (isUndone) window_.ShowNote(L"元に戻しました: " + name);
    if (problemCount > kMostTold)
        problems += L"ほか " + std::to_wstring(problemCount - kMostTold) + L" 個\r\n";
    TellNotUndone(std::move(left), problems);
    window_.CloseIfAsked();
}

// In another list than they were in, they come by themselves where their folder is followed.
void frmControl::PutBackInList(const FileAct& act, std::vector<ListedStep> back) {
    if (act.kind == FileAct::Kind::kCopy) {
        std::vector<std::wstring> gone;
        for (const ListedStep& step : back)
            gone.push_back(step.file.now);
        if (const std::optional<int> gap = sequence_.RemoveDeleted(gone)) ShowInPlaceOf(*gap);
        return;
    }
    for (const ListedStep& step : back) {
        if (!step.file.now.empty()) window_.TellMoved(step.file.now, step.file.path);
    }
    if (back.empty() || act.list != listNumber_) return;
    const EntryOrder& order = fileOrder_;
    const bool isInOrder = sequence_.IsInOrder(order);
    std::ranges::sort(back, {}, &ListedStep::index);
    {
        const RedrawHold hold(listFileName_);
        for (const ListedStep& step : back) {
            const std::wstring& path = step.file.path;
            if (!step.file.now.empty()) sequence_.Rename(step.file.now, path);
            if (sequence_.Files().IndexOf(path) < 0) {
                ListedFile entry = step.entry;
                entry.path = path;
                const FoundFile found = NamedFileOf(path);
                entry.size = found.size;
                entry.time = found.time;
                sequence_.PutIn(std::move(entry), step.index);
            }
        }
        if (isInOrder) sequence_.SortBy(order);
    }
    ShowFoldedOrNot();
    sequence_.Files().Select(sequence_.Files().IndexOf(back.front().file.path));
}

// What is not to be had any more is told and forgotten; the rest may be tried again.
void frmControl::TellNotUndone(FileAct left, const std::wstring& problems) {
    if (problems.empty()) return history_.Add(std::move(left));
    const std::wstring text = L"元に戻せないファイルがあります。\r\n\r\n" + problems;
    if (left.steps.empty()) {
        ShowMessageBox(text, MB_ICONEXCLAMATION);
        return;
    }
    if (ShowMessageBox(text + L"\r\nあとでもう一度試しますか？\r\n"
                              L"[いいえ]をクリックすると、戻すのをあきらめます。",
                       MB_YESNO | MB_ICONEXCLAMATION) == IDYES) {
        history_.Add(std::move(left));
    }
}

}  // namespace tessary
