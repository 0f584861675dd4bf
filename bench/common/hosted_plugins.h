// Plug-ins where the viewer has them.
#pragma once

#include <windows.h>

#include <memory>
#include <string>

#include "bench/common/finished_program.h"
#include "host/host_connection.h"

namespace tessary::bench {

// Has plug-ins run in the finished program's host process, unless the environment variable
// TESSARY_BENCH_PLUGINS says "here": to compare.
inline void UsePluginsAsTheViewer() {
    wchar_t where[16]{};
    GetEnvironmentVariableW(L"TESSARY_BENCH_PLUGINS", where, 16);
    if (where == std::wstring(L"here")) return;
    static HostPool pool(FinishedFolder() + kHostProgram);
    SetPluginConnector(
        [](const std::wstring& plugin) { return std::make_unique<HostConnection>(plugin, pool); });
}

// Plug-ins in a host process of their own.
inline PluginConnector OwnConnector() {
    return OwnHostConnector(HostWindows::kHidden, FinishedFolder() + kHostProgram);
}

}  // namespace tessary::bench
