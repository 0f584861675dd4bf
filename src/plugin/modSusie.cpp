#include "plugin/modSusie.h"

#include <algorithm>
#include <memory>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"

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

// Asks the user, through `progress`, about one plug-in file after the other.
CollectionSusie::ScanStep StepOf(const LoadingProgress& progress, const GeneralSettings& settings) {
    if (!progress) return {};
    int32_t total = 0;
    for (int i = 0; i < kPluginFolderCount; ++i) {
        if (!IsSearched(settings, i)) continue;
        total += static_cast<int32_t>(CollectionSusie::PluginFiles(settings.spiFolder[i]).size());
    }
    return [&progress, total, done = 0, stopped = false](const std::wstring& path) mutable {
        stopped = stopped || !progress(path, done++, total);
        return !stopped;
    };
}

// Whether a plug-in of that folder was left out for now only.
bool MayYieldLater(const std::wstring& folder) {
    const auto& leftOut = SusieCollection().LeftOut();
    return std::ranges::any_of(leftOut, [&](const LeftOutPlugin& one) {
        const bool isForNow =
            one.reason == LeftOutReason::kWaiting || one.reason == LeftOutReason::kSkipped ||
            one.reason == LeftOutReason::kBarred || one.reason == LeftOutReason::kBlocked;
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

void ScanFolders(const LoadingProgress& progress, Asking asking) {
    GeneralSettings& settings = Values().general;
    CollectionSusie& collection = SusieCollection();
    collection.BeginLoading(asking);
    const CollectionSusie::ScanStep step = StepOf(progress, settings);
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

}  // namespace

CollectionSusie& SusieCollection() {
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
        ScanFolders(progress, asking);
        return true;
    });
}

bool LoadWaitingSPI(const LoadingProgress& progress) {
    if (PluginCallUnderWay() || PluginsAreStopped()) return false;
    return Trapped(false, [&] {
        ScanFolders(progress, Asking::kUnknown);
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
