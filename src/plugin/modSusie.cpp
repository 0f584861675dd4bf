#include "plugin/modSusie.h"

#include <memory>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/modValue.h"

namespace tessary {
namespace {

std::unique_ptr<CollectionSusie>& Instance() {
    static std::unique_ptr<CollectionSusie> instance;
    return instance;
}

bool IsSearched(const GeneralSettings& settings, int folder) {
    return settings.useSPI == 1 && !settings.spiFolder[folder].empty() && settings.loadSPI[folder];
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

}  // namespace

CollectionSusie& SusieCollection() {
    if (Instance() == nullptr) Instance() = std::make_unique<CollectionSusie>();
    return *Instance();
}

bool LoadSPI(const LoadingProgress& progress) {
    if (PluginCallUnderWay()) return false;
    return Trapped(false, [&] {
        GeneralSettings& settings = Values().general;
        CollectionSusie& collection = SusieCollection();
        collection.RemoveAll();
        collection.SetDynamicLoad(settings.dynamicSPILoad == 1);
        collection.SetTryAll(settings.spiExt != 1);
        const CollectionSusie::ScanStep step = StepOf(progress, settings);
        for (int i = 0; i < kPluginFolderCount; ++i) {
            if (!IsSearched(settings, i)) continue;
            const std::wstring folder = AddBackslash(settings.spiFolder[i]);
            const int32_t count = collection.FScanAllSPI(folder, step);
            settings.loadSPI[i] = count >= 1 || collection.IsIncomplete();
        }
        collection.Compact();
        return true;
    });
}

void UnloadSPI() {
    if (PluginCallUnderWay()) return;
    try {
        Instance().reset();
    } catch (...) {
        const RaisedError error = CurrentError();
        ReportUnexpectedError(error.Number(), error.Description(), L"UnloadSPI()");
    }
}

}  // namespace tessary
