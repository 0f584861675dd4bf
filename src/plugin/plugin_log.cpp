#include "plugin/plugin_log.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <optional>

#include "app/base/error.h"
#include "app/base/hash.h"
#include "app/base/modGetFolder.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/modValue.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"

namespace tessary {
namespace {

constexpr wchar_t kTotalKey[] = L"Total";
constexpr wchar_t kDateTime[] = L"SPI_DATETIME";

// With more plug-ins than this those that are gone are forgotten: a program that is unpacked
// anew for every run brings new ones each time.
constexpr size_t kMostKnown = 1000;

// Key: a plug-in; value: how many times in a row the program ended while it was being loaded.
constexpr wchar_t kFatalLoads[] = L"SPI_FATALLOADS";
constexpr int32_t kMostFatalLoads = 2;

// What the name of a section has room for, by the registry's limit of 255.
constexpr size_t kLongestPath = 220;

std::wstring ErrorLogOf(std::wstring_view plugin) {
    return PluginSection(plugin, kErrorLog);
}

void DeleteLogs(std::wstring_view plugin) {
    for (const wchar_t* log : {kErrorLog, kEndLog})
        DeleteSettingSection(PluginSection(plugin, log));
}

int32_t ReadCount(std::wstring_view section, std::wstring_view key) {
    const std::wstring text = GetSetting(section, key, L"0");
    return Trapped(0, [&] { return ToInt32(text); });
}

void Add(std::wstring_view section, std::wstring_view key, int32_t number) {
    const int32_t count = ReadCount(section, key);
    if (number <= 0 || count > std::numeric_limits<int32_t>::max() - number) return;
    SaveSetting(section, key, ToSettingText(count + number));
}

// Universal time, so that a change of the time zone makes no file look replaced.
std::optional<std::wstring> FileDateText(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    SYSTEMTIME time;
    if (!GetFileAttributesExW(ExtendedPath(path).c_str(), GetFileExInfoStandard, &data) ||
        !FileTimeToSystemTime(&data.ftLastWriteTime, &time)) {
        return std::nullopt;
    }
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%04d/%02d/%02d %02d:%02d:%02d", time.wYear, time.wMonth,
                  time.wDay, time.wHour, time.wMinute, time.wSecond);
    return text;
}

// Moves the history that is kept under another name.
void TakeOver(const std::wstring& name, const std::wstring& plugin) {
    for (const wchar_t* log : {kErrorLog, kEndLog}) {
        const std::wstring old = PluginSection(name, log);
        const std::vector<std::wstring> keys = SettingKeys(old);
        for (const std::wstring& key : keys)
            Add(PluginSection(plugin, log), key, ReadCount(old, key));
        if (!keys.empty()) DeleteSettingSection(old);
    }
    const int32_t fatalLoads = ReadCount(kFatalLoads, name);
    if (fatalLoads == 0) return;
    Add(kFatalLoads, plugin, fatalLoads);
    DeleteSetting(kFatalLoads, name);
}

// What a plug-in of the program's own folder was called when the program was in another; empty for
// all others, and when the program was copied: what is there still has its history.
std::wstring NameBeforeMove(const std::wstring& plugin) {
    const std::wstring& left = Values().general.leftProgramFolder;
    const std::wstring& folder = AppFolder();
    if (left.empty() ||
        !EqualsIgnoreCase(std::wstring_view(plugin).substr(0, folder.size()), folder)) {
        return {};
    }
    const std::wstring former = left + plugin.substr(folder.size());
    return PathExists(former) ? std::wstring() : former;
}

// Takes over what was noted under the name before the program was moved; true when it was noted of
// this very file.
bool TakeOverMoved(const std::wstring& plugin, const std::wstring& date) {
    const std::wstring former = NameBeforeMove(plugin);
    if (former.empty() || GetSetting(kDateTime, former) != date) return false;
    TakeOver(former, plugin);
    DeleteSetting(kDateTime, former);
    return true;
}

void ForgetGonePlugins() {
    const std::vector<std::wstring> plugins = SettingKeys(kDateTime);
    if (plugins.size() <= kMostKnown) return;
    for (const std::wstring& plugin : plugins) {
        const bool isBareName = FileNameOf(plugin) == plugin;
        if (isBareName || PathExists(plugin)) continue;
        DeleteLogs(plugin);
        DeleteSetting(kFatalLoads, plugin);
        DeleteSetting(kDateTime, plugin);
    }
}

}  // namespace

// A section's name holds no backslash. Of a path that is too long the folder is a number.
std::wstring PluginSection(std::wstring_view plugin, std::wstring_view log) {
    std::wstring name(plugin);
    if (name.size() > kLongestPath) {
        wchar_t number[24];
        std::swprintf(number, std::size(number), L"%016llx/", HashOf(ToUpper(plugin)));
        name = number + FileNameOf(plugin).substr(0, kLongestPath - std::size(number));
    }
    std::ranges::replace(name, L'\\', L'/');
    return name + std::wstring(log);
}

int32_t ReadErrorCount(std::wstring_view plugin, std::wstring_view function) {
    return ReadCount(ErrorLogOf(plugin), function.empty() ? kTotalKey : function);
}

void IncrementErrorCount(std::wstring_view plugin, std::wstring_view function) {
    const std::wstring section = ErrorLogOf(plugin);
    Add(section, function, 1);
    Add(section, kTotalKey, 1);
}

std::vector<FunctionErrors> ReadFunctionErrors(std::wstring_view plugin) {
    std::vector<FunctionErrors> errors;
    const std::wstring section = ErrorLogOf(plugin);
    for (std::wstring& function : SettingKeys(section)) {
        const int32_t count = ReadCount(section, function);
        if (function != kTotalKey && count > 0) errors.push_back({std::move(function), count});
    }
    std::ranges::sort(errors, {}, &FunctionErrors::function);
    return errors;
}

void ForgetFailures(std::wstring_view plugin) {
    DeleteLogs(plugin);
    NoteLoaded(plugin);
}

void NoteFatalLoad(std::wstring_view plugin) {
    Add(kFatalLoads, plugin, 1);
}

bool KeepsEndingTheProgram(std::wstring_view plugin) {
    return ReadCount(kFatalLoads, plugin) >= kMostFatalLoads;
}

void NoteLoaded(std::wstring_view plugin) {
    if (ReadCount(kFatalLoads, plugin) != 0) SaveSetting(kFatalLoads, plugin, L"0");
}

bool CheckFileDate(const std::wstring& pluginPath) {
    const std::optional<std::wstring> date = FileDateText(pluginPath);
    if (!date) return false;
    const std::wstring name = FileNameOf(pluginPath);
    const std::wstring oldDate = GetSetting(kDateTime, name);
    const bool isKnown = GetSetting(kDateTime, pluginPath) == *date;
    const bool wasKnown = oldDate == *date;
    if (!isKnown) ForgetFailures(pluginPath);
    // A copy of an earlier version that runs now and then may add to it later on.
    if (wasKnown || (isKnown && oldDate.empty())) TakeOver(name, pluginPath);
    if (wasKnown) DeleteSetting(kDateTime, name);
    const bool wasMoved = !isKnown && TakeOverMoved(pluginPath, *date);
    if (!isKnown) {
        SaveSetting(kDateTime, pluginPath, *date);
        ForgetGonePlugins();
    }
    return !isKnown && !wasKnown && !wasMoved;
}

}  // namespace tessary
