#include "plugin/thread_crash.h"

#include <mutex>
#include <ranges>

#include "app/base/error.h"
#include "plugin/call_log.h"
#include "plugin/host_state.h"
#include "plugin/plugin_state.h"

namespace tessary {
namespace {

using Place = HostState::Place;

Place PlaceOf(HMODULE module, const std::wstring& plugin) {
    const auto begin = reinterpret_cast<uintptr_t>(module);
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
    const auto* const headers =
        reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + static_cast<uintptr_t>(dos->e_lfanew));
    return {begin, begin + headers->OptionalHeader.SizeOfImage, plugin};
}

// The system's last question before it ends the process.
LONG WINAPI HoldAgainstOwner(EXCEPTION_POINTERS* exception) {
    const HostState::Threads& watch = Host().threads;
    // Between two calls the caller handles messages, in hooks of a plug-in's too.
    if (GetCurrentThreadId() != watch.caller || !PluginCallUnderWay()) {
        Trapped([&] {
            HoldThreadCrashAgainst(PluginAt(exception->ExceptionRecord->ExceptionAddress));
        });
    }
    return watch.next != nullptr ? watch.next(exception) : EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

std::wstring PluginAt(const void* address) {
    HostState::Threads& watch = Host().threads;
    const std::lock_guard lock(watch.mutex);
    const auto at = reinterpret_cast<uintptr_t>(address);
    for (const Place& place : watch.places | std::views::reverse) {
        if (at >= place.begin && at < place.end) return place.plugin;
    }
    return {};
}

void WatchThreadsOf(HMODULE module, const std::wstring& plugin) {
    HostState::Threads& watch = Host().threads;
    const std::lock_guard lock(watch.mutex);
    const Place added = PlaceOf(module, plugin);
    std::erase_if(watch.places, [&](const Place& place) { return place.begin == added.begin; });
    watch.places.push_back(added);
    // Anew each time: what plug-ins are built with may set one of its own, and go.
    const auto before = SetUnhandledExceptionFilter(HoldAgainstOwner);
    if (watch.caller == 0) watch.next = before;
    watch.caller = GetCurrentThreadId();
}

}  // namespace tessary
