#include "plugin/call_log.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>
#include <span>

#include "app/base/error.h"
#include "app/base/paths.h"
#include "app/base/text.h"
#include "app/settings/settings_store.h"
#include "plugin/call_notes.h"
#include "plugin/host_state.h"
#include "plugin/plugin_ends.h"
#include "plugin/plugin_log.h"

namespace tessary {
namespace {

constexpr wchar_t kCallLog[] = L"SPI_CALLLOG";
constexpr wchar_t kInfoLog[] = L"SPI_INFOLOG";
constexpr wchar_t kDamageLog[] = L"SPI_DAMAGELOG";
constexpr wchar_t kThreadLog[] = L"SPI_THREADLOG";
constexpr wchar_t kFunctionKey[] = L"Function";
constexpr wchar_t kPluginKey[] = L"SPI";
constexpr wchar_t kPathKey[] = L"Path";
constexpr wchar_t kFileKey[] = L"File";

constexpr wchar_t kLoadLibrary[] = L"LoadLibrary";
constexpr wchar_t kGetPluginInfo[] = L"GetPluginInfo";
constexpr wchar_t kFreeLibrary[] = L"FreeLibrary";
constexpr wchar_t kThread[] = L"Thread";  // none of the functions

// The log of one of the copies that run.
std::wstring LogOf(const wchar_t* log, int run) {
    return run == 1 ? log : log + (L'_' + std::to_wstring(run));
}

HostState::Logs& Own() {
    return Host().logs;
}

int OwnNumber() {
    return Host().run.Number();
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
    HostState::Logs& own = Own();
    if (own.elsewhere != nullptr) return own.elsewhere->OnCall(call);
    const std::lock_guard lock(own.mutex);
    own.calledPlugin = call.plugin;
    if (own.isExcused) return;
    try {
        SaveCall(call, [&](const auto& texts) { section.Save(LogOf(log, OwnNumber()), texts); });
        own.isUnlogged = false;
    } catch (...) {
        own.isUnlogged = true;
    }
}

// Call only with the lock.
void Excuse(HostState::Logs& own) {
    own.isExcused = true;
    for (const wchar_t* log : {kCallLog, kInfoLog})
        Trapped([&] { DeleteSettingSection(LogOf(log, OwnNumber())); });
}

void ForgetCalledPlugin() {
    HostState::Logs& own = Own();
    const std::lock_guard lock(own.mutex);
    own.calledPlugin.clear();
}

void Clear(PassingSection& section) {
    if (Own().elsewhere != nullptr) return Own().elsewhere->OnReturn();
    ForgetCalledPlugin();
    Trapped([&] { section.Remove(); });
}

std::optional<PluginCall> Noted(const wchar_t* kind, int run) {
    const std::wstring log = LogOf(kind, run);
    PluginCall call;
    call.hasDamaged = kind == kDamageLog;
    const std::wstring name = GetSetting(log, kPluginKey);
    if (name.empty()) return std::nullopt;
    call.plugin = GetSetting(log, kPathKey);
    if (FileNameOf(call.plugin) != name) call.plugin = name;
    call.function = GetSetting(log, kFunctionKey);
    call.file = GetSetting(log, kFileKey);
    return call;
}

// Whether `calls` have one of the same plug-in that counts for the same.
bool IsCounted(const PluginCall& call, const std::vector<PluginCall>& calls) {
    return std::ranges::any_of(calls, [&](const PluginCall& other) {
        const bool isLikewise =
            call.function == other.function || (call.WhileLoading() && other.WhileLoading());
        return isLikewise && EqualsIgnoreCase(call.plugin, other.plugin);
    });
}

void Count(const wchar_t* kind, int run, std::vector<PluginCall>& calls) {
    std::optional<PluginCall> call = Noted(kind, run);
    if (!call) return;
    const std::wstring log = LogOf(kind, run);
    // Emptied before it is counted: if this run ends here as well, it is not counted twice.
    const std::array<KeyAndText, 3> empty{{{kFunctionKey, {}}, {kPluginKey, {}}, {kFileKey, {}}}};
    SaveSettings(log, empty);
    const bool isCounted = IsCounted(*call, calls);
    // What has damaged memory was counted at once.
    if (!isCounted && !call->hasDamaged) IncrementErrorCount(call->plugin, call->function);
    if (!isCounted && call->WhileLoading()) NoteFatalLoad(call->plugin);
    DeleteSettingSection(log);
    if (!isCounted) calls.push_back(*std::move(call));
}

// `take` of the logs that no living copy keeps. One that cannot be read holds up nothing.
template <typename Take>
void ForEachAbandonedLog(Take&& take) {
    const RunsHeld runs;
    for (int run = 1; run <= kMostRuns; ++run) {
        if (runs.IsAnothers(run, Host().run.Name())) continue;
        for (const wchar_t* log : {kInfoLog, kCallLog, kDamageLog, kThreadLog})
            Trapped([&] { take(log, run); });
    }
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
    if (!call.WhileLoading() || Own().elsewhere != nullptr) return;
    SaveCall(call, [](const auto& texts) { SaveSettings(LogOf(kDamageLog, OwnNumber()), texts); });
}

void CountFailure(const PluginCall& call) {
    if (Own().elsewhere != nullptr) return Own().elsewhere->OnFailure(call);
    CountEnd({call, EndKind::kCaught});
}

void NoteCallsIn(CallNotes& notes) {
    Own().elsewhere = &notes;
}

std::wstring PluginUnderCall() {
    HostState::Logs& own = Own();
    const std::lock_guard lock(own.mutex);
    return own.calledPlugin;
}

bool CallsGoUnlogged() {
    return Own().isUnlogged;
}

// Not through the sections of Own(): the user-interface thread may be removing them. It writes none
// behind our back.
void ExcuseLastCall() {
    HostState::Logs& own = Own();
    const std::lock_guard lock(own.mutex);
    Excuse(own);
}

bool CallsAreExcused() {
    HostState::Logs& own = Own();
    const std::lock_guard lock(own.mutex);
    return own.isExcused;
}

void HoldThreadCrashAgainst(const std::wstring& plugin) {
    HostState::Logs& own = Own();
    if (own.elsewhere != nullptr) return own.elsewhere->OnThreadCrash(plugin);
    const std::lock_guard lock(own.mutex);
    if (own.isExcused) return;
    const std::wstring function = GetSetting(LogOf(kCallLog, OwnNumber()), kFunctionKey);
    if (plugin.empty() && function != kFreeLibrary) return;
    PluginCall crash{kThread, plugin, {}};
    // Its own call tells more. That note does not last: the thread that calls goes on until the
    // system has ended the process.
    for (const wchar_t* log : {kCallLog, kInfoLog}) {
        std::optional<PluginCall> call = Noted(log, OwnNumber());
        if (call && EqualsIgnoreCase(call->plugin, plugin)) crash = *std::move(call);
    }
    Excuse(own);
    if (plugin.empty()) return;
    // A log of its own: the thread that calls plug-ins may still clear the others.
    SaveCall(crash, [](const auto& texts) { SaveSettings(LogOf(kThreadLog, OwnNumber()), texts); });
}

std::vector<PluginCall> RecoverInterruptedCalls() {
    std::vector<PluginCall> calls;
    ForEachAbandonedLog([&](const wchar_t* log, int run) { Count(log, run, calls); });
    return calls;
}

std::vector<PluginCall> FindInterruptedCalls() {
    std::vector<PluginCall> calls;
    ForEachAbandonedLog([&](const wchar_t* log, int run) {
        std::optional<PluginCall> call = Noted(log, run);
        if (call && !IsCounted(*call, calls)) calls.push_back(*std::move(call));
    });
    return calls;
}

}  // namespace tessary
