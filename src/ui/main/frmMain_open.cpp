// What the main window is given to open: by the command line, by dropping.
#include <utility>

#include "app/base/command_line.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"
#include "ui/form/worker.h"
#include "ui/main/frmMain.h"

namespace tessary {
namespace {

constexpr wchar_t kNothingToOpen[] = L"開けるファイルが見つかりませんでした。";

}  // namespace

void frmMain::AcceptDroppedFiles() {
    const FileDropTarget::Handlers handlers{
        .accepts =
            [this] {
                return fileListReceiver_ != nullptr && !IsReadUnderWay() &&
                       IsWindowEnabled(Handle());
            },
        .drop = [this](const std::vector<std::wstring>& paths) { OpenLater(paths); }};
    windowDrop_.Register(Handle(), handlers);
    viewDrop_.Register(pictureView_.Handle(), handlers);
}

// The first picture is shown when the window already stands on the screen.
void frmMain::OpenCommandLine() {
    if (services_.commandLine.empty()) return;
    filesToOpen_ = [line = services_.commandLine, platform = Values().platformId] {
        std::vector<std::wstring> files;
        ParseCommandLine(line, platform, files);
        return files;
    };
    PostMessageW(Handle(), kOpenFilesMessage, 0, 0);
}

void frmMain::OpenLater(const std::vector<std::wstring>& paths) {
    filesToOpen_ = [paths] { return WithFoldersExpanded(paths); };
    PostMessageW(Handle(), kOpenFilesMessage, 0, 0);
}

void frmMain::OpenNow(FileListing listing) {
    if (fileListReceiver_ == nullptr || !listing || IsReadUnderWay()) return;
    std::optional<std::vector<std::wstring>> files;
    {
        const ReadUnderWay reading;
        files = CallInBackground<std::vector<std::wstring>>(std::move(listing),
                                                            [] { return !Values().quitRequested; });
    }
    CloseIfAsked();
    if (!files || Values().quitRequested) return;
    ShowNothingToOpen(files->empty());
    if (!files->empty()) fileListReceiver_->SetFileList(*files);
}

void frmMain::ShowNothingToOpen(bool isNothing) {
    if (isNothing) {
        SetPanelText(kNoticePanel, kNothingToOpen);
    } else if (statusInformation_.PanelText(kNoticePanel) == kNothingToOpen) {
        SetPanelText(kNoticePanel, L"");
    }
}

}  // namespace tessary
