// Moving and copying what is shown, or chosen, to folders that are kept.
#include <algorithm>
#include <utility>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "plugin/member_file_name.h"
#include "plugin/modSusie.h"
#include "plugin/private_folder.h"
#include "res/resource.h"
#include "ui/control/file_transfer.h"
#include "ui/control/frmControl_busy.h"
#include "ui/dialogs/DTransfer.h"
#include "ui/form/activity.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

constexpr wchar_t kAfterLoad[] = L"読み込みが終わってから、もう一度押してください。";

std::wstring SubjectOf(const std::vector<TransferredFile>& files) {
    return files.size() == 1 ? files.front().name
                             : std::to_wstring(files.size()) + L" 個のファイル";
}

}  // namespace

void frmControl::RegisterTransferCommands() {
    for (const bool moves : {false, true}) {
        window_.Commands().Register(moves ? commandMoveTo : commandCopyTo,
                                    {.run = [this, moves] { TransferShown(moves); },
                                     .enabled = [this] { return formLoaded_ && !listsChange_; },
                                     .whileLoading = true});
    }
}

// Whether commands are about a picture in an archive, and not about files.
bool frmControl::IsMemberMeant() const {
    return contextFile_.empty() && sequence_.Files().ChosenCount() == 0 &&
           sequence_.IsInArchive() && !sequence_.HasPages() && shownPath_ == sequence_.Archive() &&
           sequence_.Members().Cursor() >= 0;
}

void frmControl::TransferShown(bool moves) {
    if (keyRepeats_) return;
    if (player_.IsFast()) {
        return window_.ShowNote(L"早送りや巻き戻しを止めてから、もう一度押してください。");
    }
    if (IsMemberMeant()) {
        if (moves) {
            return window_.ShowNote(
                L"圧縮ファイルの中の画像は移動できません。コピーはできます。\r\n"
                L"圧縮ファイルごと移動するには、一覧の右クリックのメニューを使ってください。");
        }
        return IsReadUnderWay() ? window_.ShowNote(kAfterLoad) : CopyMember();
    }
    const bool isPasted = window_.PictureShown() && shownPath_.empty() && contextFile_.empty() &&
                          sequence_.Files().ChosenCount() == 0 && !IsLoading();
    if (isPasted) {
        return window_.ShowNote(
            L"表示している画像にはファイルがありません。名前を付けて保存してください。");
    }
    std::vector<std::wstring> paths = TargetFiles();
    if (paths.empty()) return;
    if (IsLoading() || player_.IsPlaying()) {
        wishes_.Transfer(std::move(paths), moves);
        return WishIsThere();
    }
    if (!IsReadUnderWay()) TransferListed(paths, moves);
}

// As far as they are still listed.
void frmControl::TransferListed(const std::vector<std::wstring>& paths, bool moves) {
    std::vector<TransferredFile> files;
    for (const std::wstring& path : paths) {
        if (sequence_.Files().IndexOf(path) >= 0) files.push_back({path, FileNameOf(path)});
    }
    if (!files.empty()) TransferFiles(files, moves);
}

void frmControl::TransferFiles(const std::vector<TransferredFile>& files, bool moves) {
    player_.HaltTimer();
    EndMotion();
    std::wstring folder;
    const std::wstring& start = files.front().from.empty() ? files.front().path : shownPath_;
    const bool isChosen = DTransfer(moves).Ask(
        window_.DialogOwner(), SubjectOf(files), FolderOf(start), [&](const std::wstring& chosen) {
            const BusyPointer pointer;
            folder = chosen;
            return CallInBackground<std::wstring>([chosen] { return TargetFolderProblem(chosen); },
                                                  [] { return true; })
                .value_or(L"中止しました。");
        });
    if (isChosen && busy_ == 0 && !IsReadUnderWay()) {
        FileTransfer transfer(moves, folder, [this] { return window_.DialogOwner(); });
        WhileFilesChange(
            {.what = moves ? L"移動しています" : L"コピーしています",
             .session = moves ? L"ファイルを移動しています。" : L"ファイルをコピーしています。",
             .caption = moves ? L"ファイルの移動" : L"ファイルのコピー"},
            [&](const DeletionNews& tell) { transfer.Run(files, tell); });
        FilesTransferred(transfer.Done(), moves);
        if (const std::wstring note = transfer.Note(); !note.empty()) window_.ShowNote(note);
        if (const std::wstring problems = transfer.Problems(); !problems.empty()) {
            ShowMessageBox(problems,
                           transfer.HasFailures() ? MB_ICONEXCLAMATION : MB_ICONINFORMATION);
        }
    }
    window_.CloseIfAsked();
}

// What was moved leaves the list, and the next file comes into view as after a deletion.
void frmControl::FilesTransferred(const std::vector<FileStep>& done, bool moves) {
    FileAct act{.kind = moves ? FileAct::Kind::kMove : FileAct::Kind::kCopy,
                .steps = {},
                .list = listNumber_};
    std::vector<std::wstring> gone;
    for (const FileStep& file : done) {
        ListedStep step{.file = file};
        step.index = moves ? sequence_.Files().IndexOf(file.path) : -1;
        if (step.index >= 0) step.entry = sequence_.Files().At(step.index);
        act.steps.push_back(std::move(step));
        if (moves) gone.push_back(file.path);
    }
    history_.Add(std::move(act));
    for (const FileStep& file : done) {
        if (moves) window_.TellMoved(file.path, file.now);
    }
    if (const std::optional<int> gap = sequence_.RemoveDeleted(gone)) ShowInPlaceOf(*gap);
}

// --- Out of archives ---

void frmControl::CopyMember() {
    const ListedMember member = sequence_.Members().At(sequence_.Members().Cursor());
    const std::wstring archive = sequence_.Archive();
    const std::optional<std::wstring> name = SafeMemberName(FileNameOf(member.name));
    if (!name) return window_.ShowNote(L"この名前では取り出せません: " + member.name);
    player_.HaltTimer();
    EndMotion();
    std::optional<PrivateFolder> folder;
    std::wstring failure;
    {
        const Busy busy(*this, L"圧縮ファイルから取り出しています");
        try {
            folder.emplace();
            clsSusie* const plugin = SusieCollection().ListedArchive(archive);
            if (plugin == nullptr) {
                failure = L"圧縮ファイルが変わったため、取り出せません。開き直してください。";
            } else {
                plugin->DecodeArchive(member.position, folder->Target(), *name, {}, true);
            }
        } catch (...) {
            failure = L"「" + *name + L"」を取り出せません。\r\n" + CurrentError().Description();
        }
    }
    if (!failure.empty()) {
        ShowMessageBox(failure, MB_ICONEXCLAMATION);
        return window_.CloseIfAsked();
    }
    TransferFiles({{.path = folder->Target() + L'\\' + *name,
                    .name = *name,
                    .from = archive + L'\\' + *name}},
                  false);
}

}  // namespace tessary
