#include "ui/control/neighbours.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

#include "app/base/paths.h"
#include "app/base/scan_folders.h"
#include "app/base/text.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr UINT kTickMilliseconds = 15;
constexpr ULONGLONG kWorthMilliseconds = 5000;

}  // namespace

struct Neighbours::Search {
    explicit Search(Arrangement chosen) : arrangement(std::move(chosen)) {}

    void Run(const std::wstring& path) {
        std::vector<FoundFile> found;
        const ScanRequest request{.folder = FolderOf(path), .subFolders = false, .extensions = {}};
        ScanFolders(request, [&](ScanNews&& news) {
            std::ranges::move(news.files, std::back_inserter(found));
            return !stop;
        });
        if (stop) return;
        const auto same = std::ranges::find_if(
            found, [&](const FoundFile& file) { return EqualsIgnoreCase(file.path, path); });
        if (same == found.end()) {
            found.push_back(NamedFileOf(path));  // it is hidden, or has a short name
        } else {
            same->path = path;
            same->isNamed = true;
        }
        files = Arranged(std::move(found), arrangement);
        const auto place = std::ranges::find(files, path, &ListedFile::path);
        opened = static_cast<int>(place - files.begin());
    }

    std::atomic<bool> stop = false;
    const Arrangement arrangement;
    std::vector<ListedFile> files;  // these are there when the thread has ended
    int opened = -1;
};

Neighbours::Neighbours(Take take) : take_(std::move(take)), timer_([this] { Tick(); }) {}

void Neighbours::Begin(const std::wstring& path) {
    End();
    path_ = path;
    begin_ = GetTickCount64();
    timer_.Start(kTickMilliseconds);
    Tick();
}

void Neighbours::End() {
    timer_.Stop();
    path_.clear();
    if (search_ != nullptr) search_->stop = true;
    search_.reset();
    worker_.reset();
}

bool Neighbours::AreComing() const {
    return !path_.empty() && GetTickCount64() - begin_ < kWorthMilliseconds;
}

void Neighbours::Tick() {
    if (path_.empty()) return;
    if (!worker_) {
        if (SusieCollection().IsWaiting()) return;
        search_ = std::make_shared<Search>(ChosenArrangement());
        worker_.emplace([search = search_, path = path_] { search->Run(path); });
        return;
    }
    if (!worker_->HasEnded()) return;
    // Nothing was found for want of memory, or of the folder.
    if (search_->opened < 0 || take_(search_->files, search_->opened)) End();
}

}  // namespace tessary
