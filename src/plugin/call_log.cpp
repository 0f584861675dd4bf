#include "plugin/call_log.h"

#include <array>
#include <memory>
#include <mutex>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/settings/settings_store.h"
#include "plugin/living_runs.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

constexpr wchar_t kCallLog[] = L"SPI_CALLLOG";
constexpr wchar_t kInfoLog[] = L"SPI_INFOLOG";
constexpr wchar_t kDamageLog[] = L"SPI_DAMAGELOG";
constexpr wchar_t kFunctionKey[] = L"Function";
constexpr wchar_t kPluginKey[] = L"SPI";
constexpr wchar_t kPathKey[] = L"Path";
constexpr wchar_t kFileKey[] = L"File";

constexpr wchar_t kLoadLibrary[] = L"LoadLibrary";
constexpr wchar_t kGetPluginInfo[] = L"GetPluginInfo";

// The log of one of the copies that run.
std::wstring LogOf(const wchar_t* log, int run) {
    return run == 1 ? log : log + (L'_' + std::to_wstring(run));
}

// What this process knows about its own logs. It never ends: plug-ins are still freed, and logged,
// while static objects are destroyed.
struct OwnLogs {
    PassingSection call;
    PassingSection info;
    bool isUnlogged = false;
    std::mutex mutex;           // of what follows, and of writing the logs
    bool isExcused = false;     // nothing is written any more
    std::wstring calledPlugin;  // empty: none
};

OwnLogs& Own() {
    static OwnLogs* const own = std::make_unique<OwnLogs>().release();
    return *own;
}

// Has `save` save what a section says of a call.
template <typename Save>
void SaveCall(const PluginCall& call, Save&& save) {
    const std::wstring name = FileNameOf(call.plugin);
    const std::array<KeyAndText, 4> texts{{{kFunctionKey, call.function},
                                           {kPluginKey, name},
                                           {kPathKey, call.plugin},
                                           {kFileKey, call.file}}};
    save(texts);
}

void Write(PassingSection& section, const wchar_t* log, const PluginCall& call) {
    OwnLogs& own = Own();
    const std::lock_guard lock(own.mutex);
    own.calledPlugin = call.plugin;
    if (own.isExcused) return;
    try {
        SaveCall(call, [&](const auto& texts) { section.Save(LogOf(log, OwnRun()), texts); });
        own.isUnlogged = false;
    } catch (...) {
        own.isUnlogged = true;
    }
}

void ForgetCalledPlugin() {
    OwnLogs& own = Own();
    const std::lock_guard lock(own.mutex);
    own.calledPlugin.clear();
}

void Clear(PassingSection& section) {
    ForgetCalledPlugin();
    Trapped([&] { section.Remove(); });
}

void Recover(const wchar_t* kind, int run, std::vector<PluginCall>& calls) {
    const std::wstring log = LogOf(kind, run);
    PluginCall call;
    call.hasDamaged = kind == kDamageLog;
    const std::wstring name = GetSetting(log, kPluginKey);
    if (name.empty()) return;
    call.plugin = GetSetting(log, kPathKey);
    if (FileNameOf(call.plugin) != name) call.plugin = name;
    call.function = GetSetting(log, kFunctionKey);
    call.file = GetSetting(log, kFileKey);
    // Emptied before it is counted: if this run ends here as well, it is not counted twice.
    const std::array<KeyAndText, 3> empty{{{kFunctionKey, {}}, {kPluginKey, {}}, {kFileKey, {}}}};
    SaveSettings(log, empty);
    if (!call.hasDamaged) IncrementErrorCount(call.plugin, call.function);  // else it was, at once
    if (call.WhileLoading()) NoteFatalLoad(call.plugin);
    DeleteSettingSection(log);
    calls.push_back(std::move(call));
}

}  // namespace

bool PluginCall::WhileLoading() const {
    return function == kLoadLibrary || function == kGetPluginInfo;
}

void WriteCallLog(const PluginCall& call) {
    Write(Own().call, kCallLog, call);
}

void ClearCallLog() {
    Clear(Own().call);
}

void KeepCallLog() {
    ForgetCalledPlugin();
}

InfoCalls::InfoCalls(const std::wstring& plugin) {
    Write(Own().info, kInfoLog, {kGetPluginInfo, plugin, {}});
}

InfoCalls::~InfoCalls() {
    Clear(Own().info);
}

void NoteDamagingCall(const PluginCall& call) {
    if (!call.WhileLoading()) return;
    SaveCall(call, [](const auto& texts) { SaveSettings(LogOf(kDamageLog, OwnRun()), texts); });
}

std::wstring PluginUnderCall() {
    OwnLogs& own = Own();
    const std::lock_guard lock(own.mutex);
    return own.calledPlugin;
}

bool CallsGoUnlogged() {
    return Own().isUnlogged;
}

// Not through the sections of Own(): the user-interface thread may be removing them. It writes none
// behind our back.
void ExcuseLastCall() {
    OwnLogs& own = Own();
    const std::lock_guard lock(own.mutex);
    own.isExcused = true;
    for (const wchar_t* log : {kCallLog, kInfoLog})
        Trapped([&] { DeleteSettingSection(LogOf(log, OwnRun())); });
}

std::vector<PluginCall> RecoverInterruptedCalls() {
    const RunsHeld runs;
    std::vector<PluginCall> calls;
    for (int run = 1; run <= kMostRuns; ++run) {
        if (runs.IsAnothers(run)) continue;
        // One that cannot be read holds up nothing.
        for (const wchar_t* log : {kInfoLog, kCallLog, kDamageLog})
            Trapped([&] { Recover(log, run, calls); });
    }
    return calls;
}

}  // namespace tessary
