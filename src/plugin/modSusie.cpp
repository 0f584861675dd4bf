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

}  // namespace

CollectionSusie& SusieCollection() {
    if (Instance() == nullptr) Instance() = std::make_unique<CollectionSusie>();
    return *Instance();
}

bool LoadSPI() {
    if (PluginCallUnderWay()) return false;
    return Trapped(false, [] {
        GeneralSettings& settings = Values().general;
        CollectionSusie& collection = SusieCollection();
        collection.RemoveAll();
        collection.SetDynamicLoad(settings.dynamicSPILoad == 1);
        collection.SetTryAll(settings.spiExt != 1);
        if (settings.useSPI == 1) {
            for (int i = 0; i < kPluginFolderCount; ++i) {
                if (settings.spiFolder[i].empty() || !settings.loadSPI[i]) continue;
                const std::wstring folder = AddBackslash(settings.spiFolder[i]);
                settings.loadSPI[i] = collection.FScanAllSPI(folder) >= 1;
            }
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
