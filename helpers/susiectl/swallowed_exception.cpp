#include "helpers/susiectl/swallowed_exception.h"

#include <algorithm>
#include <array>

#include "helpers/susiectl/callback_frames.h"
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/process_end.h"

namespace tessary::susiectl {
namespace {

// Where the system's functions look at what they are given; the first is the one with the windows.
constexpr auto kModules =
    std::to_array<const wchar_t*>({L"user32.dll", L"ntdll.dll", L"kernel32.dll", L"kernelbase.dll",
                                   L"msvcrt.dll", L"gdi32.dll", L"win32u.dll"});

// As of the first call: while an exception is handled no lock may be waited for.
std::array<const void*, kModules.size()> systemModules{};

bool LearnModules() {
    std::ranges::transform(kModules, systemModules.begin(),
                           [](const wchar_t* name) { return GetModuleHandleW(name); });
    return true;
}

const void* ModuleBase(const void* address) {
    MEMORY_BASIC_INFORMATION pages{};
    return VirtualQuery(address, &pages, sizeof pages) ? pages.AllocationBase : nullptr;
}

bool IsSystemsCode(const void* address) {
    const void* const base = ModuleBase(address);
    return base && std::ranges::find(systemModules, base) != systemModules.end();
}

void* OurHandler() {
    return reinterpret_cast<void*>(&TessaryWatchHandler);
}

// Puts our handler on the first record of user32.dll's, from `record` on. One at a time: when it
// declines, the next one's turn comes. An exception goes no further than the innermost callback.
void WatchFrom(GuardContext& guard, ExceptionRegistration* record) {
    for (; record != guard.frame && !IsCallbackFrame(record); record = record->outer) {
        if (ModuleBase(record->handler) != systemModules.front()) continue;
        guard.watched = {record, record->handler};
        record->handler = OurHandler();
        return;
    }
}

// Gives the record that is watched its own handler back, if it still is one.
void StopWatching(GuardContext& guard) {
    for (auto* record = InnermostRegistration(); guard.watched.record && record != guard.frame;
         record = record->outer)
        if (record == guard.watched.record && record->handler == OurHandler())
            record->handler = guard.watched.handler;
    guard.watched = {};
}

}  // namespace

void LearnSystemsModules() {
    [[maybe_unused]] static const bool areKnown = LearnModules();
}

void WatchSystemsFrames(GuardContext& guard, const EXCEPTION_RECORD& exception) {
    StopWatching(guard);
    if (guard.netSpread && !IsSystemsCode(exception.ExceptionAddress))
        WatchFrom(guard, InnermostRegistration());
}

}  // namespace tessary::susiectl

using namespace tessary::susiectl;

const void* TessaryBeginWatched(const EXCEPTION_RECORD* exception, void* frame) {
    auto* const record = static_cast<ExceptionRegistration*>(frame);
    GuardContext* const guard = InnermostGuard();
    if (!guard || guard->watched.record != frame) EndProcess();
    record->handler = guard->watched.handler;
    guard->watched.wasCrashed = guard->crashed;
    // For the case that it takes the exception and does not come back.
    if (!IS_UNWINDING(exception->ExceptionFlags)) guard->crashed = true;
    return record->handler;
}

void TessaryEndWatched(const EXCEPTION_RECORD* exception, void* frame) {
    GuardContext* const guard = InnermostGuard();
    guard->crashed = guard->watched.wasCrashed;
    guard->watched = {};
    if (!IS_UNWINDING(exception->ExceptionFlags))
        WatchFrom(*guard, static_cast<ExceptionRegistration*>(frame)->outer);
}
