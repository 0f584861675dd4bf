#include "ui/options/plugin_loading.h"

#include <algorithm>

#include "app/settings/modValue.h"
#include "ui/form/message_loop.h"

namespace tessary {

LoadingProgress TellIn(frmProgress& window) {
    return [&window](const std::wstring& path, int32_t done, int32_t total) {
        window.Tell(path, done, total);
        return DoEvents() && !window.IsStopped() && !Values().quitRequested;
    };
}

std::wstring StoppedLoadingText() {
    const CollectionSusie& collection = SusieCollection();
    if (!collection.IsIncomplete()) return {};
    const auto& leftOut = collection.LeftOut();
    const auto waiting =
        std::ranges::count(leftOut, LeftOutReason::kWaiting, &LeftOutPlugin::reason);
    const auto total = static_cast<ptrdiff_t>(leftOut.size()) + collection.Count();
    return L"プラグインの読み込みを中止しました（" + std::to_wstring(total - waiting) + L" / " +
           std::to_wstring(total) + L"）";
}

}  // namespace tessary
