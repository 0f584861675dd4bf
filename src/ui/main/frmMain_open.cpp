// What the main window is given to open: by the command line, by dropping.
#include <utility>

#include "app/base/message_box.h"
#include "app/base/paths.h"
#include "ui/form/activity.h"
#include "ui/form/worker.h"
#include "ui/main/frmMain.h"

namespace tessary {
namespace {

constexpr wchar_t kNothingToOpen[] = L"開けるファイルが見つかりませんでした。";
constexpr wchar_t kMissing[] = L" 個のファイルが見つかりませんでした。";
constexpr wchar_t kNotWhole[] = L"フォルダの一部を読み取れませんでした。";

}  // namespace

void frmMain::AcceptDroppedFiles() {
    const FileDropTarget::Handlers handlers{
        .accepts =
            [this] { return controlBar_ != nullptr && MayPress() && IsWindowEnabled(Handle()); },
        .drop = [this](const std::vector<std::wstring>& paths) { OpenLater(paths); }};
    windowDrop_.Register(Handle(), handlers);
    viewDrop_.Register(pictureView_.Handle(), handlers);
}

// The first picture is shown when the window already stands on the screen.
void frmMain::OpenCommandLine() {
    if (services_.commandLine.empty()) return;
    filesToOpen_ = [names = services_.commandLine] {
        FoundFiles found;
        found.named = AppendNamedFiles(names, found.files);
        return found;
    };
    PostMessageW(Handle(), kOpenFilesMessage, 0, 0);
}

void frmMain::OpenLater(const std::vector<std::wstring>& paths) {
    filesToOpen_ = [paths] {
        FoundFiles found;
        found.files = WithFoldersExpanded(paths, &found.named.whole);
        return found;
    };
    PostMessageW(Handle(), kOpenFilesMessage, 0, 0);
}

void frmMain::OpenNow(FileListing listing) {
    if (controlBar_ == nullptr || !listing || IsReadUnderWay()) return;
    std::optional<FoundFiles> found;
    {
        const Reading reading(*this, L"ファイルを探しています");
        found = CallInBackground<FoundFiles>(std::move(listing), [this] {
            TellProgress(0, 0);
            return Breathe();
        });
    }
    CloseIfAsked();
    if (!found || CurrentActivity().quitRequested) return;
    ShowOpened(found->files.size(), found->named);
    if (found->files.empty()) return;
    controlBar_->SetFileList(found->files);
    if (found->files.size() == 1) TellFailure(controlBar_->Failure());
}

void frmMain::TellFailure(const std::wstring& failure) const {
    if (!failure.empty() && !CurrentActivity().quitRequested)
        ShowMessageBox(failure, MB_ICONEXCLAMATION);
}

void frmMain::ShowOpened(size_t count, const NamedFiles& named) {
    const std::wstring former = std::exchange(openNotice_, {});
    if (!named.whole) {
        openNotice_ = kNotWhole;
    } else if (count == 0) {
        openNotice_ = kNothingToOpen;
    } else if (named.missing > 0) {
        openNotice_ = std::to_wstring(named.missing) + kMissing;
    }
    const bool isOld =
        std::exchange(hasOpened_, true) || statusInformation_.PanelText(kNoticePanel) == former;
    if (isOld || !openNotice_.empty()) {
        SetPanelText(kNoticePanel, openNotice_);
    }
}

}  // namespace tessary
