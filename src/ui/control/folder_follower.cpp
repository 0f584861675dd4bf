#include "ui/control/folder_follower.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include "app/base/paths.h"
#include "app/base/scan_folders.h"
#include "app/base/text.h"

namespace tessary {
namespace {

constexpr UINT kTickMilliseconds = 15;     // while neighbours are on their way
constexpr UINT kFollowMilliseconds = 100;  // behind that
constexpr ULONGLONG kWorthMilliseconds = 5000;
constexpr ULONGLONG kSettleMilliseconds = 200;  // changes seldom come alone
// Where the system tells nothing, and no look may take more of the time than this part.
constexpr ULONGLONG kPollMilliseconds = 3000;
constexpr ULONGLONG kPartOfTime = 10;

// Null on drives that can be taken out, which a watch would hold, and of networks, where it may
// keep its caller waiting; and where the system refuses.
std::shared_ptr<void> WatchOf(const std::wstring& folder) {
    wchar_t root[MAX_PATH];
    if (!GetVolumePathNameW(folder.c_str(), root, MAX_PATH) || GetDriveTypeW(root) != DRIVE_FIXED) {
        return nullptr;
    }
    const HANDLE watch = FindFirstChangeNotificationW(
        ExtendedPath(RemoveBackslash(folder)).c_str(), FALSE,
        FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE);
    if (watch == INVALID_HANDLE_VALUE) return nullptr;
    return {watch, [](void* handle) { FindCloseChangeNotification(handle); }};
}

}  // namespace

// One look at the folder, which its thread shares.
struct FolderFollower::Look {
    explicit Look(Arrangement chosen) : arrangement(std::move(chosen)) {}

    // Watches from before the first entry is read on: no change lies in between.
    void Run(const std::wstring& folder, const std::wstring& path) {
        if (watches) watch = WatchOf(folder);
        std::vector<FoundFile> found;
        const ScanRequest request{.folder = folder, .subFolders = false, .extensions = {}};
        const unsigned long error = ScanFolders(request, [&](ScanNews&& news) {
            std::ranges::move(news.files, std::back_inserter(found));
            return !stop;
        });
        if (stop || error != ERROR_SUCCESS) return;
        if (!path.empty()) AddOpened(path, found);
        files = Arranged(std::move(found), arrangement);
        if (!path.empty()) {
            const auto place = std::ranges::find(files, path, &ListedFile::path);
            opened = static_cast<int>(place - files.begin());
        }
        isDone = true;
    }

    static void AddOpened(const std::wstring& path, std::vector<FoundFile>& found) {
        const auto same = std::ranges::find_if(
            found, [&](const FoundFile& file) { return EqualsIgnoreCase(file.path, path); });
        if (same == found.end()) {
            found.push_back(NamedFileOf(path));  // it is hidden, or has a short name
        } else {
            same->path = path;
            same->isNamed = true;
        }
    }

    std::atomic<bool> stop = false;
    const Arrangement arrangement;
    bool watches = false;
    // These are there when the thread has ended.
    bool isDone = false;
    std::vector<ListedFile> files;
    int opened = -1;
    std::shared_ptr<void> watch;
};

FolderFollower::FolderFollower(Take take, std::function<bool()> waits)
    : take_(std::move(take)), waits_(std::move(waits)), timer_([this] { Tick(); }) {}

void FolderFollower::Bring(const std::wstring& path) {
    Begin(FolderOf(path));
    opened_ = path;
    changed_ = begin_;
    timer_.Start(kTickMilliseconds);
    Tick();
}

// The first look also begins to watch.
void FolderFollower::Follow(const std::wstring& folder) {
    Begin(folder);
    changed_ = begin_;
    timer_.Start(kFollowMilliseconds);
}

void FolderFollower::Begin(const std::wstring& folder) {
    End();
    folder_ = folder;
    begin_ = GetTickCount64();
}

void FolderFollower::End() {
    timer_.Stop();
    folder_.clear();
    opened_.clear();
    if (look_ != nullptr) look_->stop = true;
    look_.reset();
    worker_.reset();
    watch_.reset();
    changed_ = lastLook_ = lookTook_ = 0;
}

void FolderFollower::LookAnew() {
    if (folder_.empty() || !opened_.empty()) return;
    if (look_ != nullptr) look_->stop = true;
    look_.reset();
    worker_.reset();
    changed_ = GetTickCount64();
}

bool FolderFollower::AreComing() const {
    return !opened_.empty() && GetTickCount64() - begin_ < kWorthMilliseconds;
}

// Whether something may have changed that nobody has looked at, and not just now.
bool FolderFollower::IsDue() {
    const ULONGLONG now = GetTickCount64();
    if (waits_()) {
        if (!opened_.empty()) begin_ = now;  // it is not the neighbours that take so long
        return false;
    }
    if (!opened_.empty()) return true;
    if (watch_ == nullptr && lastLook_ != 0 && now - lastLook_ >= kPollMilliseconds) changed_ = now;
    if (watch_ != nullptr && WaitForSingleObject(watch_.get(), 0) == WAIT_OBJECT_0) {
        FindNextChangeNotification(watch_.get());
        if (changed_ == 0) changed_ = now;
    }
    return changed_ != 0 && now - changed_ >= kSettleMilliseconds &&
           now - lastLook_ >= lookTook_ * kPartOfTime;
}

void FolderFollower::Tick() {
    if (folder_.empty()) return;
    if (worker_) {
        if (worker_->HasEnded()) TakeLook();
        return;
    }
    if (!IsDue()) return;
    changed_ = 0;
    begin_ = opened_.empty() ? GetTickCount64() : begin_;
    Arrangement arrangement = ChosenArrangement();
    arrangement.rules.order = order_;
    look_ = std::make_shared<Look>(std::move(arrangement));
    look_->watches = watch_ == nullptr;
    worker_.emplace(
        [look = look_, folder = folder_, opened = opened_] { look->Run(folder, opened); });
}

// What could not be read for want of memory, or of the folder, leaves the list as it is.
void FolderFollower::TakeLook() {
    if (look_->isDone && !take_(look_->files, look_->opened)) return;
    if (look_->watch != nullptr) watch_ = look_->watch;
    worker_.reset();
    look_.reset();
    lastLook_ = GetTickCount64();
    lookTook_ = lastLook_ - begin_;
    if (opened_.empty()) return;
    opened_.clear();
    timer_.Start(kFollowMilliseconds);
}

}  // namespace tessary
