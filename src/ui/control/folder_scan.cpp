#include "ui/control/folder_scan.h"

#include <windows.h>

#include <atomic>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

#include "app/base/error.h"
#include "app/base/handles.h"

namespace tessary {
namespace {

// How long a stopped scan may take to hand over what it has.
constexpr DWORD kStopMilliseconds = 300;

}  // namespace

struct FolderScan::Shared {
    std::atomic<bool> stop = false;
    UniqueEvent arrived{CreateEventW(nullptr, FALSE, FALSE, nullptr)};  // there is news, or the end
    std::mutex mutex;                                                   // of all below
    ScanNews news;
    unsigned long error = ERROR_SUCCESS;
    std::optional<RaisedError> raised;

    bool Add(ScanNews&& added) {
        const std::lock_guard lock(mutex);
        news.folder = std::move(added.folder);
        news.looked = added.looked;
        news.unreadable.insert(news.unreadable.end(), added.unreadable.begin(),
                               added.unreadable.end());
        news.files.insert(news.files.end(), std::make_move_iterator(added.files.begin()),
                          std::make_move_iterator(added.files.end()));
        SetEvent(arrived.Get());
        return !stop;
    }

    void Run(const ScanRequest& request) {
        try {
            const unsigned long result =
                ScanFolders(request, [this](ScanNews&& added) { return Add(std::move(added)); });
            const std::lock_guard lock(mutex);
            error = result;
        } catch (...) {
            const std::lock_guard lock(mutex);
            raised = CurrentError();
        }
    }
};

FolderScan::FolderScan(const ScanRequest& request)
    : shared_(std::make_shared<Shared>()),
      worker_([shared = shared_, request] { shared->Run(request); }) {}

FolderScan::~FolderScan() {
    shared_->stop = true;
}

bool FolderScan::Wait(DWORD milliseconds) {
    const HANDLE handles[] = {shared_->arrived.Get(), worker_.Handle()};
    return WaitHandlingMessages(handles, milliseconds);
}

ScanNews FolderScan::Take(std::vector<FoundFile>& files) {
    ScanNews taken;
    {
        const std::lock_guard lock(shared_->mutex);
        taken = std::exchange(shared_->news, {shared_->news.folder, shared_->news.looked, {}, {}});
    }
    files.insert(files.end(), std::make_move_iterator(taken.files.begin()),
                 std::make_move_iterator(taken.files.end()));
    taken.files.clear();
    return taken;
}

void FolderScan::Stop() {
    shared_->stop = true;
    worker_.CancelCall();
    WaitForSingleObject(worker_.Handle(), kStopMilliseconds);
}

unsigned long FolderScan::Error() const {
    const std::lock_guard lock(shared_->mutex);
    if (shared_->raised) throw RaisedError(*shared_->raised);
    return shared_->error;
}

}  // namespace tessary
