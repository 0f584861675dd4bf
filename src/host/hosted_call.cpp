#include "host/hosted_call.h"

#include <map>
#include <memory>
#include <mutex>

namespace tessary {
namespace {

struct Calls {
    std::mutex mutex;
    std::map<DWORD, std::wstring> plugins;  // by process
};

// It never ends: threads may still wait for hosts while the program ends.
Calls& All() {
    static Calls* const calls = std::make_unique<Calls>().release();
    return *calls;
}

}  // namespace

HostedCall::HostedCall(DWORD process, const std::wstring& plugin) : process_(process) {
    const std::lock_guard lock(All().mutex);
    All().plugins[process_] = plugin;
}

HostedCall::~HostedCall() {
    const std::lock_guard lock(All().mutex);
    All().plugins.erase(process_);
}

std::optional<std::wstring> HostedCall::PluginIn(DWORD process) {
    const std::lock_guard lock(All().mutex);
    const auto found = All().plugins.find(process);
    return found != All().plugins.end() ? std::optional(found->second) : std::nullopt;
}

}  // namespace tessary
