#include "plugin/plugin_memory.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/settings_store.h"

namespace tessary {
namespace {

constexpr wchar_t kSection[] = L"SPI_KNOWN";

// With more than this the files that were not met go: a program that is unpacked anew for every
// run brings new ones each time.
constexpr size_t kMostRemembered = 1000;

// Of the fields in an entry: `build|size|changed|what|settings|patterns|product name`. The last one
// may hold anything.
constexpr int kFieldCount = 7;
constexpr size_t kLongestText = 32768;

// To be counted up when the fields or their meanings change.
constexpr int kFormat = 1;

constexpr std::pair<const wchar_t*, int32_t> kStyles[] = {{L"picture", kStylePicture},
                                                          {L"archive", kStyleArchive}};

// What lies in the file itself. A missing library, a virus scanner or a crash may be mended.
constexpr std::pair<const wchar_t*, LeftOutReason> kLastingRefusals[] = {
    {L"no DLL", LeftOutReason::kNoDll},
    {L"other machine", LeftOutReason::kOtherMachine},
    {L"no plug-in", LeftOutReason::kNoPlugin}};

// Who has understood it so: other versions may read a plug-in's patterns differently, and in
// another code page its texts are others.
std::wstring Build() {
    return std::to_wstring(kFormat) + L' ' + TESSARY_VERSION + L' ' +
           std::to_wstring(sizeof(void*) * 8) + L' ' + std::to_wstring(GetACP());
}

template <typename Names, typename Value>
std::wstring NameOf(const Names& names, Value value) {
    const auto found = std::ranges::find(names, value, [](const auto& one) { return one.second; });
    return found == std::end(names) ? std::wstring() : found->first;
}

std::wstring TextOf(const RememberedPlugin& plugin) {
    const PluginTraits& traits = plugin.traits;
    std::wstring text = Build() + L'|' + std::to_wstring(plugin.stamp.size) + L'|' +
                        std::to_wstring(plugin.stamp.changed) + L'|' +
                        (plugin.refusal ? NameOf(kLastingRefusals, *plugin.refusal)
                                        : NameOf(kStyles, traits.style)) +
                        L'|' + (traits.hasSettings ? L"settings|" : L"|");
    for (const std::wstring& pattern : traits.patterns)
        text += pattern + L';';
    return text + L'|' + traits.productName;
}

std::vector<std::wstring> FieldsOf(std::wstring_view text) {
    std::vector<std::wstring> fields;
    while (fields.size() + 1 < kFieldCount && text.find(L'|') != text.npos) {
        fields.emplace_back(text.substr(0, text.find(L'|')));
        text.remove_prefix(fields.back().size() + 1);
    }
    fields.emplace_back(text);
    return fields;
}

uint64_t NumberOf(const std::wstring& text) {
    return std::wcstoull(text.c_str(), nullptr, 10);
}

// Nothing when the text is not just as TextOf makes it.
std::optional<RememberedPlugin> Remembered(const std::wstring& text) {
    const std::vector<std::wstring> fields = FieldsOf(text);
    if (fields.size() != kFieldCount) return std::nullopt;
    RememberedPlugin plugin{.stamp = {NumberOf(fields[1]), NumberOf(fields[2])}};
    for (const auto& [name, refusal] : kLastingRefusals) {
        if (fields[3] == name) plugin.refusal = refusal;
    }
    PluginTraits& traits = plugin.traits;
    for (const auto& [name, style] : kStyles) {
        if (fields[3] == name) traits.style = style;
    }
    traits.hasSettings = !fields[4].empty();
    AppendPatterns(fields[5], traits.patterns);
    traits.productName = fields[6];
    const bool isPlugin = traits.style != kStyleNone && !traits.patterns.empty();
    const bool isMeant = isPlugin || (plugin.refusal && traits == PluginTraits());
    return isMeant && TextOf(plugin) == text ? std::optional(std::move(plugin)) : std::nullopt;
}

}  // namespace

PluginMemory::PluginMemory() {
    Trapped([&] {
        for (auto& [path, text] : SettingTexts(kSection)) {
            entries_.insert_or_assign(ToUpper(path), Entry{path, Remembered(text)});
        }
    });
}

const RememberedPlugin* PluginMemory::Find(const std::wstring& path, const FileStamp& stamp) {
    const auto found = entries_.find(*met_.insert(ToUpper(path)).first);
    if (found == entries_.end()) return nullptr;
    const std::optional<RememberedPlugin>& plugin = found->second.plugin;
    return plugin && plugin->stamp == stamp ? &*plugin : nullptr;
}

void PluginMemory::Keep(const std::wstring& path, RememberedPlugin plugin) {
    const std::wstring text = TextOf(plugin);
    if (text.size() > kLongestText || Remembered(text) != plugin) return Forget(path);
    Entry& entry = entries_[*met_.insert(ToUpper(path)).first];
    if (entry.plugin == plugin) return;
    entry = {path, std::move(plugin)};
    Trapped([&] { SaveSetting(kSection, path, text); });
}

void PluginMemory::Forget(const std::wstring& path) {
    if (entries_.erase(*met_.insert(ToUpper(path)).first) == 0) return;
    Trapped([&] { DeleteSetting(kSection, path); });
}

void PluginMemory::Update(const std::wstring& path, const PluginTraits& traits) {
    const auto found = entries_.find(ToUpper(path));
    if (found == entries_.end() || !found->second.plugin) return;
    Keep(path, {found->second.plugin->stamp, {}, traits});
}

void PluginMemory::ForgetGone(std::span<const std::wstring> folders) {
    const bool areTooMany = entries_.size() > kMostRemembered;
    std::vector<std::wstring> gone;
    for (const auto& [key, entry] : entries_) {
        const auto isIn = [&](const std::wstring& folder) {
            return EqualsIgnoreCase(FolderOf(entry.path), folder);
        };
        if (!met_.contains(key) && (areTooMany || std::ranges::any_of(folders, isIn)))
            gone.push_back(entry.path);
    }
    for (const std::wstring& path : gone)
        Forget(path);
}

}  // namespace tessary
