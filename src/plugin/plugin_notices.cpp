#include "plugin/plugin_notices.h"

#include <algorithm>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "plugin/modSusie.h"
#include "plugin/no_host.h"
#include "plugin/plugin_ends.h"

namespace tessary {
namespace {

bool IsOf(const PluginCall& call, const LeftOutPlugin& one) {
    return one.path == call.plugin || FileNameOf(one.path) == call.plugin;
}

bool IsLeftOut(const PluginCall& call, LeftOutReason reason) {
    return std::ranges::any_of(SusieCollection().LeftOut(), [&](const LeftOutPlugin& one) {
        return one.reason == reason && IsOf(call, one);
    });
}

std::wstring EndsOf(const std::wstring& plugin) {
    return Trapped(std::wstring(), [&] { return TextOf(ReadEnds(plugin)); });
}

// Their names in one line.
std::wstring BlockedPlugins() {
    std::wstring names;
    const CollectionSusie& collection = SusieCollection();
    for (const LeftOutPlugin& one : collection.LeftOut()) {
        if (one.reason != LeftOutReason::kBlocked) continue;
        if (!names.empty()) names += L"、";
        names += collection.NameOf(one.path);
    }
    return names;
}

}  // namespace

std::vector<std::wstring> InterruptedCallNotices() {
    std::vector<std::wstring> notices;
    const CollectionSusie& collection = SusieCollection();
    for (const PluginCall& call : collection.InterruptedCalls()) {
        notices.push_back(L"前回は " + collection.NameOf(call.plugin) + L" の処理中（" +
                          call.function +
                          (call.hasDamaged ? L"）にメモリーが壊れました" : L"）に終了しました"));
        if (IsLeftOut(call, LeftOutReason::kSkipped)) {
            notices.back() += L"。今回は読み込みません";
        } else if (IsLeftOut(call, LeftOutReason::kBarred)) {
            notices.back() += L"。今後は読み込みません";
        }
    }
    return notices;
}

std::vector<std::wstring> BarredNotices() {
    std::vector<std::wstring> notices;
    const CollectionSusie& collection = SusieCollection();
    for (const LeftOutPlugin& one : collection.LeftOut()) {
        const bool isTold = std::ranges::any_of(
            collection.InterruptedCalls(), [&](const PluginCall& call) { return IsOf(call, one); });
        if (!IsBarredReason(one.reason) || isTold) continue;
        const std::wstring name = L"プラグイン " + collection.NameOf(one.path);
        notices.push_back(one.reason == LeftOutReason::kGivenUp
                              ? name + L" は使用を止めています（" + EndsOf(one.path) + L"）"
                              : name +
                                    L" は、読み込みの途中で続けて異常終了したため、読み込みません");
    }
    return notices;
}

std::vector<std::wstring> LoadingNotices() {
    std::vector<std::wstring> notices;
    const CollectionSusie& collection = SusieCollection();
    for (const LeftOutPlugin& one : collection.LeftOut()) {
        if (one.reason == LeftOutReason::kNoFolder) {
            notices.push_back(L"プラグインフォルダ " + one.path + L" が見つかりません");
        } else if (one.reason == LeftOutReason::kEmptyFolder && collection.Count() == 0) {
            notices.push_back(L"プラグインフォルダ " + one.path +
                              L" に使用できるプラグインがありません");
        } else if (one.reason == LeftOutReason::kCrashed) {
            notices.push_back(L"プラグイン " + collection.NameOf(one.path) +
                              L" は、読み込み中に異常終了しました");
        }
    }
    if (const std::wstring blocked = BlockedPlugins(); !blocked.empty()) {
        notices.push_back(L"プラグイン " + blocked +
                          L" は、Windowsかウイルス対策ソフトにブロックされています");
    }
    const auto& leftOut = collection.LeftOut();
    const auto hostless =
        std::ranges::find(leftOut, LeftOutReason::kNoHost, &LeftOutPlugin::reason);
    if (hostless != leftOut.end()) {
        notices.push_back(NoHostText(hostless->loadError) + L"。プラグインは使用できません");
    }
    if (PluginsAreStopped()) notices.push_back(PluginsStoppedText());
    if (CallsGoUnlogged()) {
        notices.push_back(L"レジストリに書き込めないため、プラグインの呼び出しを記録できません");
    }
    return notices;
}

}  // namespace tessary
