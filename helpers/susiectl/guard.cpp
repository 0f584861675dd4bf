#include "helpers/susiectl/guard.h"

#include <malloc.h>

#include <algorithm>

#include "helpers/susiectl/activation_context.h"
#include "helpers/susiectl/call_state.h"
#ifndef _WIN64
#include "helpers/susiectl/callback_frames.h"
#include "helpers/susiectl/swallowed_exception.h"
#endif
#include "helpers/susiectl/guard_machine.h"
#include "helpers/susiectl/heap_check.h"
#include "helpers/susiectl/heap_lock.h"
#include "helpers/susiectl/loader_state.h"
#include "helpers/susiectl/process_end.h"

namespace tessary::susiectl {
namespace {

// One entry of the thread's running calls.
class Frame {
  public:
    Frame(FARPROC function, std::initializer_list<ULONG_PTR> arguments) : guard_(PushGuard()) {
        guard_.function = function;
        std::ranges::copy(arguments, guard_.arguments.begin());
#ifndef _WIN64
        guard_.argumentCount = arguments.size();
#endif
    }
    ~Frame() {
        PopGuard(guard_);
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    GuardContext* operator->() {
        return &guard_;
    }

    void Invoke() {
        void* const activationFrame = ActivationFrame();
        guard_.stage = GuardStage::kInside;
        TessaryInvoke(&guard_);
        guard_.stage = GuardStage::kAfter;
        if (guard_.crashed) SetActivationFrame(activationFrame);
        guard_.hostState.Restore();
        if (guard_.stackExhausted) _resetstkoflw();
    }
    // Within another call that one's plug-in may be at work in the heap.
    bool HasLeftHeapLocked() const {
        return IsOutermost(guard_) && HoldsProcessHeap();
    }
    std::optional<INT_PTR> Answer() const {
        return guard_.crashed ? std::nullopt : std::optional(guard_.value);
    }

  private:
    GuardContext& guard_;
};

}  // namespace

std::optional<INT_PTR> GuardedCall(FARPROC function, std::initializer_list<ULONG_PTR> arguments,
                                   Net net, HostProgress progress) {
    PrepareHeapCheck();
#ifndef _WIN64
    LearnCallbackFrames();
    LearnSystemsModules();
#endif
    Frame frame(function, arguments);
    const CallState state;
    frame->netSpread = net == Net::kSpread;
    frame->progress = progress;
    frame.Invoke();
    if (frame->crashed) {
        SetRecovering(true);
        // Other threads can do nothing more, not even look at the heaps.
        if (net == Net::kNone && HoldsLoader()) EndProcess();
        CheckHeaps();
    } else if (frame.HasLeftHeapLocked()) {
        // It has crashed in there, and has taken that itself.
        SetRecovering(true);
        CheckHeaps();
    }
    return frame.Answer();
}

std::optional<INT_PTR> BareCall(FARPROC function, std::initializer_list<ULONG_PTR> arguments) {
    Frame frame(function, arguments);
    frame.Invoke();
    return frame.Answer();
}

}  // namespace tessary::susiectl
