#include "plugin/modSusie.h"

#include <algorithm>
#include <memory>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "plugin/call_watch.h"
#include "plugin/host_state.h"

namespace tessary {
namespace {

std::unique_ptr<CollectionSusie>& Instance() {
    static std::unique_ptr<CollectionSusie> instance;
    return instance;
}

bool IsSearched(const GeneralSettings& settings, int folder) {
    return settings.useSPI == 1 && !settings.spiFolder[folder].empty() &&
           (settings.loadSPI[folder] || settings.emptySPI[folder]);
}

// Asks whoever has the loading done, about one plug-in file after the other, and while one is being
// called: it may hang.
class Telling {
  public:
    Telling(const LoadingProgress& progress, const GeneralSettings& settings)
        : progress_(progress) {
        for (int i = 0; i < kPluginFolderCount; ++i) {
            if (!IsSearched(settings, i)) continue;
            total_ +=
                static_cast<int32_t>(CollectionSusie::PluginFiles(settings.spiFolder[i]).size());
        }
    }

    bool GoesOnTo(const std::wstring& path) {
        path_ = path;
        ++count_;
        return GoesOn();
    }
    bool GoesOn() {
        isStopped_ = isStopped_ || !progress_(path_, count_ - 1, total_);
        return !isStopped_;
    }

  private:
    const LoadingProgress& progress_;
    std::wstring path_;
    int32_t count_ = 0;
    int32_t total_ = 0;
    bool isStopped_ = false;
};

// Whether a plug-in of that folder was left out for now only.
bool MayYieldLater(const std::wstring& folder) {
    const auto& leftOut = SusieCollection().LeftOut();
    return std::ranges::any_of(leftOut, [&](const LeftOutPlugin& one) {
        const bool isForNow = one.reason == LeftOutReason::kWaiting ||
                              one.reason == LeftOutReason::kSkipped || IsBarredReason(one.reason) ||
                              one.reason == LeftOutReason::kBlocked ||
                              one.reason == LeftOutReason::kNoHost;
        return isForNow && EqualsIgnoreCase(FolderOf(one.path), FullPathOf(folder));
    });
}

// Switches a folder off in which nothing is, for it costs time at every start. One that is away
// for the moment keeps its switch.
void JudgeFolder(const std::wstring& folder, bool& isOn, bool& isEmpty) {
    CollectionSusie& collection = SusieCollection();
    if (!IsFolder(folder)) {
        if (isOn) collection.NoteFolder(folder, LeftOutReason::kNoFolder);
        return;
    }
    isOn = collection.Count() >= 1 || MayYieldLater(folder);
    isEmpty = !isOn;
    if (isEmpty) collection.NoteFolder(folder, LeftOutReason::kEmptyFolder);
}

void ScanFolders(Asking asking, const CollectionSusie::ScanStep& step = {}) {
    GeneralSettings& settings = Values().general;
    CollectionSusie& collection = SusieCollection();
    collection.BeginLoading(asking);
    std::vector<std::wstring> folders;
    for (int i = 0; i < kPluginFolderCount; ++i) {
        if (!IsSearched(settings, i)) continue;
        const std::wstring folder = AddBackslash(settings.spiFolder[i]);
        collection.FScanAllSPI(folder, step);
        if (PluginsAreStopped()) break;
        JudgeFolder(folder, settings.loadSPI[i], settings.emptySPI[i]);
        if (IsFolder(folder)) folders.push_back(FullPathOf(folder));
    }
    collection.Compact();
    if (!PluginsAreStopped()) collection.EndLoading(folders);
}

void ScanTelling(Asking asking, const LoadingProgress& progress) {
    if (!progress) return ScanFolders(asking);
    Telling telling(progress, Values().general);
    const CallWatch watch(
        [&](const WaitedCall&) { return telling.GoesOn() ? CallWish::kGoesOn : CallWish::kStops; });
    ScanFolders(asking, [&](const std::wstring& path) { return telling.GoesOnTo(path); });
}

}  // namespace

CollectionSusie& SusieCollection() {
    if (CollectionSusie* const own = Caller().plugins) return *own;
    if (Instance() == nullptr) Instance() = std::make_unique<CollectionSusie>();
    return *Instance();
}

bool LoadSPI(const LoadingProgress& progress, Asking asking) {
    if (PluginCallUnderWay() || PluginsAreStopped()) return false;
    return Trapped(false, [&] {
        const GeneralSettings& settings = Values().general;
        CollectionSusie& collection = SusieCollection();
        collection.RemoveAll();
        collection.SetDynamicLoad(settings.dynamicSPILoad == 1);
        collection.SetTryAll(settings.spiExt != 1);
        ScanTelling(asking, progress);
        return true;
    });
}

bool LoadWaitingSPI(const LoadingProgress& progress) {
    if (PluginCallUnderWay() || PluginsAreStopped()) return false;
    return Trapped(false, [&] {
        SusieCollection().StartOver();  // so that the order is the same as in one go
        ScanTelling(Asking::kUnknown, progress);
        return true;
    });
}

void UnloadSPI() {
    if (PluginCallUnderWay()) return;
    try {
        Instance().reset();
        // The program has lived on with what was damaged.
        if (PluginsAreStopped()) ClearCallLog();
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"UnloadSPI()");
    }
}

}  // namespace tessary
