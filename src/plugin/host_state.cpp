#include "plugin/host_state.h"

#include <memory>

namespace tessary {
namespace {

thread_local PluginCaller* ownCaller = nullptr;

}  // namespace

PluginCaller& Caller() {
    return ownCaller != nullptr ? *ownCaller : Host().firstCaller;
}

OwnCaller::OwnCaller(PluginCaller& caller) {
    ownCaller = &caller;
}

OwnCaller::~OwnCaller() {
    ownCaller = nullptr;
}

HostState& Host() {
    static HostState* const host = std::make_unique<HostState>().release();
    return *host;
}

}  // namespace tessary
