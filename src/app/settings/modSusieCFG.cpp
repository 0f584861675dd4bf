#include "app/settings/modSusieCFG.h"

#include "app/base/paths.h"
#include "app/settings/RegKeys.h"

namespace tessary {

std::wstring GetSusiePluginFolder() {
    return AddBackslash(
        GetRegistryString(HKEY_CURRENT_USER, LR"(software\hoshiren\susie\plug-in)", L"path"));
}

}  // namespace tessary
