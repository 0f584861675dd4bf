#include "ui/options/plugin_loading.h"

#include <algorithm>

#include "plugin/plugin_notices.h"
#include "ui/form/activity.h"
#include "ui/form/message_loop.h"

namespace tessary {

LoadingProgress TellIn(frmProgress& window) {
    return [&window](const std::wstring& path, int32_t done, int32_t total) {
        window.Tell(path, done, total);
        return DoEvents() && !window.IsStopped() && !CurrentActivity().quitRequested;
    };
}

namespace {

std::wstring StoppedLoadingText() {
    const CollectionSusie& collection = SusieCollection();
    const auto& leftOut = collection.LeftOut();
    const auto waiting =
        std::ranges::count(leftOut, LeftOutReason::kWaiting, &LeftOutPlugin::reason);
    if (waiting == 0) return {};
    const auto total =
        std::ranges::count_if(
            leftOut, [](const LeftOutPlugin& one) { return !IsFolderReason(one.reason); }) +
        collection.Count();
    return L"プラグインの読み込みを中止しました（" + std::to_wstring(total - waiting) + L" / " +
           std::to_wstring(total) + L"）";
}

}  // namespace

std::wstring LoadingNotice() {
    std::vector<std::wstring> notices = LoadingNotices();
    if (std::wstring stopped = StoppedLoadingText(); !stopped.empty())
        notices.insert(notices.begin(), std::move(stopped));
    return InOneLine(notices);
}

std::wstring InOneLine(const std::vector<std::wstring>& notices) {
    std::wstring line;
    for (const std::wstring& notice : notices)
        line += line.empty() ? notice : L"　" + notice;
    return line;
}

}  // namespace tessary
