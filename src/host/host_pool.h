// The host processes that a program has.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "host/host_process.h"
#include "plugin/plugin_ends.h"

namespace tessary {

// Is told of each end that a plug-in is to blame for, once. On the thread that asks for something.
using Blame = std::function<void(const PluginEnd& end)>;

// One host for all plug-ins that behave, and one for each that has ended others before
// (PluginEnds::IsAlone). A host is started when it is first needed, and replaced by the next call
// when it has ended or is worn; one of a single plug-in's is ended when it was not needed for a
// while, or there are many. One thread's, whichever; pools share nothing but the settings store.
class HostPool {
  public:
    // `program`: full path of what is started; the limits and the wait count for all calls. An
    // empty `blame`: ends are counted at once (CountEnd).
    explicit HostPool(std::wstring program, HostLimits limits = {}, HostWait wait = {},
                      Blame blame = {});

    // The host of a plug-in, by its full path; starts one if there is none. Null when that cannot
    // be done; it is tried again after a while.
    HostProcess* For(const std::wstring& plugin);
    // Why that could not be done when it was tried last (no_host.h).
    uint32_t WhyNone() const { return whyNone_; }
    // The same if it runs, with what was loaded in it; else null.
    HostProcess* RunningFor(const std::wstring& plugin);

    // Whether the plug-in is not to be called any more (PluginEnds::IsGivenUp).
    bool IsGivenUp(const std::wstring& plugin);

    HostLimits Limits() const { return limits_(); }
    // Has them asked for at each call, in place of fixed ones.
    void FollowLimits(std::function<HostLimits()> limits) { limits_ = std::move(limits); }

    // Has further hosts show no window to anybody.
    void Hide() { isHidden_ = true; }

    // The bytes of a source for the hosts: the last ones, where they are the same.
    LentBytes& Lent() { return lent_; }

    // Notes an end and hands it on to whoever is told of it; what he throws goes nowhere.
    void Tell(const PluginEnd& end);

  private:
    struct Slot {
        std::unique_ptr<HostProcess> host;
        ULONGLONG usedAt = 0;  // in ticks
    };
    // What is known of a plug-in's ends: as the store had it last, and those that somebody else may
    // count, later or never.
    struct Record {
        PluginEnds stored;
        PluginEnds told;
    };

    Record& RecordOf(const std::wstring& plugin);
    void ReadAnew(const std::wstring& plugin, Record& record) const;
    // The plug-in's own host, or the one of all (empty).
    std::wstring SlotOf(const std::wstring& plugin);
    void EndSuperfluous(const std::wstring& used);

    std::wstring program_;
    std::function<HostLimits()> limits_;
    HostWait wait_;
    Blame blame_;
    bool isHidden_ = false;
    LentBytes lent_;
    std::map<std::wstring, Slot> slots_;      // by plug-in, in upper case
    std::map<std::wstring, Record> records_;  // the same
    uint32_t whyNone_ = 0;
    ULONGLONG retryAt_ = 0;  // when one may be started again after none could be, in ticks
};

}  // namespace tessary
