#include "helpers/susiectl/guard_context.h"

#include <algorithm>
#include <deque>
#include <memory>

namespace tessary::susiectl {
namespace {

using GuardStack = std::deque<GuardContext>;  // its elements never move

// A slot of the system's rather than thread_local: it is read inside exception handlers, where
// nothing may be allocated, and it is emptied for every thread when the library goes.
DWORD slot = FLS_OUT_OF_INDEXES;

void CALLBACK DeleteGuardStack(void* stack) {
    std::unique_ptr<GuardStack>(static_cast<GuardStack*>(stack)).reset();
}

GuardStack* ThisThreadsStack() {
    return static_cast<GuardStack*>(FlsGetValue(slot));
}

GuardStack& MakeThisThreadsStack() {
    auto stack = std::make_unique<GuardStack>();
    if (!FlsSetValue(slot, stack.get())) throw std::bad_alloc();
    // Room for the called code's own handlers, and ours, to run in after a stack overflow.
    ULONG room = 64 * 1024;
    SetThreadStackGuarantee(&room);
    return *stack.release();
}

}  // namespace

bool OpenGuardStacks() {
    slot = FlsAlloc(DeleteGuardStack);
    return slot != FLS_OUT_OF_INDEXES;
}

void CloseGuardStacks() {
    if (slot != FLS_OUT_OF_INDEXES) FlsFree(slot);
    slot = FLS_OUT_OF_INDEXES;
}

GuardContext& PushGuard() {
    GuardStack* stack = ThisThreadsStack();
    return (stack ? *stack : MakeThisThreadsStack()).emplace_back();
}

void PopGuard(const GuardContext& guard) {
    GuardStack* stack = ThisThreadsStack();
    const auto found = std::ranges::find(*stack, &guard, [](GuardContext& each) { return &each; });
    stack->erase(found, stack->end());
}

GuardContext* InnermostGuard() {
    GuardStack* stack = ThisThreadsStack();
    return stack && !stack->empty() ? &stack->back() : nullptr;
}

GuardContext* GuardOfFrame(const void* frame) {
    GuardStack* stack = ThisThreadsStack();
    if (!stack) return nullptr;
    const auto found = std::ranges::find(*stack, frame, &GuardContext::frame);
    return found == stack->end() ? nullptr : &*found;
}

}  // namespace tessary::susiectl
