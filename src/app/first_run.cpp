#include "app/first_run.h"

#include "app/base/error.h"
#include "app/base/modGetFolder.h"
#include "app/settings/modSusieCFG.h"
#include "app/settings/modValue.h"
#include "app/settings/plugin_folders.h"
#include "app/settings/settings.h"
#include "app/settings/settings_store.h"

namespace tessary {

void SetFirstRunDefaults() {
    GeneralSettings& general = Values().general;
    general.useSPI = 1;
    Values().fixSizeValue = kSizeModeWindow;
    general.spiFolder[0] = AppFolder();
    general.loadSPI[0] = true;
    const std::wstring susieFolder = GetSusiePluginFolder();
    if (!susieFolder.empty()) {
        general.spiFolder[1] = susieFolder;
        general.loadSPI[1] = true;
    }
    UseUserPluginFolder(general, UserPluginFolder());
}

bool UseFirstRunDefaults() {
    // A mark that cannot be read is no mark.
    if (Trapped(std::wstring(), [] { return GetSetting(L"Init", L"Run", L"0"); }) == L"1") {
        return false;
    }
    SetFirstRunDefaults();
    return true;
}

bool ApplyFirstRunDefaults() {
    // A store that cannot be read or written was already told by the readers; the program runs on
    // without the mark.
    return Trapped(true, [] {
        OfferUserPluginFolder();
        // Stored now, not only at shutdown: a first run that ends in a crash must not be followed
        // by a second one that knows no plug-ins and is no first run any more.
        if (UseFirstRunDefaults()) WriteGeneralSettings();
        SaveSetting(L"Init", L"Run", L"1");
        return true;
    });
}

}  // namespace tessary
