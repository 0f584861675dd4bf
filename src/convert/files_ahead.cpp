#include "convert/files_ahead.h"

#include <algorithm>
#include <thread>
#include <utility>

#include "app/base/distant_file.h"
#include "app/settings/modValue.h"
#include "convert/kept_metadata.h"
#include "convert/save_extension.h"
#include "picture/ahead/ahead_rules.h"
#include "picture/metadata/picture_metadata.h"
#include "picture/save/save_progress.h"
#include "plugin/modSusie.h"

namespace tessary {
namespace {

constexpr size_t kMostBytes = 256u << 20;

// A thread may live on a little longer than the run.
MakeFile MakerFor(ConvertOptions options) {
    return [options = std::move(options)](const ReadResult& read,
                                          const std::function<bool(int)>& tell) {
        const SaverFormat* const format = FormatToMake(read, options.convert, kMostBytes);
        if (format == nullptr) return std::shared_ptr<const EncodedPicture>();
        const SaveProgress progress(tell);
        return EncodePicture(WithMetadata(read.picture, *format, options.save), *format,
                             options.save, SaveProgress::PassThrough());
    };
}

AheadSource Source(const ConvertOptions& options) {
    return {.connect = Host().furtherConnector,
            .mayRead = [](const std::wstring& path) { return !IsNotOnThisDisk(path); },
            .opensArchives = false,
            .make = MakerFor(options),
            .takesOwnColors = TakesOwnColors(options.convert, options.save)};
}

}  // namespace

FilesAhead::FilesAhead(int threads, const ConvertOptions& options)
    : options_(options),
      threads_(threads, Source(options)),
      plugins_(std::make_shared<const KnownPlugins>(KnownOf(SusieCollection()))) {}

void FilesAhead::Plan(const std::wstring& atHand, const std::vector<std::wstring>& next) {
    if (next == planned_) return;
    planned_ = next;
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
    if (!ready->made) KeepMetadata(read, options_);
    std::shared_ptr<Encoding> encoding;
    if (ready->made) encoding = std::make_shared<Encoding>(std::move(ready->made));
    return SourceAtHand{std::move(file), std::move(read), std::move(encoding)};
}

int ThreadsFor(int32_t jobs) {
    const auto processors = static_cast<int32_t>(std::thread::hardware_concurrency());
    return std::clamp(jobs != 0 ? jobs : processors, 1, kMostJobs);
}

}  // namespace tessary
