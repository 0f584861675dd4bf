// What the main window is given to open: by the command line, by dropping.
#include <utility>

#include "app/base/command_line.h"
#include "app/base/message_box.h"
#include "app/base/raised_flag.h"
#include "picture/read/arrangement.h"
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
    OpenLater(services_.commandLine);
}

void frmMain::OpenLater(const std::vector<std::wstring>& paths) {
    filesToOpen_ = paths;
    FollowEmptiness();
    PostMessageW(Handle(), kOpenFilesMessage, 0, 0);
}

void frmMain::OpenNow(const std::vector<std::wstring>& paths) {
    if (controlBar_ == nullptr || paths.empty() || IsReadUnderWay()) return;
    const RaisedFlag opening(isOpening_);
    std::optional<FoundFiles> found;
    {
        const Reading reading(*this, L"ファイルを探しています");
        const auto arrangement = std::make_shared<const Arrangement>(ChosenArrangement());
        const auto list = [paths, arrangement] {
            FoundFiles result;
            std::vector<FoundFile> files;
            result.named = AppendNamedFiles(paths, files);
            if (paths.size() == 1) {
                const bool isNamed = files.size() == 1 && files.front().isNamed;
                result.source = isNamed ? ListSource::kOneFile : ListSource::kOneFolder;
            }
            result.files = Arranged(std::move(files), *arrangement);
            return result;
        };
        found = CallInBackground<FoundFiles>(list, [this] {
            TellProgress(0, 0);
            return Breathe();
        });
    }
    CloseIfAsked();
    if (!found || CurrentActivity().quitRequested) return;
    ShowOpened(found->files.size(), found->named);
    if (found->named.missing == 1 && paths.size() == 1 && missing_) missing_(paths.front());
    if (found->files.empty()) return;
    const ListSource source = found->source;
    OpenByHand(paths, [&] { return controlBar_->OpenFiles(std::move(found->files), source); });
    if (source == ListSource::kOneFile) TellFailure(controlBar_->Failure());
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
