// A process that plug-ins run in, seen from the program: how it is started, asked and ended.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <span>
#include <string>

#include "app/base/worker_thread.h"
#include "host/host_channel.h"
#include "host/host_memory.h"
#include "host/host_messages.h"
#include "host/host_sections.h"
#include "host/lent_bytes.h"
#include "plugin/file_stamp.h"
#include "plugin/plugin_connection.h"
#include "plugin/plugin_ends.h"
#include "plugin/waited_call.h"

namespace tessary {

using UniqueJob = UniqueHandle<handle_traits::KernelObject>;

// How long an operation may give no sign of life, in milliseconds, and how much a host may take.
struct HostLimits {
    DWORD asking = 2000;  // Describe, Supports
    DWORD working = 20000;
    DWORD starting = 5000;  // Load, when code of the library runs: that it may do nothing at all
    uint64_t memory = 0;    // that a host may have, in bytes; 0: what is right for the machine
};

// Waits until one of the handles is signalled, at most so many milliseconds, and keeps the windows
// of the program alive meanwhile. `isUsers`: it is the user who is waited for, in a settings
// window: all messages are handled. Else nothing that could ask a plug-in for something. False: the
// program is about to end.
using HostWait =
    std::function<bool(std::span<const HANDLE> handles, DWORD milliseconds, bool isUsers)>;

// How a call has ended.
enum class HostEnd {
    kAnswered,
    kDied,     // the host has ended in the middle
    kSilent,   // it gave no sign of life, and was ended
    kStopped,  // it did not stop when it was told to, and was ended
    kHoarded,  // it took too much memory, and was ended
    kLied,     // what it has answered cannot be, and it was ended
    kRefused,  // the request could not be made
    kNoHost,   // there is none
    kGivenUp,  // the plug-in is not called any more
};

class HostProcess {
  public:
    // Starts `program`; null when that cannot be done. The host ends with this process, whatever
    // happens, and with this object.
    // `wait`: for its replies; empty: nothing but waiting is done.
    struct Kind {
        uint64_t memory = 0;  // HostLimits
        DWORD starting = HostLimits{}.starting;
        bool isHidden = false;  // nobody sees its windows; it is ended when it shows one
    };
    static std::unique_ptr<HostProcess> Start(const std::wstring& program, HostWait wait,
                                              Kind kind);

    HostProcess(const HostProcess&) = delete;
    HostProcess& operator=(const HostProcess&) = delete;
    // Has it free its plug-ins, and does not wait long for that.
    ~HostProcess();

    bool IsAlive() const;
    // Of the process.
    DWORD Id() const { return GetProcessId(process_.Get()); }

    // Whether it should be replaced: it has said so, or has kept too much memory.
    bool IsWorn() const { return isWorn_ || isLittered_; }

    // Whether the plug-in's file is another one now than when it was first asked for something
    // here. The file is looked at from time to time only; one that is away, or that somebody still
    // writes, is none yet.
    bool IsReplaced(const std::wstring& plugin);

    // Has a request carried out, and waits for the reply. `limit`: without a sign of life, in
    // milliseconds; INFINITE: the user is waited for. Whoever watches is asked every moment, where
    // nobody does `progress`, whether the plug-in asks or not; a plug-in that goes on though it was
    // told to stop is ended soon. Nothing is thrown but for want of memory.
    HostEnd Call(HostRequest request, DWORD limit, const SusieProgress& progress,
                 const CallWatcher& watcher, HostReply& reply);

    // Gives the host a handle of a section, to read it or to have a copy of its own, and says what
    // its request is to tell of it.
    WireSection Lend(const LentBytes::Lent& lent);
    // Bytes in a section of the host's.
    HostSections::Opened Take(const WireSection& section,
                              std::optional<HostSections::Lease>& bytes) const {
        return sections_->Open(process_.Get(), section, bytes);
    }

    // Ends it at once. What the system cannot end yet, as it waits for a device, counts as ended.
    void End();

    // Which plug-in has to answer for the host's end, and for what, told once; nothing: none was
    // being called. `asked`: what was asked for then; of no plug-in between two requests.
    std::optional<PluginEnd> TakeBlame(HostEnd end, const PluginCall& asked);

  private:
    HostProcess(UniqueProcess process, UniqueThread thread, UniqueJob job, ChannelEnd channel,
                UniqueEvent request, UniqueEvent answer, HostWait wait, const Kind& kind);

    // Hands over what stands in the page.
    void Send();
    // Whether the host has signalled something within so many milliseconds.
    bool HasSignalled(DWORD milliseconds, bool isUsers, bool& goesOn) const;
    bool Goes(const SusieProgress& progress) const;
    std::optional<HostReply> TakeReply() const;
    // Ends it, and answers that.
    HostEnd Ended(HostEnd end);
    // Whether a library waits for ever while it is being loaded.
    bool HangsAtStart(const HostRequest& request, DWORD idle) const;

    UniqueProcess process_;
    UniqueThread thread_;  // its first, which calls the plug-ins
    UniqueJob job_;        // ends the host when this process ends
    ChannelEnd channel_;
    UniqueEvent request_;
    UniqueEvent answer_;
    HostWait wait_;
    HostMemory memory_;
    Kind kind_;
    bool isEnded_ = false;
    std::shared_ptr<HostSections> sections_ = std::make_shared<HostSections>();
    std::set<std::wstring> served_;  // plug-ins that were asked for something, in upper case
    struct LookAtFile {
        std::optional<FileStamp> stamp{};
        ULONGLONG at = 0;  // in ticks
    };
    std::map<std::wstring, LookAtFile> files_;  // of those, the same; the stamp is the first look's
    WireSection lent_;                          // what the host got last
    bool isWorn_ = false;
    bool isLittered_ = false;
};

}  // namespace tessary
