#include "app/base/stay_awake.h"

#include <utility>

namespace tessary {
namespace {

AwakeObserver& Observer() {
    static AwakeObserver observer;
    return observer;
}

void Tell(AwakeNeed need, bool isOn) {
    if (Observer()) Observer()(need, isOn);
}

// Not SetThreadExecutionState: that is one value of the thread, which plug-ins may set as well.
HANDLE MakeRequest(const wchar_t* reason) {
    REASON_CONTEXT context{};
    context.Version = POWER_REQUEST_CONTEXT_VERSION;
    context.Flags = POWER_REQUEST_CONTEXT_SIMPLE_STRING;
    context.Reason.SimpleReasonString = const_cast<wchar_t*>(reason);
    const HANDLE request = PowerCreateRequest(&context);
    return request == INVALID_HANDLE_VALUE ? nullptr : request;
}

}  // namespace

StayAwake::StayAwake(AwakeNeed need, const wchar_t* reason)
    : need_(need), request_(MakeRequest(reason)) {
    Tell(need_, true);
    if (request_ == nullptr) return;
    // A screen that is on keeps not every machine awake.
    PowerSetRequest(request_, PowerRequestSystemRequired);
    if (need_ == AwakeNeed::kScreen) PowerSetRequest(request_, PowerRequestDisplayRequired);
}

StayAwake::~StayAwake() {
    if (request_ != nullptr) CloseHandle(request_);  // what it asks for ends with it
    Tell(need_, false);
}

void SetAwakeObserver(AwakeObserver observer) {
    Observer() = std::move(observer);
}

}  // namespace tessary
