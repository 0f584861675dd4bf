#include "plugin/plugin_ends.h"

#include <algorithm>
#include <numeric>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

struct KindNames {
    const wchar_t* key;
    const wchar_t* words;
};
// By EndKind.
constexpr KindNames kKinds[kEndKindCount] = {
    {L"Caught", L"致命的エラー"}, {L"Crash", L"異常終了"}, {L"Exit", L"プロセス終了"},
    {L"Silence", L"応答なし"},    {L"Lie", L"不正な応答"}, {L"Memory", L"メモリー超過"}};

constexpr int32_t kMostCounted = 1'000'000;  // whoever has written more is not believed

constexpr wchar_t kFileKey[] = L"File";

}  // namespace

int32_t PluginEnds::Total() const {
    return std::accumulate(counts.begin(), counts.end(), 0);
}

void CountEnd(const PluginEnd& end) {
    const auto& [call, kind] = end;
    IncrementErrorCount(call.plugin, call.function);
    if (kind != EndKind::kCaught && call.WhileLoading()) NoteFatalLoad(call.plugin);
    const std::wstring section = PluginSection(call.plugin, kEndLog);
    const wchar_t* const key = kKinds[static_cast<size_t>(kind)].key;
    const int32_t count = Trapped(0, [&] { return ToInt32(GetSetting(section, key, L"0")); });
    SaveSetting(section, key, ToSettingText(std::clamp(count, 0, kMostCounted) + 1));
    SaveSetting(section, kFileKey, call.file);
}

PluginEnds ReadEnds(std::wstring_view plugin) {
    PluginEnds ends;
    const std::wstring section = PluginSection(plugin, kEndLog);
    if (SettingKeys(section).empty()) return ends;  // of most there is none
    for (size_t i = 0; i < kEndKindCount; ++i) {
        const std::wstring text = GetSetting(section, kKinds[i].key, L"0");
        const int32_t count = Trapped(0, [&] { return ToInt32(text); });
        ends.counts[i] = std::clamp(count, 0, kMostCounted);
    }
    ends.lastFile = GetSetting(section, kFileKey);
    return ends;
}

std::wstring TextOf(const PluginEnds& ends) {
    std::wstring text;
    for (size_t i = 0; i < kEndKindCount; ++i) {
        if (ends.counts[i] == 0) continue;
        if (!text.empty()) text += L"、";
        text += kKinds[i].words + (L' ' + std::to_wstring(ends.counts[i])) + L" 回";
    }
    if (text.empty() || ends.lastFile.empty()) return text;
    return text + L"（最後: " + FileNameOf(ends.lastFile) + L"）";
}

}  // namespace tessary
