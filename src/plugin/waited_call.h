// A call of a plug-in in a process of its own, as whoever waits for it sees it.
#pragma once

#include <windows.h>

#include <functional>
#include <string_view>

namespace tessary {

// Times are in milliseconds that were really waited: neither what the user has kept a menu open nor
// the computer's sleep is among them.
struct WaitedCall {
    std::wstring_view plugin{};  // full path of its file
    int done = 0;                // what the plug-in has told of its progress; total 0: nothing
    int total = 0;
    DWORD age = 0;
    DWORD silence = 0;  // since it told so last
    DWORD idle = 0;     // since its process was seen doing anything: it waits, most likely for ever
    bool mayTell = false;    // it is a call of whose progress plug-ins can tell
    bool isOverdue = false;  // it has been silent for longer than it may be
};

// What is to become of it.
enum class CallWish {
    kGoesOn,    // one that is overdue is ended, and counted against the plug-in
    kStops,     // nobody wants it any more; the plug-in has a moment to stop by itself
    kAsksUser,  // whether to go on with one that is overdue: it goes on so long, but not for ever
    kMoreTime,  // one that is overdue may be silent once more as long
    kGivenUp,   // it is ended as one that is overdue
};

using CallWatcher = std::function<CallWish(const WaitedCall& call)>;

}  // namespace tessary
