#include "ui/control/open_commands.h"

#include <windows.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "app/base/message_box.h"
#include "app/base/raised_flag.h"
#include "app/settings/modValue.h"
#include "picture/read/arrangement.h"
#include "plugin/modSusie.h"
#include "res/resource.h"
#include "ui/control/folder_scan.h"
#include "ui/control/frmDirList.h"
#include "ui/control/open_rules.h"
#include "ui/dialogs/ComDlg.h"
#include "ui/dialogs/folder_browser.h"
#include "ui/dialogs/folder_listing.h"
#include "ui/dialogs/start_folder.h"
#include "ui/form/activity.h"
#include "ui/form/busy_window.h"
#include "ui/form/worker.h"

namespace tessary {
namespace {

// Without the read-only box, several files at once, path and files must exist, the present shape,
// long names.
constexpr DWORD kOpenFlags = 0x281A04;

// The last folder that anything was opened from, kept with the settings.
std::wstring LastFolder() {
    return FirstChosenFolder({&Values().general.openPath});
}

struct Collected {
    std::vector<FoundFile> files;
    DWORD error = ERROR_SUCCESS;  // why the chosen folder could not be read
    NamedFiles named;
};

// What was found until the user stopped it; nothing is waited for once the program is to end.
Collected CollectFiles(const ScanRequest& request, HWND owner, BusyWindow& busy) {
    const ReadUnderWay read;
    Collected collected;
    frmDirList progress(owner);
    FolderScan scan(request);
    const auto take = [&] {
        ScanNews news = scan.Take(collected.files);
        if (!news.unreadable.empty()) collected.named.whole = false;
        return news;
    };
    DWORD lastTold = GetTickCount() - ProgressDialog::kInterval;
    while (!scan.HasEnded() && !progress.IsStopped()) {
        if (!scan.Wait(ProgressDialog::kInterval) || CurrentActivity().quitRequested) return {};
        if (GetTickCount() - lastTold < ProgressDialog::kInterval) continue;
        lastTold = GetTickCount();
        const ScanNews news = take();
        if (news.looked >= kScanStep) {
            busy.SetCaption(L"ファイルを読み込み中です [ " +
                            std::to_wstring(news.looked / kScanStep * kScanStep) + L" 枚]");
        }
        progress.ShowProgress(news.folder, news.looked);
    }
    if (progress.IsStopped()) {
        scan.Stop();
    } else {
        collected.error = scan.Error();
    }
    take();
    return collected;
}

// On a thread: a long list takes a while.
std::vector<ListedFile> InOrder(std::vector<FoundFile> files, frmMain& window) {
    const auto arrangement = std::make_shared<const Arrangement>(ChosenArrangement());
    const auto shared = std::make_shared<std::vector<FoundFile>>(std::move(files));
    const frmMain::Reading reading(window, L"ファイル一覧を作成しています");
    const auto arrange = [=] { return Arranged(std::move(*shared), *arrangement); };
    return CallInBackground<std::vector<ListedFile>>(arrange, [] { return true; })
        .value_or(std::vector<ListedFile>());
}

void ReportError(std::wstring_view procedure) {
    const RaisedError error = CurrentError();
    ReportUnexpectedError(error.Number(), error.Description(), procedure);
}

}  // namespace

OpenCommands::OpenCommands(frmMain& window, ControlBar& bar) : window_(window), bar_(bar) {
    const auto enabled = [this] { return !isChoosing_; };
    window_.Commands().Register(menuFileOpen,
                                {.run = [this] { menuFileOpen_Click(); }, .enabled = enabled});
    window_.Commands().Register(menuOpenFolder,
                                {.run = [this] { menuOpenFolder_Click(); }, .enabled = enabled});
}

void OpenCommands::menuFileOpen_Click() {
    if (isChoosing_ || IsReadUnderWay()) return;
    try {
        ComDlg dialog;
        {
            const RaisedFlag choosing(isChoosing_);
            dialog.SetFilter(SusieCollection().GetCommonDialogString());
            dialog.SetInitDir(LastFolder());
            dialog.SetFlags(kOpenFlags);
            if (!dialog.ShowOpen(window_.DialogOwner())) return;
        }
        const ChosenFiles chosen = FilesOfDialog(dialog.FileName());
        if (chosen.paths.empty() || window_.Handle() == nullptr) return;
        Values().general.openPath = chosen.folder;
        window_.ShowOpened(chosen.paths.size());
        std::vector<FoundFile> files;
        for (const std::wstring& path : chosen.paths)
            files.push_back(NamedFileOf(path));
        const bool isOne = chosen.paths.size() == 1;
        window_.OpenByHand(chosen.paths, [&] {
            return bar_.OpenFiles(Arranged(std::move(files), ChosenArrangement()),
                                  isOne ? ListSource::kOneFile : ListSource::kFiles);
        });
        if (chosen.paths.size() == 1) window_.TellFailure(bar_.Failure());
    } catch (...) {
        ReportError(L"frmMain - menuFileOpen_Click");
    }
}

void OpenCommands::menuOpenFolder_Click() {
    if (isChoosing_ || IsReadUnderWay()) return;
    try {
        ScanRequest request;
        {
            const RaisedFlag choosing(isChoosing_);
            if (!ChooseFolder(request)) return;
        }
        if (window_.Handle() == nullptr) return;  // the session has ended meanwhile
        OpenFolder(request);
    } catch (...) {
        ReportError(L"frmMain - menuOpenFolder_Click");
    }
    window_.CloseIfAsked();
}

// The system's dialog knows neither sub-folders nor extensions.
bool OpenCommands::ChooseFolder(ScanRequest& request) {
    const HWND owner = window_.DialogOwner();
    if (Values().general.openFolderType != 0) {
        request.folder =
            BrowseForFolder(owner, L"フォルダの参照",
                            L"ファイルが存在するフォルダを指定してください。", LastFolder());
        return !request.folder.empty();
    }
    folderDialog_.SetStartFolder(LastFolder());
    if (!folderDialog_.Show(owner)) return false;
    request = {folderDialog_.GetFileName(), folderDialog_.GetSearchSubFolder(),
               folderDialog_.GetFileExt()};
    return !request.folder.empty();
}

void OpenCommands::OpenFolder(const ScanRequest& request) {
    bar_.ClearLists();
    Values().general.openPath = request.folder;
    Collected collected;
    {
        BusyWindow busy(window_.Handle());
        collected = CollectFiles(request, window_.Handle(), busy);
        if (CurrentActivity().quitRequested) return;
        busy.SetCaption(L"ファイル一覧を作成しています");
        bar_.ComeUp();
        window_.ShowOpened(collected.files.size(), collected.named);
        const bool isOne = !request.subFolders && request.extensions.empty();
        window_.OpenByHand({request.folder}, [&] {
            return bar_.OpenFiles(InOrder(std::move(collected.files), window_),
                                  isOne ? ListSource::kOneFolder : ListSource::kFiles);
        });
    }
    if (collected.error != ERROR_SUCCESS) {
        ShowMessageBox(FolderErrorText(request.folder, collected.error), MB_ICONEXCLAMATION);
    }
}

}  // namespace tessary
