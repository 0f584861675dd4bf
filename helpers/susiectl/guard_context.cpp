#include "helpers/susiectl/guard_context.h"

#include <new>

#ifndef _WIN64
#include "helpers/susiectl/exception_chain.h"
#endif

namespace tessary::susiectl {
namespace {

// In a page of its own, between two that nobody can touch: what a plug-in overruns is the heap.
struct GuardStack {
    size_t depth = 0;
    bool isRecovering = false;
    std::array<GuardContext, 20> guards;  // calls nest when the host is told of progress
#ifndef _WIN64
    ChangedWords changedWords;
    const void* lastHandler = nullptr;
#endif
};
constexpr size_t kPageSize = 4096;
static_assert(sizeof(GuardStack) <= kPageSize);

// A slot of the system's rather than thread_local: it is read inside exception handlers, where
// nothing may be allocated, and it is emptied for every thread when the library goes.
DWORD slot = FLS_OUT_OF_INDEXES;

void CALLBACK DeleteGuardStack(void* stack) {
    VirtualFree(static_cast<std::byte*>(stack) - kPageSize, 0, MEM_RELEASE);
}

GuardStack* ThisThreadsStack() {
    return static_cast<GuardStack*>(FlsGetValue(slot));
}

GuardStack& MakeThisThreadsStack() {
    auto* const pages =
        static_cast<std::byte*>(VirtualAlloc(nullptr, 3 * kPageSize, MEM_RESERVE, PAGE_NOACCESS));
    void* const page =
        pages ? VirtualAlloc(pages + kPageSize, kPageSize, MEM_COMMIT, PAGE_READWRITE) : nullptr;
    if (!page || !FlsSetValue(slot, page)) {
        if (pages) VirtualFree(pages, 0, MEM_RELEASE);
        throw std::bad_alloc();
    }
    // Room for the called code's own handlers, and ours, to run in after a stack overflow.
    ULONG room = 64 * 1024;
    SetThreadStackGuarantee(&room);
    auto* const stack = ::new (page) GuardStack;
#ifndef _WIN64
    stack->lastHandler = LastExceptionHandler();
#endif
    return *stack;
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
    GuardStack* const known = ThisThreadsStack();
    GuardStack& stack = known ? *known : MakeThisThreadsStack();
    if (stack.depth == stack.guards.size()) throw std::bad_alloc();
    return stack.guards[stack.depth++] = {};
}

void PopGuard(const GuardContext& guard) {
    GuardStack& stack = *ThisThreadsStack();
    stack.depth = static_cast<size_t>(&guard - stack.guards.data());
}

bool IsOutermost(const GuardContext& guard) {
    return &guard == ThisThreadsStack()->guards.data();
}

GuardContext* InnermostGuard() {
    GuardStack* stack = ThisThreadsStack();
    return stack && stack->depth > 0 ? &stack->guards[stack->depth - 1] : nullptr;
}

GuardContext* GuardOfFrame(const void* frame) {
    GuardStack* stack = ThisThreadsStack();
    for (size_t i = 0; stack && i < stack->depth; ++i)
        if (stack->guards[i].frame == frame) return &stack->guards[i];
    return nullptr;
}

#ifndef _WIN64
ChangedWords& ThisThreadsChangedWords() {
    return ThisThreadsStack()->changedWords;
}

const void* ThisThreadsLastHandler() {
    return ThisThreadsStack()->lastHandler;
}
#endif

bool IsRecovering() {
    const GuardStack* stack = ThisThreadsStack();
    return stack && stack->isRecovering;
}

void SetRecovering(bool isRecovering) {
    if (GuardStack* stack = ThisThreadsStack()) stack->isRecovering = isRecovering;
}

}  // namespace tessary::susiectl
