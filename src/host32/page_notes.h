// What the host process notes of its calls.
#pragma once

#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "host/host_notes.h"
#include "plugin/call_notes.h"

namespace tessary {

// In the page, which outlives the process; what was caught goes with the next reply.
class PageNotes final : public CallNotes {
  public:
    explicit PageNotes(HostNotes& page) : page_(page) {}

    void OnCall(const PluginCall& call) override;
    void OnReturn() override;
    void OnFailure(const PluginCall& call) override;
    void OnThreadCrash(const std::wstring& plugin) noexcept override;

    std::vector<std::wstring> TakeFailures() { return std::exchange(failures_, {}); }

  private:
    HostNotes& page_;
    // The thread that calls goes on until the system has ended the process.
    std::atomic<bool> isDecided_ = false;
    std::vector<std::wstring> failures_;
};

}  // namespace tessary
