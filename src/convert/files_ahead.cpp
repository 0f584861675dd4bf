#include "convert/files_ahead.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "app/base/distant_file.h"
#include "app/settings/modValue.h"
#include "picture/ahead/ahead_rules.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

AheadSource Source() {
    return {.connect = Host().furtherConnector,
            .mayRead = [](const std::wstring& path) { return !IsNotOnThisDisk(path); },
            .opensArchives = false};
}

}  // namespace

FilesAhead::FilesAhead(int threads)
    : threads_(threads, Source()),
      plugins_(std::make_shared<const KnownPlugins>(KnownOf(SusieCollection()))) {}

void FilesAhead::Plan(const std::wstring& atHand, const std::vector<std::wstring>& next) {
    AheadPlan plan;
    plan.shown = {atHand};
    for (const std::wstring& path : next)
        plan.next.push_back({path});
    plan.plugins = plugins_;
    plan.budget = AheadBudget();
    threads_.SetPlan(std::move(plan));
}

std::optional<SourceAtHand> FilesAhead::Take(const std::wstring& path) {
    std::optional<AheadPicture> ready = threads_.Await({path});
    if (!ready) return std::nullopt;
    threads_.Board().Drop({path});
    ReadResult& read = ready->read;
    if (read.kind == kFilePicture && !SusieCollection().TakeOver(path, read.plugin)) {
        return std::nullopt;
    }
    SourceFile file{.path = path, .kind = read.kind, .plugin = read.plugin};
    return SourceAtHand{std::move(file), std::move(read)};
}

int ThreadsFor(int32_t jobs) {
    const auto processors = static_cast<int32_t>(std::thread::hardware_concurrency());
    return std::clamp(jobs != 0 ? jobs : processors, 1, kMostJobs);
}

}  // namespace tessary
