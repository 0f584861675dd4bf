// How messages and logs name what a host was asked for, and what is answered when it has ended.
#pragma once

#include <string>

#include "host/host_messages.h"
#include "host/host_process.h"
#include "plugin/plugin_connection.h"

namespace tessary {

// For messages.
const wchar_t* FunctionOf(HostOperation operation);

// For logs, should the host's own note be lost.
std::wstring LogNameOf(const HostRequest& request);

// In place of the host that has ended so. `whyNoHost`: why there was none (no_host.h).
PluginAnswer EndedAnswer(HostEnd end, HostOperation operation, uint32_t whyNoHost);

}  // namespace tessary
