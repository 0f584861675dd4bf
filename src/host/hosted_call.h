// The calls that host processes of this one carry out, for whoever meets windows of theirs.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace tessary {

// For its own life a host process is known to be asked for something of a plug-in; one thing at a
// time. From any thread.
class HostedCall {
  public:
    // `plugin`: the full path of its file; may be empty.
    HostedCall(DWORD process, const std::wstring& plugin);
    HostedCall(const HostedCall&) = delete;
    HostedCall& operator=(const HostedCall&) = delete;
    ~HostedCall();

    // The plug-in that the process of that number is asked for something of. Nothing: it is no host
    // of this process's, or has nothing to do.
    static std::optional<std::wstring> PluginIn(DWORD process);

  private:
    DWORD process_;
};

}  // namespace tessary
