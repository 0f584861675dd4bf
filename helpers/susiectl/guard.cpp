#include "helpers/susiectl/guard.h"

#include <malloc.h>

#include <algorithm>

#include "helpers/susiectl/call_state.h"
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/left_heap.h"

namespace tessary::susiectl {

std::optional<INT_PTR> GuardedCall(FARPROC function, std::initializer_list<ULONG_PTR> arguments,
                                   Net net, HostProgress progress) {
    const CallState state;
    GuardContext& guard = PushGuard();
    guard.function = function;
    std::ranges::copy(arguments, guard.arguments.begin());
#ifndef _WIN64
    guard.argumentCount = arguments.size();
#endif
    guard.netSpread = net == Net::kSpread;
    guard.progress = progress;

    TessaryInvoke(&guard);

    guard.hostState.Restore();
    if (guard.stackExhausted) _resetstkoflw();
    if (guard.crashed) UnlockLeftHeap();
    const auto answer = guard.crashed ? std::nullopt : std::optional(guard.value);
    PopGuard(guard);
    return answer;
}

}  // namespace tessary::susiectl
