// What this process has to remember of its plug-in calls as a whole, in one place.
#pragma once

#include <windows.h>

#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "app/settings/settings_store.h"
#include "plugin/living_runs.h"
#include "plugin/plugin_connection.h"
#include "plugin/waited_call.h"

namespace tessary {

class CallNotes;
class CollectionSusie;

// Of one thread that asks plug-ins for something.
struct PluginCaller {
    bool isCallUnderWay = false;  // plugin_state.h

    // Makes the connections to plug-ins; empty: they are in this process.
    PluginConnector connector{};

    // Who waits for what is asked of plug-ins (call_watch.h); empty: nobody in particular.
    CallWatcher watcher{};

    uint32_t crashes = 0;  // how many answers there were that told of one

    uint32_t longRun = 0;   // the number of the one under way (long_run.h); 0: there is none
    uint32_t longRuns = 0;  // how many there have been

    CollectionSusie* plugins = nullptr;  // of a thread that has its own (own_plugins.h)
};

struct HostState {
    PluginCaller firstCaller;

    // Makes the connectors of further threads, for each its own; empty: there are to be none.
    std::function<PluginConnector()> furtherConnector;

    // Of the calls in this process (plugin_state.h).
    bool hasPluginCrashed = false;
    std::wstring damager;  // file name of the plug-in whose call has damaged the memory; or empty

    // This copy among those that run.
    OwnRun run;

    // The call log (call_log.h).
    struct Logs {
        PassingSection call;
        PassingSection info;
        bool isUnlogged = false;
        CallNotes* elsewhere = nullptr;  // where all is noted instead (call_notes.h)
        std::mutex mutex;                // of what follows, and of writing the logs
        bool isExcused = false;          // nothing is written any more
        std::wstring calledPlugin;       // empty: none
    } logs;

    // Whose code is, or was before it was freed, at which addresses (thread_crash.h).
    struct Place {
        uintptr_t begin = 0;
        uintptr_t end = 0;
        std::wstring plugin;
    };
    struct Threads {
        std::mutex mutex;
        std::vector<Place> places;  // the newest last
        DWORD caller = 0;           // the thread that calls plug-ins: it has the guard
        LPTOP_LEVEL_EXCEPTION_FILTER next = nullptr;
    } threads;
};

// The only one. It never ends: plug-ins are still freed and logged, and their threads crash, while
// static objects are destroyed.
HostState& Host();

// Of this thread: the process's first, unless the thread has one of its own.
PluginCaller& Caller();

// For its own life this thread has a caller of its own.
class OwnCaller {
  public:
    explicit OwnCaller(PluginCaller& caller);
    OwnCaller(const OwnCaller&) = delete;
    OwnCaller& operator=(const OwnCaller&) = delete;
    ~OwnCaller();
};

}  // namespace tessary
