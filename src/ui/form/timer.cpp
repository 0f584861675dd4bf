#include "ui/form/timer.h"

#include <map>
#include <utility>

#include "app/base/error.h"

namespace tessary {
namespace {

// A tick that was already on its way arrives after its timer has stopped: only these run.
std::map<UINT_PTR, Timer*>& RunningTimers() {
    static std::map<UINT_PTR, Timer*> timers;
    return timers;
}

}  // namespace

Timer::Timer(std::function<void()> tick) : handler_(std::make_shared<Handler>()) {
    handler_->tick = std::move(tick);
}

Timer::~Timer() {
    Stop();
}

bool Timer::Start(UINT milliseconds) {
    Stop();
    id_ = SetTimer(nullptr, 0, milliseconds, Procedure);
    if (id_ == 0) return false;
    RunningTimers()[id_] = this;
    return true;
}

void Timer::Stop() {
    if (id_ == 0) return;
    KillTimer(nullptr, id_);
    RunningTimers().erase(std::exchange(id_, 0));
}

void CALLBACK Timer::Procedure(HWND /*window*/, UINT /*message*/, UINT_PTR id, DWORD /*time*/) {
    const auto found = RunningTimers().find(id);
    if (found == RunningTimers().end()) return;
    const std::shared_ptr<Handler> handler = found->second->handler_;
    if (handler->ticking) return;
    handler->ticking = true;
    Trapped([&] { handler->tick(); });
    handler->ticking = false;
}

}  // namespace tessary
