#include "plugin/plugin_log.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <memory>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/setting_value.h"
#include "app/settings/settings_store.h"
#include "plugin/living_runs.h"

namespace tessary {
namespace {

constexpr wchar_t kCallLog[] = L"SPI_CALLLOG";
constexpr wchar_t kFunctionKey[] = L"Function";
constexpr wchar_t kPluginKey[] = L"SPI";
constexpr wchar_t kFileKey[] = L"File";

constexpr wchar_t kTotalKey[] = L"Total";
constexpr wchar_t kDateTime[] = L"SPI_DATETIME";

// Key: a plug-in; value: how many runs in a row ended while it was being loaded.
constexpr wchar_t kFatalLoads[] = L"SPI_FATALLOADS";
constexpr int32_t kMostFatalLoads = 2;

std::wstring ErrorLogOf(std::wstring_view plugin) {
    return std::wstring(plugin) + L"_SPI_ERRORLOG";
}

int32_t ReadCount(std::wstring_view section, std::wstring_view key) {
    const std::wstring text = GetSetting(section, key, L"0");
    return Trapped(0, [&] { return ToInt32(text); });
}

void Increment(std::wstring_view section, std::wstring_view key) {
    const int32_t count = ReadCount(section, key);
    if (count == std::numeric_limits<int32_t>::max()) return;
    SaveSetting(section, key, ToSettingText(count + 1));
}

// The call log of one of the copies that run.
std::wstring CallLogOf(int run) {
    return run == 1 ? kCallLog : kCallLog + (L'_' + std::to_wstring(run));
}

std::array<KeyAndText, 3> TextsOf(const PluginCall& call) {
    return {{{kFunctionKey, call.function}, {kPluginKey, call.plugin}, {kFileKey, call.file}}};
}

// The own call log. It never ends: plug-ins are still freed, and logged, while static objects are
// destroyed.
PassingSection& CallLog() {
    static PassingSection* const log = std::make_unique<PassingSection>().release();
    return *log;
}

std::optional<PluginCall> RecoverCallOf(int run) {
    const std::wstring log = CallLogOf(run);
    PluginCall call;
    call.plugin = GetSetting(log, kPluginKey);
    if (call.plugin.empty()) return std::nullopt;
    call.function = GetSetting(log, kFunctionKey);
    call.file = GetSetting(log, kFileKey);
    // Emptied before it is counted: if this run ends here as well, it is not counted twice.
    SaveSettings(log, TextsOf({}));
    IncrementErrorCount(call.plugin, call.function);
    if (call.function == L"LoadLibrary") Increment(kFatalLoads, call.plugin);
    DeleteSettingSection(log);
    return call;
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

}  // namespace

void WriteCallLog(const PluginCall& call) {
    CallLog().Save(CallLogOf(OwnRun()), TextsOf(call));
}

void ClearCallLog() {
    CallLog().Remove();
}

std::optional<PluginCall> RecoverInterruptedCall() {
    const RunsHeld runs;
    std::optional<PluginCall> recovered;
    for (int run = 1; run <= kMostRuns; ++run) {
        if (runs.IsAnothers(run)) continue;
        // One that cannot be read holds up nothing.
        Trapped([&] {
            if (auto call = RecoverCallOf(run)) recovered = std::move(call);
        });
    }
    return recovered;
}

int32_t ReadErrorCount(std::wstring_view plugin, std::wstring_view function) {
    return ReadCount(ErrorLogOf(plugin), function.empty() ? kTotalKey : function);
}

void IncrementErrorCount(std::wstring_view plugin, std::wstring_view function) {
    const std::wstring section = ErrorLogOf(plugin);
    Increment(section, function);
    Increment(section, kTotalKey);
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
    DeleteSettingSection(ErrorLogOf(plugin));
    NoteLoaded(plugin);
}

bool KeepsEndingTheProgram(std::wstring_view plugin) {
    return ReadCount(kFatalLoads, plugin) >= kMostFatalLoads;
}

void GrantAnotherLoad(std::wstring_view plugin) {
    SaveSetting(kFatalLoads, plugin, ToSettingText(kMostFatalLoads - 1));
}

void NoteLoaded(std::wstring_view plugin) {
    if (ReadCount(kFatalLoads, plugin) != 0) SaveSetting(kFatalLoads, plugin, L"0");
}

bool CheckFileDate(const std::wstring& pluginPath) {
    const std::optional<std::wstring> date = FileDateText(pluginPath);
    if (!date) return false;
    const std::wstring plugin = FileNameOf(pluginPath);
    if (GetSetting(kDateTime, plugin) == *date) return false;
    ForgetFailures(plugin);
    SaveSetting(kDateTime, plugin, *date);
    return true;
}

}  // namespace tessary
